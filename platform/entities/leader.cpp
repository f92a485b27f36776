// OdDbLeader: a line from a note to what it is about.
#include "platform/entities/leader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/base/error.h"
#include "platform/db/field_list.h"
#include "platform/entities/arrowhead.h"
#include "platform/entities/dimension_style_values.h"
#include "platform/entities/plane_move.h"
#include "platform/entities/property_rows.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_DB(OdDbLeader, OdDbCurve, L"OdDbLeader", 0, 0, 0, L"LEADER", OdString())

OdUInt32 OdDbLeader::numVertices() const { return read(m_vertices).size(); }

void OdDbLeader::appendVertex(const OdGePoint3d& point) {
  oddbChecked(this, "vertex", point);
  if (numVertices() >= kMaxVertices) {
    throw OdError(eLimitExceeded, OdString("vertices of a leader, at most 65536"));
  }
  const OdGePoint3d first = m_vertices.isEmpty() ? point : std::as_const(m_vertices)[0];
  assertWriteEnabled();
  m_vertices.append(point - m_normal * (point - first).dotProduct(m_normal));
  noteGraphicsModified();
}

void OdDbLeader::removeLastVertex() {
  if (numVertices() == 0) return;
  assertWriteEnabled();
  m_vertices.removeLast();
  noteGraphicsModified();
}

OdGePoint3d OdDbLeader::vertexAt(OdUInt32 index) const { return read(m_vertices)[index]; }

void OdDbLeader::setVertexAt(OdUInt32 index, const OdGePoint3d& point) {
  oddbChecked(this, "vertex", point);
  if (vertexAt(index) == point) return;
  assertWriteEnabled();
  m_vertices[index] = point;
  noteGraphicsModified();
}

OD_DB_PROPERTY(OdDbLeader, bool, hasArrowHead, enableArrowHead, m_arrow)
OD_DB_PROPERTY(OdDbLeader, bool, hasHookLine, enableHookLine, m_hookLine)
OD_DB_PROPERTY(OdDbLeader, OdDbObjectId, annotationObjId, attachAnnotation, m_annotation)
OD_DB_PROPERTY(OdDbLeader, OdDbObjectId, dimensionStyle, setDimensionStyle, m_style)

OdResult OdDbLeader::getRange(double& start, double& end) const {
  if (numVertices() < 2) return eDegenerateGeometry;
  start = 0.0;
  end = numVertices() - 1;
  return eOk;
}

OdGePoint3d OdDbLeader::pointAt(double parameter) const {
  const OdUInt32 segment = std::min(static_cast<OdUInt32>(parameter), m_vertices.size() - 2);
  const OdGePoint3d& from = m_vertices[segment];
  return from + (m_vertices[segment + 1] - from) * (parameter - segment);
}

double OdDbLeader::length() const {
  double sum = 0.0;
  for (OdUInt32 i = 1; i < numVertices(); ++i) sum += m_vertices[i].distanceTo(m_vertices[i - 1]);
  return sum;
}

void OdDbLeader::addChords(double, std::vector<OdGePoint3d>& points) const {
  points.insert(points.end(), m_vertices.begin(), m_vertices.end());
}

// The arrowhead needs twice its length of the first segment; shorter ones have none.
bool OdDbLeader::subWorldDraw(OdGiWorldDraw* context) const {
  if (numVertices() < 2) return true;
  OdDbCurve::subWorldDraw(context);
  const OdDbDimStyleValues style(m_style, database());
  const OdGeVector3d first = m_vertices[0] - m_vertices[1];
  if (m_arrow && first.length() > 2.0 * style.arrow) {
    oddbDrawArrowhead(context, m_vertices[0], first / first.length(), m_normal, style.arrow);
  }
  if (!m_hookLine) return true;
  const OdGeVector3d last = m_vertices.last() - m_vertices[m_vertices.size() - 2];
  const double sense = last.dotProduct(m_hook) < 0.0 ? -1.0 : 1.0;
  context->geometry().polyline(
      std::array{m_vertices.last(), m_vertices.last() + m_hook * (style.arrow * sense)});
  return true;
}

OdResult OdDbLeader::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  if (!move.isFinite() || !oddbTransformPoints(transform, m_vertices)) return eInvalidInput;
  const OdGeVector3d hook = transform * m_hook;
  m_hook = hook / hook.length();
  m_normal = move.normal();
  return eOk;
}

// Fields:
//
//   field        binary                 groups
//   version      uint8
//   vertices     int32 count, points    10     drawing units, coordinates of the block
//   level        vector                 211    unit length, direction of a hook line
//   normal       vector                 210    unit length
//   arrowhead    bool                   290
//   hook line    bool                   291
//   style        hard pointer           340    null: "Standard"
//   annotation   soft pointer           341    null: none

template <class Fields, class Self>
void OdDbLeader::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.list(10, self.m_vertices, kMaxVertices, oddbIsPoint);
  fields.value(211, self.m_hook, oddbIsNormal);
  fields.value(210, self.m_normal, oddbIsNormal);
  fields.value(290, self.m_arrow);
  fields.value(291, self.m_hookLine);
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_style);
  fields.template pointer<OdDb::kSoftPointerRef>(341, self.m_annotation);
}

OD_DB_DEFINE_FILING(OdDbLeader, OdDbCurve)

std::size_t OdDbLeader::approximateSize() const {
  return OdDbCurve::approximateSize() + m_vertices.size() * sizeof(OdGePoint3d);
}
