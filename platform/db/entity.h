// OdDbEntity: base of everything in a block that can be seen.
#pragma once

#include <type_traits>

#include "platform/db/color.h"
#include "platform/db/db_object.h"
#include "platform/db/filing_macros.h"
#include "platform/db/subent.h"
#include "platform/ge/extents3d.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"

class OdDbEntity;
using OdDbEntityPtr = OdSmartPtr<OdDbEntity>;
using OdRxObjectPtrArray = OdArray<OdRxObjectPtr>;

namespace OdDb {

/// Whether an entity is shown. Numbers are stored.
enum Visibility : OdUInt8 { kVisible = 0, kInvisible = 1 };

}  // namespace OdDb

/// A drawn object. Belongs to a block record; geometry is in the coordinates of that block, lengths
/// in drawing units. A new entity is on no layer; it comes on layer "0" when it is appended to a
/// block.
class OdDbEntity : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbEntity)

  // Properties.
  /// Block record that owns the entity.
  [[nodiscard]] OdDbObjectId blockId() const { return ownerId(); }
  [[nodiscard]] OdDbObjectId layerId() const;
  /// Name of the layer; "0" while there is none.
  [[nodiscard]] OdString layer() const;
  /// By name raises eNoDatabase outside a database and eKeyNotFound for an unknown layer; by id
  /// eNullObjectId, eWrongObjectType, eWrongDatabase.
  void setLayer(const OdString& name);
  void setLayer(const OdDbObjectId& id);
  [[nodiscard]] OdCmColor color() const;
  void setColor(const OdCmColor& color);
  [[nodiscard]] OdUInt16 colorIndex() const { return color().colorIndex(); }
  void setColorIndex(OdUInt16 index) { setColor(OdCmColor::fromIndex(index)); }
  /// Null is "ByLayer".
  [[nodiscard]] OdDbObjectId linetypeId() const;
  void setLinetype(const OdDbObjectId& id);
  /// Name of the line type; "ByLayer" while there is none.
  [[nodiscard]] OdString linetype() const;
  /// Raises eNoDatabase outside a database and eKeyNotFound for an unknown line type.
  void setLinetype(const OdString& name);
  /// Factor on the pattern of the line type, beside LTSCALE of the drawing.
  [[nodiscard]] double linetypeScale() const;
  /// Raises eInvalidInput for a factor that is not positive and finite.
  void setLinetypeScale(double scale);
  [[nodiscard]] OdDb::LineWeight lineWeight() const;
  /// Raises eInvalidInput for a number outside -3 to 211.
  void setLineWeight(OdDb::LineWeight weight);
  [[nodiscard]] OdDb::Visibility visibility() const;
  void setVisibility(OdDb::Visibility visibility);
  /// Null is by layer.
  [[nodiscard]] OdDbObjectId materialId() const;
  void setMaterial(const OdDbObjectId& id);
  /// The drawing's settings for new entities: layer, colour, line type with its scale, and pen.
  /// Does nothing for an entity that has a layer.
  void setDatabaseDefaults(OdDbDatabase* database);
  /// Takes over layer, colour, line type and its scale, weight, visibility and material.
  void setPropertiesFrom(const OdDbEntity* source);

  // Geometry.
  /// eInvalidInput for a matrix that is not finite, eDegenerateGeometry for a singular one, else
  /// what the class says. Nothing changes on failure.
  OdResult transformBy(const OdGeMatrix3d& transform);
  /// A transformed copy that is in no database; null with the result on failure. Where the class
  /// cannot hold the transformed shape (a circle that is scaled in one direction), the copy may be
  /// of another class that can.
  OdResult getTransformedCopy(const OdGeMatrix3d& transform, OdDbEntityPtr& copy) const;
  /// Box around the entity. eNotApplicable when it has no extents.
  virtual OdResult getGeomExtents(OdGeExtents3d& extents) const;
  /// Parts of the entity as entities of their own, appended to `parts`; eNotApplicable when it has
  /// none.
  virtual OdResult explode(OdRxObjectPtrArray& parts) const;

  // Subentities. The base has none.
  /// The subentity as an entity that is in no database; null when it does not exist.
  [[nodiscard]] virtual OdDbEntityPtr subentPtr(const OdDbFullSubentPath& path) const;
  virtual OdResult getGsMarkersAtSubentPath(const OdDbFullSubentPath& path,
                                            OdArray<OdGsMarker>& markers) const;
  /// `insertStack` holds the block references from the entity outwards, null for none.
  virtual OdResult getSubentPathsAtGsMarker(OdDb::SubentType type, OdGsMarker marker,
                                            OdDbFullSubentPathArray& paths,
                                            const OdDbObjectIdArray* insertStack = nullptr) const;

  /// The block that the entity shows, which lists it among its references; null for entities that
  /// show none.
  [[nodiscard]] virtual OdDbObjectId insertedBlock() const;

  /// Marks that the picture changed: reactors hear modifiedGraphics when the entity is closed.
  void recordGraphicsModified(bool modified = true);

  // Hooks of the block record that takes the entity in.
  /// Raises when the block cannot take the entity; nothing has changed yet.
  virtual void subCheckAppend(const OdDbObjectId& block) const;
  /// The entity is in the database and in the block's list.
  virtual void subAppended();

 protected:
  /// Sets layer, colour, line type, weight and material; false for an entity that is invisible.
  bool subSetAttributes(OdGiSubEntityTraits* traits) const override;
  /// Applies a finite, regular matrix; eNotApplicable by default. The entity is open for write and
  /// its undo state is recorded.
  virtual OdResult subTransformBy(const OdGeMatrix3d& transform);
  /// The entity as one of a class that takes more transforms, for getTransformedCopy() when its own
  /// class answers eCannotScaleNonUniformly; null by default.
  [[nodiscard]] virtual OdDbEntityPtr subMoreGeneral() const;

  /// assign() of a member that pictures show.
  template <class T>
  void change(T& member, const std::type_identity_t<T>& value) {
    if (assign(member, value)) noteGraphicsModified();
  }

 private:
  OdDbObjectId m_layerId;
  OdDbObjectId m_linetypeId;
  OdDbObjectId m_materialId;
  double m_linetypeScale = 1.0;
  OdCmColor m_color;
  OdDb::LineWeight m_lineWeight = OdDb::kLnWtByLayer;
  OdDb::Visibility m_visibility = OdDb::kVisible;

  OD_DB_DECLARE_FILING()
};
