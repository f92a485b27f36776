// VdmComponentFeature: a component that cuts or fills a solid, and the reactor of its insert.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <vector>

#include "host/modeling/residues.h"
#include "host/modeling/stored_sizes.h"
#include "platform/ge/matrix3d.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_impl.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"

class VdmDbInsertReactorImpl;

/// Sits on the insert of a component and remembers that it was changed or erased until the next
/// pass; the feature's carrier owns it. The flag is filed, so that a change without a pass is not
/// forgotten.
class VdmDbInsertReactor : public VdmDbFeatureReactor {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbInsertReactor)

  VdmDbInsertReactor();
  ~VdmDbInsertReactor() override;

  /// The reactor is in the database and open for write; the insert is opened for write.
  void watch(const OdDbObjectId& insert);
  [[nodiscard]] OdDbObjectId insertId() const;
  [[nodiscard]] bool hasChanges() const override;
  [[nodiscard]] bool changesAreStored() const override { return true; }
  /// Open for write, or open for notification.
  void setChanged(bool changed);
  /// An erased insert is a change that the next pass deals with, not damage.
  bool doAudit() override;

  void modified(const OdDbObject* object) override;
  void erased(const OdDbObject* object, bool erasing) override;

 private:
  [[nodiscard]] VdmDbInsertReactorImpl& state() const;
};
using VdmDbInsertReactorPtr = OdSmartPtr<VdmDbInsertReactor>;

/// One insert of a component block at a solid. References: mask 1 tag 1 is the base face on which
/// it was placed (none for an insert without one), mask 2 are the faces that the tools left in the
/// solid, with the number of the tool's face as tag, counted over all its solids.
///
/// Carrier's properties of its own:
///
///   Solid, Insert        ids, soft pointers
///   CutPiece, FillPiece  ids of solids in no block: the residues, hard ownership; null
///                        for none
///   Placed               doubles: placement for which the solid was last cut (16, row by row),
///                        boxes of the cut and fill tools (6 + 6), plane of the base face (point,
///                        outward normal; 6); empty before the first cut
///   ToolStamp            2 x 32 bits: what the tools were when they were applied
///   State                0 nothing applied, 1 applied, 2 suppressed
///   Layer                id of the layer to which the insert returns from suppression
///   SizeNames, Sizes     sizes of the insert's own, in place of those of its component
///
/// Values of parameters reach it through reactors of expressions, by the properties of
/// propertyValue().
class VdmComponentFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmComponentFeature)

  enum State : OdInt32 { kStateNew = 0, kStateApplied = 1, kStateSuppressed = 2 };
  static constexpr int kBaseFaceMask = 1;
  static constexpr int kBaseFaceTag = 1;
  static constexpr int kOpeningMask = 2;

  /// Placement and boxes as the tools were last applied, and the base face's plane then.
  struct Placed {
    OdGeMatrix3d transform;
    std::array<OdGeExtents3d, vdm_host::kToolKindCount> box;
    OdGePoint3d basePoint;
    OdGeVector3d baseNormal;  ///< zero: no plane
  };

  // Reading.
  [[nodiscard]] OdDbObjectId solidId() const { return m_solidId; }
  [[nodiscard]] OdDbObjectId insertId() const { return m_insertId; }
  [[nodiscard]] State state() const { return static_cast<State>(m_state); }
  [[nodiscard]] OdUInt64 toolStamp() const;
  /// False before the first cut.
  [[nodiscard]] bool placed(Placed& placed) const;
  /// Null when there is none.
  [[nodiscard]] OdModelerBodyPtr piece(vdm_host::ToolKind kind) const;
  /// A residue that was stored does not open any more.
  [[nodiscard]] bool hasLostPiece() const;
  /// The insert's reactor; null when it was erased.
  [[nodiscard]] OdDbObjectId insertReactorId() const;
  /// The insert's reactor and the residues.
  [[nodiscard]] OdDbObjectIdArray ownObjectIds() const;
  [[nodiscard]] OdDbObjectIdArray baseFaceDependencies() const;
  /// By the number of the tool's face.
  [[nodiscard]] std::map<int, OdDbObjectIdArray> openingDependencies() const;
  /// Sizes that the insert has in place of those of its component.
  [[nodiscard]] vdm_host::ComponentSizes sizes() const { return m_sizes.all(); }
  [[nodiscard]] bool hasOwnSizes() const { return !m_sizes.isEmpty(); }
  /// "X", "Y", "Z" (drawing units), "Angle" (radians) and "Suppress" (0 or 1) of the insert, and
  /// sizes of its own; nothing for what it does not have.
  [[nodiscard]] std::optional<double> propertyValue(const OdString& name) const;
  /// The insert lies on the layer of suppressed ones.
  [[nodiscard]] bool isSuppressed() const;
  /// Name of the insert's block; empty when that does not open.
  [[nodiscard]] OdString componentName() const;

  // Writing; the carrier is open for write.
  /// Binds a new feature to its solid and its insert, which gets a reactor.
  void bind(const OdDbObjectId& solid, const OdDbObjectId& insert);
  void setApplied(State state, const Placed& placed, OdUInt64 toolStamp);
  /// The residues are worthless: the body was replaced.
  void forgetApplied();
  void setPiece(vdm_host::ToolKind kind, const OdModelerBodyPtr& body);
  void setPlaced(const Placed& placed);
  /// Drops references to an opening's face that stand for the face of another opening.
  void dropOpening(int toolFace, const OdDbObjectIdArray& dependencies);
  /// Moves the insert to the layer of suppressed ones, or back to where it was.
  void setSuppressed(bool suppressed);
  /// The component's size is that of its block again.
  void dropSize(const OdString& name);
  /// Moves the insert, suppresses it, or notes a size of its own; the next pass does the rest.
  OdResult onPropertyModified(const OdString& key, double value) override;

  [[nodiscard]] const OdArray<int>& masks() const override;
  void subMapProperties(VdmProperties& bag) override;
  [[nodiscard]] int currentEdition() const override { return 1; }

 private:
  /// The next pass has something to do.
  void noteChanged();

  OdDbObjectId m_solidId;
  OdDbObjectId m_insertId;
  std::array<OdDbObjectId, vdm_host::kToolKindCount> m_pieceIds;
  VdmDoubleArray m_placed;
  VdmLongArray m_toolStamp;
  OdLong m_state = kStateNew;
  OdDbObjectId m_layerId;
  vdm_host::StoredSizes m_sizes;
};
using VdmComponentFeaturePtr = OdSmartPtr<VdmComponentFeature>;
