// OdDbLine: ends, transforming, filing.
#include "platform/entities/line.h"

#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbLine, OdDbCurve, L"OdDbLine", 0, 0, 0, L"LINE", OdString())

OdGePoint3d OdDbLine::startPoint() const { return read(m_start); }
OdGePoint3d OdDbLine::endPoint() const { return read(m_end); }
void OdDbLine::setStartPoint(const OdGePoint3d& point) {
  change(m_start, oddbChecked(this, "start", point));
}
void OdDbLine::setEndPoint(const OdGePoint3d& point) {
  change(m_end, oddbChecked(this, "end", point));
}

OdResult OdDbLine::getRange(double& start, double& end) const {
  start = 0.0;
  end = length();
  return eOk;
}

double OdDbLine::length() const { return read(m_start).distanceTo(m_end); }

OdGePoint3d OdDbLine::pointAt(double parameter) const {
  const double whole = m_start.distanceTo(m_end);
  return parameter >= whole ? m_end : m_start + (m_end - m_start) * (parameter / whole);
}

void OdDbLine::addChords(double, std::vector<OdGePoint3d>& points) const {
  points.push_back(m_start);
  points.push_back(m_end);
}

OdResult OdDbLine::getGeomExtents(OdGeExtents3d& extents) const {
  OdGeExtents3d box;
  box.addPoint(startPoint()).addPoint(m_end);
  oddbExtrude(box, extrusion());
  extents = box;
  return eOk;
}

// A line has no plane of its own: the extrusion is transformed as the vector that it is.
OdResult OdDbLine::subTransformBy(const OdGeMatrix3d& transform) {
  const OdGePoint3d start = transform * m_start;
  const OdGePoint3d end = transform * m_end;
  const OdGeVector3d normal = transform * m_normal;
  if (!odgeIsFinite(start) || !odgeIsFinite(end)) return eInvalidInput;
  m_start = start;
  m_end = end;
  m_normal = normal / normal.length();
  m_thickness *= normal.length();
  return eOk;
}

// Fields:
//
//   field         binary    groups
//   version       uint8                2 with a thickness, else 1
//   start, end    2 points  10, 11    drawing units
//   normal        vector    210       unit length
//   thickness     double    39        version 2: drawing units; 0 before

template <class Fields, class Self>
void OdDbLine::fields(Fields& fields, Self& self) {
  fields.version(1, 2, self.m_thickness != 0.0);
  fields.value(10, self.m_start, oddbIsPoint);
  fields.value(11, self.m_end, oddbIsPoint);
  fields.value(210, self.m_normal, oddbIsNormal);
  fields.from(2, self, [](auto& line) { line.m_thickness = 0.0; });
  fields.value(39, self.m_thickness, oddbIsNumber);
}

OD_DB_DEFINE_FILING(OdDbLine, OdDbCurve)
