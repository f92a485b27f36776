// Revisions that arrive without a history and look like something else: what was there is partly
// covered, moved by a pitch, turned, mirrored, stretched, scaled or written in another form.
#include <algorithm>
#include <array>
#include <cmath>

#include "bench/naming/edits.h"
#include "bench/naming/exchange.h"

namespace naming_bench {
namespace {

OdGeMatrix3d at(double x, double y, double z) { return OdGeMatrix3d::translation({x, y, z}); }

/// Puts the rebuilt part in the place of the present one.
void replaceByPlan(EditScene& scene) { scene.stage.replace(rebuild(scene.plan(), scene.random)); }

/// Makes the plan the part's state before the edit.
void startFrom(EditScene& scene, const Plan& plan) {
  scene.plan() = plan;
  replaceByPlan(scene);
  scene.stage.begin();
  scene.before = plan;
}

Feature* pickKind(EditScene& scene, FeatureKind kind) {
  std::vector<Feature*> fit;
  for (Feature& f : scene.plan().features) {
    if (f.kind == kind && f.slack > 0.5) fit.push_back(&f);
  }
  return fit.empty() ? nullptr : fit[pick(scene.random, fit.size())];
}

bool isPlate(const EditScene& scene) {
  const Plan& plan = scene.stage.part().plan;
  return plan.base == BaseKind::kBlock && plan.symmetry.empty() && plan.find("groove") == nullptr;
}

void declareTwins(EditScene& scene, const std::string& feature, FeatureKind kind) {
  std::vector<const char*> faces = {" wall", " floor", " top"};
  if (kind == FeatureKind::kPocket || kind == FeatureKind::kRib) {
    faces = {" x-", " x+", " y-", " y+", " floor", " top"};
  }
  for (const char* face : faces) scene.meaning.twins.insert(feature + face);
}

// ---- Concentric and stacked additions

/// The mouth of a hole gets a counterbore, often little wider than the hole.
bool widenMouth(EditScene& scene) {
  Feature* hole = pickKind(scene, FeatureKind::kHole);
  if (hole == nullptr || scene.plan().base == BaseKind::kShaft) return false;
  const double wider = std::min(hole->a * between(scene.random, 1.04, 1.5), hole->a + hole->slack);
  const double depth =
      scene.plan().base == BaseKind::kShell ? scene.plan().wall : scene.plan().height;
  hole->kind = FeatureKind::kCounterbore;
  hole->c = wider;
  hole->d = between(scene.random, 0.15, 0.8) * std::min(depth, hole->b);
  replaceByPlan(scene);
  return true;
}

/// A boss gets a collar at its foot or a step on its top, of nearly its radius.
bool stepBoss(EditScene& scene) {
  Feature* boss = pickKind(scene, FeatureKind::kBoss);
  if (boss == nullptr) return false;
  Feature step = *boss;
  step.name = "step";
  if (pick(scene.random, 2) == 0) {
    step.a = boss->a + std::min(boss->slack, boss->a * between(scene.random, 0.04, 0.3));
    step.b = boss->b * between(scene.random, 0.2, 0.8);
  } else {
    step.a = boss->a * between(scene.random, 0.7, 0.96);
    step.b = boss->b * between(scene.random, 0.2, 0.8);
    step.frame = step.frame * at(0.0, 0.0, boss->b);
  }
  scene.plan().features.push_back(step);
  replaceByPlan(scene);
  return true;
}

/// Most of the top is milled off a little; a land of a quarter to a half is left of the face.
bool millTop(EditScene& scene) {
  if (!isPlate(scene) || scene.plan().lanes.empty()) return false;
  Plan& plan = scene.plan();
  // Bosses would be cut by the tool: their tops are not the construction's any more.
  if (std::ranges::any_of(plan.features, &Feature::unites)) return false;
  Feature mill;
  mill.name = "mill";
  mill.kind = FeatureKind::kPocket;
  const double from = plan.lanes.front();
  mill.a = plan.length - from + 10.0;
  mill.b = plan.width + 20.0;
  mill.c = between(scene.random, 0.02, 0.12) * plan.height;
  mill.frame = at(from + mill.a / 2.0, plan.width / 2.0, plan.height);
  plan.features.insert(plan.features.begin(), mill);
  replaceByPlan(scene);
  return true;
}

/// A groove across the whole part, and no history of it: faces part in two.
bool splitReplaced(EditScene& scene) {
  if (!isPlate(scene) || scene.plan().lanes.empty()) return false;
  Plan& plan = scene.plan();
  plan.features.insert(plan.features.begin(), newGroove(plan, scene.random));
  replaceByPlan(scene);
  return true;
}

// ---- Rows of equal features

/// A bar with a row of `count` equal features along x, the first at `first`.
Plan rowPlan(Random& random, FeatureKind kind, std::size_t count, double pitch, double first) {
  Plan plan;
  plan.length = pitch * static_cast<double>(count + 3);
  plan.width = between(random, 30.0, 50.0);
  plan.height = between(random, 12.0, 20.0);
  for (std::size_t i = 0; i < count; ++i) {
    Feature f;
    f.kind = kind;
    f.name = "r" + std::to_string(i);
    f.frame = at(first + pitch * static_cast<double>(i), plan.width / 2.0, plan.height);
    plan.features.push_back(f);
  }
  return plan;
}

/// Grooves across the bar, or bosses, or blind holes; the same in each of a row.
void shapeRow(Plan& plan, Random& random, double pitch) {
  const double share = between(random, 0.2, 0.3);
  for (Feature& f : plan.features) {
    f.a = share * pitch;
    f.b = f.kind == FeatureKind::kPocket ? plan.width + 20.0 : 0.4 * plan.height;
    f.c = 0.3 * plan.height;
  }
}

bool moveRow(EditScene& scene, double share, bool isAmbiguous) {
  if (!isPlate(scene)) return false;
  constexpr std::array<FeatureKind, 3> kKinds = {FeatureKind::kPocket, FeatureKind::kBoss,
                                                 FeatureKind::kHole};
  const FeatureKind kind = kKinds[pick(scene.random, kKinds.size())];
  const std::size_t count = 4 + pick(scene.random, 4);
  const double pitch = between(scene.random, 18.0, 24.0);
  Plan plan = rowPlan(scene.random, kind, count, pitch, pitch);
  shapeRow(plan, scene.random, pitch);
  startFrom(scene, plan);
  for (Feature& f : scene.plan().features) {
    f.frame = at(share * pitch, 0.0, 0.0) * f.frame;
    if (isAmbiguous) declareTwins(scene, f.name, kind);
  }
  replaceByPlan(scene);
  return true;
}

/// A row moved by its own pitch: the same as its first member moved to the end.
bool moveRowByPitch(EditScene& scene) { return moveRow(scene, 1.0, true); }
/// A row moved by most of its pitch, so that each member comes near its neighbour's place.
bool moveRowByPart(EditScene& scene) {
  return moveRow(scene, between(scene.random, 0.6, 0.9), false);
}

/// One or two features of an otherwise mirror-symmetric bar go to its other end.
bool toOtherEnd(EditScene& scene) {
  if (!isPlate(scene)) return false;
  constexpr std::array<FeatureKind, 3> kKinds = {FeatureKind::kPocket, FeatureKind::kBoss,
                                                 FeatureKind::kHole};
  const FeatureKind kind = kKinds[pick(scene.random, kKinds.size())];
  const std::size_t count = 1 + pick(scene.random, 2);
  Plan plan = rowPlan(scene.random, kind, count, 20.0, 14.0);
  plan.length = 150.0;
  shapeRow(plan, scene.random, 20.0);
  // Something that is the same seen from either end.
  for (std::size_t i = 0; i < 4; ++i) {
    Feature hole;
    hole.name = "h" + std::to_string(i);
    hole.a = 2.0;
    hole.b = plan.height + 1.0;
    hole.frame =
        at(plan.length * (0.35 + 0.1 * static_cast<double>(i)), 0.2 * plan.width, plan.height);
    plan.features.push_back(hole);
  }
  startFrom(scene, plan);
  for (Feature& f : scene.plan().features) {
    if (f.name[0] != 'r') continue;
    const double x = f.frame.getCsOrigin().x;
    f.frame = at(plan.length - 2.0 * x, 0.0, 0.0) * f.frame;
    declareTwins(scene, f.name, kind);
  }
  replaceByPlan(scene);
  return true;
}

// ---- The whole part

OdGeMatrix3d someMotion(Random& random) {
  const OdGeVector3d axis(between(random, -1.0, 1.0), 1.2, between(random, -1.0, 1.0));
  return at(between(random, -300.0, 300.0), between(random, -300.0, 300.0),
            between(random, -300.0, 300.0)) *
         OdGeMatrix3d::rotation(between(random, 0.3, 2.8), axis.normal());
}

/// In again at another place, not turned: also what has mirror planes is known.
bool displace(EditScene& scene) {
  const OdGeMatrix3d motion =
      at(between(scene.random, 40.0, 300.0), between(scene.random, -300.0, -40.0), 0.0);
  // A name that a half turn of the part maps to another one is ambiguous. One that only a mirror
  // image maps to another one has an answer, since the part was moved and not mirrored.
  scene.meaning.anywhere = true;
  std::erase_if(scene.before.symmetry, [](const OdGeMatrix3d& m) { return m.det() < 0.0; });
  scene.plan().placement = motion * scene.plan().placement;
  replaceByPlan(scene);
  return true;
}

/// A stepped shaft with two congruent ends and nothing that tells its turn about the axis.
Plan plainShaft(Random& random) {
  Plan plan;
  plan.base = BaseKind::kShaft;
  for (const double radius : {16.0, 30.0, 24.0, 16.0}) {
    plan.steps.push_back({radius, between(random, 25.0, 40.0)});
    plan.height += plan.steps.back().length;
  }
  return plan;
}

bool isFirstShaft(const EditScene& scene) {
  return scene.stage.part().plan.base == BaseKind::kShaft;
}

/// A hole in one of two congruent ends of a shaft, which lies elsewhere.
bool boreOneEnd(EditScene& scene) {
  if (!isFirstShaft(scene)) return false;
  startFrom(scene, plainShaft(scene.random));
  Feature bore;
  bore.name = "bore";
  bore.a = between(scene.random, 3.0, 8.0);
  bore.b = between(scene.random, 5.0, 15.0);
  bore.frame = at(0.0, 0.0, scene.plan().height);
  scene.plan().features.push_back(bore);
  scene.plan().placement = someMotion(scene.random);
  replaceByPlan(scene);
  return true;
}

/// A shaft mirrored end for end in its place.
bool turnEndForEnd(EditScene& scene) {
  if (!isFirstShaft(scene)) return false;
  startFrom(scene, plainShaft(scene.random));
  scene.plan().placement = OdGeMatrix3d::mirroring(
      OdGePlane({0.0, 0.0, scene.plan().height / 2.0}, OdGeVector3d::kZAxis));
  replaceByPlan(scene);
  return true;
}

/// Moved, and edited a little at once.
bool moveAndRevise(EditScene& scene) {
  Plan& plan = scene.plan();
  if (!plan.symmetry.empty() || plan.features.empty()) return false;
  const std::size_t chosen = pick(scene.random, plan.features.size());
  Feature& f = plan.features[chosen];
  const double reach = 0.3 * std::min(f.slack, f.reach());
  f.frame =
      f.frame * at(between(scene.random, -reach, reach), between(scene.random, -reach, reach), 0.0);
  if (pick(scene.random, 2) == 0 && plan.features.size() > 3) {
    plan.features.erase(plan.features.begin() +
                        static_cast<std::ptrdiff_t>((chosen + 1) % plan.features.size()));
  }
  plan.placement = someMotion(scene.random) * plan.placement;
  scene.meaning.resized = true;
  replaceByPlan(scene);
  return true;
}

/// Longer by a tenth to a half, features in proportion.
bool stretch(EditScene& scene) {
  Plan& plan = scene.plan();
  if (plan.base == BaseKind::kShaft || !plan.symmetry.empty()) return false;
  const double factor = between(scene.random, 1.1, 1.5);
  for (Feature& f : plan.features) {
    const double x = f.frame.getCsOrigin().x;
    f.frame = at((factor - 1.0) * x, 0.0, 0.0) * f.frame;
  }
  plan.length *= factor;
  scene.meaning.resized = true;
  replaceByPlan(scene);
  return true;
}

/// All surfaces and curves written as splines, in the same order as those of the plan.
bool asSplines(EditScene& scene) {
  scene.judged = reordered(scene.stage.body(), scene.random);
  scene.stage.replace(splined(scene.judged));
  return true;
}

bool scaleBy(EditScene& scene, double factor) {
  scene.judged = rebuild(scene.plan(), scene.random);
  scene.stage.replace(scaled(scene.judged, factor));
  return true;
}

bool scaleALittle(EditScene& scene) { return scaleBy(scene, between(scene.random, 1.01, 1.04)); }
bool scaleByUnit(EditScene& scene) {
  return scaleBy(scene, pick(scene.random, 2) == 0 ? 25.4 : 1.0 / 25.4);
}

constexpr std::array<EditRow, 15> kReplacements = {{
    {"widen a hole's mouth", false, false, widenMouth},
    {"step on a boss", false, false, stepBoss},
    {"mill the top", false, false, millTop},
    {"split, replaced", false, false, splitReplaced},
    {"row by a pitch", false, false, moveRowByPitch},
    {"row by part of a pitch", false, false, moveRowByPart},
    {"to the other end", false, false, toOtherEnd},
    {"import displaced", false, false, displace},
    {"bore one of two ends", false, false, boreOneEnd},
    {"end for end", false, false, turnEndForEnd},
    {"move and revise", false, false, moveAndRevise},
    {"stretch", false, false, stretch},
    {"as splines", false, false, asSplines},
    {"scale a little", false, false, scaleALittle},
    {"scale by a unit", false, false, scaleByUnit},
}};

}  // namespace

std::span<const EditRow> replacementRows() { return kReplacements; }

}  // namespace naming_bench
