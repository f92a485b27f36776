// Patterns of equal holes. The mouths are points in a plane; a row is found by sorting along the
// line of the two that lie furthest apart, a circle by the distances to the middle of all and the
// angles between neighbours, a grid by the two shortest independent steps from one corner.
#include "host/inspect/hole_patterns.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace vdm_host {

namespace {

using Places = std::vector<OdGePoint3d>;

std::string numberText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

bool isNear(double a, double b, double tolerance) { return std::abs(a - b) <= tolerance; }

bool areAlike(const HoleFacts& a, const HoleFacts& b, double tolerance) {
  constexpr double kSine = 1.8e-4;
  const double offset = (b.mouth - a.mouth).dotProduct(a.axis);
  const bool isSameWay = a.axis.dotProduct(b.axis) > 0.0;
  return a.kind == b.kind && a.through == b.through && (isSameWay || a.through) &&
         a.axis.crossProduct(b.axis).length() <= kSine && isNear(offset, 0.0, tolerance) &&
         isNear(a.diameter, b.diameter, tolerance) && isNear(a.depth, b.depth, tolerance) &&
         isNear(a.outerDiameter, b.outerDiameter, tolerance) &&
         isNear(a.length, b.length, tolerance) && isNear(a.width, b.width, tolerance);
}

std::optional<HolePattern> asRow(const Places& places, double tolerance) {
  const OdGePoint3d* first = &places.front();
  const OdGePoint3d* last = first;
  for (int round = 0; round < 2; ++round) {
    last = &*std::ranges::max_element(places, {},
                                      [&](const OdGePoint3d& p) { return (p - *first).length(); });
    std::swap(first, last);
  }
  const double length = (*last - *first).length();
  if (length <= tolerance) return std::nullopt;
  const OdGeVector3d along = (*last - *first) / length;
  std::vector<double> stations;
  for (const OdGePoint3d& p : places) {
    if ((p - *first).crossProduct(along).length() > tolerance) return std::nullopt;
    stations.push_back((p - *first).dotProduct(along));
  }
  std::ranges::sort(stations);
  const double pitch = length / static_cast<double>(places.size() - 1);
  for (std::size_t i = 0; i < stations.size(); ++i) {
    if (!isNear(stations[i], stations.front() + static_cast<double>(i) * pitch, tolerance))
      return std::nullopt;
  }
  HolePattern row;
  row.count = places.size();
  row.pitch = pitch;
  return row;
}

std::optional<HolePattern> asCircle(const Places& places, const OdGeVector3d& axis,
                                    double tolerance) {
  OdGeVector3d sum;
  for (const OdGePoint3d& p : places) sum += p - places.front();
  const OdGePoint3d centre = places.front() + sum / static_cast<double>(places.size());
  const double radius = (places.front() - centre).length();
  if (radius <= tolerance) return std::nullopt;
  std::vector<double> angles;
  const OdGeVector3d zero = places.front() - centre;
  for (const OdGePoint3d& p : places) {
    const OdGeVector3d arm = p - centre;
    if (!isNear(arm.length(), radius, tolerance)) return std::nullopt;
    angles.push_back(std::atan2(zero.crossProduct(arm).dotProduct(axis), zero.dotProduct(arm)));
  }
  std::ranges::sort(angles);
  const double step = 2.0 * std::numbers::pi / static_cast<double>(places.size());
  for (std::size_t i = 1; i < angles.size(); ++i) {
    if (!isNear((angles[i] - angles[i - 1]) * radius, step * radius, 2.0 * tolerance))
      return std::nullopt;
  }
  HolePattern circle;
  circle.kind = HolePatternKind::kCircle;
  circle.count = places.size();
  circle.diameter = 2.0 * radius;
  return circle;
}

/// The shortest step from a place to another one, in a direction that is not along `but`.
std::optional<OdGeVector3d> shortestStep(const Places& places, const OdGePoint3d& from,
                                         const OdGeVector3d& but, double tolerance) {
  std::optional<OdGeVector3d> best;
  for (const OdGePoint3d& p : places) {
    const OdGeVector3d step = p - from;
    if (step.length() <= tolerance ||
        (!but.isZeroLength() && std::abs(step.dotProduct(but)) > tolerance * but.length()))
      continue;
    if (!best || step.length() < best->length()) best = step;
  }
  return best;
}

std::optional<HolePattern> asGrid(const Places& places, double tolerance) {
  // A corner: the place that lies furthest from the middle.
  OdGeVector3d sum;
  for (const OdGePoint3d& p : places) sum += p - places.front();
  const OdGePoint3d centre = places.front() + sum / static_cast<double>(places.size());
  const OdGePoint3d corner = *std::ranges::max_element(
      places, {}, [&](const OdGePoint3d& p) { return (p - centre).length(); });
  const std::optional<OdGeVector3d> u = shortestStep(places, corner, {}, tolerance);
  if (!u) return std::nullopt;
  const std::optional<OdGeVector3d> v = shortestStep(places, corner, *u, tolerance);
  if (!v) return std::nullopt;
  long columns = 0;
  long rows = 0;
  for (const OdGePoint3d& p : places) {
    const OdGeVector3d arm = p - corner;
    const long i = std::lround(arm.dotProduct(*u) / u->lengthSqrd());
    const long j = std::lround(arm.dotProduct(*v) / v->lengthSqrd());
    if (i < 0 || j < 0) return std::nullopt;
    const OdGeVector3d rest = arm - *u * static_cast<double>(i) - *v * static_cast<double>(j);
    if (rest.length() > tolerance) return std::nullopt;
    columns = std::max(columns, i + 1);
    rows = std::max(rows, j + 1);
  }
  // Places are distinct, so that the count alone shows a full grid.
  if (columns < 2 || rows < 2 || static_cast<std::size_t>(columns * rows) != places.size())
    return std::nullopt;
  HolePattern grid;
  grid.kind = HolePatternKind::kGrid;
  grid.count = static_cast<std::size_t>(columns);
  grid.rows = static_cast<std::size_t>(rows);
  grid.pitch = u->length();
  grid.rowPitch = v->length();
  if (grid.count < grid.rows) {
    std::swap(grid.count, grid.rows);
    std::swap(grid.pitch, grid.rowPitch);
  }
  return grid;
}

}  // namespace

std::string holePatternText(const HolePattern& pattern) {
  const std::string count = std::to_string(pattern.count);
  switch (pattern.kind) {
    case HolePatternKind::kRow:
      return "row of " + count + ", pitch " + numberText(pattern.pitch);
    case HolePatternKind::kGrid:
      return "grid of " + count + " x " + std::to_string(pattern.rows) + ", pitch " +
             numberText(pattern.pitch) + " x " + numberText(pattern.rowPitch);
    case HolePatternKind::kCircle:
      return count + " on a circle of " + numberText(pattern.diameter);
  }
  return {};
}

std::vector<HolePattern> recognizePatterns(std::span<const HoleFacts> holes, double tolerance) {
  std::vector<HolePattern> patterns;
  std::vector<bool> seen(holes.size(), false);
  for (std::size_t i = 0; i < holes.size(); ++i) {
    if (seen[i]) continue;
    std::vector<std::size_t> alike;
    Places places;
    for (std::size_t j = i; j < holes.size(); ++j) {
      if (seen[j] || !areAlike(holes[i], holes[j], tolerance)) continue;
      seen[j] = true;
      alike.push_back(j);
      places.push_back(holes[j].mouth -
                       holes[i].axis * (holes[j].mouth - holes[i].mouth).dotProduct(holes[i].axis));
    }
    if (places.size() < 3) continue;
    std::optional<HolePattern> pattern = asRow(places, tolerance);
    if (!pattern) pattern = asGrid(places, tolerance);
    if (!pattern) pattern = asCircle(places, holes[i].axis, tolerance);
    if (!pattern) continue;
    pattern->holes = std::move(alike);
    patterns.push_back(std::move(*pattern));
  }
  return patterns;
}

}  // namespace vdm_host
