// Recognition of round holes, slots and pockets.
//
// Round holes. A hole is what tools that turn about one axis have left: cylinders and cones that
// look at the axis, with floors and shoulders across it. From each inward cylinder the search walks
// over edges to inward faces of revolution about the same line, and over concave edges to planes
// across it. What comes together is one hole if its walls go round (they are probed at points about
// the axis, so that a hole which another one crosses still counts), and if one end at least is
// open: an end is closed when a face of the group covers the axis there, and open when its rim is
// convex. A groove around a boss has neither, a fillet in a corner does not go round.
//
// Slots are two half cylinders with a pair of planes that run smoothly from one to the other.
// Pockets are planes with a closed border of concave edges to walls that stand on them.
//
// Each face is visited once for each kind; the cost is that of the faces' descriptions, and of a
// dozen distances for each cylinder.
#include "host/inspect/hole_recognition.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <limits>
#include <map>
#include <numbers>
#include <set>

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;

constexpr const char* kKindNames[] = {"hole",         "counterbore", "countersink",
                                      "stepped hole", "slot",        "pocket"};
/// Sine between directions that count as one: a hundredth of a degree, as accurate as foreign
/// files.
constexpr double kParallelSine = 1.8e-4;

/// A line in space.
struct AxisLine {
  OdGePoint3d point;
  OdGeVector3d direction;

  [[nodiscard]] double distanceTo(const OdGePoint3d& p) const {
    return (p - point).crossProduct(direction).length();
  }
  [[nodiscard]] double stationOf(const OdGePoint3d& p) const {
    return (p - point).dotProduct(direction);
  }
  [[nodiscard]] OdGePoint3d at(double station) const { return point + direction * station; }
};

bool isParallel(const OdGeVector3d& a, const OdGeVector3d& b) {
  return !a.isZeroLength() && a.crossProduct(b).length() <= kParallelSine;
}

/// The least and greatest place along a line.
struct Span {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void add(double station) {
    low = std::min(low, station);
    high = std::max(high, station);
  }
  [[nodiscard]] double length() const { return high - low; }
};

/// What the kinds share: the body, and which faces are taken.
class Recognition {
 public:
  explicit Recognition(BodyFacts& facts)
      : m_facts(facts),
        m_taken(facts.body().numFaces() + 1, false),
        m_tolerance(std::max(10.0 * facts.lengthTolerance(), 1e-6 * facts.diagonal())) {}

  [[nodiscard]] OdUInt32 faceCount() const { return m_facts.body().numFaces(); }
  const SubentFacts& face(OdUInt32 index) { return m_facts.of({Type::kFace, index}); }
  [[nodiscard]] double tolerance() const { return m_tolerance; }
  [[nodiscard]] bool isTaken(OdUInt32 face) const { return m_taken[face]; }

  void take(HoleFacts& hole) {
    // What is 0 within the body's accuracy is 0.
    for (unsigned i = 0; i < 3; ++i) {
      if (std::abs(hole.mouth[i]) < m_facts.lengthTolerance()) hole.mouth[i] = 0.0;
    }
    std::ranges::sort(hole.faces);
    for (const OdUInt32 face : hole.faces) m_taken[face] = true;
    m_found.push_back(std::move(hole));
  }
  std::vector<HoleFacts> takeFound() { return std::move(m_found); }

  [[nodiscard]] std::span<const OdUInt32> edgesOf(OdUInt32 face) const {
    return m_facts.body().edgesOfFace(face);
  }
  [[nodiscard]] OdUInt32 across(OdUInt32 edge, OdUInt32 face) const {
    for (const OdUInt32 other : m_facts.body().facesOfEdge(edge)) {
      if (other != face) return other;
    }
    return 0;
  }
  EdgeTurn turnOf(OdUInt32 edge) { return m_facts.turnOf(edge); }
  const OdModelerEdge& edge(OdUInt32 index) { return m_facts.body().edge(index); }
  [[nodiscard]] double distanceTo(OdUInt32 face, const OdGePoint3d& point) const {
    return m_facts.body().distanceTo({Type::kFace, face}, point);
  }

  /// Ends and middles of the edges of a face along a line: exact for circles about it and for
  /// lines.
  Span spanOf(OdUInt32 face, const AxisLine& axis) {
    Span span;
    for (const OdUInt32 index : edgesOf(face)) addTo(span, edge(index), axis);
    return span;
  }
  void addTo(Span& span, const OdModelerEdge& edge, const AxisLine& axis) {
    for (const OdUInt32 vertex : {edge.startVertex, edge.endVertex}) {
      if (vertex != 0) span.add(axis.stationOf(m_facts.body().vertex(vertex).point));
    }
    if (!edge.degenerate) span.add(axis.stationOf(edge.midPoint));
  }

 private:
  BodyFacts& m_facts;
  std::vector<bool> m_taken;
  double m_tolerance;
  std::vector<HoleFacts> m_found;
};

// Round holes.

/// A wall or floor of a round hole.
struct RoundPart {
  OdUInt32 face = 0;
  SubentForm form = SubentForm::kFreeform;
  double radius = 0.0;     ///< of a cylinder
  double halfAngle = 0.0;  ///< of a cone
  double apex = 0.0;       ///< of a cone: place on the axis
  Span span;
};

bool isRoundAbout(Recognition& known, const SubentFacts& face, const AxisLine& axis) {
  if (!face.inward) return false;
  if (face.form == SubentForm::kSphere) return axis.distanceTo(face.origin) <= known.tolerance();
  const bool revolves = face.form == SubentForm::kCylinder || face.form == SubentForm::kCone ||
                        face.form == SubentForm::kTorus;
  return revolves && isParallel(face.direction, axis.direction) &&
         axis.distanceTo(face.origin) <= known.tolerance();
}

bool isAcross(const SubentFacts& face, const AxisLine& axis) {
  return face.form == SubentForm::kPlane && isParallel(face.direction, axis.direction);
}

/// A plane across the axis that ends a wall about it: a floor, or the shoulder between a wide
/// wall and a narrow one. The plane in which a hole begins has no such wall.
bool isFloor(Recognition& known, OdUInt32 index, const AxisLine& axis) {
  if (!isAcross(known.face(index), axis)) return false;
  return std::ranges::any_of(known.edgesOf(index), [&](OdUInt32 edge) {
    const OdUInt32 wall = known.across(edge, index);
    return wall != 0 && isRoundAbout(known, known.face(wall), axis) &&
           known.turnOf(edge) == EdgeTurn::kConcave;
  });
}

/// The faces about one axis that hang together, from one wall on.
std::vector<RoundPart> gatherRound(Recognition& known, OdUInt32 first, const AxisLine& axis) {
  std::vector<RoundPart> parts;
  std::set<OdUInt32> seen{first};
  std::deque<OdUInt32> open{first};
  while (!open.empty()) {
    const OdUInt32 index = open.front();
    open.pop_front();
    const SubentFacts& face = known.face(index);
    parts.push_back({index, face.form, face.form == SubentForm::kCylinder ? face.radius : 0.0,
                     face.halfAngle, axis.stationOf(face.origin), known.spanOf(index, axis)});
    for (const OdUInt32 edge : known.edgesOf(index)) {
      const OdUInt32 next = known.across(edge, index);
      if (next == 0 || known.isTaken(next) || seen.contains(next)) continue;
      const bool joins = isRoundAbout(known, known.face(next), axis) || isFloor(known, next, axis);
      if (!joins) continue;
      seen.insert(next);
      open.push_back(next);
    }
  }
  return parts;
}

/// The part of directions about the axis in which a cylinder has a wall, at its best height.
double coverage(const Recognition& known, const std::vector<RoundPart>& parts, const AxisLine& axis,
                const RoundPart& wall) {
  constexpr int kDirections = 12;
  const OdGeVector3d u = axis.direction.perpVector().normal();
  const OdGeVector3d v = axis.direction.crossProduct(u);
  double best = 0.0;
  for (const double share : {0.5, 0.25, 0.75}) {
    const OdGePoint3d centre = axis.at(wall.span.low + share * wall.span.length());
    int hits = 0;
    for (int i = 0; i < kDirections; ++i) {
      // Off the round angles, where seams and crossing holes are frequent.
      const double angle = 2.0 * std::numbers::pi * (i + 0.37) / kDirections;
      const OdGePoint3d p = centre + (u * std::cos(angle) + v * std::sin(angle)) * wall.radius;
      hits +=
          std::ranges::any_of(parts,
                              [&](const RoundPart& part) {
                                return part.form == SubentForm::kCylinder &&
                                       std::abs(part.radius - wall.radius) <= known.tolerance() &&
                                       known.distanceTo(part.face, p) <= known.tolerance();
                              })
              ? 1
              : 0;
    }
    best = std::max(best, static_cast<double>(hits) / kDirections);
    if (best == 1.0) break;
  }
  return best;
}

/// A wall goes round when at most a quarter of it is missing.
constexpr double kWholeCoverage = 0.75;

enum class HoleEnd { kOpen, kClosed, kNeither };

/// Whether a floor, a drill's point or a round bottom covers the axis beyond a place.
bool coversAxis(Recognition& known, const RoundPart& part, const AxisLine& axis) {
  if (part.form == SubentForm::kPlane || part.form == SubentForm::kCone) {
    return known.distanceTo(part.face, axis.at(part.apex)) <= known.tolerance();
  }
  if (part.form != SubentForm::kSphere) return false;
  const SubentFacts& sphere = known.face(part.face);
  return std::ranges::any_of(std::array{-1.0, 1.0}, [&](double side) {
    return known.distanceTo(part.face, sphere.origin + axis.direction * (side * sphere.radius)) <=
           known.tolerance();
  });
}

HoleEnd endOf(Recognition& known, const std::vector<RoundPart>& parts, const AxisLine& axis,
              const Span& walls, bool isHigh) {
  const double middle = 0.5 * (walls.low + walls.high);
  bool hasConvexRim = false;
  for (const RoundPart& part : parts) {
    const bool isOnThisSide = (0.5 * (part.span.low + part.span.high) > middle) == isHigh;
    if (coversAxis(known, part, axis)) {
      const double place =
          part.form == SubentForm::kSphere ? 0.5 * (part.span.low + part.span.high) : part.apex;
      if ((place > middle) == isHigh) return HoleEnd::kClosed;
      continue;
    }
    if (part.form == SubentForm::kPlane ||
        !(isOnThisSide || part.span.length() > 0.5 * walls.length()))
      continue;
    for (const OdUInt32 edge : known.edgesOf(part.face)) {
      Span place;
      known.addTo(place, known.edge(edge), axis);
      const bool isHere = (0.5 * (place.low + place.high) > middle) == isHigh;
      const OdUInt32 next = known.across(edge, part.face);
      const bool isInside =
          std::ranges::any_of(parts, [next](const RoundPart& p) { return p.face == next; });
      if (isHere && next != 0 && !isInside && known.turnOf(edge) == EdgeTurn::kConvex)
        hasConvexRim = true;
    }
  }
  return hasConvexRim ? HoleEnd::kOpen : HoleEnd::kNeither;
}

double radiusAt(const RoundPart& cone, double station) {
  return std::abs(station - cone.apex) * std::tan(cone.halfAngle);
}

/// Cylinders and cones in their order from the mouth; halves of one wall are put together.
std::vector<HoleStep> stepsOf(const std::vector<RoundPart>& parts, double mouth, double sign,
                              double tolerance) {
  std::vector<HoleStep> steps;
  for (const RoundPart& part : parts) {
    if (part.form != SubentForm::kCylinder && part.form != SubentForm::kCone) continue;
    const double begin = sign > 0.0 ? part.span.low : part.span.high;
    const double end = sign > 0.0 ? part.span.high : part.span.low;
    HoleStep step{2.0 * part.radius, 2.0 * part.radius, sign * (begin - mouth),
                  sign * (end - mouth)};
    if (part.form == SubentForm::kCone) {
      step.diameter = 2.0 * radiusAt(part, begin);
      step.endDiameter = 2.0 * radiusAt(part, end);
    }
    const auto same = std::ranges::find_if(steps, [&](const HoleStep& other) {
      return std::abs(other.diameter - step.diameter) <= tolerance &&
             std::abs(other.endDiameter - step.endDiameter) <= tolerance &&
             step.from <= other.to + tolerance && other.from <= step.to + tolerance;
    });
    if (same == steps.end()) {
      steps.push_back(step);
    } else {
      same->from = std::min(same->from, step.from);
      same->to = std::max(same->to, step.to);
    }
  }
  std::ranges::sort(steps, {}, &HoleStep::from);
  return steps;
}

double coneAngleOf(const HoleStep& step) {
  return 2.0 * std::atan2(0.5 * std::abs(step.endDiameter - step.diameter), step.to - step.from);
}

bool isCone(const HoleStep& step, double tolerance) {
  return std::abs(step.diameter - step.endDiameter) > tolerance;
}

/// Reads the steps as what a drawing calls them.
void classifyRound(HoleFacts& hole, double tolerance) {
  std::vector<HoleStep> walls = hole.steps;
  const bool hasPoint = !hole.through && walls.size() > 1 && isCone(walls.back(), tolerance) &&
                        walls.back().endDiameter <= tolerance;
  if (hasPoint) {
    hole.coneAngle = coneAngleOf(walls.back());
    walls.pop_back();
  }
  hole.depth = walls.back().to;
  const bool isSunk =
      isCone(walls.front(), tolerance) && walls.front().diameter > walls.front().endDiameter;
  const bool isTwo = walls.size() == 2 && !isCone(walls[1], tolerance);
  if (walls.size() == 1) {
    hole.kind = isCone(walls.front(), tolerance) ? HoleKind::kStepped : HoleKind::kPlain;
  } else if (isTwo && isSunk) {
    hole.kind = HoleKind::kCountersink;
    hole.coneAngle = coneAngleOf(walls.front());
  } else if (isTwo && !isCone(walls.front(), tolerance) &&
             walls.front().diameter > walls[1].diameter) {
    hole.kind = HoleKind::kCounterbore;
  } else {
    hole.kind = HoleKind::kStepped;
  }
  if (hole.kind == HoleKind::kCountersink || hole.kind == HoleKind::kCounterbore) {
    hole.outerDiameter = walls.front().diameter;
    hole.outerDepth = walls.front().to;
  }
}

/// The hole that the parts make; nothing when they make none.
bool makeRound(Recognition& known, const std::vector<RoundPart>& parts, const AxisLine& axis,
               HoleFacts& hole) {
  Span walls;
  const RoundPart* narrowest = nullptr;
  for (const RoundPart& part : parts) {
    if (part.form == SubentForm::kPlane) continue;
    walls.add(part.span.low);
    walls.add(part.span.high);
    if (part.form != SubentForm::kCylinder) continue;
    if (narrowest == nullptr || part.radius < narrowest->radius) narrowest = &part;
  }
  if (narrowest == nullptr || walls.length() <= known.tolerance()) return false;
  if (coverage(known, parts, axis, *narrowest) < kWholeCoverage) return false;
  const HoleEnd low = endOf(known, parts, axis, walls, /*isHigh=*/false);
  const HoleEnd high = endOf(known, parts, axis, walls, /*isHigh=*/true);
  if (low != HoleEnd::kOpen && high != HoleEnd::kOpen) return false;
  if (low == HoleEnd::kNeither || high == HoleEnd::kNeither) return false;
  hole.through = low == high;
  hole.diameter = 2.0 * narrowest->radius;
  hole.wall = narrowest->face;
  bool fromLow = low == HoleEnd::kOpen;
  if (hole.through) {
    // From the wider end; of two alike from the one that looks along the greater coordinate.
    const std::vector<HoleStep> up = stepsOf(parts, walls.low, 1.0, known.tolerance());
    const double difference = up.front().diameter - up.back().endDiameter;
    const OdGeVector3d& d = axis.direction;
    const double leading = std::abs(d.z) > 1e-9 ? d.z : std::abs(d.y) > 1e-9 ? d.y : d.x;
    fromLow = std::abs(difference) > known.tolerance() ? difference > 0.0 : leading < 0.0;
  }
  const double mouth = fromLow ? walls.low : walls.high;
  const double sign = fromLow ? 1.0 : -1.0;
  hole.mouth = axis.at(mouth);
  hole.axis = axis.direction * sign;
  hole.steps = stepsOf(parts, mouth, sign, known.tolerance());
  for (const RoundPart& part : parts) hole.faces.push_back(part.face);
  classifyRound(hole, known.tolerance());
  return true;
}

void findRoundHoles(Recognition& known) {
  for (OdUInt32 i = 1; i <= known.faceCount(); ++i) {
    const SubentFacts& face = known.face(i);
    if (known.isTaken(i) || face.form != SubentForm::kCylinder || !face.inward) continue;
    const AxisLine axis{face.origin, face.direction};
    HoleFacts hole;
    if (makeRound(known, gatherRound(known, i, axis), axis, hole)) known.take(hole);
  }
}

// Slots.

/// Faces that go on smoothly from a face over straight edges along a direction.
std::vector<OdUInt32> smoothNeighbours(Recognition& known, OdUInt32 face, const OdGeVector3d& along,
                                       SubentForm form) {
  std::vector<OdUInt32> found;
  for (const OdUInt32 edge : known.edgesOf(face)) {
    const OdUInt32 next = known.across(edge, face);
    if (next == 0 || known.isTaken(next) || known.face(next).form != form) continue;
    const OdModelerEdge& its = known.edge(edge);
    if (its.kind != OdModelerCurveKind::kLine || !isParallel(its.direction, along)) continue;
    if (known.turnOf(edge) == EdgeTurn::kSmooth) found.push_back(next);
  }
  std::ranges::sort(found);
  return found;
}

/// The planes across the axis that close the opening: concave neighbours of its walls.
std::vector<OdUInt32> floorsOf(Recognition& known, const std::vector<OdUInt32>& walls,
                               const AxisLine& axis) {
  std::set<OdUInt32> floors;
  for (const OdUInt32 wall : walls) {
    for (const OdUInt32 edge : known.edgesOf(wall)) {
      const OdUInt32 next = known.across(edge, wall);
      if (next != 0 && isAcross(known.face(next), axis) &&
          known.turnOf(edge) == EdgeTurn::kConcave) {
        floors.insert(next);
      }
    }
  }
  return {floors.begin(), floors.end()};
}

bool makeSlot(Recognition& known, OdUInt32 first, OdUInt32 second,
              const std::vector<OdUInt32>& sides, HoleFacts& hole) {
  const SubentFacts& one = known.face(first);
  const SubentFacts& other = known.face(second);
  AxisLine axis{one.origin, one.direction};
  hole.faces = {first, second, sides[0], sides[1]};
  const std::vector<OdUInt32> floors = floorsOf(known, hole.faces, axis);
  if (floors.size() > 1) return false;
  if (!floors.empty()) {
    axis.direction = -known.face(floors.front()).direction;
    hole.faces.push_back(floors.front());
  } else if (axis.direction.z + axis.direction.y + axis.direction.x > 0.0) {
    axis.direction.negate();
  }
  const Span span = known.spanOf(first, axis);
  const OdGeVector3d between = other.origin - one.origin;
  const OdGeVector3d apart = between - axis.direction * between.dotProduct(axis.direction);
  if (apart.length() <= known.tolerance()) return false;
  hole.kind = HoleKind::kSlot;
  hole.axis = axis.direction;
  hole.mouth = axis.at(span.low) + apart * 0.5;
  hole.depth = span.length();
  hole.through = floors.empty();
  hole.diameter = hole.width = 2.0 * one.radius;
  hole.length = apart.length() + 2.0 * one.radius;
  hole.lengthwise = apart.normal();
  hole.wall = first;
  return true;
}

void findSlots(Recognition& known) {
  for (OdUInt32 i = 1; i <= known.faceCount(); ++i) {
    const SubentFacts& face = known.face(i);
    if (known.isTaken(i) || face.form != SubentForm::kCylinder || !face.inward) continue;
    const std::vector<OdUInt32> sides =
        smoothNeighbours(known, i, face.direction, SubentForm::kPlane);
    if (sides.size() != 2 || sides[0] == sides[1]) continue;
    const std::vector<OdUInt32> a =
        smoothNeighbours(known, sides[0], face.direction, SubentForm::kCylinder);
    const std::vector<OdUInt32> b =
        smoothNeighbours(known, sides[1], face.direction, SubentForm::kCylinder);
    if (a.size() != 2 || a != b) continue;
    const OdUInt32 other = a[0] == i ? a[1] : a[0];
    const SubentFacts& its = known.face(other);
    HoleFacts hole;
    if (other != i && its.inward && std::abs(its.radius - face.radius) <= known.tolerance() &&
        makeSlot(known, i, other, sides, hole)) {
      known.take(hole);
    }
  }
}

// Pockets.

/// The border of a pocket's floor.
struct FloorBorder {
  std::vector<OdUInt32> walls;
  OdGeVector3d lengthwise;  ///< of its longest straight edge
  double longest = 0.0;
  double cornerRadius = 0.0;
};

/// False when an edge is neither concave to a wall nor the rim of an opening in the floor.
bool readBorder(Recognition& known, OdUInt32 floor, const AxisLine& axis, FloorBorder& border) {
  for (const OdUInt32 index : known.edgesOf(floor)) {
    const OdModelerEdge& edge = known.edge(index);
    const OdUInt32 wall = known.across(index, floor);
    if (wall == 0) return false;
    if (known.turnOf(index) != EdgeTurn::kConcave) continue;
    const SubentFacts& its = known.face(wall);
    const bool stands =
        its.form == SubentForm::kPlane
            ? its.direction.dotProduct(axis.direction) <= kParallelSine &&
                  its.direction.dotProduct(axis.direction) >= -kParallelSine
            : its.form == SubentForm::kCylinder && isParallel(its.direction, axis.direction);
    if (!stands) return false;
    // The wall of a boss on the floor is no border of the pocket.
    if (its.form == SubentForm::kCylinder && !its.inward) continue;
    border.walls.push_back(wall);
    if (edge.kind == OdModelerCurveKind::kLine && edge.length > border.longest) {
      border.longest = edge.length;
      border.lengthwise = edge.direction;
    }
    if (its.form == SubentForm::kCylinder) {
      border.cornerRadius =
          border.cornerRadius == 0.0 ? its.radius : std::min(border.cornerRadius, its.radius);
    }
  }
  std::ranges::sort(border.walls);
  const auto rest = std::ranges::unique(border.walls);
  border.walls.erase(rest.begin(), rest.end());
  return border.walls.size() > 1 && border.longest > 0.0;
}

/// Follows the concave edges: they close when each of their ends belongs to two of them.
bool isClosedBorder(Recognition& known, OdUInt32 floor, const std::vector<OdUInt32>& walls) {
  std::map<OdUInt32, int> ends;
  for (const OdUInt32 index : known.edgesOf(floor)) {
    if (!std::ranges::binary_search(walls, known.across(index, floor))) continue;
    ++ends[known.edge(index).startVertex];
    ++ends[known.edge(index).endVertex];
  }
  return std::ranges::all_of(ends, [](const auto& end) { return end.second == 2; });
}

bool makePocket(Recognition& known, OdUInt32 floor, HoleFacts& hole) {
  const SubentFacts& its = known.face(floor);
  const AxisLine axis{its.origin, -its.direction};
  FloorBorder border;
  if (!readBorder(known, floor, axis, border)) return false;
  if (!isClosedBorder(known, floor, border.walls)) return false;
  // A border around the floor, not one around an island on it.
  Span lengthwise;
  Span crosswise;
  const OdGeVector3d along = border.lengthwise;
  const AxisLine l{its.origin, along};
  const AxisLine w{its.origin, axis.direction.crossProduct(along)};
  Span whole;
  for (const OdUInt32 index : known.edgesOf(floor)) {
    known.addTo(whole, known.edge(index), l);
    if (!std::ranges::binary_search(border.walls, known.across(index, floor))) continue;
    known.addTo(lengthwise, known.edge(index), l);
    known.addTo(crosswise, known.edge(index), w);
  }
  if (lengthwise.length() < whole.length() - known.tolerance()) return false;
  double depth = std::numeric_limits<double>::infinity();
  for (const OdUInt32 wall : border.walls) {
    if (known.isTaken(wall)) return false;
    depth = std::min(depth, known.spanOf(wall, axis).length());
  }
  hole.kind = HoleKind::kPocket;
  hole.axis = axis.direction;
  hole.depth = depth;
  hole.length = lengthwise.length();
  hole.width = crosswise.length();
  hole.lengthwise = along;
  if (hole.width > hole.length) {
    std::swap(hole.width, hole.length);
    hole.lengthwise = w.direction;
  }
  hole.cornerRadius = border.cornerRadius;
  hole.mouth = its.origin + l.direction * (0.5 * (lengthwise.low + lengthwise.high)) +
               w.direction * (0.5 * (crosswise.low + crosswise.high)) - axis.direction * depth;
  hole.faces = border.walls;
  hole.faces.push_back(floor);
  hole.wall = floor;
  return true;
}

void findPockets(Recognition& known) {
  for (OdUInt32 i = 1; i <= known.faceCount(); ++i) {
    if (known.isTaken(i) || known.face(i).form != SubentForm::kPlane) continue;
    HoleFacts hole;
    if (makePocket(known, i, hole)) known.take(hole);
  }
}

}  // namespace

const char* holeKindName(HoleKind kind) { return kKindNames[static_cast<std::size_t>(kind)]; }

std::vector<HoleFacts> recognizeHoles(BodyFacts& facts) {
  Recognition known(facts);
  findRoundHoles(known);
  findSlots(known);
  findPockets(known);
  return known.takeFound();
}

}  // namespace vdm_host
