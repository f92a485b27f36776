// A part with components, known from its dimensions: which surface is whose, and where.
#include "bench/naming/component_part.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

#include "platform/modeler/modeler.h"

namespace naming_bench {
namespace {

constexpr double kAbove = 1.0;     // how far a cutting tool reaches out of the material
constexpr double kThrough = 5.0;   // how far one without a depth reaches below it
constexpr double kClose = 1e-6;    // what the construction makes equal
constexpr double kBeside = 1e-3;   // a point beside a surface
constexpr double kSpacing = 5.0;   // of samples on level areas
constexpr double kWallStep = 1.5;  // of samples on walls

struct Local {
  double x;
  double y;
};

Local toLocal(const OpeningPlan& opening, double px, double py) {
  const double dx = px - opening.x;
  const double dy = py - opening.y;
  const double c = std::cos(opening.angle);
  const double s = std::sin(opening.angle);
  return {c * dx + s * dy, -s * dx + c * dy};
}

OdGePoint3d toPart(const OpeningPlan& opening, double lx, double ly, double z) {
  const double c = std::cos(opening.angle);
  const double s = std::sin(opening.angle);
  return {opening.x + c * lx - s * ly, opening.y + s * lx + c * ly, z};
}

OdModelerBodyPtr require(const OdStatus& status, const OdModelerBodyPtr& body) {
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
  return body;
}

OdModelerBodyPtr boxAt(double dx, double dy, double dz, const OdGeVector3d& at) {
  OdModelerBodyPtr body;
  const OdStatus status = odModeler().box(dx, dy, dz, body);
  return moved(require(status, body), OdGeMatrix3d::translation(at));
}

/// The strips of a cut or fill along its outline; a closed outline runs counter-clockwise.
class Walls {
 public:
  Walls(const OpeningPlan& opening, double low, double high)
      : m_opening(opening), m_low(low), m_high(high), m_side(opening.fills() ? 1.0 : -1.0) {}

  // The material of a cut is to the right of its outline.
  void line(double ax, double ay, double bx, double by) {
    Patch patch = next();
    patch.from = toPart(m_opening, ax, ay, m_low);
    patch.to = toPart(m_opening, bx, by, m_low);
    const OdGeVector3d along = (patch.to - patch.from).normal();
    patch.axis = OdGeVector3d(along.y, -along.x, 0.0) * m_side;
    patch.origin = patch.from;
    patches.push_back(patch);
  }

  void arc(double cx, double cy, double radius, double start, double sweep) {
    Patch patch = next();
    patch.kind = OdModelerSurfaceKind::kCylinder;
    patch.origin = toPart(m_opening, cx, cy, m_low);
    patch.axis = OdGeVector3d::kZAxis;
    patch.radius = radius;
    patch.inward = -m_side;
    patch.from =
        toPart(m_opening, cx + radius * std::cos(start), cy + radius * std::sin(start), m_low);
    patch.sweep = sweep;
    patches.push_back(patch);
  }

  std::vector<Patch> patches;

 private:
  Patch next() {
    Patch patch;
    patch.source = {m_opening.number, static_cast<int>(patches.size()) + 1};
    patch.low = m_low;
    patch.high = m_high;
    return patch;
  }

  const OpeningPlan& m_opening;
  double m_low;
  double m_high;
  double m_side;
};

void addWalls(const OpeningPlan& opening, Walls& walls) {
  const double a = opening.length / 2.0;
  const double b = opening.width / 2.0;
  constexpr double kPi = std::numbers::pi;
  if (opening.isRound()) {
    walls.arc(0.0, 0.0, a, 0.0, 2.0 * kPi);
  } else if (opening.kind == OpeningKind::kSlot) {
    walls.line(-a + b, -b, a - b, -b);
    walls.arc(a - b, 0.0, b, -kPi / 2.0, kPi);
    walls.line(a - b, b, -a + b, b);
    walls.arc(-a + b, 0.0, b, kPi / 2.0, kPi);
  } else {
    walls.line(-a, -b, a, -b);
    walls.line(a, -b, a, b);
    walls.line(a, b, -a, b);
    walls.line(-a, b, -a, -b);
  }
}

Patch level(Source source, double z, double side) {
  Patch patch;
  patch.source = source;
  patch.isLevel = true;
  patch.axis = OdGeVector3d::kZAxis * side;
  patch.origin = {0.0, 0.0, z};
  patch.low = patch.high = z;
  return patch;
}

std::pair<double, double> depthsOf(const PartPlan& part, const OpeningPlan& opening) {
  if (opening.fills()) return {part.height, part.height + opening.depth};
  const double low = opening.depth > 0.0 ? part.height - opening.depth : -kThrough;
  return {low, part.height + kAbove};
}

}  // namespace

bool OpeningPlan::holds(double px, double py, double margin) const {
  const Local p = toLocal(*this, px, py);
  const double a = length / 2.0 - margin;
  const double b = width / 2.0 - margin;
  if (isRound()) return std::hypot(p.x, p.y) <= a;
  if (kind == OpeningKind::kSlot) {
    const double straight = (length - width) / 2.0;
    const double beyond = std::max(0.0, std::abs(p.x) - straight);
    return std::hypot(beyond, p.y) <= b;
  }
  return std::abs(p.x) <= a && std::abs(p.y) <= b;
}

bool Patch::holds(const OdGePoint3d& point) const {
  if (point.z < low - kClose || point.z > high + kClose) return false;
  if (isLevel) {
    if (area) return area->holds(point.x, point.y, -kClose);
    return point.x >= from.x - kClose && point.x <= to.x + kClose && point.y >= from.y - kClose &&
           point.y <= to.y + kClose;
  }
  const OdGeVector3d flat(point.x - origin.x, point.y - origin.y, 0.0);
  if (kind == OdModelerSurfaceKind::kPlane) {
    const OdGeVector3d whole = to - from;
    const double along = flat.dotProduct(whole.normal());
    return std::abs(flat.dotProduct(axis)) <= kClose && along >= -kClose &&
           along <= whole.length() + kClose;
  }
  if (std::abs(flat.length() - radius) > kClose) return false;
  const OdGeVector3d start(from.x - origin.x, from.y - origin.y, 0.0);
  const double sine = start.x * flat.y - start.y * flat.x;
  double turned = std::atan2(sine, start.dotProduct(flat));
  const double slack = kClose / radius;
  if (turned < -slack) turned += 2.0 * std::numbers::pi;
  return turned <= sweep + slack || turned >= 2.0 * std::numbers::pi - slack;
}

OdGeVector3d Patch::normalAt(const OdGePoint3d& point) const {
  if (kind == OdModelerSurfaceKind::kPlane) return axis;
  return OdGeVector3d(origin.x - point.x, origin.y - point.y, 0.0).normal() * inward;
}

std::vector<OdGePoint3d> Patch::samples() const {
  std::vector<OdGePoint3d> points;
  if (isLevel) {
    const double reach = area ? std::hypot(area->length, std::max(area->width, 1.0)) / 2.0 : 0.0;
    const double x0 = area ? area->x - reach : from.x;
    const double y0 = area ? area->y - reach : from.y;
    const double x1 = area ? area->x + reach : to.x;
    const double y1 = area ? area->y + reach : to.y;
    const double step = area ? kSpacing / 2.0 : kSpacing;
    const double first = step / 2.0 + 0.07;
    for (double x = std::floor(x0 / step) * step + first; x < x1; x += step) {
      for (double y = std::floor(y0 / step) * step + first; y < y1; y += step) {
        const bool isIn = area ? area->holds(x, y, 1e-3) : x > x0 && y > y0;
        if (isIn) points.emplace_back(x, y, low);
      }
    }
    return points;
  }
  const double whole =
      kind == OdModelerSurfaceKind::kPlane ? from.distanceTo(to) : std::abs(sweep) * radius;
  const int columns = std::max(2, static_cast<int>(std::ceil(whole / kWallStep)));
  const int rows = std::max(2, static_cast<int>(std::ceil((high - low) / (2.0 * kWallStep))));
  for (int i = 0; i < columns; ++i) {
    const double t = (i + 0.53) / columns;
    OdGePoint3d at = from + (to - from) * t;
    if (kind == OdModelerSurfaceKind::kCylinder) {
      at = OdGeMatrix3d::rotation(sweep * t, OdGeVector3d::kZAxis, origin) * from;
    }
    for (int j = 0; j < rows; ++j) {
      points.emplace_back(at.x, at.y, low + (high - low) * (j + 0.47) / rows);
    }
  }
  return points;
}

const OpeningPlan& PartPlan::at(int number) const {
  const auto found = std::ranges::find(openings, number, &OpeningPlan::number);
  return openings.at(static_cast<std::size_t>(found - openings.begin()));
}

OpeningPlan& PartPlan::at(int number) {
  const auto found = std::ranges::find(openings, number, &OpeningPlan::number);
  return openings.at(static_cast<std::size_t>(found - openings.begin()));
}

bool PartPlan::isMaterial(const OdGePoint3d& p) const {
  const bool isOverPlate = p.x > 0.0 && p.x < length && p.y > 0.0 && p.y < width;
  bool filled = isOverPlate && p.z > 0.0 &&
                (p.z < height || (riserHeight > 0.0 && p.x > riserX && p.z < height + riserHeight));
  for (const OpeningPlan& one : openings) {
    if (one.suppressed || !one.fills() || !one.holds(p.x, p.y, 0.0)) continue;
    const auto [low, high] = depthsOf(*this, one);
    filled |= p.z > low && p.z < high;
  }
  if (!filled) return false;
  return std::ranges::none_of(openings, [&](const OpeningPlan& one) {
    if (one.suppressed || one.fills() || !one.holds(p.x, p.y, 0.0)) return false;
    const auto [low, high] = depthsOf(*this, one);
    return p.z > low && p.z < high;
  });
}

std::vector<Patch> PartPlan::patches() const {
  // The base is an outline and levels, as an opening that fills is.
  OpeningPlan outline;
  outline.number = -1;
  outline.kind = OpeningKind::kBoss;
  outline.length = length;
  outline.width = width;
  outline.x = length / 2.0;
  outline.y = width / 2.0;
  Walls base(outline, 0.0, height);
  addWalls(outline, base);
  std::vector<Patch> all = base.patches;
  const auto addLevel = [&](int face, double x0, double x1, double z, double side) {
    Patch patch = level({-1, face}, z, side);
    patch.from = {x0, 0.0, z};
    patch.to = {x1, width, z};
    all.push_back(patch);
  };
  const bool hasRiser = riserHeight > 0.0;
  addLevel(5, 0.0, length, 0.0, -1.0);
  addLevel(0, 0.0, hasRiser ? riserX : length, height, 1.0);
  if (hasRiser) {
    OpeningPlan riser = outline;
    riser.length = length - riserX;
    riser.x = riserX + riser.length / 2.0;
    Walls walls(riser, height, height + riserHeight);
    addWalls(riser, walls);
    // Three sides go on above those of the plate; the fourth is the riser's own.
    for (Patch& patch : walls.patches) {
      if (patch.source.face == 4) patch.source.face = 6;
      all.push_back(patch);
    }
    addLevel(7, riserX, length, height + riserHeight, 1.0);
  }
  for (const OpeningPlan& one : openings) {
    if (one.suppressed) continue;
    const auto [low, high] = depthsOf(*this, one);
    Walls walls(one, low, high);
    addWalls(one, walls);
    all.insert(all.end(), walls.patches.begin(), walls.patches.end());
    Patch floor = level({one.number, 0}, one.fills() ? high : low, 1.0);
    floor.area = one;
    all.push_back(floor);
    Patch ceiling = level({one.number, 9}, one.fills() ? low : high, -1.0);
    ceiling.area = one;
    all.push_back(ceiling);
  }
  return all;
}

OdModelerBodyPtr PartPlan::baseBody() const {
  const OdModelerBodyPtr plate = boxAt(length, width, height, {});
  if (riserHeight <= 0.0) return plate;
  const OdModelerBodyPtr riser = boxAt(length - riserX, width, riserHeight, {riserX, 0.0, height});
  OdModelerBodyPtr both;
  const OdStatus status =
      odModeler().boolean(OdModelerBooleanKind::kUnite, plate, {&riser, 1}, both, nullptr);
  return require(status, both);
}

OdModelerBodyPtr openingTool(const OpeningPlan& opening) {
  constexpr double kDeep = 20.0 + kThrough;  // through a plate
  const double depth = opening.depth > 0.0 ? opening.depth : kDeep;
  const double low = opening.fills() ? 0.0 : -depth;
  const double reach = opening.fills() ? depth : depth + kAbove;
  const double a = opening.length / 2.0;
  const double b = opening.width / 2.0;
  OdModelerBodyPtr body;
  if (opening.isRound()) {
    const OdStatus status = odModeler().cylinder(a, reach, body);
    return moved(require(status, body), OdGeMatrix3d::translation({0.0, 0.0, low}));
  }
  if (opening.kind != OpeningKind::kSlot) {
    return boxAt(opening.length, opening.width, reach, {-a, -b, low});
  }
  OdModelerProfile profile;
  profile.plane = OdGePlane({0.0, 0.0, low}, OdGeVector3d::kZAxis);
  profile.outer = {{{-a + b, -b}, 0.0}, {{a - b, -b}, 1.0}, {{a - b, b}, 0.0}, {{-a + b, b}, 1.0}};
  const OdStatus status = odModeler().extrude(profile, {0.0, 0.0, reach}, body);
  return require(status, body);
}

static_assert(kBeside > kClose);

}  // namespace naming_bench
