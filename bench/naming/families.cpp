// The generated models, by family.
#include "bench/naming/families.h"

#include <array>
#include <filesystem>
#include <numbers>

#include "bench/naming/exchange.h"

namespace naming_bench {
namespace {

OdGeMatrix3d at(double x, double y, double z) { return OdGeMatrix3d::translation({x, y, z}); }

Plan block(double length, double width, double height) {
  Plan plan;
  plan.length = length;
  plan.width = width;
  plan.height = height;
  return plan;
}

/// A feature of a kind that fits within `room` of its frame and leaves slack.
Feature featureIn(Random& random, FeatureKind kind, double room, double height) {
  Feature f;
  f.kind = kind;
  const double depth = between(random, 0.3, 0.6) * height;
  switch (kind) {
    case FeatureKind::kHole:
      f.a = between(random, 0.3, 0.5) * room;
      f.b = pick(random, 2) == 0 ? height + 1.0 : depth;
      break;
    case FeatureKind::kCounterbore:
      f.c = between(random, 0.4, 0.55) * room;
      f.a = 0.6 * f.c;
      f.b = height + 1.0;
      f.d = depth;
      break;
    case FeatureKind::kPocket:
    case FeatureKind::kRib:
      f.a = between(random, 0.7, 1.1) * room;
      f.b = between(random, 0.6, 1.0) * room;
      f.c = depth;
      break;
    case FeatureKind::kSlot:
      f.a = between(random, 0.4, 0.6) * room;
      f.b = between(random, 0.2, 0.3) * room;
      f.c = pick(random, 2) == 0 ? height + 1.0 : depth;
      break;
    case FeatureKind::kBoss:
      f.a = between(random, 0.3, 0.5) * room;
      f.b = depth;
      break;
  }
  f.slack = room - f.reach();
  return f;
}

/// Fills a grid of cells on the top with features of the given kinds in turn; the last two cells
/// stay free. No two features are alike, so that nothing in the part is symmetric.
void fillTop(Plan& plan, Random& random, std::size_t columns, std::size_t rows,
             const std::vector<FeatureKind>& kinds, double margin) {
  const double dx = (plan.length - 2.0 * margin) / static_cast<double>(columns);
  const double dy = (plan.width - 2.0 * margin) / static_cast<double>(rows);
  plan.cell = 0.42 * std::min(dx, dy);
  const double z = plan.base == BaseKind::kShell ? plan.wall : plan.height;
  const double depth = plan.base == BaseKind::kShell ? plan.wall : plan.height;
  for (std::size_t i = 0; i < columns * rows; ++i) {
    const OdGeMatrix3d frame = at(margin + dx * (static_cast<double>(i % columns) + 0.5),
                                  margin + dy * (static_cast<double>(i / columns) + 0.5), z);
    if (i + 2 >= columns * rows) {
      plan.free.push_back(frame);
      continue;
    }
    Feature feature = featureIn(random, kinds[i % kinds.size()], plan.cell, depth);
    feature.name = "f" + std::to_string(i);
    feature.frame = frame;
    plan.features.push_back(feature);
  }
  if (plan.base == BaseKind::kShell) return;
  for (std::size_t i = 1; i < columns; ++i) {
    plan.lanes.push_back(margin + dx * static_cast<double>(i));
  }
}

Plan platePlan(Random& random) {
  Plan plan = block(between(random, 180.0, 240.0), between(random, 90.0, 110.0),
                    between(random, 8.0, 14.0));
  fillTop(plan, random, 4, 2,
          {FeatureKind::kHole, FeatureKind::kCounterbore, FeatureKind::kSlot, FeatureKind::kHole},
          6.0);
  return plan;
}

/// Equal holes in a grid; a pocket tells one corner from the others.
Plan patternPlan(Random& random) {
  Plan plan = block(between(random, 200.0, 240.0), between(random, 100.0, 120.0), 10.0);
  fillTop(plan, random, 5, 3, {FeatureKind::kHole}, 6.0);
  for (Feature& f : plan.features) {
    f.a = plan.features.front().a;
    f.b = plan.height + 1.0;
    f.slack = plan.cell - f.a;
  }
  Feature mark = featureIn(random, FeatureKind::kPocket, plan.cell, plan.height);
  mark.name = plan.features.front().name;
  mark.frame = plan.features.front().frame;
  plan.features.front() = mark;
  return plan;
}

Plan pocketPlan(Random& random) {
  Plan plan = block(between(random, 150.0, 190.0), between(random, 90.0, 120.0),
                    between(random, 25.0, 35.0));
  fillTop(plan, random, 3, 2, {FeatureKind::kPocket, FeatureKind::kSlot, FeatureKind::kPocket},
          8.0);
  return plan;
}

Plan bossPlan(Random& random) {
  Plan plan = block(between(random, 160.0, 200.0), between(random, 100.0, 120.0),
                    between(random, 15.0, 20.0));
  fillTop(plan, random, 4, 2,
          {FeatureKind::kBoss, FeatureKind::kRib, FeatureKind::kHole, FeatureKind::kPocket}, 8.0);
  return plan;
}

Plan shellPlan(Random& random) {
  Plan plan = block(between(random, 140.0, 180.0), between(random, 90.0, 110.0),
                    between(random, 40.0, 60.0));
  plan.base = BaseKind::kShell;
  plan.wall = between(random, 3.0, 5.0);
  fillTop(plan, random, 3, 2, {FeatureKind::kHole, FeatureKind::kSlot, FeatureKind::kHole}, 14.0);
  for (Feature& f : plan.features) {
    if (f.kind == FeatureKind::kSlot) f.c = plan.wall + 1.0;
  }
  // Through one side wall, looking along -y.
  Feature side = featureIn(random, FeatureKind::kHole, 0.3 * plan.height, plan.wall);
  side.name = "side";
  side.b = plan.wall + 1.0;
  side.frame =
      OdGeMatrix3d::coordSystem({plan.length * 0.4, 0.0, plan.height * 0.55}, OdGeVector3d::kXAxis,
                                OdGeVector3d::kZAxis, -OdGeVector3d::kYAxis);
  plan.features.push_back(side);
  return plan;
}

Plan roundedPlan(Random& random) {
  Plan plan = block(between(random, 120.0, 160.0), between(random, 80.0, 100.0),
                    between(random, 20.0, 30.0));
  plan.base = BaseKind::kRounded;
  plan.wall = between(random, 6.0, 9.0);
  fillTop(plan, random, 3, 2, {FeatureKind::kHole, FeatureKind::kPocket, FeatureKind::kSlot}, 12.0);
  return plan;
}

Plan shaftPlan(Random& random) {
  Plan plan;
  plan.base = BaseKind::kShaft;
  double z = 0.0;
  for (const double radius : {20.0, 30.0, 24.0, 16.0}) {
    plan.steps.push_back({radius * between(random, 0.95, 1.05), between(random, 25.0, 40.0)});
  }
  for (std::size_t i = 0; i < plan.steps.size(); ++i) {
    const ShaftStep& step = plan.steps[i];
    Feature key = featureIn(random, i % 2 == 0 ? FeatureKind::kSlot : FeatureKind::kHole,
                            0.45 * step.length, step.radius);
    key.name = "key" + std::to_string(i);
    (key.kind == FeatureKind::kSlot ? key.c : key.b) = between(random, 0.2, 0.3) * step.radius;
    const double turn = 1.1 * static_cast<double>(i);
    key.frame =
        OdGeMatrix3d::rotation(turn, OdGeVector3d::kZAxis) *
        OdGeMatrix3d::coordSystem({step.radius, 0.0, z + step.length / 2.0}, OdGeVector3d::kZAxis,
                                  -OdGeVector3d::kYAxis, OdGeVector3d::kXAxis);
    (key.kind == FeatureKind::kSlot ? key.b : key.a) = between(random, 0.1, 0.15) * step.length;
    key.slack = 0.1 * step.length;
    plan.features.push_back(key);
    z += step.length;
  }
  plan.height = z;
  return plan;
}

/// A plate whose top a groove parts in two; filling it merges them.
Plan groovedPlan(Random& random) {
  Plan plan = platePlan(random);
  Feature groove;
  groove.name = "groove";
  groove.kind = FeatureKind::kPocket;
  groove.a = 2.0;
  groove.b = plan.width + 20.0;
  groove.c = 0.3 * plan.height;
  groove.frame = at(plan.lanes.front(), plan.width / 2.0, plan.height);
  plan.lanes.erase(plan.lanes.begin());
  plan.features.push_back(groove);
  return plan;
}

/// Four equal holes in a plate: half turns about three axes map it onto itself. Blind holes leave
/// the half turn about z alone. Both have their mirror planes.
Plan symmetricPlan(Random& random) {
  Plan plan = block(between(random, 100.0, 140.0), between(random, 60.0, 80.0), 12.0);
  const bool through = pick(random, 2) == 0;
  const double radius = between(random, 4.0, 7.0);
  for (int i = 0; i < 4; ++i) {
    Feature hole;
    hole.name = "h" + std::to_string(i);
    hole.a = radius;
    hole.b = through ? plan.height + 1.0 : 6.0;
    hole.frame =
        at(plan.length * (i % 2 == 0 ? 0.2 : 0.8), plan.width * (i < 2 ? 0.25 : 0.75), plan.height);
    plan.features.push_back(hole);
  }
  const OdGePoint3d center(plan.length / 2.0, plan.width / 2.0, plan.height / 2.0);
  const auto mirror = [&](const OdGeVector3d& normal) {
    return OdGeMatrix3d::mirroring(OdGePlane(center, normal));
  };
  const OdGeMatrix3d x = mirror(OdGeVector3d::kXAxis);
  const OdGeMatrix3d y = mirror(OdGeVector3d::kYAxis);
  const OdGeMatrix3d z = mirror(OdGeVector3d::kZAxis);
  plan.symmetry = {x, y, x * y};
  if (through) plan.symmetry.insert(plan.symmetry.end(), {z, x * z, y * z, x * y * z});
  return plan;
}

struct FamilyRow {
  const char* name;
  Plan (*plan)(Random& random);
  bool throughFile;  ///< the part is read from an exchange file
};
constexpr std::array<FamilyRow, 11> kFamilies = {{
    {"plate", platePlan, false},
    {"pattern", patternPlan, false},
    {"pockets", pocketPlan, false},
    {"bosses", bossPlan, false},
    {"shell", shellPlan, false},
    {"rounded", roundedPlan, false},
    {"shaft", shaftPlan, false},
    {"grooved", groovedPlan, false},
    {"imported plate", platePlan, true},
    {"imported shell", shellPlan, true},
    {"symmetric", symmetricPlan, false},
}};

}  // namespace

std::vector<Model> generateModels(std::size_t perFamily, std::uint64_t seed,
                                  const std::string& onlyFamily) {
  std::vector<Model> models;
  std::uint64_t number = 0;
  for (const FamilyRow& row : kFamilies) {
    for (std::size_t i = 0; i < perFamily; ++i) {
      Random random(seed * 1000003 + number++);
      if (!onlyFamily.empty() && onlyFamily != row.name) continue;
      Model& model = models.emplace_back();
      model.family = row.name;
      model.name = row.name + std::string(" ") + std::to_string(i);
      const Plan plan = row.plan(random);
      if (row.throughFile) {
        model.part.plan = plan;
        model.part.body = throughStep(rebuild(plan, random));
      } else {
        model.part = startPart(plan);
      }
    }
  }
  return models;
}

}  // namespace naming_bench
