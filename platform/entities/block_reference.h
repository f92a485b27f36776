// OdDbBlockReference: a block placed in another block.
#pragma once

#include <memory>

#include "platform/db/entity.h"
#include "platform/db/filing_macros.h"
#include "platform/ge/scale3d.h"

/// One occurrence of a block. The placement is a position, scale factors, a rotation and a normal,
/// or, where these do not give it back exactly, a matrix that is kept beside them and is the truth:
/// every regular affine placement is held to the last bit.
///
/// The frame of the reference: Z is the normal, X and Y follow from it by the arbitrary axis rule;
/// the block is moved by minus its origin, scaled, turned about Z, and moved to the position.
class OdDbBlockReference : public OdDbEntity {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbBlockReference)

  OdDbBlockReference();
  ~OdDbBlockReference() override;

  [[nodiscard]] OdDbObjectId blockTableRecord() const;
  [[nodiscard]] OdDbObjectId insertedBlock() const override { return blockTableRecord(); }
  [[nodiscard]] bool isIdSwappable() const override { return false; }
  /// The lists of references of both blocks follow. Raises eNullObjectId, eWrongObjectType,
  /// eWrongDatabase, and eCircularReference when the block would contain itself.
  void setBlockTableRecord(const OdDbObjectId& block);

  /// In the coordinates of the owning block, drawing units.
  [[nodiscard]] OdGePoint3d position() const;
  void setPosition(const OdGePoint3d& position);
  [[nodiscard]] OdGeScale3d scaleFactors() const;
  /// Raises eInvalidInput for a factor that is 0 or not finite. A placement with shear loses it.
  void setScaleFactors(const OdGeScale3d& scale);
  /// Radians, counter-clockwise about the normal. A placement with shear loses it when it is set.
  [[nodiscard]] double rotation() const;
  void setRotation(double angle);
  /// Unit vector. A placement with shear loses it when it is set.
  [[nodiscard]] OdGeVector3d normal() const;
  /// Raises eDegenerateGeometry for a zero vector.
  void setNormal(const OdGeVector3d& normal);

  /// From the coordinates of the block to those of the owner; the block's origin is taken off.
  [[nodiscard]] OdGeMatrix3d blockTransform() const;
  /// eInvalidInput for a matrix that is not finite or not affine, eDegenerateGeometry for a
  /// singular one; nothing changes then.
  OdResult setBlockTransform(const OdGeMatrix3d& transform);

  OdResult getGeomExtents(OdGeExtents3d& extents) const override;
  /// Transformed copies of the block's entities, which are in no database.
  OdResult explode(OdRxObjectPtrArray& parts) const override;

  void subCheckAppend(const OdDbObjectId& block) const override;
  void subAppended() override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  /// The block under this placement; an external reference shows the model space of its drawing,
  /// and nothing while that is not open.
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  [[nodiscard]] OdGePoint3d blockOrigin() const;
  [[nodiscard]] OdGeMatrix3d composed() const;
  [[nodiscard]] OdGeMatrix3d placement() const;
  void setPlacement(const OdGeMatrix3d& placement);
  void decompose(const OdGeMatrix3d& placement);
  /// After a part of the placement was set.
  void dropShear();
  void checkNesting(const OdDbObjectId& block, const OdDbObjectId& owner) const;
  void noteInBlock(const OdDbObjectId& block, bool shows) const;
  void followBlock(const OdDbObjectId& oldBlock);

  OdDbObjectId m_block;
  OdGePoint3d m_position;
  OdGeScale3d m_scale;
  double m_rotation = 0.0;
  OdGeVector3d m_normal = OdGeVector3d::kZAxis;
  std::unique_ptr<OdGeMatrix3d> m_exact;  // without the block's origin

  OD_DB_DECLARE_FILING()
};
using OdDbBlockReferencePtr = OdSmartPtr<OdDbBlockReference>;

/// The reference through which a drawing view shows its block.
class OdDbViewRepBlockReference : public OdDbBlockReference {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbViewRepBlockReference)
};
using OdDbViewRepBlockReferencePtr = OdSmartPtr<OdDbViewRepBlockReference>;
