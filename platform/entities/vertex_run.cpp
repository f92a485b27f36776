// OdDbVertexRun: what light-weight and 2D polylines share.
//
// Most runs have neither arcs nor widths. Their lists of bulges and widths are empty, which means
// that all are 0. The invariant: a list is either empty or has one bulge, or two widths, for each
// vertex. An edit that needs the numbers opens the list, which fills it with zeros, and closes it
// again when all of them are 0; equal runs so have equal records.
#include "platform/entities/vertex_run.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/base/error.h"
#include "platform/entities/arc.h"
#include "platform/entities/line.h"
#include "platform/entities/property_rows.h"
#include "platform/gi/world_draw.h"

namespace {

bool isZero(double value) { return value == 0.0; }

}  // namespace

// ---- Vertices

OdUInt32 OdDbVertexRun::numVerts() const { return read(m_points).size(); }

void OdDbVertexRun::checkIndex(OdUInt32 index) const {
  if (index >= numVerts()) throw OdError_InvalidIndex(index, numVerts());
}

bool OdDbVertexRun::listsFit() const {
  const OdUInt32 count = m_points.size();
  return (m_bulges.isEmpty() || m_bulges.size() == count) &&
         (m_widths.isEmpty() || m_widths.size() == 2 * count);
}

// Lists that are empty, since all their numbers are 0, get those zeros.
void OdDbVertexRun::openLists(bool forBulges, bool forWidths) {
  if (forBulges && m_bulges.isEmpty()) m_bulges.resize(m_points.size(), 0.0);
  if (forWidths && m_widths.isEmpty()) m_widths.resize(2 * m_points.size(), 0.0);
}

void OdDbVertexRun::closeLists() {
  if (std::ranges::all_of(std::as_const(m_bulges), isZero)) m_bulges.clear();
  if (std::ranges::all_of(std::as_const(m_widths), isZero)) m_widths.clear();
}

void OdDbVertexRun::addVertexAt(OdUInt32 index, const OdGePoint2d& point, double bulge,
                                double startWidth, double endWidth) {
  if (index > numVerts()) throw OdError_InvalidIndex(index, numVerts() + 1);
  if (numVerts() >= kMaxVertices) oddbRaiseValue(this, "number of vertices", kMaxVertices);
  oddbChecked(this, "vertex", point);
  oddbChecked(this, "bulge", bulge, oddbIsNumber);
  oddbChecked(this, "start width", startWidth, oddbIsWidth);
  oddbChecked(this, "end width", endWidth, oddbIsWidth);
  assertWriteEnabled();
  openLists(bulge != 0.0, startWidth != 0.0 || endWidth != 0.0);
  m_points.insertAt(index, point);
  if (bulge != 0.0 || !m_bulges.isEmpty()) m_bulges.insertAt(index, bulge);
  if (startWidth != 0.0 || endWidth != 0.0 || !m_widths.isEmpty()) {
    m_widths.insertAt(2 * index, startWidth);
    m_widths.insertAt(2 * index + 1, endWidth);
  }
  noteGraphicsModified();
}

void OdDbVertexRun::removeVertexAt(OdUInt32 index) {
  checkIndex(index);
  assertWriteEnabled();
  m_points.removeAt(index);
  if (!m_bulges.isEmpty()) m_bulges.removeAt(index);
  if (!m_widths.isEmpty()) m_widths.removeSubArray(2 * index, 2 * index + 1);
  closeLists();
  noteGraphicsModified();
}

void OdDbVertexRun::reset() {
  if (numVerts() == 0) return;
  assertWriteEnabled();
  m_points.clear();
  m_bulges.clear();
  m_widths.clear();
  noteGraphicsModified();
}

void OdDbVertexRun::getPointAt(OdUInt32 index, OdGePoint2d& point) const {
  checkIndex(index);
  point = m_points[index];
}

void OdDbVertexRun::getPointAt(OdUInt32 index, OdGePoint3d& point) const {
  checkIndex(index);
  point = worldAt(index);
}

void OdDbVertexRun::setPointAt(OdUInt32 index, const OdGePoint2d& point) {
  checkIndex(index);
  oddbChecked(this, "vertex", point);
  if (std::as_const(m_points)[index] == point) return;
  assertWriteEnabled();
  m_points[index] = point;
  noteGraphicsModified();
}

double OdDbVertexRun::getBulgeAt(OdUInt32 index) const {
  checkIndex(index);
  return m_bulges.isEmpty() ? 0.0 : m_bulges[index];
}

void OdDbVertexRun::setBulgeAt(OdUInt32 index, double bulge) {
  oddbChecked(this, "bulge", bulge, oddbIsNumber);
  if (getBulgeAt(index) == bulge) return;
  assertWriteEnabled();
  openLists(/*forBulges=*/true, /*forWidths=*/false);
  m_bulges[index] = bulge;
  closeLists();
  noteGraphicsModified();
}

void OdDbVertexRun::getWidthsAt(OdUInt32 index, double& startWidth, double& endWidth) const {
  checkIndex(index);
  startWidth = m_widths.isEmpty() ? 0.0 : m_widths[2 * index];
  endWidth = m_widths.isEmpty() ? 0.0 : m_widths[2 * index + 1];
}

void OdDbVertexRun::setWidthsAt(OdUInt32 index, double startWidth, double endWidth) {
  double oldStart = 0.0;
  double oldEnd = 0.0;
  getWidthsAt(index, oldStart, oldEnd);
  oddbChecked(this, "start width", startWidth, oddbIsWidth);
  oddbChecked(this, "end width", endWidth, oddbIsWidth);
  if (startWidth == oldStart && endWidth == oldEnd) return;
  assertWriteEnabled();
  openLists(/*forBulges=*/false, /*forWidths=*/true);
  m_widths[2 * index] = startWidth;
  m_widths[2 * index + 1] = endWidth;
  closeLists();
  noteGraphicsModified();
}

void OdDbVertexRun::setConstantWidth(double width) {
  oddbChecked(this, "width", width, oddbIsWidth);
  OdArray<double> widths;
  if (width != 0.0) widths.resize(2 * numVerts(), width);
  change(m_widths, widths);
}

bool OdDbVertexRun::hasBulges() const { return !read(m_bulges).isEmpty(); }
bool OdDbVertexRun::hasWidth() const { return !read(m_widths).isEmpty(); }
OD_DB_CHECKED_PROPERTY(OdDbVertexRun, double, elevation, setElevation, m_elevation, "elevation",
                       oddbIsNumber)
OD_DB_PROPERTY(OdDbVertexRun, bool, isClosed, setClosed, m_closed)

OdUInt32 OdDbVertexRun::numSegments() const {
  const OdUInt32 count = numVerts();
  if (count < 2) return 0;
  return m_closed ? count : count - 1;
}

// ---- Geometry

OdUInt32 OdDbVertexRun::after(OdUInt32 index) const {
  return index + 1 < m_points.size() ? index + 1 : 0;
}

OdGePoint3d OdDbVertexRun::worldAt(OdUInt32 index) const {
  return OdDbPlaneFrame(m_normal).toWorld(m_points[index], m_elevation);
}

bool OdDbVertexRun::isArc(OdUInt32 segment) const {
  return !m_bulges.isEmpty() && m_bulges[segment] != 0.0 &&
         m_points[segment] != m_points[after(segment)];
}

OdDbArcShape OdDbVertexRun::arcOf(OdUInt32 segment) const {
  const OdDbBulgeArc arc(m_points[segment], m_points[after(segment)], m_bulges[segment]);
  const OdDbPlaneFrame frame(m_normal);
  return {frame.toWorld(arc.center, m_elevation), frame.xAxis() * arc.radius,
          frame.yAxis() * arc.radius, arc.start, arc.sweep};
}

double OdDbVertexRun::segmentLength(OdUInt32 segment) const {
  if (!isArc(segment)) return m_points[segment].distanceTo(m_points[after(segment)]);
  const OdDbBulgeArc arc(m_points[segment], m_points[after(segment)], m_bulges[segment]);
  return arc.radius * std::abs(arc.sweep);
}

OdResult OdDbVertexRun::getRange(double& start, double& end) const {
  if (numSegments() == 0) return eDegenerateGeometry;
  start = 0.0;
  end = numSegments();
  return eOk;
}

double OdDbVertexRun::length() const {
  double sum = 0.0;
  for (OdUInt32 i = 0; i < numSegments(); ++i) sum += segmentLength(i);
  return sum;
}

OdGePoint3d OdDbVertexRun::pointAt(double parameter) const {
  const OdUInt32 segment = std::min(static_cast<OdUInt32>(parameter), numSegments() - 1);
  const double share = parameter - segment;
  if (isArc(segment)) {
    const OdDbArcShape arc = arcOf(segment);
    return arc.at(arc.start + arc.sweep * share);
  }
  const OdGePoint3d from = worldAt(segment);
  return from + (worldAt(after(segment)) - from) * share;
}

void OdDbVertexRun::addChords(double deviation, std::vector<OdGePoint3d>& points) const {
  if (numSegments() == 0) return;
  points.push_back(worldAt(0));
  for (OdUInt32 i = 0; i < numSegments(); ++i) {
    if (isArc(i)) {
      arcOf(i).addChords(deviation, points, /*skipsFirst=*/true);
      points.back() = worldAt(after(i));
    } else {
      points.push_back(worldAt(after(i)));
    }
  }
}

OdResult OdDbVertexRun::getGeomExtents(OdGeExtents3d& extents) const {
  if (numVerts() == 0) return eNotApplicable;
  if (hasWidth()) return oddbDrawnExtents(this, extents);
  OdGeExtents3d box;
  for (OdUInt32 i = 0; i < numVerts(); ++i) box.addPoint(worldAt(i));
  for (OdUInt32 i = 0; i < numSegments(); ++i) {
    if (isArc(i)) arcOf(i).addExtents(box);
  }
  oddbExtrude(box, extrusion());
  extents = box;
  return eOk;
}

OdResult OdDbVertexRun::explode(OdRxObjectPtrArray& parts) const {
  if (numSegments() == 0) return eNotApplicable;
  for (OdUInt32 i = 0; i < numSegments(); ++i) {
    OdDbEntityPtr part;
    if (isArc(i)) {
      const OdDbArcShape shape = arcOf(i);
      const OdDbArcPtr arc = OdDbArc::createObject();
      const bool isForward = shape.sweep > 0.0;
      arc->setNormal(m_normal);
      arc->setCenter(shape.center);
      arc->setRadius(shape.a.length());
      arc->setStartAngle(isForward ? shape.start : shape.start + shape.sweep);
      arc->setEndAngle(isForward ? shape.start + shape.sweep : shape.start);
      arc->setThickness(m_thickness);
      part = arc;
    } else {
      const OdDbLinePtr line = OdDbLine::createObject();
      line->setStartPoint(worldAt(i));
      line->setEndPoint(worldAt(after(i)));
      line->setNormal(m_normal);
      line->setThickness(m_thickness);
      part = line;
    }
    part->setPropertiesFrom(this);
    parts.append(part);
  }
  return eOk;
}

// ---- Drawing

bool OdDbVertexRun::subWorldDraw(OdGiWorldDraw* context) const {
  if (!hasWidth()) return OdDbCurve::subWorldDraw(context);
  for (OdUInt32 i = 0; i < numSegments(); ++i) drawWideSegment(context, i);
  return true;
}

// Each chord becomes a filled quadrangle; its width is that of the segment at the share of its
// length. Quadrangles of an arc share their ends.
void OdDbVertexRun::drawWideSegment(OdGiWorldDraw* context, OdUInt32 segment) const {
  std::vector<OdGePoint3d> points{worldAt(segment)};
  if (isArc(segment)) {
    const OdDbArcShape arc = arcOf(segment);
    arc.addChords(context->deviation(), points, /*skipsFirst=*/true);
  } else {
    points.push_back(worldAt(after(segment)));
  }
  double startWidth = 0.0;
  double endWidth = 0.0;
  getWidthsAt(segment, startWidth, endWidth);
  const auto count = static_cast<double>(points.size() - 1);
  // To the left of the run: along the radius of an arc, across a line.
  const auto leftAt = [&](std::size_t i) {
    OdGeVector3d left;
    if (isArc(segment)) {
      const OdDbArcShape arc = arcOf(segment);
      left = (points[i] - arc.center) * (arc.sweep > 0.0 ? -1.0 : 1.0);
    } else {
      left = m_normal.crossProduct(points[1] - points[0]);
    }
    const double length = left.length();
    const double width = startWidth + (endWidth - startWidth) * (static_cast<double>(i) / count);
    return length > 0.0 ? left * (width / 2 / length) : OdGeVector3d();
  };
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    const OdGeVector3d here = leftAt(i);
    const OdGeVector3d there = leftAt(i + 1);
    const OdGePoint3d quad[] = {points[i] - here, points[i + 1] - there, points[i + 1] + there,
                                points[i] + here};
    context->geometry().polygon(quad);
    if (m_thickness == 0.0) continue;
    oddbDrawThick(context, {quad[0], quad[1]}, extrusion());
    oddbDrawThick(context, {quad[3], quad[2]}, extrusion());
  }
}

// ---- Transforming

OdResult OdDbVertexRun::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  if (!move.isFinite()) return eInvalidInput;
  if (!move.isSimilar() && (hasBulges() || hasWidth())) return eCannotScaleNonUniformly;
  if (!move.takesThickness(m_thickness)) return eCannotScaleNonUniformly;
  if (!move.movePoints(m_points, m_elevation)) return eInvalidInput;
  m_elevation = move.elevation(m_elevation);
  m_thickness *= move.depthScale();
  m_normal = move.normal();
  for (double& width : m_widths) width *= move.scale();
  if (move.flips()) {
    for (double& bulge : m_bulges) bulge = -bulge;
  }
  return eOk;
}

std::size_t OdDbVertexRun::approximateSize() const {
  return OdDbCurve::approximateSize() + m_points.size() * sizeof(OdGePoint2d) +
         (m_bulges.size() + m_widths.size()) * sizeof(double);
}
