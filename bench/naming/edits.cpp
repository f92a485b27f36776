// The scripted edits, as rows.
#include "bench/naming/edits.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "bench/naming/exchange.h"

namespace naming_bench {
namespace {

OdGeMatrix3d shifted(const OdGeMatrix3d& frame, double x, double y) {
  return frame * OdGeMatrix3d::translation({x, y, 0.0});
}

bool isPlacedBySteps(const EditScene& scene) { return !scene.stage.part().tracks.empty(); }

/// A feature with a tool that leaves room around it; null when there is none.
const Feature* pickFeature(EditScene& scene) {
  if (!isPlacedBySteps(scene)) return nullptr;
  std::vector<const Feature*> fit;
  for (const Feature& feature : scene.plan().features) {
    if (feature.slack > 0.5) fit.push_back(&feature);
  }
  return fit.empty() ? nullptr : fit[pick(scene.random, fit.size())];
}

void forget(Plan& plan, const std::string& name) {
  std::erase_if(plan.features, [&](const Feature& f) { return f.name == name; });
}

// ---- Features that move, grow, go and come

bool moveWithin(EditScene& scene) {
  const Feature* chosen = pickFeature(scene);
  if (chosen == nullptr) return false;
  Feature now = *chosen;
  // Aslant, so that nothing keeps its line by chance.
  const double step = now.slack * between(scene.random, 0.3, 0.65);
  now.frame = shifted(now.frame, step, -0.6 * step);
  now.slack *= 0.3;
  scene.stage.recut({now});
  return true;
}

bool moveFar(EditScene& scene) {
  Plan& plan = scene.plan();
  if (plan.free.empty()) return false;
  std::vector<const Feature*> onTop;
  for (const Feature& f : plan.features) {
    if (f.slack > 0.5 && f.frame.getCsZAxis().isEqualTo(plan.free.front().getCsZAxis())) {
      onTop.push_back(&f);
    }
  }
  if (onTop.empty() || !isPlacedBySteps(scene)) return false;
  Feature now = *onTop[pick(scene.random, onTop.size())];
  now.frame = plan.free.front();
  plan.free.erase(plan.free.begin());
  scene.stage.recut({now});
  return true;
}

/// Two features change places. Depth and reach of either fit the other's place.
bool swapTwo(EditScene& scene) {
  std::vector<Feature> fit;
  for (const Feature& f : scene.plan().features) {
    if (f.slack > 0.5 && f.name[0] == 'f') fit.push_back(f);
  }
  if (fit.size() < 2 || !isPlacedBySteps(scene)) return false;
  const std::size_t first = pick(scene.random, fit.size() - 1);
  Feature a = fit[first];
  Feature b = fit[first + 1];
  std::swap(a.frame, b.frame);
  scene.stage.recut({a, b});
  return true;
}

bool resize(EditScene& scene) {
  const Feature* chosen = pickFeature(scene);
  if (chosen == nullptr) return false;
  Feature now = *chosen;
  const double factor = between(scene.random, 0.75, 0.92);
  now.a *= factor;
  now.b *= now.kind == FeatureKind::kPocket || now.kind == FeatureKind::kRib ||
                   now.kind == FeatureKind::kSlot
               ? factor
               : 1.0;
  now.c *= now.kind == FeatureKind::kCounterbore ? factor : 1.0;
  scene.stage.recut({now});
  scene.meaning.resized = true;
  return true;
}

bool dropOne(EditScene& scene) {
  const Feature* chosen = pickFeature(scene);
  if (chosen == nullptr) return false;
  const std::string name = chosen->name;
  scene.stage.heal(name);
  forget(scene.plan(), name);
  return true;
}

bool addOne(EditScene& scene) {
  const Feature* chosen = pickFeature(scene);
  if (chosen == nullptr || scene.plan().free.empty()) return false;
  Feature now = scene.plan().features.front();
  now.name = "added";
  now.frame = scene.plan().free.front();
  scene.plan().free.erase(scene.plan().free.begin());
  scene.plan().features.push_back(now);
  scene.stage.insert(now);
  return true;
}

// ---- Tools across faces and edges

void cut(EditScene& scene, const Feature& tool) {
  scene.plan().features.insert(scene.plan().features.begin(), tool);
  scene.stage.combine(OdModelerBooleanKind::kSubtract, toolBody(scene.plan(), tool));
}

/// A groove across the whole top: it and two sides part in two.
bool splitFace(EditScene& scene) {
  if (scene.plan().lanes.empty()) return false;
  cut(scene, newGroove(scene.plan(), scene.random));
  return true;
}

/// A trench through the middle of a feature: its walls and edges part.
bool cutAcross(EditScene& scene) {
  std::vector<Feature> fit;
  for (const Feature& f : scene.plan().features) {
    if (f.kind != FeatureKind::kBoss && f.kind != FeatureKind::kRib && f.slack > 1.0) {
      fit.push_back(f);
    }
  }
  if (fit.empty()) return false;
  const Feature across = fit[pick(scene.random, fit.size())];
  const double depth = across.kind == FeatureKind::kHole          ? across.b
                       : across.kind == FeatureKind::kCounterbore ? across.d
                                                                  : across.c;
  Feature trench;
  trench.name = "new trench";
  trench.kind = FeatureKind::kPocket;
  const bool isBox = across.kind == FeatureKind::kPocket;
  trench.a = between(scene.random, 0.4, 0.6) * (isBox ? across.a : across.b);
  if (across.kind == FeatureKind::kHole || across.kind == FeatureKind::kCounterbore) {
    trench.a = between(scene.random, 0.4, 0.6) * across.a;
  }
  trench.b = 2.0 * (across.reach() + 0.6 * across.slack);
  trench.c = 0.4 * depth;
  trench.frame = shifted(across.frame, 0.07 * trench.a, 0.0);
  cut(scene, trench);
  return true;
}

/// A notch in an edge or a corner of the block: named edges are cut through or lose an end.
bool notch(EditScene& scene) {
  Plan& plan = scene.plan();
  if (plan.base == BaseKind::kShaft || plan.base == BaseKind::kRounded) return false;
  const double size = plan.base == BaseKind::kShell ? 1.6 * plan.wall : 5.0;
  Feature tool;
  tool.name = "new notch";
  tool.kind = FeatureKind::kPocket;
  tool.a = tool.b = 2.0 * size;
  tool.c = between(scene.random, 0.3, 0.7) * plan.height;
  const bool atCorner = pick(scene.random, 2) == 0;
  const double x = atCorner ? plan.length : plan.length * between(scene.random, 0.30, 0.34);
  tool.frame = OdGeMatrix3d::translation({x, plan.width, plan.height});
  if (plan.base == BaseKind::kBlock && !atCorner) tool.b = 4.0;
  if (plan.base == BaseKind::kBlock && atCorner) tool.a = tool.b = 6.0;
  cut(scene, tool);
  return true;
}

/// What the groove of a grooved plate parted is filled again, by a bar that knows nothing of it.
bool fillGroove(EditScene& scene) {
  Plan& plan = scene.plan();
  const Feature* found = plan.find("groove");
  if (found == nullptr) return false;
  Feature bar = *found;
  bar.kind = FeatureKind::kRib;
  bar.b = plan.width;
  bar.frame = bar.frame * OdGeMatrix3d::translation({0.0, 0.0, -bar.c});
  scene.stage.combine(OdModelerBooleanKind::kUnite, toolBody(plan, bar));
  forget(plan, "groove");
  return true;
}

/// A block set flush against one side: the neighbouring faces grow over it, the side is gone.
bool extend(EditScene& scene) {
  Plan& plan = scene.plan();
  if (plan.base != BaseKind::kBlock) return false;
  const double more = between(scene.random, 10.0, 30.0);
  Feature slab;
  slab.kind = FeatureKind::kRib;
  slab.a = more;
  slab.b = plan.width;
  slab.c = plan.height;
  slab.frame = OdGeMatrix3d::translation({plan.length + more / 2.0, plan.width / 2.0, 0.0});
  scene.stage.combine(OdModelerBooleanKind::kUnite, toolBody(plan, slab));
  plan.length += more;
  scene.meaning.successors["x+"] = "";
  return true;
}

/// Along an edge between two outer planes of the base. In the concave corners inside of a shell,
/// what a blend ends in is the modeller's choice and not the construction's.
bool blend(EditScene& scene) {
  const NamedBody named(scene.plan(), scene.stage.body());
  std::vector<OdUInt32> fit;
  for (OdUInt32 i = 1; i <= named.body().numEdges(); ++i) {
    const OdModelerEdge& edge = named.body().edge(i);
    if (edge.kind != OdModelerCurveKind::kLine || edge.degenerate || edge.length < 20.0) continue;
    const std::vector<int>& key = named.meeting({OdModelerSubentType::kEdge, i});
    const bool ofBase = std::ranges::all_of(key, [&](int number) {
      if (number < 0) return false;
      const Carrier& carrier = named.carriers()[static_cast<std::size_t>(number)];
      return carrier.feature < 0 && carrier.kind == OdModelerSurfaceKind::kPlane &&
             !carrier.name.starts_with("inside");
    });
    if (ofBase) fit.push_back(i);
  }
  if (fit.empty()) return false;
  const OdUInt32 edge = fit[pick(scene.random, fit.size())];
  const double size = between(scene.random, 0.8, 1.5);
  if (pick(scene.random, 2) == 0) {
    scene.stage.fillet(edge, size);
  } else {
    scene.stage.chamfer(edge, size);
  }
  return true;
}

// ---- The whole part

OdGeMatrix3d anyMotion(Random& random) {
  const OdGeVector3d axis(between(random, -1.0, 1.0), between(random, -1.0, 1.0), 1.2);
  const OdGeVector3d offset(between(random, -300.0, 300.0), between(random, -300.0, 300.0),
                            between(random, -300.0, 300.0));
  return OdGeMatrix3d::translation(offset) *
         OdGeMatrix3d::rotation(between(random, 0.3, 2.8), axis.normal());
}

OdGeMatrix3d anyMirror(Random& random) {
  const OdGeVector3d normal(between(random, -1.0, 1.0), between(random, -1.0, 1.0), 0.3);
  return OdGeMatrix3d::mirroring(OdGePlane({200.0, -50.0, 20.0}, normal.normal()));
}

bool moveAll(EditScene& scene) {
  const OdGeMatrix3d motion = anyMotion(scene.random);
  scene.stage.move(motion);
  scene.plan().placement = motion * scene.plan().placement;
  return true;
}

bool mirrorAll(EditScene& scene) {
  const OdGeMatrix3d motion = anyMirror(scene.random);
  scene.stage.move(motion);
  scene.plan().placement = motion * scene.plan().placement;
  return true;
}

// ---- Without history

bool rebuildShuffled(EditScene& scene) {
  scene.stage.replace(rebuild(scene.plan(), scene.random));
  return true;
}

bool reorderFaces(EditScene& scene) {
  scene.stage.replace(reordered(scene.stage.body(), scene.random));
  return true;
}

bool importAgain(EditScene& scene) {
  const OdModelerBodyPtr body = reordered(scene.stage.body(), scene.random);
  scene.stage.replace(pick(scene.random, 2) == 0 ? throughStep(body) : throughBytes(body));
  return true;
}

/// A revision: sizes and places a little different, made in another order. `share` of the slack is
/// how far features go.
bool reviseBy(EditScene& scene, double grow, double share) {
  Plan& plan = scene.plan();
  if (!plan.symmetry.empty()) return false;
  Random& random = scene.random;
  if (plan.base != BaseKind::kShaft) plan.length += grow * between(random, 0.2, 0.5);
  const auto chosen = pick(random, plan.features.size());
  for (std::size_t i = 0; i < plan.features.size(); ++i) {
    Feature& f = plan.features[i];
    if (i != chosen && pick(random, 3) != 0) continue;
    const double reach = share * std::min(f.slack, f.reach());
    f.a += between(random, -share, share) * f.a / 2.0;
    f.frame = shifted(f.frame, between(random, -reach, reach), between(random, -reach, reach));
  }
  scene.stage.replace(rebuild(plan, random));
  scene.meaning.resized = true;
  return true;
}

bool reviseALittle(EditScene& scene) { return reviseBy(scene, 1.0, 0.04); }

/// The next edition: moderate changes, one feature dropped, another one new.
bool revise(EditScene& scene) {
  Plan& plan = scene.plan();
  if (plan.features.size() > 2 && plan.symmetry.empty()) {
    plan.features.erase(plan.features.begin() + 1);
    if (!plan.free.empty()) {
      Feature added = plan.features.front();
      added.name = "added";
      added.frame = plan.free.front();
      plan.features.push_back(added);
    }
  }
  return reviseBy(scene, 8.0, 0.2);
}

/// The same part in again, somewhere else.
bool importElsewhere(EditScene& scene) {
  const OdGeMatrix3d motion = anyMotion(scene.random);
  scene.plan().placement = motion * scene.plan().placement;
  scene.stage.replace(rebuild(scene.plan(), scene.random));
  scene.meaning.anywhere = true;
  return true;
}

bool importMirrored(EditScene& scene) {
  if (!scene.plan().symmetry.empty()) return false;
  const OdGeMatrix3d motion = anyMirror(scene.random);
  scene.plan().placement = motion * scene.plan().placement;
  scene.stage.replace(rebuild(scene.plan(), scene.random));
  return true;
}

/// A long slot is gone, and two equal ones lie beside its place, one on either side, equally far.
bool twinSlots(EditScene& scene) {
  Plan& plan = scene.plan();
  if (plan.free.empty() || plan.base != BaseKind::kBlock || !plan.symmetry.empty()) return false;
  Feature slot;
  slot.kind = FeatureKind::kSlot;
  slot.name = "slot";
  slot.b = 1.5;
  slot.a = 1.5 * plan.cell;
  slot.c = 0.4 * plan.height;
  slot.frame = plan.free.front();
  plan.features.push_back(slot);
  // The part as it is before: with the slot, and nothing else changed.
  scene.stage.replace(rebuild(plan, scene.random));
  scene.stage.begin();
  scene.before = plan;
  forget(plan, "slot");
  for (const double side : {-1.0, 1.0}) {
    Feature twin = slot;
    twin.name = side < 0.0 ? "twin left" : "twin right";
    twin.frame = shifted(slot.frame, 0.0, side * 2.0);
    plan.features.push_back(twin);
  }
  for (const char* face : {" y-", " y+", " end x-", " end x+", " floor"}) {
    scene.meaning.twins.insert(std::string("slot") + face);
  }
  scene.stage.replace(rebuild(plan, scene.random));
  return true;
}

constexpr std::array<EditRow, 22> kEdits = {{
    {"move within", true, true, moveWithin},
    {"move far", true, true, moveFar},
    {"swap two", true, true, swapTwo},
    {"resize", true, true, resize},
    {"drop one", true, true, dropOne},
    {"add one", true, true, addOne},
    {"split a face", true, true, splitFace},
    {"cut across a feature", true, false, cutAcross},
    {"notch an edge", true, true, notch},
    {"fill a groove", true, false, fillGroove},
    {"extend", true, false, extend},
    {"fillet or chamfer", true, true, blend},
    {"move the part", true, false, moveAll},
    {"mirror the part", true, false, mirrorAll},
    {"rebuild in other order", false, false, rebuildShuffled},
    {"shuffle faces", false, false, reorderFaces},
    {"import again", false, false, importAgain},
    {"revise a little", false, false, reviseALittle},
    {"revise", false, false, revise},
    {"import elsewhere", false, false, importElsewhere},
    {"import mirrored", false, false, importMirrored},
    {"twin slots", false, false, twinSlots},
}};

// ---- Parts of which only the body is known

OdGeExtents3d around(const OdModelerBodyPtr& tool, double more) {
  OdGeExtents3d box = tool->extents();
  return box.expandBy(more);
}

/// A box or cylinder along a direction from a little above a point down to `depth`.
OdGeMatrix3d frameAt(const OdGePoint3d& point, const OdGeVector3d& up) {
  const OdGeVector3d x = up.perpVector();
  return OdGeMatrix3d::coordSystem(point, x, up.crossProduct(x), up);
}

void cutBody(Stage& stage, const Feature& tool, BodyEdit& edit) {
  const OdModelerBodyPtr body = toolBody(Plan(), tool);
  edit.touched = around(body, 0.01 * stage.body()->extents().diagonal().length());
  stage.combine(OdModelerBooleanKind::kSubtract, body);
}

bool boreBody(Stage& stage, Random& random, BodyEdit& edit) {
  const OdModelerBody& body = *stage.body();
  std::vector<std::pair<double, OdUInt32>> planes;
  for (OdUInt32 i = 1; i <= body.numFaces(); ++i) {
    if (body.face(i).kind == OdModelerSurfaceKind::kPlane) {
      planes.emplace_back(-body.face(i).area, i);
    }
  }
  if (planes.empty()) return false;
  std::ranges::sort(planes);
  const auto chosen = planes[pick(random, std::min<std::size_t>(6, planes.size()))].second;
  Feature tool;
  const double size = body.extents().diagonal().length();
  tool.a = between(random, 0.005, 0.01) * size;
  tool.b = 0.02 * size;
  tool.frame = frameAt(body.face(chosen).pointOnFace, body.face(chosen).normal);
  cutBody(stage, tool, edit);
  return true;
}

bool notchBody(Stage& stage, Random& random, BodyEdit& edit) {
  const OdModelerBody& body = *stage.body();
  std::vector<std::pair<double, OdUInt32>> lines;
  for (OdUInt32 i = 1; i <= body.numEdges(); ++i) {
    const OdModelerEdge& edge = body.edge(i);
    if (edge.kind == OdModelerCurveKind::kLine && !edge.degenerate && !edge.seam) {
      lines.emplace_back(-edge.length, i);
    }
  }
  if (lines.empty()) return false;
  std::ranges::sort(lines);
  const auto& edge = body.edge(lines[pick(random, std::min<std::size_t>(8, lines.size()))].second);
  Feature tool;
  tool.kind = FeatureKind::kPocket;
  tool.a = tool.b = between(random, 0.1, 0.2) * edge.length;
  tool.c = 0.5 * tool.a;
  tool.frame = frameAt(edge.midPoint, body.face(edge.faces.front()).normal);
  cutBody(stage, tool, edit);
  return true;
}

bool moveBody(Stage& stage, Random& random, BodyEdit& edit) {
  edit.motion = anyMotion(random);
  stage.move(edit.motion);
  return true;
}

bool mirrorBody(Stage& stage, Random& random, BodyEdit& edit) {
  edit.motion = anyMirror(random);
  stage.move(edit.motion);
  return true;
}

bool shuffleBody(Stage& stage, Random& random, BodyEdit&) {
  stage.replace(reordered(stage.body(), random));
  return true;
}

bool importBody(Stage& stage, Random& random, BodyEdit&) {
  stage.replace(throughStep(reordered(stage.body(), random)));
  return true;
}

constexpr std::array<BodyEditRow, 6> kBodyEdits = {{
    {"add one", true, boreBody},
    {"notch an edge", true, notchBody},
    {"move the part", true, moveBody},
    {"mirror the part", true, mirrorBody},
    {"shuffle faces", false, shuffleBody},
    {"import again", false, importBody},
}};

}  // namespace

Feature newGroove(const Plan& plan, Random& random) {
  Feature groove;
  groove.name = "new groove";
  groove.kind = FeatureKind::kPocket;
  groove.a = between(random, 1.5, 2.5);
  groove.b = plan.width + 20.0;
  groove.c = between(random, 0.2, 0.4) * plan.height;
  groove.frame = OdGeMatrix3d::translation(
      {plan.lanes[pick(random, plan.lanes.size())], plan.width / 2.0, plan.height});
  return groove;
}

std::span<const EditRow> editRows() { return kEdits; }
std::span<const BodyEditRow> bodyEditRows() { return kBodyEdits; }

}  // namespace naming_bench
