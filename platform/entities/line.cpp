// OdDbLine: ends, transforming, filing.
#include "platform/entities/line.h"

#include <array>

#include "platform/base/error.h"
#include "platform/db/field_list.h"
#include "platform/ge/finite.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_DB(OdDbLine, OdDbEntity, L"OdDbLine", 0, 0, 0, L"LINE", OdString())

namespace {

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
//   field         binary    groups
//   version       uint8
//   start, end    2 points  10, 11    drawing units
//   normal        vector    210       unit length

template <class Fields, class Self>
void OdDbLine::fields(Fields& fields, Self& self) {
  const auto isPoint = [](const OdGePoint3d& point) { return odgeIsFinite(point); };
  const auto isUnit = [](const OdGeVector3d& normal) { return normal.isUnitLength(OdGeTol(1e-6)); };
  fields.version(1);
  fields.value(10, self.m_start, isPoint);
  fields.value(11, self.m_end, isPoint);
  fields.value(210, self.m_normal, isUnit);
}

void OdDbLine::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbEntity::dwgOutFields(filer);
  OdDbFieldFiling::dwgOut(filer, *this);
}

OdResult OdDbLine::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbEntity::dwgInFields(filer);
  return result == eOk ? OdDbFieldFiling::dwgIn(filer, *this) : result;
}

void OdDbLine::dxfOutFields(OdDbDxfFiler* filer) const {
  OdDbEntity::dxfOutFields(filer);
  OdDbFieldFiling::dxfOut(filer, *this);
}

OdResult OdDbLine::dxfInFields(OdDbDxfFiler* filer) {
  const OdResult result = OdDbEntity::dxfInFields(filer);
  return result == eOk ? OdDbFieldFiling::dxfIn(filer, *this) : result;
}
