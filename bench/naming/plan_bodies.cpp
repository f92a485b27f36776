// The bodies of a construction plan, by the modeller.
#include <algorithm>
#include <array>
#include <numeric>

#include "bench/naming/made_body.h"
#include "bench/naming/plan.h"
#include "platform/modeler/modeler.h"

namespace naming_bench {
namespace {

using Kind = OdModelerBooleanKind;
using Bodies = std::vector<OdModelerBodyPtr>;

OdModelerBodyPtr box(double dx, double dy, double dz, OdGeVector3d at) {
  return moved(made([&](auto& result) { return odModeler().box(dx, dy, dz, result); }),
               OdGeMatrix3d::translation(at));
}

OdModelerBodyPtr cylinder(double radius, double height, double z) {
  return moved(made([&](auto& result) { return odModeler().cylinder(radius, height, result); }),
               OdGeMatrix3d::translation({0.0, 0.0, z}));
}

OdModelerBodyPtr combined(Kind kind, const OdModelerBodyPtr& base, const Bodies& tools) {
  return made(
      [&](auto& result) { return odModeler().boolean(kind, base, tools, result, nullptr); });
}

OdModelerBodyPtr extruded(const OdModelerLoop& loop, double height, double z) {
  OdModelerProfile profile;
  profile.outer = loop;
  return moved(made([&](auto& result) {
                 return odModeler().extrude(profile, {0.0, 0.0, height}, result);
               }),
               OdGeMatrix3d::translation({0.0, 0.0, z}));
}

OdModelerBodyPtr localTool(const Feature& f) {
  switch (f.kind) {
    case FeatureKind::kHole:
      return cylinder(f.a, f.b + 1.0, -f.b);
    case FeatureKind::kCounterbore:
      return combined(Kind::kUnite, cylinder(f.a, f.b + 1.0, -f.b),
                      {cylinder(f.c, f.d + 1.0, -f.d)});
    case FeatureKind::kPocket:
      return box(f.a, f.b, f.c + 1.0, {-f.a / 2.0, -f.b / 2.0, -f.c});
    case FeatureKind::kSlot:
      return extruded({{{-f.a / 2.0, -f.b}, 0.0},
                       {{f.a / 2.0, -f.b}, 1.0},
                       {{f.a / 2.0, f.b}, 0.0},
                       {{-f.a / 2.0, f.b}, 1.0}},
                      f.c + 1.0, -f.c);
    case FeatureKind::kBoss:
      return cylinder(f.a, f.b, 0.0);
    case FeatureKind::kRib:
      return box(f.a, f.b, f.c, {-f.a / 2.0, -f.b / 2.0, 0.0});
  }
  return nullptr;
}

// The same block from another corner: its faces come in another order.
OdModelerBodyPtr blockBody(const Plan& p, unsigned variant) {
  const double l = p.length;
  const double w = p.width;
  if (variant % 3 == 0) return box(l, w, p.height, {});
  OdModelerLoop loop{{{0.0, 0.0}, 0.0}, {{l, 0.0}, 0.0}, {{l, w}, 0.0}, {{0.0, w}, 0.0}};
  std::rotate(loop.begin(), loop.begin() + variant % 4, loop.end());
  return extruded(loop, p.height, 0.0);
}

OdModelerBodyPtr shaftBody(const Plan& p, unsigned variant) {
  Bodies pieces;
  double z = 0.0;
  for (const ShaftStep& step : p.steps) {
    pieces.push_back(cylinder(step.radius, step.length, z));
    z += step.length;
  }
  std::rotate(pieces.begin(), pieces.begin() + static_cast<std::ptrdiff_t>(variant % pieces.size()),
              pieces.end());
  const OdModelerBodyPtr first = pieces.front();
  pieces.erase(pieces.begin());
  return combined(Kind::kUnite, first, pieces);
}

template <class Wanted>
std::vector<OdUInt32> edgesWhere(const OdModelerBody& body, Wanted wanted) {
  std::vector<OdUInt32> result;
  for (OdUInt32 i = 1; i <= body.numEdges(); ++i) {
    if (wanted(body.edge(i))) result.push_back(i);
  }
  return result;
}

OdModelerBodyPtr roundedBody(const Plan& p, unsigned variant) {
  const OdModelerBodyPtr block = blockBody(p, variant);
  const auto upright =
      edgesWhere(*block, [](const OdModelerEdge& e) { return std::abs(e.direction.z) > 0.9; });
  const OdModelerBodyPtr corners = made(
      [&](auto& result) { return odModeler().fillet(block, upright, p.wall, result, nullptr); });
  const auto top = edgesWhere(*corners, [&](const OdModelerEdge& e) {
    return std::abs(e.midPoint.z - p.height) < kSameSurface;
  });
  return made([&](auto& result) {
    return odModeler().fillet(corners, top, p.wall / 2.0, result, nullptr);
  });
}

OdModelerBodyPtr localBase(const Plan& p, unsigned variant) {
  switch (p.base) {
    case BaseKind::kBlock:
      return blockBody(p, variant);
    case BaseKind::kShell: {
      const double hollow = 2.0 * p.wall;
      return combined(
          Kind::kSubtract, blockBody(p, variant),
          {box(p.length - hollow, p.width - hollow, p.height, {p.wall, p.wall, p.wall})});
    }
    case BaseKind::kShaft:
      return shaftBody(p, variant);
    case BaseKind::kRounded:
      return roundedBody(p, variant);
  }
  return nullptr;
}

}  // namespace

double between(Random& random, double low, double high) {
  return low + (high - low) * static_cast<double>(random() >> 11) * 0x1.0p-53;
}

std::size_t pick(Random& random, std::size_t count) { return random() % count; }

double Feature::reach() const {
  switch (kind) {
    case FeatureKind::kCounterbore:
      return c;
    case FeatureKind::kSlot:
      return a / 2.0 + b;
    case FeatureKind::kPocket:
    case FeatureKind::kRib:
      return std::max(a, b) / 2.0;
    default:
      return a;
  }
}

const Feature* Plan::find(const std::string& name) const {
  const auto found =
      std::ranges::find_if(features, [&](const Feature& f) { return f.name == name; });
  return found == features.end() ? nullptr : &*found;
}

OdModelerBodyPtr moved(const OdModelerBodyPtr& body, const OdGeMatrix3d& motion) {
  if (motion.isIdentity(OdGeTol(1e-15))) return body;
  return made([&](auto& result) { return body->transformed(motion, result); });
}

OdModelerBodyPtr baseBody(const Plan& plan, unsigned variant) {
  return moved(localBase(plan, variant), plan.placement);
}

OdModelerBodyPtr toolBody(const Plan& plan, const Feature& feature) {
  return moved(localTool(feature), plan.frameOf(feature));
}

OdModelerBodyPtr rebuild(const Plan& plan, Random& random) {
  OdModelerBodyPtr body = baseBody(plan, static_cast<unsigned>(1 + pick(random, 11)));
  std::vector<std::size_t> order(plan.features.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  for (std::size_t i = order.size(); i > 1; --i) std::swap(order[i - 1], order[pick(random, i)]);
  std::array<Bodies, 2> tools;
  for (const std::size_t i : order) {
    tools[plan.features[i].unites() ? 1 : 0].push_back(toolBody(plan, plan.features[i]));
  }
  const bool cutsFirst = pick(random, 2) == 0;
  for (const bool unites : {!cutsFirst, cutsFirst}) {
    const Bodies& bodies = tools[unites ? 1 : 0];
    if (!bodies.empty()) body = combined(unites ? Kind::kUnite : Kind::kSubtract, body, bodies);
  }
  return body;
}

}  // namespace naming_bench
