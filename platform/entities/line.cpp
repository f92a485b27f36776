// OdDbLine: ends, transforming, filing.
#include "platform/entities/line.h"

#include <array>

#include "platform/base/error.h"
#include "platform/ge/finite.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_DB(OdDbLine, OdDbEntity, L"OdDbLine", 0, 0, 0, L"LINE", OdString())

namespace {

constexpr OdUInt8 kVersion = 1;

void checkPoint(const OdDbLine* line, const char* what, const OdGePoint3d& point) {
  if (odgeIsFinite(point)) return;
  throw OdError(eInvalidInput,
                OdString(what) + " of line " + line->getDbHandle().ascii() + " is not finite");
}

}  // namespace

OdGePoint3d OdDbLine::startPoint() const {
  assertReadEnabled();
  return m_start;
}

OdGePoint3d OdDbLine::endPoint() const {
  assertReadEnabled();
  return m_end;
}

void OdDbLine::setStartPoint(const OdGePoint3d& point) {
  checkPoint(this, "start", point);
  if (point == m_start) return;
  assertWriteEnabled();
  m_start = point;
  noteGraphicsModified();
}

void OdDbLine::setEndPoint(const OdGePoint3d& point) {
  checkPoint(this, "end", point);
  if (point == m_end) return;
  assertWriteEnabled();
  m_end = point;
  noteGraphicsModified();
}

OdGeVector3d OdDbLine::normal() const {
  assertReadEnabled();
  return m_normal;
}

void OdDbLine::setNormal(const OdGeVector3d& normal) {
  const OdGeVector3d unit = normal.normal();
  if (unit == m_normal) return;
  assertWriteEnabled();
  m_normal = unit;
  noteGraphicsModified();
}

OdResult OdDbLine::getGeomExtents(OdGeExtents3d& extents) const {
  OdGeExtents3d box;
  box.addPoint(startPoint()).addPoint(m_end);
  extents = box;
  return eOk;
}

bool OdDbLine::subWorldDraw(OdGiWorldDraw* context) const {
  context->geometry().polyline(std::array{startPoint(), m_end});
  return true;
}

OdResult OdDbLine::subTransformBy(const OdGeMatrix3d& transform) {
  const OdGePoint3d start = transform * m_start;
  const OdGePoint3d end = transform * m_end;
  const OdGeVector3d normal = transform * m_normal;
  if (!odgeIsFinite(start) || !odgeIsFinite(end)) return eInvalidInput;
  m_start = start;
  m_end = end;
  m_normal = normal / normal.length();
  return eOk;
}

// Fields:
//
//   version       uint8
//   start, end    2 points    drawing units
//   normal        vector      unit length

void OdDbLine::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbEntity::dwgOutFields(filer);
  filer->wrUInt8(kVersion);
  filer->wrPoint3d(m_start);
  filer->wrPoint3d(m_end);
  filer->wrVector3d(m_normal);
}

OdResult OdDbLine::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbEntity::dwgInFields(filer);
  if (result != eOk) return result;
  if (filer->rdUInt8() != kVersion) return eUnsupportedVersion;
  m_start = filer->rdPoint3d();
  m_end = filer->rdPoint3d();
  m_normal = filer->rdVector3d();
  const bool isSound =
      odgeIsFinite(m_start) && odgeIsFinite(m_end) && m_normal.isUnitLength(OdGeTol(1e-6));
  return isSound ? eOk : eCorruptData;
}
