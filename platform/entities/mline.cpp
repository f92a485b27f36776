// OdDbMline: parallel lines along a path.
#include "platform/entities/mline.h"

#include <cmath>
#include <utility>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/field_list.h"
#include "platform/db/mline_style.h"
#include "platform/entities/curve.h"
#include "platform/entities/line.h"
#include "platform/entities/plane_move.h"
#include "platform/entities/property_rows.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_DB(OdDbMline, OdDbEntity, L"OdDbMline", 0, 0, 0, L"MLINE", OdString())

namespace {

constexpr auto kIsJustification = [](OdUInt8 number) { return number <= OdDb::kMlineBottom; };
constexpr auto kIsScale = [](double scale) { return std::isfinite(scale) && scale != 0.0; };

}  // namespace

/// A run of points with the look of its element.
struct OdDbMline::Drawn {
  std::vector<OdGePoint3d> points;
  OdCmColor color;
  OdDbObjectId linetype;
};

OdUInt32 OdDbMline::numVertices() const { return read(m_vertices).size(); }

void OdDbMline::appendSeg(const OdGePoint3d& point) {
  oddbChecked(this, "vertex", point);
  if (numVertices() >= kMaxVertices) {
    throw OdError(eLimitExceeded, OdString("vertices of a multi-line, at most 65536"));
  }
  const OdGePoint3d first = m_vertices.isEmpty() ? point : std::as_const(m_vertices)[0];
  assertWriteEnabled();
  m_vertices.append(point - m_normal * (point - first).dotProduct(m_normal));
  noteGraphicsModified();
}

bool OdDbMline::removeLastSeg(OdGePoint3d& last) {
  if (numVertices() == 0) return false;
  last = std::as_const(m_vertices).last();
  assertWriteEnabled();
  m_vertices.removeLast();
  noteGraphicsModified();
  return true;
}

OdGePoint3d OdDbMline::vertexAt(OdUInt32 index) const { return read(m_vertices)[index]; }
OD_DB_PROPERTY(OdDbMline, bool, closedMline, setClosedMline, m_closed)
OD_DB_CHECKED_PROPERTY(OdDbMline, double, scale, setScale, m_scale, "scale", kIsScale)
OD_DB_CHECKED_PROPERTY(OdDbMline, OdDb::MlineJustification, justification, setJustification,
                       m_justification, "justification", kIsJustification)
OD_DB_PROPERTY(OdDbMline, OdDbObjectId, style, setStyle, m_style)

// For each vertex the way from there to a line that is 1 to the left of the path. At a corner it
// halves the angle, and its length is one by the cosine of half the turn.
OdArray<OdGeVector3d> OdDbMline::miters() const {
  const OdUInt32 count = m_vertices.size();
  const auto leftOf = [&](OdUInt32 from, OdUInt32 to) {
    const OdGeVector3d left = m_normal.crossProduct(m_vertices[to] - m_vertices[from]);
    const double length = left.length();
    return length > 0.0 ? left / length : OdGeVector3d();
  };
  OdArray<OdGeVector3d> miters;
  for (OdUInt32 i = 0; i < count; ++i) {
    const OdUInt32 before = i > 0 ? i - 1 : count - 1;
    const OdUInt32 after = i + 1 < count ? i + 1 : 0;
    OdGeVector3d arrives = i > 0 || m_closed ? leftOf(before, i) : leftOf(i, after);
    OdGeVector3d leaves = i + 1 < count || m_closed ? leftOf(i, after) : arrives;
    if (arrives == OdGeVector3d()) arrives = leaves;
    if (leaves == OdGeVector3d()) leaves = arrives;
    const OdGeVector3d sum = arrives + leaves;
    const double half = sum.length() / 2;  // cosine of half the turn
    miters.append(half * kMiterLimit > 1.0 ? sum / (2.0 * half * half) : leaves);
  }
  return miters;
}

OdArray<OdDbMline::Drawn> OdDbMline::drawn() const {
  OdArray<Drawn> drawn;
  const OdUInt32 count = numVertices();
  if (count < 2) return drawn;
  OdDbMlineStylePtr style = m_style.openAs<OdDbMlineStyle>();
  if (style.isNull()) style = OdDbMlineStyle::createObject();
  const OdArray<OdDbMlineElement> elements = style->elements();
  const double path[] = {elements[0].offset, 0.0, elements.last().offset};
  const OdArray<OdGeVector3d> miters = this->miters();
  const auto place = [&](OdUInt32 vertex, double offset) {
    return m_vertices[vertex] + miters[vertex] * ((offset - path[m_justification]) * m_scale);
  };
  for (const OdDbMlineElement& element : elements) {
    Drawn line{{}, element.color, element.linetypeId};
    for (OdUInt32 i = 0; i < count; ++i) line.points.push_back(place(i, element.offset));
    if (m_closed) line.points.push_back(line.points.front());
    drawn.append(line);
  }
  const auto across = [&](OdUInt32 vertex, bool wanted) {
    if (!wanted) return;
    drawn.append(
        {{place(vertex, elements[0].offset), place(vertex, elements.last().offset)}, {}, {}});
  };
  across(0, m_closed ? style->showMiters() : style->startSquareCap());
  for (OdUInt32 i = 1; i + 1 < count; ++i) across(i, style->showMiters());
  across(count - 1, m_closed ? style->showMiters() : style->endSquareCap());
  return drawn;
}

bool OdDbMline::subWorldDraw(OdGiWorldDraw* context) const {
  OdGiSubEntityTraits& traits = context->subEntityTraits();
  const OdCmColor color = traits.trueColor();
  const OdDbObjectId linetype = traits.lineType();
  for (const Drawn& line : drawn()) {
    traits.setTrueColor(line.color.isByLayer() ? color : line.color);
    traits.setLineType(line.linetype.isNull() ? linetype : line.linetype);
    context->geometry().polyline(line.points);
  }
  traits.setTrueColor(color);
  traits.setLineType(linetype);
  return true;
}

OdResult OdDbMline::explode(OdRxObjectPtrArray& parts) const {
  const OdArray<Drawn> lines = drawn();
  if (lines.isEmpty()) return eNotApplicable;
  for (const Drawn& run : lines) {
    for (std::size_t i = 1; i < run.points.size(); ++i) {
      const OdDbLinePtr line = OdDbLine::createObject();
      line->setPropertiesFrom(this);
      line->setStartPoint(run.points[i - 1]);
      line->setEndPoint(run.points[i]);
      line->setNormal(m_normal);
      if (!run.color.isByLayer()) line->setColor(run.color);
      if (!run.linetype.isNull()) line->setLinetype(run.linetype);
      parts.append(line);
    }
  }
  return eOk;
}

// A flip exchanges left and right, which the sign of the scale takes up.
OdResult OdDbMline::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  if (!move.isSimilar()) return eCannotScaleNonUniformly;
  if (!move.isFinite() || !oddbTransformPoints(transform, m_vertices)) return eInvalidInput;
  m_scale *= move.flips() ? -move.scale() : move.scale();
  m_normal = move.normal();
  return eOk;
}

// Fields:
//
//   field           binary                 groups
//   version         uint8
//   vertices        int32 count, points    10     drawing units, coordinates of the block
//   scale           double                 40     not 0
//   justification   uint8                  280    see OdDb::MlineJustification
//   closed          bool                   290
//   style           hard pointer           340    null: two lines
//   normal          vector                 210    unit length

template <class Fields, class Self>
void OdDbMline::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.list(10, self.m_vertices, kMaxVertices, oddbIsPoint);
  fields.value(40, self.m_scale, kIsScale);
  fields.template number<OdUInt8>(280, self.m_justification, kIsJustification);
  fields.value(290, self.m_closed);
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_style);
  fields.value(210, self.m_normal, oddbIsNormal);
}

OD_DB_DEFINE_FILING(OdDbMline, OdDbEntity)

std::size_t OdDbMline::approximateSize() const {
  return OdDbEntity::approximateSize() + m_vertices.size() * sizeof(OdGePoint3d);
}
