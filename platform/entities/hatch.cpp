// OdDbHatch: an area that is filled or hatched.
#include "platform/entities/hatch.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/entities/arc_chords.h"
#include "platform/entities/curve.h"
#include "platform/entities/property_rows.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_DB(OdDbHatch, OdDbEntity, L"OdDbHatch", 0, 0, 0, L"HATCH", OdString())

namespace {

constexpr auto kIsStyle = [](OdUInt8 number) { return number <= OdDb::kHatchIgnore; };
constexpr OdUInt32 kLineHead = 6;        // numbers of a family before its dashes
constexpr OdUInt32 kMaxLineDashes = 64;  // of one family
constexpr OdUInt32 kMaxLineNumbers = OdDbHatch::kMaxLines * (kLineHead + kMaxLineDashes);

// The step must lead away from the lines.
bool isSound(const OdDbHatchLines& lines) {
  const double away = lines.step.y * std::cos(lines.angle) - lines.step.x * std::sin(lines.angle);
  return std::isfinite(lines.angle) && odgeIsFinite(lines.base) && odgeIsFinite(lines.step) &&
         std::abs(away) > 1e-12 * std::hypot(lines.step.x, lines.step.y) &&
         lines.dashes.size() <= kMaxLineDashes && std::ranges::all_of(lines.dashes, oddbIsNumber);
}

/// The families in the stored list; false when it is no such list.
bool readLines(const OdArray<double>& stored, std::vector<OdDbHatchLines>& lines) {
  for (OdUInt32 at = 0; at < stored.size();) {
    if (stored.size() - at < kLineHead) return false;
    OdDbHatchLines family{
        stored[at], {stored[at + 1], stored[at + 2]}, {stored[at + 3], stored[at + 4]}, {}};
    const double count = stored[at + 5];
    at += kLineHead;
    if (!(count >= 0.0 && count <= stored.size() - at) || count != std::floor(count)) return false;
    for (double i = 0; i < count; ++i) family.dashes.push_back(stored[at++]);
    if (!isSound(family)) return false;
    lines.push_back(family);
  }
  return lines.size() <= OdDbHatch::kMaxLines;
}

double signedArea(const OdDbHatchOutline& outline) {
  double sum = 0.0;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const OdGePoint2d& a = outline[i];
    const OdGePoint2d& b = outline[i + 1 < outline.size() ? i + 1 : 0];
    sum += a.x * b.y - b.x * a.y;
  }
  return sum / 2;
}

}  // namespace

// ---- Loops

OdUInt32 OdDbHatch::numLoops() const { return read(m_ends).size(); }

OdUInt32 OdDbHatch::beginOf(OdUInt32 loop) const {
  return loop == 0 ? 0 : static_cast<OdUInt32>(read(m_ends)[loop - 1]);
}

OdUInt32 OdDbHatch::endOf(OdUInt32 loop) const { return static_cast<OdUInt32>(read(m_ends)[loop]); }

void OdDbHatch::appendLoop(const OdArray<OdGePoint2d>& vertices, const OdArray<double>& bulges) {
  if (vertices.size() < 2) oddbRaiseValue(this, "number of vertices in a loop", vertices.size());
  if (!bulges.isEmpty() && bulges.size() != vertices.size()) {
    oddbRaiseValue(this, "number of bulges in a loop", bulges.size());
  }
  if (vertices.size() > kMaxVertices - std::min(kMaxVertices, read(m_points).size())) {
    throw OdError(eLimitExceeded, OdString("vertices of a hatch, at most 1048576"));
  }
  for (const OdGePoint2d& vertex : vertices) oddbChecked(this, "vertex", vertex);
  for (const double bulge : bulges) oddbChecked(this, "bulge", bulge, oddbIsNumber);
  assertWriteEnabled();
  const bool isCurved =
      !m_bulges.isEmpty() || std::ranges::any_of(bulges, [](double bulge) { return bulge != 0.0; });
  if (isCurved) m_bulges.resize(m_points.size(), 0.0);
  for (OdUInt32 i = 0; i < vertices.size(); ++i) {
    m_points.append(vertices[i]);
    if (isCurved) m_bulges.append(bulges.isEmpty() ? 0.0 : bulges[i]);
  }
  m_ends.append(static_cast<OdInt32>(m_points.size()));
  noteGraphicsModified();
}

void OdDbHatch::getLoopAt(OdUInt32 index, OdArray<OdGePoint2d>& vertices,
                          OdArray<double>& bulges) const {
  const OdUInt32 end = endOf(index);
  vertices.clear();
  bulges.clear();
  for (OdUInt32 i = beginOf(index); i < end; ++i) {
    vertices.append(m_points[i]);
    bulges.append(m_bulges.isEmpty() ? 0.0 : m_bulges[i]);
  }
}

void OdDbHatch::removeLoopAt(OdUInt32 index) {
  const OdUInt32 end = endOf(index);
  const OdUInt32 begin = beginOf(index);
  assertWriteEnabled();
  m_points.removeSubArray(begin, end - 1);
  if (!m_bulges.isEmpty()) m_bulges.removeSubArray(begin, end - 1);
  m_ends.removeAt(index);
  for (OdUInt32 i = index; i < m_ends.size(); ++i) {
    m_ends[i] -= static_cast<OdInt32>(end - begin);
  }
  if (std::ranges::all_of(std::as_const(m_bulges), [](double bulge) { return bulge == 0.0; })) {
    m_bulges.clear();
  }
  noteGraphicsModified();
}

OD_DB_CHECKED_PROPERTY(OdDbHatch, double, elevation, setElevation, m_elevation, "elevation",
                       oddbIsNumber)
OD_DB_CHECKED_PROPERTY(OdDbHatch, OdDb::HatchStyle, hatchStyle, setHatchStyle, m_style, "style",
                       kIsStyle)

// ---- Pattern

bool OdDbHatch::isSolidFill() const { return read(m_lines).isEmpty(); }
OdString OdDbHatch::patternName() const { return read(m_pattern); }

void OdDbHatch::storeLines(const std::vector<OdDbHatchLines>& lines) {
  OdArray<double> stored;
  for (const OdDbHatchLines& family : lines) {
    for (const double number : {family.angle, family.base.x, family.base.y, family.step.x,
                                family.step.y, static_cast<double>(family.dashes.size())}) {
      stored.append(number);
    }
    for (const double dash : family.dashes) stored.append(dash);
  }
  change(m_lines, stored);
}

void OdDbHatch::setSolidFill() {
  storeLines({});
  change(m_pattern, OdString(L"SOLID"));
}

void OdDbHatch::setLinePattern(double angle, double space, bool crossed) {
  oddbChecked(this, "angle of the pattern", angle, oddbIsNumber);
  oddbChecked(this, "distance of the pattern", space, oddbIsLength);
  std::vector<OdDbHatchLines> lines;
  for (const double turn : {0.0, kOdDbFullTurn / 4}) {
    if (turn > 0.0 && !crossed) break;
    const double along = angle + turn;
    lines.push_back({along, {}, {-std::sin(along) * space, std::cos(along) * space}, {}});
  }
  setPattern(crossed ? L"NET" : L"LINE", lines);
}

void OdDbHatch::setPattern(const OdString& name, const std::vector<OdDbHatchLines>& lines) {
  if (lines.empty()) oddbRaiseValue(this, "number of families in a pattern", 0.0);
  if (lines.size() > kMaxLines) {
    throw OdError(eLimitExceeded, OdString("families of a hatch pattern, at most 64"));
  }
  for (const OdDbHatchLines& family : lines) {
    if (!::isSound(family)) oddbRaiseValue(this, "lines of the pattern at the angle", family.angle);
  }
  storeLines(lines);
  change(m_pattern, name);
}

std::vector<OdDbHatchLines> OdDbHatch::patternLines() const {
  std::vector<OdDbHatchLines> lines;
  readLines(read(m_lines), lines);  // was checked when it was stored
  return lines;
}

// ---- Geometry

std::vector<OdDbHatchOutline> OdDbHatch::outlines(double deviation) const {
  std::vector<OdDbHatchOutline> outlines;
  std::vector<OdGePoint3d> points;
  for (OdUInt32 loop = 0; loop < numLoops(); ++loop) {
    OdDbHatchOutline outline;
    const OdUInt32 end = endOf(loop);
    for (OdUInt32 i = beginOf(loop); i < end; ++i) {
      const OdGePoint2d& from = m_points[i];
      const OdGePoint2d& to = m_points[i + 1 < end ? i + 1 : beginOf(loop)];
      outline.push_back(from);
      if (m_bulges.isEmpty() || m_bulges[i] == 0.0 || from == to) continue;
      const OdDbBulgeArc arc(from, to, m_bulges[i]);
      points.clear();
      OdDbArcShape{{arc.center.x, arc.center.y, 0.0},
                   OdGeVector3d::kXAxis * arc.radius,
                   OdGeVector3d::kYAxis * arc.radius,
                   arc.start,
                   arc.sweep}
          .addChords(deviation, points, /*skipsFirst=*/true);
      points.pop_back();
      for (const OdGePoint3d& point : points) outline.push_back({point.x, point.y});
    }
    outlines.push_back(std::move(outline));
  }
  return outlines;
}

// The outlines that bound the area, by the style.
std::vector<OdDbHatchOutline> OdDbHatch::bounds(double deviation) const {
  std::vector<OdDbHatchOutline> all = outlines(deviation);
  if (m_style == OdDb::kHatchNormal) return all;
  const unsigned deepest = m_style == OdDb::kHatchOuter ? 1 : 0;
  std::vector<OdDbHatchOutline> kept;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (oddbHatchDepth(all, i) <= deepest) kept.push_back(all[i]);
  }
  return kept;
}

double OdDbHatch::area() const {
  constexpr double kFine = 1e-6;  // of the greatest extent
  OdGeExtents3d box;
  if (getGeomExtents(box) != eOk) return 0.0;
  double sum = 0.0;
  const OdDbHatchTriangles fill = oddbHatchFill(bounds(kFine * box.diagonal().length()));
  for (const auto& [a, b, c] : fill.triangles) {
    sum += std::abs(signedArea({fill.points[a], fill.points[b], fill.points[c]}));
  }
  return sum;
}

OdResult OdDbHatch::getGeomExtents(OdGeExtents3d& extents) const {
  if (numLoops() == 0) return eNotApplicable;
  const OdDbPlaneFrame frame(m_normal);
  OdGeExtents3d box;
  for (OdUInt32 loop = 0; loop < numLoops(); ++loop) {
    const OdUInt32 end = endOf(loop);
    for (OdUInt32 i = beginOf(loop); i < end; ++i) {
      const OdGePoint2d& from = m_points[i];
      const OdGePoint2d& to = m_points[i + 1 < end ? i + 1 : beginOf(loop)];
      box.addPoint(frame.toWorld(from, m_elevation));
      if (m_bulges.isEmpty() || m_bulges[i] == 0.0 || from == to) continue;
      const OdDbBulgeArc arc(from, to, m_bulges[i]);
      OdDbArcShape{frame.toWorld(arc.center, m_elevation), frame.xAxis() * arc.radius,
                   frame.yAxis() * arc.radius, arc.start, arc.sweep}
          .addExtents(box);
    }
  }
  extents = box;
  return eOk;
}

bool OdDbHatch::subWorldDraw(OdGiWorldDraw* context) const {
  assertReadEnabled();
  OdGiWorldGeometry& geometry = context->geometry();
  const OdDbPlaneFrame frame(m_normal);
  const auto world = [&](const OdGePoint2d& point) { return frame.toWorld(point, m_elevation); };
  const std::vector<OdDbHatchOutline> area = bounds(context->deviation());
  std::vector<OdGePoint3d> points;
  if (isSolidFill()) {
    const OdDbHatchTriangles fill = oddbHatchFill(area);
    for (const OdGePoint2d& point : fill.points) points.push_back(world(point));
    if (!fill.triangles.empty()) geometry.shell({points, {}, fill.triangles, {}});
    return true;
  }
  // The pattern of the hatch is drawn in place of the line type.
  OdGiSubEntityTraits& traits = context->subEntityTraits();
  const OdDbObjectId linetype = traits.lineType();
  if (database() != nullptr) traits.setLineType(database()->getLinetypeContinuousId());
  drawLines(context, area);
  traits.setLineType(linetype);
  return true;
}

void OdDbHatch::drawLines(OdGiWorldDraw* context, const std::vector<OdDbHatchOutline>& area) const {
  OdGiWorldGeometry& geometry = context->geometry();
  const OdDbPlaneFrame frame(m_normal);
  const auto world = [&](const OdGePoint2d& point) { return frame.toWorld(point, m_elevation); };
  std::vector<OdGePoint3d> points;
  std::vector<OdDbHatchSegment> segments;
  for (const OdDbHatchLines& family : patternLines()) {
    if (oddbHatchLines(area, family, kMaxDrawn, segments)) continue;
    segments.clear();
    for (const OdDbHatchOutline& outline : area) {
      points.clear();
      for (const OdGePoint2d& point : outline) points.push_back(world(point));
      points.push_back(points.front());
      geometry.polyline(points);
    }
    return;
  }
  for (const OdDbHatchSegment& segment : segments) {
    geometry.polyline(std::array{world(segment.from), world(segment.to)});
  }
}

OdResult OdDbHatch::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  if (!move.isFinite()) return eInvalidInput;
  if (!move.isSimilar() && !m_bulges.isEmpty()) return eCannotScaleNonUniformly;
  const auto moved = [&](const OdGePoint2d& point) { return move.point(point, m_elevation); };
  std::vector<OdDbHatchLines> lines = patternLines();
  for (OdDbHatchLines& family : lines) {
    const OdGeVector2d along(std::cos(family.angle), std::sin(family.angle));
    const OdGePoint2d base = moved(family.base);
    const OdGeVector2d way = moved(family.base + along) - base;
    family.step = moved(family.base + family.step) - base;
    family.angle = std::atan2(way.y, way.x);
    family.base = base;
    for (double& dash : family.dashes) dash *= std::hypot(way.x, way.y);
    if (!::isSound(family)) return eCannotScaleNonUniformly;
  }
  if (!move.movePoints(m_points, m_elevation)) return eInvalidInput;
  storeLines(lines);
  if (move.flips()) {
    for (double& bulge : m_bulges) bulge = -bulge;
  }
  m_elevation = move.elevation(m_elevation);
  m_normal = move.normal();
  return eOk;
}

// Fields:
//
//   field       binary                    groups
//   version     uint8
//   elevation   double                    38        drawing units, along the normal
//   normal      vector                    210       unit length
//   style       uint8                     280       see OdDb::HatchStyle
//   pattern     string                    2         name
//   loop ends   int32 count, int32        90        of each loop, the vertex after its last; rising
//   vertices    int32 count, 2d points    10, 20    in the frame of the normal
//   bulges      int32 count, doubles      42        one for each vertex, none when all are 0
//   lines       int32 count, doubles      49        of each family: angle (radians), base x and y,
//                                                   step x and y, number of dashes, dashes; none
//                                                   for a solid hatch

template <class Fields, class Self>
void OdDbHatch::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(38, self.m_elevation, oddbIsNumber);
  fields.value(210, self.m_normal, oddbIsNormal);
  fields.template number<OdUInt8>(280, self.m_style, kIsStyle);
  fields.value(2, self.m_pattern);
  fields.list(90, self.m_ends, kMaxVertices);
  fields.list(10, self.m_points, kMaxVertices, oddbIsPoint);
  fields.list(42, self.m_bulges, kMaxVertices, oddbIsNumber);
  fields.list(49, self.m_lines, kMaxLineNumbers, oddbIsNumber);
  fields.rule([&] { return self.isSound(); });
}

bool OdDbHatch::isSound() const {
  OdInt32 last = 0;
  for (const OdInt32 end : m_ends) {
    if (end < last + 2) return false;
    last = end;
  }
  std::vector<OdDbHatchLines> lines;
  return static_cast<OdUInt32>(last) == m_points.size() &&
         (m_bulges.isEmpty() || m_bulges.size() == m_points.size()) && readLines(m_lines, lines);
}

OD_DB_DEFINE_FILING(OdDbHatch, OdDbEntity)

std::size_t OdDbHatch::approximateSize() const {
  return OdDbEntity::approximateSize() + m_points.size() * sizeof(OdGePoint2d) +
         (m_bulges.size() + m_lines.size()) * sizeof(double) + m_ends.size() * sizeof(OdInt32);
}
