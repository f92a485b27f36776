// The names and surfaces of a construction plan, from its dimensions.
#include "bench/naming/plan.h"

namespace naming_bench {
namespace {

constexpr double kFar = 1e6;  // no part reaches there

/// Collects carriers in the coordinates of one frame.
class Surfaces {
 public:
  Surfaces(std::vector<Carrier>& all, std::string prefix, int feature)
      : m_all(all), m_prefix(std::move(prefix)), m_feature(feature) {}

  void plane(const char* name, OdGePoint3d point, OdGeVector3d normal) {
    add(name, OdModelerSurfaceKind::kPlane, point, normal);
  }
  void cylinder(const char* name, OdGePoint3d point, OdGeVector3d axis, double radius,
                bool inward) {
    Carrier& c = add(name, OdModelerSurfaceKind::kCylinder, point, axis);
    c.radius = radius;
    c.inward = inward;
  }
  void torus(const char* name, OdGePoint3d center, double radius, double minorRadius) {
    Carrier& c = add(name, OdModelerSurfaceKind::kTorus, center, OdGeVector3d::kZAxis);
    c.radius = radius;
    c.minorRadius = minorRadius;
  }
  /// The region of the last surface.
  void within(OdGePoint3d low, OdGePoint3d high) {
    m_all.back().low = low;
    m_all.back().high = high;
  }

  /// Walls, floor or top of a box about the frame's z axis; `sign` 1 for material inside.
  void box(double dx, double dy, double z0, double z1, double sign, const char* end, double endZ) {
    const OdGePoint3d low(-dx / 2.0, -dy / 2.0, z0);
    const OdGePoint3d high(dx / 2.0, dy / 2.0, z1);
    const auto wall = [&](const char* name, OdGePoint3d point, OdGeVector3d normal) {
      plane(name, point, normal);
      within(low, high);
    };
    wall(" x-", {-dx / 2.0, 0.0, 0.0}, {-sign, 0.0, 0.0});
    wall(" x+", {dx / 2.0, 0.0, 0.0}, {sign, 0.0, 0.0});
    wall(" y-", {0.0, -dy / 2.0, 0.0}, {0.0, -sign, 0.0});
    wall(" y+", {0.0, dy / 2.0, 0.0}, {0.0, sign, 0.0});
    wall(end, {0.0, 0.0, endZ}, OdGeVector3d::kZAxis);
  }
  void round(const char* name, double radius, double z0, double z1, bool inward) {
    cylinder(name, {}, OdGeVector3d::kZAxis, radius, inward);
    within({-radius, -radius, z0}, {radius, radius, z1});
  }
  void disc(const char* name, double radius, double z) {
    plane(name, {0.0, 0.0, z}, OdGeVector3d::kZAxis);
    within({-radius, -radius, z}, {radius, radius, z});
  }

 private:
  Carrier& add(const char* name, OdModelerSurfaceKind kind, OdGePoint3d point, OdGeVector3d axis) {
    Carrier& c = m_all.emplace_back();
    c.name = m_prefix + name;
    c.kind = kind;
    c.origin = point;
    c.axis = axis;
    c.feature = m_feature;
    c.low = {-kFar, -kFar, -kFar};
    c.high = {kFar, kFar, kFar};
    return c;
  }

  std::vector<Carrier>& m_all;
  std::string m_prefix;
  int m_feature;
};

void addSlot(Surfaces& s, const Feature& f) {
  const double x = f.a / 2.0;
  const OdGePoint3d low(-x, -f.b, -f.c);
  const OdGePoint3d high(x, f.b, 1.0);
  s.plane(" y-", {0.0, -f.b, 0.0}, OdGeVector3d::kYAxis);
  s.within(low, high);
  s.plane(" y+", {0.0, f.b, 0.0}, -OdGeVector3d::kYAxis);
  s.within(low, high);
  s.cylinder(" end x-", {-x, 0.0, 0.0}, OdGeVector3d::kZAxis, f.b, /*inward=*/true);
  s.within({-x - f.b, -f.b, -f.c}, {-x, f.b, 1.0});
  s.cylinder(" end x+", {x, 0.0, 0.0}, OdGeVector3d::kZAxis, f.b, /*inward=*/true);
  s.within({x, -f.b, -f.c}, {x + f.b, f.b, 1.0});
  s.plane(" floor", {0.0, 0.0, -f.c}, OdGeVector3d::kZAxis);
  s.within({-x - f.b, -f.b, -f.c}, {x + f.b, f.b, -f.c});
}

void addFeature(Surfaces& s, const Feature& f) {
  switch (f.kind) {
    case FeatureKind::kHole:
      s.round(" wall", f.a, -f.b, 1.0, /*inward=*/true);
      s.disc(" floor", f.a, -f.b);
      break;
    case FeatureKind::kCounterbore:
      s.round(" wall", f.a, -f.b, -f.d, /*inward=*/true);
      s.round(" rim", f.c, -f.d, 1.0, /*inward=*/true);
      s.disc(" shoulder", f.c, -f.d);
      s.disc(" floor", f.a, -f.b);
      break;
    case FeatureKind::kPocket:
      s.box(f.a, f.b, -f.c, 1.0, -1.0, " floor", -f.c);
      break;
    case FeatureKind::kSlot:
      addSlot(s, f);
      break;
    case FeatureKind::kBoss:
      s.round(" wall", f.a, 0.0, f.b, /*inward=*/false);
      s.disc(" top", f.a, f.b);
      break;
    case FeatureKind::kRib:
      s.box(f.a, f.b, 0.0, f.c, 1.0, " top", f.c);
      break;
  }
}

void addBlock(Surfaces& s, double l, double w, double h) {
  s.plane("x-", {0.0, 0.0, 0.0}, -OdGeVector3d::kXAxis);
  s.plane("x+", {l, 0.0, 0.0}, OdGeVector3d::kXAxis);
  s.plane("y-", {0.0, 0.0, 0.0}, -OdGeVector3d::kYAxis);
  s.plane("y+", {0.0, w, 0.0}, OdGeVector3d::kYAxis);
  s.plane("bottom", {0.0, 0.0, 0.0}, -OdGeVector3d::kZAxis);
  s.plane("top", {0.0, 0.0, h}, OdGeVector3d::kZAxis);
}

void addShell(Surfaces& s, const Plan& p) {
  addBlock(s, p.length, p.width, p.height);
  s.plane("inside x-", {p.wall, 0.0, 0.0}, OdGeVector3d::kXAxis);
  s.plane("inside x+", {p.length - p.wall, 0.0, 0.0}, -OdGeVector3d::kXAxis);
  s.plane("inside y-", {0.0, p.wall, 0.0}, OdGeVector3d::kYAxis);
  s.plane("inside y+", {0.0, p.width - p.wall, 0.0}, -OdGeVector3d::kYAxis);
  s.plane("inside bottom", {0.0, 0.0, p.wall}, OdGeVector3d::kZAxis);
}

void addShaft(Surfaces& s, const Plan& p) {
  s.plane("start", {}, -OdGeVector3d::kZAxis);
  double z = 0.0;
  for (std::size_t i = 0; i < p.steps.size(); ++i) {
    const double end = z + p.steps[i].length;
    const double r = p.steps[i].radius;
    s.cylinder(("step " + std::to_string(i)).c_str(), {}, OdGeVector3d::kZAxis, r, false);
    s.within({-r, -r, z}, {r, r, end});
    if (i + 1 < p.steps.size()) {
      const double sign = r > p.steps[i + 1].radius ? 1.0 : -1.0;
      s.plane(("shoulder " + std::to_string(i)).c_str(), {0.0, 0.0, end}, {0.0, 0.0, sign});
    } else {
      s.plane("end", {0.0, 0.0, end}, OdGeVector3d::kZAxis);
    }
    z = end;
  }
}

void addRounded(Surfaces& s, const Plan& p) {
  const double l = p.length;
  const double w = p.width;
  const double h = p.height;
  const double r = p.wall;
  const double small = p.wall / 2.0;
  addBlock(s, l, w, h);
  for (const auto& [side, x] : {std::pair{"x-", r}, std::pair{"x+", l - r}}) {
    for (const auto& [other, y] : {std::pair{"y-", r}, std::pair{"y+", w - r}}) {
      const std::string corner = std::string("corner ") + side + other;
      const OdGePoint3d low(x < l / 2.0 ? 0.0 : x, y < w / 2.0 ? 0.0 : y, 0.0);
      const OdGePoint3d high(x < l / 2.0 ? x : l, y < w / 2.0 ? y : w, h);
      s.cylinder(corner.c_str(), {x, y, 0.0}, OdGeVector3d::kZAxis, r, /*inward=*/false);
      s.within(low, high);
      s.torus((corner + " top").c_str(), {x, y, h - small}, r - small, small);
      s.within(low, high);
    }
  }
  const auto edge = [&](const char* name, OdGePoint3d point, OdGeVector3d axis) {
    s.cylinder(name, point, axis, small, /*inward=*/false);
  };
  edge("round x-", {small, 0.0, h - small}, OdGeVector3d::kYAxis);
  edge("round x+", {l - small, 0.0, h - small}, OdGeVector3d::kYAxis);
  edge("round y-", {0.0, small, h - small}, OdGeVector3d::kXAxis);
  edge("round y+", {0.0, w - small, h - small}, OdGeVector3d::kXAxis);
}

}  // namespace

std::vector<Carrier> carriersOf(const Plan& plan) {
  std::vector<Carrier> all;
  for (std::size_t i = 0; i < plan.features.size(); ++i) {
    const Feature& feature = plan.features[i];
    const std::size_t first = all.size();
    Surfaces surfaces(all, feature.name, static_cast<int>(i));
    addFeature(surfaces, feature);
    for (std::size_t k = first; k < all.size(); ++k) all[k].moveBy(plan.frameOf(feature));
  }
  const std::size_t first = all.size();
  Surfaces base(all, "", -1);
  if (plan.base == BaseKind::kBlock) addBlock(base, plan.length, plan.width, plan.height);
  if (plan.base == BaseKind::kShell) addShell(base, plan);
  if (plan.base == BaseKind::kShaft) addShaft(base, plan);
  if (plan.base == BaseKind::kRounded) addRounded(base, plan);
  for (std::size_t k = first; k < all.size(); ++k) all[k].moveBy(plan.placement);
  return all;
}

}  // namespace naming_bench
