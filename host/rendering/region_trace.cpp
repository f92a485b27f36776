// Outlines of the regions of a raster.
//
// A region is a set of samples of one part and colour that are connected by their sides. Its border
// runs along the grid between samples and is a set of closed loops of unit steps, each with the
// region at its right. The work has three phases.
//
// 1. LabelMap numbers the regions by flood fill: each sample is pushed once.
// 2. Tracer walks the loops. Every step is a pair (corner, direction), and a bit for each pair says
//    whether it was walked. A walk always takes the first border step to the right, ahead or to the
//    left. Each border step thus has exactly one successor and one predecessor, so a walk can only
//    close at its start, and every step lies in one loop. A loop that turns back on itself has
//    steps to the east and to the west, so starting at the horizontal steps finds all of them.
// 3. Loops are cut at junctions, the corners where more than two borders meet, and each piece is
//    straightened by itself (the farthest point from a chord is kept, then both halves are treated
//    alike). Two neighbours walk the piece between two junctions in opposite directions. Distances
//    from a chord do not depend on the direction, so that both keep the same points and neither a
//    gap nor an overlap appears between them. Where two points are equally far each neighbour keeps
//    the one that it meets first; the two lines then differ by less than the tolerance. A loop
//    without two junctions is cut at two corners that do not depend on where its walk began: the
//    first in reading order and the one farthest from it.
//
// Filling and walking cost time in proportion to the samples. Straightening costs n log n for usual
// pieces of n steps and n squared at worst.
#include "host/rendering/region_trace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace rendering {

namespace {

using Label = std::uint32_t;
constexpr Label kBackground = 0;

/// A corner between samples.
struct Corner {
  int x = 0;
  int y = 0;
  friend auto operator<=>(const Corner&, const Corner&) = default;
};

// Directions along the border of a sample, clockwise on the picture; the region is at the right.
constexpr std::array<Corner, 4> kSteps{{{1, 0}, {0, 1}, {-1, 0}, {0, -1}}};
enum Direction : int { kEast = 0, kSouth = 1, kWest = 2, kNorth = 3 };

/// Numbers the connected regions of a raster.
class LabelMap {
 public:
  explicit LabelMap(const Raster& raster)
      : m_raster(raster),
        m_width(raster.width()),
        m_labels(static_cast<std::size_t>(raster.width()) *
                 static_cast<std::size_t>(raster.height())) {
    for (int y = 0; y < raster.height(); ++y) {
      for (int x = 0; x < raster.width(); ++x) {
        if (raster.at(x, y).part != 0 && at(x, y) == kBackground) fill({x, y});
      }
    }
  }

  [[nodiscard]] Label at(int x, int y) const {
    const bool inside = x >= 0 && y >= 0 && x < m_width && y < m_raster.height();
    return inside ? m_labels[indexOf(x, y)] : kBackground;
  }
  /// A sample of each region, the first one for label 1.
  [[nodiscard]] const std::vector<Corner>& seeds() const { return m_seeds; }
  [[nodiscard]] bool isJunction(const Corner& corner) const {
    const std::array<Label, 4> around{at(corner.x - 1, corner.y - 1), at(corner.x, corner.y - 1),
                                      at(corner.x, corner.y), at(corner.x - 1, corner.y)};
    // Round a corner on one border the label changes twice; more often means three or more regions,
    // or two that touch only here.
    int changes = 0;
    for (std::size_t i = 0; i < 4; ++i) changes += around[i] != around[(i + 1) % 4] ? 1 : 0;
    return changes > 2;
  }

 private:
  [[nodiscard]] std::size_t indexOf(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
           static_cast<std::size_t>(x);
  }

  void fill(const Corner& seed) {
    m_seeds.push_back(seed);
    const auto label = static_cast<Label>(m_seeds.size());
    const Raster::Sample& wanted = m_raster.at(seed.x, seed.y);
    m_stack.assign(1, seed);
    m_labels[indexOf(seed.x, seed.y)] = label;
    while (!m_stack.empty()) {
      const Corner at = m_stack.back();
      m_stack.pop_back();
      for (const Corner& step : kSteps) {
        const int x = at.x + step.x;
        const int y = at.y + step.y;
        if (x < 0 || y < 0 || x >= m_width || y >= m_raster.height()) continue;
        const Raster::Sample& sample = m_raster.at(x, y);
        if (m_labels[indexOf(x, y)] != kBackground || sample.part != wanted.part ||
            sample.color != wanted.color) {
          continue;
        }
        m_labels[indexOf(x, y)] = label;
        m_stack.push_back({x, y});
      }
    }
  }

  const Raster& m_raster;
  int m_width;
  std::vector<Label> m_labels;
  std::vector<Corner> m_seeds;
  std::vector<Corner> m_stack;
};

double distanceToLine(const Corner& point, const Corner& from, const Corner& to) {
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const double length = std::hypot(dx, dy);
  if (length == 0.0) return std::hypot(point.x - from.x, point.y - from.y);
  return std::fabs(dx * (point.y - from.y) - dy * (point.x - from.x)) / length;
}

/// Keeps the ends and what lies further than the tolerance from the line between points kept.
void straighten(const std::vector<Corner>& line, double tolerance,
                std::vector<OutlinePoint>& result) {
  std::vector<bool> keeps(line.size());
  std::vector<std::pair<std::size_t, std::size_t>> spans{{0, line.size() - 1}};
  keeps.front() = keeps.back() = true;
  while (!spans.empty()) {
    const auto [first, last] = spans.back();
    spans.pop_back();
    // Position 0 is kept already, so that 0 can mean that all lie within the tolerance.
    double most = tolerance;
    std::size_t farthest = 0;
    for (std::size_t i = first + 1; i < last; ++i) {
      const double distance = distanceToLine(line[i], line[first], line[last]);
      if (distance > most) {
        most = distance;
        farthest = i;
      }
    }
    if (farthest == 0) continue;
    keeps[farthest] = true;
    spans.emplace_back(first, farthest);
    spans.emplace_back(farthest, last);
  }
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (keeps[i]) result.push_back({double(line[i].x), double(line[i].y)});
  }
}

/// Walks the borders of all regions.
class Tracer {
 public:
  Tracer(const Raster& raster, double outlineGap, double tolerance)
      : m_raster(raster),
        m_map(raster),
        m_gap(outlineGap),
        m_tolerance(tolerance),
        m_done(static_cast<std::size_t>(raster.width() + 1) *
               static_cast<std::size_t>(raster.height() + 1)) {}

  TracedPicture trace() {
    for (const Corner& seed : m_map.seeds()) {
      m_picture.regions.push_back({m_raster.at(seed.x, seed.y).color, {}});
    }
    for (int y = 0; y < m_raster.height(); ++y) {
      for (int x = 0; x < m_raster.width(); ++x) {
        // Every loop has a step to the east or, for a hole, to the west.
        if (m_map.at(x, y) == kBackground) continue;
        if (m_map.at(x, y - 1) != m_map.at(x, y)) traceLoop({x, y}, kEast);
        if (m_map.at(x, y + 1) != m_map.at(x, y)) traceLoop({x + 1, y + 1}, kWest);
      }
    }
    return std::move(m_picture);
  }

 private:
  /// The samples right and left of a step.
  struct Sides {
    Corner own;
    Corner other;
  };

  static Sides sidesOf(const Corner& at, int direction) {
    switch (direction) {
      case kEast:
        return {{at.x, at.y}, {at.x, at.y - 1}};
      case kSouth:
        return {{at.x - 1, at.y}, {at.x, at.y}};
      case kWest:
        return {{at.x - 1, at.y - 1}, {at.x - 1, at.y}};
      default:
        return {{at.x, at.y - 1}, {at.x - 1, at.y - 1}};
    }
  }

  [[nodiscard]] bool isBorder(const Corner& at, int direction, Label label) const {
    const Sides sides = sidesOf(at, direction);
    return m_map.at(sides.own.x, sides.own.y) == label &&
           m_map.at(sides.other.x, sides.other.y) != label;
  }

  std::uint8_t& doneAt(const Corner& at) {
    return m_done[static_cast<std::size_t>(at.y) * static_cast<std::size_t>(m_raster.width() + 1) +
                  static_cast<std::size_t>(at.x)];
  }

  void traceLoop(const Corner& start, int direction) {
    if ((doneAt(start) & (1u << direction)) != 0) return;
    const Sides sides = sidesOf(start, direction);
    const Label label = m_map.at(sides.own.x, sides.own.y);
    std::vector<Corner> loop;
    std::vector<int> directions;
    Corner at = start;
    do {
      doneAt(at) |= static_cast<std::uint8_t>(1u << direction);
      loop.push_back(at);
      directions.push_back(direction);
      at = {at.x + kSteps[static_cast<std::size_t>(direction)].x,
            at.y + kSteps[static_cast<std::size_t>(direction)].y};
      // Right first: samples that touch at a corner alone are not connected.
      for (const int turn : {1, 0, 3}) {
        const int next = (direction + turn) % 4;
        if (!isBorder(at, next, label)) continue;
        direction = next;
        break;
      }
    } while ((doneAt(at) & (1u << direction)) == 0);
    addLoop(label, loop, directions);
  }

  // Cuts the loop where it may not be straightened, and straightens the pieces.
  void addLoop(Label label, const std::vector<Corner>& loop, const std::vector<int>& directions) {
    const std::vector<std::size_t> cuts = cutsOf(loop);
    std::vector<OutlinePoint> result;
    for (std::size_t i = 0; i < cuts.size(); ++i) {
      const std::size_t first = cuts[i];
      const std::size_t count =
          i + 1 < cuts.size() ? cuts[i + 1] - first : loop.size() - first + cuts[0];
      std::vector<Corner> piece;
      std::size_t outlineSteps = 0;
      for (std::size_t k = 0; k < count; ++k) {
        const std::size_t at = (first + k) % loop.size();
        piece.push_back(loop[at]);
        if (isOutline(loop[at], directions[at])) ++outlineSteps;
      }
      // A piece ends where the next one begins; the shared point is added by the next one.
      piece.push_back(loop[(first + count) % loop.size()]);
      std::vector<OutlinePoint> straight;
      straighten(piece, m_tolerance, straight);
      result.insert(result.end(), straight.begin(), straight.end() - 1);
      const Sides sides = sidesOf(loop[first], directions[first]);
      // Both regions walk the piece; the one with the lower label adds it.
      const Label other = m_map.at(sides.other.x, sides.other.y);
      const bool isMine = other == kBackground || label < other;
      if (isMine && 2 * outlineSteps > count) m_picture.outlines.push_back(std::move(straight));
    }
    m_picture.regions[label - 1].loops.push_back(std::move(result));
  }

  // Junctions; without two of them the first corner in reading order and the one farthest from it.
  [[nodiscard]] std::vector<std::size_t> cutsOf(const std::vector<Corner>& loop) const {
    std::vector<std::size_t> cuts;
    for (std::size_t i = 0; i < loop.size(); ++i) {
      if (m_map.isJunction(loop[i])) cuts.push_back(i);
    }
    if (cuts.size() >= 2) return cuts;
    const std::size_t first =
        cuts.empty() ? static_cast<std::size_t>(std::ranges::min_element(loop) - loop.begin())
                     : cuts.front();
    std::size_t farthest = first;
    double most = 0.0;
    for (std::size_t i = 0; i < loop.size(); ++i) {
      const double distance = std::hypot(loop[i].x - loop[first].x, loop[i].y - loop[first].y);
      const bool isBetter =
          distance > most || (distance == most && most > 0.0 && loop[i] < loop[farthest]);
      if (!isBetter) continue;
      most = distance;
      farthest = i;
    }
    return {std::min(first, farthest), std::max(first, farthest)};
  }

  [[nodiscard]] bool isOutline(const Corner& at, int direction) const {
    const Sides sides = sidesOf(at, direction);
    const auto [x, y] = sides.other;
    const bool inside = x >= 0 && y >= 0 && x < m_raster.width() && y < m_raster.height();
    const Raster::Sample& own = m_raster.at(sides.own.x, sides.own.y);
    return Raster::isOutline(own, inside ? m_raster.at(x, y) : Raster::Sample(), m_gap);
  }

  const Raster& m_raster;
  LabelMap m_map;
  double m_gap;
  double m_tolerance;
  std::vector<std::uint8_t> m_done;  // directions walked, by corner
  TracedPicture m_picture;
};

}  // namespace

TracedPicture traceRegions(const Raster& raster, double outlineGap, double tolerance) {
  return Tracer(raster, outlineGap, tolerance).trace();
}

}  // namespace rendering
