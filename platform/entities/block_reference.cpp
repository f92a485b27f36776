// OdDbBlockReference: placement, the block it shows, filing.
#include "platform/entities/block_reference.h"

#include <cmath>
#include <string>

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/ge/finite.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_DB(OdDbBlockReference, OdDbEntity, L"OdDbBlockReference", 0, 0, 0, L"INSERT",
                OdString())
OD_RX_DEFINE_DB(OdDbViewRepBlockReference, OdDbBlockReference, L"OdDbViewRepBlockReference", 0, 0,
                0, L"VIEWREP_INSERT", OdString())

namespace {

bool isAffine(const OdGeMatrix3d& matrix) {
  return matrix(3, 0) == 0.0 && matrix(3, 1) == 0.0 && matrix(3, 2) == 0.0 && matrix(3, 3) == 1.0;
}

bool isScale(const OdGeScale3d& scale) { return odgeIsFinite(scale) && scale.isInvertible(); }

// The frame of a normal: X by the arbitrary axis rule.
void frameOf(const OdGeVector3d& normal, OdGeVector3d& xAxis, OdGeVector3d& yAxis) {
  xAxis = normal == OdGeVector3d::kZAxis ? OdGeVector3d::kXAxis : normal.perpVector().normal();
  yAxis = normal.crossProduct(xAxis);
}

// A clone's block is known only once its ids are translated; then the lists have to follow.
bool isTranslating(const OdDbDwgFiler* filer) {
  const OdDbDwgFiler::FilerType type = filer->filerType();
  return type == OdDbDwgFiler::kCopyFiler || type == OdDbDwgFiler::kIdXlateFiler ||
         type == OdDbDwgFiler::kDeepCloneFiler || type == OdDbDwgFiler::kWblockCloneFiler;
}

/// The block whose entities are seen: that of the external drawing for an external reference, null
/// while it is not open.
OdDbBlockTableRecordPtr openShown(const OdDbObjectId& id) {
  OdDbBlockTableRecordPtr block = id.openAs<OdDbBlockTableRecord>();
  if (block.isNull() || !block->isFromExternalReference()) return block;
  const OdDbDatabase* external = block->xrefDatabase();
  return external == nullptr ? OdDbBlockTableRecordPtr()
                             : external->getModelSpaceId().openAs<OdDbBlockTableRecord>();
}

}  // namespace

OdDbBlockReference::OdDbBlockReference() = default;
OdDbBlockReference::~OdDbBlockReference() = default;

// ---- The block

OdDbObjectId OdDbBlockReference::blockTableRecord() const { return read(m_block); }

void OdDbBlockReference::setBlockTableRecord(const OdDbObjectId& block) {
  if (block.isNull()) throw OdError(eNullObjectId, OdString("block of a reference"));
  const OdRxClass* blockClass = block.objectClass();
  if (blockClass == nullptr || !blockClass->isDerivedFrom(OdDbBlockTableRecord::desc())) {
    throw OdError(eWrongObjectType,
                  OdString("object ") + block.getHandle().ascii() + " as block of a reference");
  }
  if (block == m_block) return;
  if (database() == nullptr) {
    m_block = block;
    return;
  }
  if (block.database() != database()) {
    throw OdError(eWrongDatabase, OdString("block ") + block.getHandle().ascii() +
                                      " of reference " + getDbHandle().ascii());
  }
  checkNesting(block, ownerId());
  assertWriteEnabled();
  noteInBlock(m_block, /*shows=*/false);
  m_block = block;
  noteInBlock(m_block, /*shows=*/true);
  noteGraphicsModified();
}

// The record may be open elsewhere: nested write opens are legal.
void OdDbBlockReference::noteInBlock(const OdDbObjectId& block, bool shows) const {
  if (block.isNull() || database() == nullptr || block.database() != database()) return;
  const OdDbBlockTableRecordPtr record =
      block.openAs<OdDbBlockTableRecord>(OdDb::kForWrite, /*openErased=*/true);
  if (!record.isNull()) record->noteBlockReference(objectId(), shows);
}

void OdDbBlockReference::checkNesting(const OdDbObjectId& block, const OdDbObjectId& owner) const {
  if (block.isNull()) return;
  const OdDbBlockTableRecordPtr container = owner.openAs<OdDbBlockTableRecord>();
  if (container.isNull() || !container->wouldContainItselfWith(block)) return;
  const OdDbBlockTableRecordPtr shown = block.openAs<OdDbBlockTableRecord>();
  throw OdError(eCircularReference, OdString("block '") + container->getName() +
                                        "' is part of block '" +
                                        (shown.isNull() ? OdString() : shown->getName()) + "'");
}

void OdDbBlockReference::subCheckAppend(const OdDbObjectId& block) const {
  OdDbEntity::subCheckAppend(block);
  if (m_block.isNull()) return;
  if (m_block.database() == block.database()) return checkNesting(m_block, block);
  if (database() == nullptr) {
    throw OdError(eWrongDatabase, OdString("block ") + m_block.getHandle().ascii() +
                                      " of a reference for block " + block.getHandle().ascii());
  }
}

void OdDbBlockReference::subAppended() {
  OdDbEntity::subAppended();
  noteInBlock(m_block, /*shows=*/true);
}

// ---- Placement

OdGePoint3d OdDbBlockReference::position() const { return read(m_position); }

void OdDbBlockReference::setPosition(const OdGePoint3d& position) {
  if (!odgeIsFinite(position)) {
    throw OdError(eInvalidInput,
                  OdString("position of reference ") + getDbHandle().ascii() + " is not finite");
  }
  if (!assign(m_position, position)) return;
  if (m_exact) m_exact->setTranslation(position.asVector());
  noteGraphicsModified();
}

void OdDbBlockReference::dropShear() {
  m_exact.reset();
  noteGraphicsModified();
}

OdGeScale3d OdDbBlockReference::scaleFactors() const { return read(m_scale); }

void OdDbBlockReference::setScaleFactors(const OdGeScale3d& scale) {
  if (!isScale(scale)) {
    throw OdError(eInvalidInput,
                  OdString("scale " + std::to_string(scale.sx) + ", " + std::to_string(scale.sy) +
                           ", " + std::to_string(scale.sz) + " of reference ") +
                      getDbHandle().ascii());
  }
  if (assign(m_scale, scale)) dropShear();
}

double OdDbBlockReference::rotation() const { return read(m_rotation); }

void OdDbBlockReference::setRotation(double angle) {
  if (!std::isfinite(angle)) {
    throw OdError(eInvalidInput, OdString("rotation " + std::to_string(angle) + " of reference ") +
                                     getDbHandle().ascii());
  }
  if (assign(m_rotation, angle)) dropShear();
}

OdGeVector3d OdDbBlockReference::normal() const { return read(m_normal); }

void OdDbBlockReference::setNormal(const OdGeVector3d& normal) {
  if (assign(m_normal, normal.normal())) dropShear();
}

OdGePoint3d OdDbBlockReference::blockOrigin() const {
  const OdDbBlockTableRecordPtr block = m_block.openAs<OdDbBlockTableRecord>();
  return block.isNull() ? OdGePoint3d::kOrigin : block->origin();
}

// The placement that the parameters give: frame of the normal, turned, scaled, moved.
OdGeMatrix3d OdDbBlockReference::composed() const {
  OdGeVector3d frameX;
  OdGeVector3d frameY;
  frameOf(m_normal, frameX, frameY);
  const double cosine = m_rotation == 0.0 ? 1.0 : std::cos(m_rotation);
  const double sine = m_rotation == 0.0 ? 0.0 : std::sin(m_rotation);
  const OdGeVector3d xAxis = frameX * cosine + frameY * sine;
  const OdGeVector3d yAxis = frameY * cosine - frameX * sine;
  return OdGeMatrix3d::coordSystem(m_position, xAxis * m_scale.sx, yAxis * m_scale.sy,
                                   m_normal * m_scale.sz);
}

OdGeMatrix3d OdDbBlockReference::placement() const { return m_exact ? *m_exact : composed(); }

// Parameters nearest to a placement. A reflection becomes a negative Z factor.
void OdDbBlockReference::decompose(const OdGeMatrix3d& placement) {
  OdGePoint3d origin;
  OdGeVector3d xAxis;
  OdGeVector3d yAxis;
  OdGeVector3d zAxis;
  placement.getCoordSystem(origin, xAxis, yAxis, zAxis);
  const double xLength = xAxis.length();
  const double yLength = yAxis.length();
  const OdGeVector3d xUnit = xAxis / xLength;
  const OdGeVector3d cross = xUnit.crossProduct(yAxis / yLength);
  m_position = origin;
  m_normal = cross / cross.length();
  m_scale.set(xLength, yLength, std::copysign(zAxis.length(), zAxis.dotProduct(m_normal)));
  OdGeVector3d frameX;
  OdGeVector3d frameY;
  frameOf(m_normal, frameX, frameY);
  m_rotation = std::atan2(xUnit.dotProduct(frameY), xUnit.dotProduct(frameX));
}

void OdDbBlockReference::setPlacement(const OdGeMatrix3d& placement) {
  decompose(placement);
  if (composed() == placement) {
    m_exact.reset();
  } else {
    m_exact = std::make_unique<OdGeMatrix3d>(placement);
  }
}

OdGeMatrix3d OdDbBlockReference::blockTransform() const {
  assertReadEnabled();
  const OdGePoint3d origin = blockOrigin();
  if (origin == OdGePoint3d::kOrigin) return placement();
  return placement() * OdGeMatrix3d::translation(-origin.asVector());
}

OdResult OdDbBlockReference::setBlockTransform(const OdGeMatrix3d& transform) {
  if (!odgeIsFinite(transform) || !isAffine(transform)) return eInvalidInput;
  if (transform.isSingular()) return eDegenerateGeometry;
  assertWriteEnabled();
  const OdGePoint3d origin = blockOrigin();
  setPlacement(origin == OdGePoint3d::kOrigin
                   ? transform
                   : transform * OdGeMatrix3d::translation(origin.asVector()));
  noteGraphicsModified();
  return eOk;
}

OdResult OdDbBlockReference::subTransformBy(const OdGeMatrix3d& transform) {
  if (!isAffine(transform)) return eInvalidInput;
  const OdGeMatrix3d moved = transform * placement();
  if (!odgeIsFinite(moved)) return eInvalidInput;
  if (moved.isSingular()) return eDegenerateGeometry;
  setPlacement(moved);
  return eOk;
}

OdResult OdDbBlockReference::getGeomExtents(OdGeExtents3d& extents) const {
  const OdDbBlockTableRecordPtr block = openShown(blockTableRecord());
  if (block.isNull()) return eNotApplicable;
  OdGeExtents3d box;
  const OdResult result = block->getGeomExtents(box);
  if (result != eOk) return result;
  extents = box.transformBy(blockTransform());
  return eOk;
}

bool OdDbBlockReference::subWorldDraw(OdGiWorldDraw* context) const {
  const OdDbBlockTableRecordPtr block = openShown(blockTableRecord());
  if (block.isNull()) return false;
  const OdGiModelTransformGuard guard(context->geometry(), blockTransform());
  return block->worldDraw(context);
}

// What an external drawing holds becomes the host's by binding alone.
OdResult OdDbBlockReference::explode(OdRxObjectPtrArray& parts) const {
  assertReadEnabled();
  const OdDbBlockTableRecordPtr block = m_block.openAs<OdDbBlockTableRecord>();
  if (block.isNull() || block->isFromExternalReference()) return eNotApplicable;
  const OdGeMatrix3d transform = blockTransform();
  OdRxObjectPtrArray copies;
  for (OdDbObjectIteratorPtr at = block->newIterator(); !at->done(); at->step()) {
    const OdDbEntityPtr entity = at->entity();
    if (entity.isNull()) continue;
    OdDbEntityPtr copy;
    const OdResult result = entity->getTransformedCopy(transform, copy);
    if (result != eOk) return result;
    copies.append(copy);
  }
  parts.append(copies);
  return eOk;
}

// ---- Filing
//
//   field      binary                   groups
//   version    uint8                               1
//   block      hard pointer             340
//   position   point                    10         drawing units, coordinates of the owner
//   scale      3 doubles                41 to 43   factors, none is 0
//   rotation   double                   50         radians
//   normal     vector                   210        unit length
//   exact      bool, then 12 doubles    110 to 121  a matrix that the parameters do not give back
//                                                  exactly: rows 1 to 3, without the block's origin

template <class Fields, class Self>
void OdDbBlockReference::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_block);
  fields.value(10, self.m_position, [](const OdGePoint3d& point) { return odgeIsFinite(point); });
  fields.value(41, self.m_scale, isScale);
  fields.value(50, self.m_rotation, [](double angle) { return std::isfinite(angle); });
  fields.value(210, self.m_normal,
               [](const OdGeVector3d& normal) { return normal.isUnitLength(OdGeTol(1e-6)); });
  fields.placement(110, self.m_exact,
                   [](const OdGeMatrix3d& matrix) { return odgeIsFinite(matrix); });
}

OD_DB_DEFINE_FILING_OUT(OdDbBlockReference, OdDbEntity)

OdResult OdDbBlockReference::dwgInFields(OdDbDwgFiler* filer) {
  OdResult result = OdDbEntity::dwgInFields(filer);
  if (result != eOk) return result;
  const OdDbObjectId oldBlock = m_block;
  result = OdDbFieldFiling::dwgIn(filer, *this);
  if (result == eOk && isTranslating(filer)) followBlock(oldBlock);
  return result;
}

OdResult OdDbBlockReference::dxfInFields(OdDbDxfFiler* filer) {
  OdResult result = OdDbEntity::dxfInFields(filer);
  if (result != eOk) return result;
  const OdDbObjectId oldBlock = m_block;
  result = OdDbFieldFiling::dxfIn(filer, *this);
  if (result == eOk) followBlock(oldBlock);
  return result;
}

void OdDbBlockReference::followBlock(const OdDbObjectId& oldBlock) {
  if (database() == nullptr) return;
  if (oldBlock != m_block) noteInBlock(oldBlock, /*shows=*/false);
  noteInBlock(m_block, /*shows=*/true);
}

std::size_t OdDbBlockReference::approximateSize() const {
  return OdDbEntity::approximateSize() + (m_exact ? sizeof(OdGeMatrix3d) : 0);
}
