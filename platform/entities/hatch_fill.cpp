// Areas between loops: filled, or covered with parallel lines.
//
// Hatch lines. A family is turned so that its lines are level. Each edge of the outlines is given
// to the lines that it crosses, with the place of the crossing; an edge counts from its lower end
// up to but not including its upper end, so that a line through a corner meets each side of it
// once. The crossings of one line, in order, are the ends of its pieces within the area. The cost
// is the edges plus the crossings, sorted.
//
// Fill. Levels through all corners, and through the crossings of edges, cut the area into strips.
// Within a strip no two edges cross and none begins or ends, so the strip is a row of trapezoids
// between its first and second edge, its third and fourth, and so on. Edges enter and leave a list
// of those that are in the strip, from bottom to top. The cost is the strips times the edges in
// each.
#include "platform/entities/hatch_fill.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "platform/base/sort_unique.h"

namespace {

struct Edge {
  OdGePoint2d low;
  OdGePoint2d high;

  [[nodiscard]] double xAt(double y) const {
    return low.x + (high.x - low.x) * ((y - low.y) / (high.y - low.y));
  }
};

// Level edges meet no level line.
std::vector<Edge> edgesOf(const std::vector<OdDbHatchOutline>& outlines) {
  std::vector<Edge> edges;
  for (const OdDbHatchOutline& outline : outlines) {
    for (std::size_t i = 0; i < outline.size(); ++i) {
      const OdGePoint2d& from = outline[i];
      const OdGePoint2d& to = outline[i + 1 < outline.size() ? i + 1 : 0];
      if (from.y < to.y) edges.push_back({from, to});
      if (from.y > to.y) edges.push_back({to, from});
    }
  }
  return edges;
}

/// A turn about the origin.
struct Turn {
  double cosine;
  double sine;

  explicit Turn(double angle) : cosine(std::cos(angle)), sine(std::sin(angle)) {}
  [[nodiscard]] OdGePoint2d operator()(const OdGePoint2d& p) const {
    return {p.x * cosine - p.y * sine, p.x * sine + p.y * cosine};
  }
};

/// Cuts a piece of a line into dashes. The pattern begins at `origin`; false when there are too
/// many.
bool cutDashes(const std::vector<double>& dashes, double origin, double from, double to,
               std::size_t most, std::vector<std::array<double, 2>>& pieces) {
  double period = 0.0;
  for (const double dash : dashes) period += std::abs(dash);
  if (dashes.empty() || !(period > 0.0)) {
    pieces.push_back({from, to});
    return true;
  }
  if ((to - from) / period * static_cast<double>(dashes.size()) > static_cast<double>(most)) {
    return false;
  }
  const double before = std::floor((from - origin) / period);
  const double last = std::ceil((to - origin) / period);
  for (double count = before; count < last; ++count) {
    double at = origin + count * period;
    for (const double dash : dashes) {
      const double end = at + std::abs(dash);
      if (dash >= 0.0 && end >= from && at <= to) {
        pieces.push_back({std::max(at, from), std::min(end, to)});
      }
      at = end;
    }
  }
  return true;
}

// Where two edges cross within both, their level; nothing for edges that only share an end.
bool crossing(const Edge& a, const Edge& b, double& y) {
  const double low = std::max(a.low.y, b.low.y);
  const double high = std::min(a.high.y, b.high.y);
  if (!(low < high)) return false;
  const double below = a.xAt(low) - b.xAt(low);
  const double above = a.xAt(high) - b.xAt(high);
  if (!((below < 0.0 && above > 0.0) || (below > 0.0 && above < 0.0))) return false;
  y = low + (high - low) * (below / (below - above));
  return y > low && y < high;
}

std::vector<double> levelsOf(const std::vector<Edge>& edges) {
  std::vector<double> levels;
  for (const Edge& edge : edges) {
    levels.push_back(edge.low.y);
    levels.push_back(edge.high.y);
  }
  // Edges sorted by their lower end: only those that overlap in height are compared.
  std::vector<const Edge*> sorted;
  for (const Edge& edge : edges) sorted.push_back(&edge);
  std::ranges::sort(sorted, {}, [](const Edge* edge) { return edge->low.y; });
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    for (std::size_t k = i + 1; k < sorted.size() && sorted[k]->low.y < sorted[i]->high.y; ++k) {
      double y = 0.0;
      if (crossing(*sorted[i], *sorted[k], y)) levels.push_back(y);
    }
  }
  odSortUnique(levels);
  return levels;
}

void addTrapezoid(OdDbHatchTriangles& fill, const Edge& left, const Edge& right, double low,
                  double high) {
  const auto first = static_cast<OdUInt32>(fill.points.size());
  fill.points.push_back({left.xAt(low), low});
  fill.points.push_back({right.xAt(low), low});
  fill.points.push_back({right.xAt(high), high});
  fill.points.push_back({left.xAt(high), high});
  fill.triangles.push_back({first, first + 1, first + 2});
  fill.triangles.push_back({first, first + 2, first + 3});
}

}  // namespace

bool oddbHatchLines(const std::vector<OdDbHatchOutline>& outlines, const OdDbHatchLines& lines,
                    std::size_t most, std::vector<OdDbHatchSegment>& segments) {
  const Turn level(-lines.angle);
  const Turn back(lines.angle);
  std::vector<OdDbHatchOutline> turned = outlines;
  for (OdDbHatchOutline& outline : turned) std::ranges::transform(outline, outline.begin(), level);
  const OdGePoint2d base = level(lines.base);
  const OdGePoint2d step = level({lines.step.x, lines.step.y});
  if (!(std::abs(step.y) > 0.0)) return false;
  // Line n is at base.y + n * step.y.
  std::map<OdInt64, std::vector<double>> crossings;
  std::size_t count = 0;
  for (const Edge& edge : edgesOf(turned)) {
    double first = (edge.low.y - base.y) / step.y;
    double last = (edge.high.y - base.y) / step.y;
    if (first > last) std::swap(first, last);
    if (!(last - first <= static_cast<double>(most))) return false;
    for (double n = std::ceil(first); n <= last; ++n) {
      const double y = base.y + n * step.y;
      if (y < edge.low.y || y >= edge.high.y) continue;
      crossings[static_cast<OdInt64>(n)].push_back(edge.xAt(y));
      if (++count > 2 * most) return false;
    }
  }
  std::vector<OdDbHatchSegment> found;
  std::vector<std::array<double, 2>> pieces;
  for (auto& [n, places] : crossings) {
    std::ranges::sort(places);
    const double y = base.y + static_cast<double>(n) * step.y;
    const double origin = base.x + static_cast<double>(n) * step.x;
    for (std::size_t i = 0; i + 1 < places.size(); i += 2) {
      pieces.clear();
      if (!cutDashes(lines.dashes, origin, places[i], places[i + 1], most, pieces)) return false;
      for (const auto& [from, to] : pieces) found.push_back({back({from, y}), back({to, y})});
      if (found.size() > most) return false;
    }
  }
  segments.insert(segments.end(), found.begin(), found.end());
  return true;
}

OdDbHatchTriangles oddbHatchFill(const std::vector<OdDbHatchOutline>& outlines) {
  OdDbHatchTriangles fill;
  std::vector<Edge> edges = edgesOf(outlines);
  const std::vector<double> levels = levelsOf(edges);
  std::ranges::sort(edges, {}, [](const Edge& edge) { return edge.low.y; });
  std::vector<Edge> active;
  std::size_t next = 0;
  for (std::size_t i = 0; i + 1 < levels.size(); ++i) {
    const double low = levels[i];
    const double high = levels[i + 1];
    const double middle = low + (high - low) / 2;
    std::erase_if(active, [&](const Edge& edge) { return edge.high.y <= low; });
    for (; next < edges.size() && edges[next].low.y <= low; ++next) active.push_back(edges[next]);
    std::ranges::sort(active, {}, [&](const Edge& edge) { return edge.xAt(middle); });
    for (std::size_t k = 0; k + 1 < active.size(); k += 2) {
      addTrapezoid(fill, active[k], active[k + 1], low, high);
    }
  }
  return fill;
}

unsigned oddbHatchDepth(const std::vector<OdDbHatchOutline>& outlines, std::size_t outline) {
  if (outlines[outline].empty()) return 0;
  const OdGePoint2d point = outlines[outline].front();
  unsigned depth = 0;
  for (std::size_t i = 0; i < outlines.size(); ++i) {
    if (i == outline) continue;
    bool isInside = false;
    for (const Edge& edge : edgesOf({outlines[i]})) {
      const bool isLevel = point.y >= edge.low.y && point.y < edge.high.y;
      if (isLevel && edge.xAt(point.y) > point.x) isInside = !isInside;
    }
    depth += isInside ? 1 : 0;
  }
  return depth;
}
