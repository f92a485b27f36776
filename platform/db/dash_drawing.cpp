// Lines drawn in the pattern of a line type.
//
// The polyline is walked once by its length. The state of the walk is a place (segment and distance
// along it) that only moves forward, so the cost is the number of points plus the number of dashes.
// It ends since each period takes away the same positive length of what remains.
#include "platform/db/dash_drawing.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/gi/stroke_font.h"

namespace {

double lengthOf(std::span<const OdGePoint3d> points) {
  double length = 0.0;
  for (std::size_t i = 1; i < points.size(); ++i) length += points[i].distanceTo(points[i - 1]);
  return length;
}

/// A place on a polyline that moves forward.
class PathWalk {
 public:
  explicit PathWalk(std::span<const OdGePoint3d> points) : m_points(points) {}

  [[nodiscard]] OdGePoint3d place() const {
    const double length = segmentLength();
    if (!(length > 0.0)) return m_points[m_segment];
    return m_points[m_segment] +
           (m_points[m_segment + 1] - m_points[m_segment]) * (m_along / length);
  }
  /// Of the present segment, or the last one with a length before it.
  [[nodiscard]] OdGeVector3d direction() const {
    for (std::size_t i = m_segment + 1; i > 0; --i) {
      const OdGeVector3d step = m_points[i] - m_points[i - 1];
      if (step.length() > 0.0) return step / step.length();
    }
    return OdGeVector3d::kXAxis;
  }
  /// Moves by a length; the corners passed, and the places before and after, go to `passed`.
  void advance(double length, std::vector<OdGePoint3d>& passed) {
    passed.assign(1, place());
    while (m_segment + 2 < m_points.size() && m_along + length >= segmentLength()) {
      length -= segmentLength() - m_along;
      m_along = 0.0;
      ++m_segment;
      passed.push_back(m_points[m_segment]);
    }
    m_along = std::min(m_along + length, segmentLength());
    passed.push_back(place());
  }

 private:
  [[nodiscard]] double segmentLength() const {
    return m_points[m_segment].distanceTo(m_points[m_segment + 1]);
  }

  std::span<const OdGePoint3d> m_points;
  std::size_t m_segment = 0;
  double m_along = 0.0;
};

// The plane of a text is that of the line and the Z axis' perpendicular; lines along Z take X.
void drawText(OdGiWorldGeometry& geometry, const PathWalk& walk, const OdDbDashText& text,
              double scale) {
  if (text.isShape) return;
  const OdGeVector3d along = walk.direction();
  const OdGeVector3d across = OdGeVector3d::kZAxis.crossProduct(along);
  const OdGeVector3d left =
      across.length() > 1e-6 ? across / across.length() : OdGeVector3d::kYAxis;
  const OdGeVector3d baseX = text.isAbsolute ? OdGeVector3d::kXAxis : along;
  const OdGeVector3d baseY = text.isAbsolute ? OdGeVector3d::kYAxis : left;
  OdGeVector3d textX = baseX * std::cos(text.rotation) + baseY * std::sin(text.rotation);
  OdGeVector3d textY = baseY * std::cos(text.rotation) - baseX * std::sin(text.rotation);
  const double height = text.scale * scale;
  OdGePoint3d position =
      walk.place() + along * (text.offset.x * scale) + left * (text.offset.y * scale);
  if (text.isUpright && textX.x < -1e-9) {
    position += textX * (odgiTextWidth(text.text) * height) + textY * height;
    textX = -textX;
    textY = -textY;
  }
  geometry.text({text.text, position, textX * height, textY * height});
}

}  // namespace

void oddbDrawDashed(OdGiWorldGeometry& geometry, std::span<const OdGePoint3d> points,
                    const OdDbLinetypeTableRecord& linetype, double scale) {
  const OdDbDashArray dashes = linetype.dashes();
  const double period = linetype.patternLength() * scale;
  const double total = lengthOf(points);
  const double first = dashes.isEmpty() ? 0.0 : std::max(dashes[0], 0.0) * scale;
  const double periods = period > 0.0 ? std::floor((total - first) / period) : 0.0;
  if (dashes.isEmpty() || periods < 1.0 || periods > kOdDbMaxPeriods || points.size() < 2) {
    return geometry.polyline(points);
  }
  const OdArray<OdDbDashText> texts = linetype.texts();
  const double share = (total - first - periods * period) / 2;
  PathWalk walk(points);
  std::vector<OdGePoint3d> piece;
  const auto draw = [&](double dash, double extra) {
    walk.advance(std::abs(dash) * scale + extra, piece);
    if (dash >= 0.0) geometry.polyline(piece);
  };
  for (double count = 0; count < periods; ++count) {
    for (OdUInt32 i = 0; i < dashes.size(); ++i) {
      draw(dashes[i], count == 0 && i == 0 ? share : 0.0);
      for (const OdDbDashText& text : texts) {
        if (text.dash == static_cast<OdInt32>(i)) drawText(geometry, walk, text, scale);
      }
    }
  }
  if (dashes[0] >= 0.0) draw(dashes[0], share);
}
