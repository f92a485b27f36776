// VdmFeatureUpdateDataHelper: the solids of an update pass and the faces that features know by
// marker.
#pragma once

#include <map>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/base/array.h"
#include "platform/db/entity.h"
#include "platform/modeler/bool_oper.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/features/vdm_matching_faces.h"
#include "vdm_db/update/vdm_update_observer.h"

class OdDbBlockReference;
class OdGePoint3d;
class VdmFeatureUpdateData;
class VdmUpdateFeatureInterface;
struct VdmFeatureSubentsToRemove;

/// The part of a pass that works on solids. The base keeps the queues of tools, runs the booleans
/// and keeps the faces by marker; what needs to look at geometry is pure, and comes with the
/// subclass that the manager's VdmDbFeatureManagerPE makes. All tolerances are the subclass's.
///
/// Belongs to the pass data that it was made for, by shared pointer, and must not outlive it. Ids
/// that are looked up are first replaced by those that stand for them.
class VDM_DB_EXPORT VdmFeatureUpdateDataHelper {
 public:
  using Face = VdmFeatureUpdateDataUtils::Face;
  using Tools = OdArray<OdSmartPtr<OdDb3dSolid>>;
  using IdSet = std::unordered_set<OdDbObjectId, vdmu::OdDbObjectIdHash>;
  template <class T>
  using IdMap = std::unordered_map<OdDbObjectId, T, vdmu::OdDbObjectIdHash>;
  using ToolsBySource = IdMap<Tools>;
  using Queue = IdMap<ToolsBySource>;  ///< by solid, then by source of the tool
  /// Markers of faces before an operation, each with those after it.
  using MarkerMap = std::map<unsigned, std::vector<unsigned>>;

  explicit VdmFeatureUpdateDataHelper(VdmFeatureUpdateData& data);
  VdmFeatureUpdateDataHelper(const VdmFeatureUpdateDataHelper& other);
  VdmFeatureUpdateDataHelper& operator=(const VdmFeatureUpdateDataHelper& other);
  virtual ~VdmFeatureUpdateDataHelper();

  // The subclass's own.
  /// Queues copies of the opening's solids as tools. True when it did.
  virtual bool addCopiesToUpdateData(VdmUpdateFeatureInterface* updateInterface,
                                     OdDbObjectId feature, VdmOpeningEntities& entities) = 0;
  virtual bool getMatchingFaces(VdmUpdateFeatureInterface* updateInterface, OdDbObjectId feature,
                                const VdmFeatureUpdateDataUtils::OpeningIds& opening,
                                VdmFeatureUpdateDataUtils::FeatureArgs& args) = 0;
  /// Called one after the other, for each entity with its features, once all are prepared.
  virtual void collectForEntity(const OdDbObjectId& entity, const IdSet& features) = 0;
  virtual void collectDependentsForEntity(const OdDbObjectId& entity, const IdSet& features) = 0;
  /// True when it has removed what is to go; the interfaces are not asked then.
  virtual bool removeSubents(const OdDbObjectId& entityId, OdSmartPtr<OdDbEntity>& entity,
                             VdmFeatureSubentsToRemove& record, bool flag) = 0;
  virtual bool clearEntity(OdSmartPtr<OdDbEntity>& entity) = 0;
  /// Before the features hear initAfterUpdate.
  virtual void prepareInit() = 0;
  /// In gross mode, in place of addCopiesToUpdateData.
  virtual void addGrossData(VdmUpdateFeatureInterface* updateInterface, const OdDbObjectId& feature,
                            OdSmartPtr<OdDbBlockReference> insert,
                            OdSmartPtr<OdDb3dSolid> solid) = 0;
  /// Before anything is subtracted. False aborts the solid operations of the pass.
  virtual bool prepareForSubtract() = 0;
  /// May change the list. False leaves the solid out of the boolean; that is no failure.
  virtual bool checkTools(OdSmartPtr<OdDb3dSolid>& solid, Tools& tools) = 0;

  // The outcome, which the pass says to the helper whether it has an observer or not.
  /// Asked once all booleans are done. False rolls them back; the base says true.
  virtual bool acceptSolids();
  /// The solid operations were rolled back in this phase: nothing that was planned for them is
  /// done. `text` is that of an error that was raised, and empty when an operation gave false.
  virtual void solidsAborted(VdmUpdatePhase phase, const OdString& text);
  /// The feature failed while it prepared: what it gathered is not to be done. The base drops its
  /// tools and its faces; a subclass that keeps more drops that, too.
  virtual void withdrawFeature(const OdDbObjectId& feature);

  // Faces by marker.
  /// Base faces of a feature's subtraction by tag; null when there are none.
  [[nodiscard]] const std::map<int, Face>* subtrBaseFaceMap(OdDbObjectId feature) const;
  /// Replaces what the feature has.
  void appendSubtrBaseFace(const OdDbObjectId& feature, std::map<int, Face>& faces);
  /// Null when there are none.
  [[nodiscard]] const std::map<int, OdArray<Face>>* sampleFeatureFaces(
      const OdDbObjectId& feature) const;
  /// Replaces what the feature has.
  void appendSampleFeature(const OdDbObjectId& feature, std::map<int, OdArray<Face>>& faces);
  /// Enters for each sampled face of the feature its first new marker. A face without an entry in
  /// `markers`, or with an empty one, keeps the match that it had.
  void fillSampleFeatureMapWithMarkers(OdDbObjectId feature, const MarkerMap& markers);
  /// The same for the base face of one tag.
  void fillBaseFaceMapWithMarkers(OdDbObjectId feature, int tag, const MarkerMap& markers);
  /// Whether there is an entry, be it empty.
  [[nodiscard]] bool hasBaseFace(OdDbObjectId id) const;
  [[nodiscard]] OdDbFullSubentPathArray baseFaces(OdDbObjectId id) const;
  /// Appends; a path may come several times.
  void setBaseFace(OdDbObjectId id, const OdDbFullSubentPath& path);

  // Queues. A tool is held by reference until its queue is done; null is ignored.
  void appendSolidToSubtract(const OdDbObjectId& source, const OdDbObjectId& solid,
                             OdDb3dSolid* tool);
  /// The point has no effect.
  void appendSolidToPrepareSubtract(const OdDbObjectId& source, const OdDbObjectId& solid,
                                    OdDb3dSolid* tool, OdGePoint3d* point);
  void appendSolidToUnite(const OdDbObjectId& source, const OdDbObjectId& solid, OdDb3dSolid* tool);
  /// Solids wait to be subtracted or prepared for it.
  [[nodiscard]] bool hasSolidsModifications() const;
  /// Each solid takes all its tools of the kind, united into one, in a single boolean. A solid that
  /// does not open, or whose tools do not unite, is reported and left out. False as soon as a
  /// boolean fails: the queue stays as it is. True, with the queue empty, otherwise.
  bool subtractOperation();
  bool unionOperation();
  /// By source; empty for a solid without.
  [[nodiscard]] ToolsBySource getSubtractorsOnLayers(OdDbObjectId solid) const;
  [[nodiscard]] ToolsBySource getUnitersOnLayers(OdDbObjectId solid) const;

  /// Unites the tools, in place, into the first that is not null, which it returns; null when there
  /// is none. Each takes the properties of `base` if that is given. A tool that does not unite is
  /// reported and left out.
  static OdSmartPtr<OdDb3dSolid> uniteSolids(Tools& tools, OdDb3dSolid* base);

 protected:
  bool booleanOperation(OdDb::BoolOperType type, Queue& queue);
  void appendSolid(const OdDbObjectId& source, const OdDbObjectId& solid, OdDb3dSolid* tool,
                   Queue& queue);
  [[nodiscard]] VdmFeatureUpdateData& updateData() const { return *m_updateData; }
  [[nodiscard]] Queue& solidsToPrepareSubtract() { return m_solidsToPrepareSubtract; }
  [[nodiscard]] Queue& solidsToSubtract() { return m_solidsToSubtract; }
  [[nodiscard]] Queue& solidsToUnite() { return m_solidsToUnite; }
  [[nodiscard]] Queue& subtractorsOnLayers() { return m_subtractorsOnLayers; }
  [[nodiscard]] Queue& unitersOnLayers() { return m_unitersOnLayers; }
  /// Base faces of all features, in no order.
  [[nodiscard]] const IdMap<std::map<int, Face>>& allSubtrBaseFaces() const {
    return m_subtrBaseFaceMap;
  }
  [[nodiscard]] const IdMap<std::map<int, OdArray<Face>>>& allSampleFeatureFaces() const {
    return m_sampleFeatureMap;
  }

 private:
  bool runSolid(OdDb::BoolOperType type, const OdDbObjectId& solidId, const ToolsBySource& sources);
  void reportLeftOut(OdDb::BoolOperType type, const OdDbObjectId& solidId, const OdString& text,
                     int line) const;

  IdMap<OdDbFullSubentPathArray> m_baseFaceMap;
  Queue m_solidsToPrepareSubtract;
  Queue m_solidsToSubtract;
  Queue m_solidsToUnite;
  IdMap<std::map<int, OdArray<Face>>> m_sampleFeatureMap;
  IdMap<std::map<int, Face>> m_subtrBaseFaceMap;
  Queue m_subtractorsOnLayers;
  Queue m_unitersOnLayers;
  VdmFeatureUpdateData* m_updateData;
};
