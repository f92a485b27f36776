// Booleans that look at the faces near their tools, beside booleans of the whole bodies: the same
// bodies and histories, on random parts where faces coincide and where they do not, on real parts,
// and in the cases in which a local look cannot decide.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <new>
#include <numbers>
#include <random>

#include "platform/modeler_occt/occt_body.h"
#include "tests/support/modeler_testing.h"
#include "tests/support/test_seed.h"

namespace {

using Kind = OdModelerBooleanKind;
using Type = OdModelerSubentType;
using Tools = std::vector<OdModelerBodyPtr>;

/// What a subentity is by its measures: bodies of both ways number theirs differently.
using Measures = std::array<double, 5>;

Measures measuresOf(const OdModelerBody& body, OdModelerSubent subent) {
  const auto row = [&](double size, const OdGePoint3d& at) {
    return Measures{static_cast<double>(subent.type), size, at.x, at.y, at.z};
  };
  switch (subent.type) {
    case Type::kFace:
      return row(body.face(subent.index).area, body.face(subent.index).centroid);
    case Type::kEdge:
      return row(body.edge(subent.index).length, body.edge(subent.index).midPoint);
    default:
      return row(0.0, body.vertex(subent.index).point);
  }
}

using Rows = std::vector<Measures>;

void expectAlike(Rows a, Rows b, const std::string& what) {
  const auto less = [](const Measures& x, const Measures& y) {
    for (std::size_t i = 0; i < x.size(); ++i) {
      if (std::abs(x[i] - y[i]) > 1e-4) return x[i] < y[i];
    }
    return false;
  };
  std::ranges::sort(a, less);
  std::ranges::sort(b, less);
  ASSERT_EQ(a.size(), b.size()) << what;
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t k = 0; k < a[i].size(); ++k) {
      ASSERT_NEAR(a[i][k], b[i][k], 1e-4) << what << ", measure " << k;
    }
  }
}

struct Outcome {
  OdStatus status;
  OdModelerBodyPtr body;
  OdModelerHistory history;

  [[nodiscard]] bool isLocal() const { return history.effort.wholeBecause.isEmpty(); }
};

class LocalBoolean : public ModelerTest {
 protected:
  LocalBoolean() : m_whole(odCreateOcctModeler({OdOcctReach::kWhole, {}})) {}

  static Outcome run(OdModeler& modeler, Kind kind, const OdModelerBodyPtr& base,
                     const Tools& tools) {
    Outcome outcome;
    outcome.status = modeler.boolean(kind, base, tools, outcome.body, &outcome.history);
    return outcome;
  }

  /// Runs both ways and compares all that users see of them.
  Outcome expectSame(Kind kind, const OdModelerBodyPtr& base, const Tools& tools) {
    const Outcome local = run(odModeler(), kind, base, tools);
    const Outcome whole = run(*m_whole, kind, base, tools);
    ++m_count;
    if (local.status.ok() && local.isLocal()) ++m_numLocal;
    if (local.status.ok() && !local.isLocal()) {
      ++m_reasons[std::string(local.history.effort.wholeBecause.utf8())];
    }
    EXPECT_EQ(local.status.code, whole.status.code);
    if (!local.status.ok() || !whole.status.ok()) return local;
    expectSameBodies(*local.body, *whole.body);
    expectSameFates(local, whole);
    return local;
  }

  /// Integrals over faces with free-form edges are right to about 2e-7 of the volume: by that one
  /// and the same body differs with the faces that were measured before.
  static double volumeTolerance(const OdModelerBody& body) {
    for (OdUInt32 edge = 1; edge <= body.numEdges(); ++edge) {
      const OdModelerCurveKind kind = body.curveKind(edge);
      if (kind != OdModelerCurveKind::kLine && kind != OdModelerCurveKind::kCircle) return 1e-6;
    }
    return 1e-9;
  }

  void expectSameBodies(const OdModelerBody& local, const OdModelerBody& whole) {
    EXPECT_TRUE(succeeded(local.check()));
    const OdModelerMassProperties a = local.massProperties();
    const OdModelerMassProperties b = whole.massProperties();
    EXPECT_NEAR(a.volume, b.volume, volumeTolerance(whole) * b.volume);
    EXPECT_NEAR(a.area, b.area, 1e-9 * b.area);
    EXPECT_TRUE(local.extents().minPoint().isEqualTo(whole.extents().minPoint(), OdGeTol(1e-6)));
    EXPECT_TRUE(local.extents().maxPoint().isEqualTo(whole.extents().maxPoint(), OdGeTol(1e-6)));
    EXPECT_EQ(local.numSolids(), whole.numSolids());
    for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
      EXPECT_EQ(local.numSubents(type), whole.numSubents(type)) << static_cast<int>(type);
    }
  }

  static void expectSameFates(const Outcome& local, const Outcome& whole) {
    ASSERT_EQ(local.history.inputs.size(), whole.history.inputs.size());
    for (std::size_t input = 0; input < whole.history.inputs.size(); ++input) {
      for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
        const auto& a = local.history.inputs[input].fates(type);
        const auto& b = whole.history.inputs[input].fates(type);
        ASSERT_EQ(a.size(), b.size());
        for (std::size_t i = 0; i < a.size(); ++i) {
          const std::string what = "fate of " + std::to_string(static_cast<int>(type)) + "/" +
                                   std::to_string(i + 1) + " of input " + std::to_string(input);
          EXPECT_EQ(a[i].changed, b[i].changed) << what;
          expectAlike(imagesOf(a[i], type, *local.body), imagesOf(b[i], type, *whole.body), what);
          expectAlike(madeOf(a[i], *local.body), madeOf(b[i], *whole.body), what + ", generated");
        }
      }
    }
  }

  static Rows imagesOf(const OdModelerFate& fate, Type type, const OdModelerBody& body) {
    Rows rows;
    for (const OdUInt32 image : fate.images) rows.push_back(measuresOf(body, {type, image}));
    return rows;
  }
  static Rows madeOf(const OdModelerFate& fate, const OdModelerBody& body) {
    Rows rows;
    for (const OdModelerSubent& made : fate.generated) rows.push_back(measuresOf(body, made));
    return rows;
  }

  /// A box, a cylinder along any axis, a cone, a ball or a ring; on a grid of 1 or anywhere.
  OdModelerBodyPtr randomShape(std::mt19937& random, bool onGrid, double largest) {
    const auto number = [&](double low, double high) {
      if (!onGrid) return std::uniform_real_distribution<double>(low, high)(random);
      return static_cast<double>(std::uniform_int_distribution<int>(
          static_cast<int>(std::ceil(low)), static_cast<int>(high))(random));
    };
    const auto size = [&] { return number(1.0, largest); };
    const OdGeVector3d at(number(-2.0, 10.0), number(-2.0, 10.0), number(-2.0, 8.0));
    const int kind = std::uniform_int_distribution<int>(0, 9)(random);
    if (kind < 5) return box(size(), size(), size(), at);
    const double turn = std::numbers::pi / 2.0 * std::uniform_int_distribution<int>(0, 3)(random);
    const OdGeVector3d axes[] = {OdGeVector3d::kXAxis, OdGeVector3d::kYAxis, OdGeVector3d::kZAxis};
    const OdGeMatrix3d place =
        OdGeMatrix3d::translation(at) *
        OdGeMatrix3d::rotation(turn, axes[std::uniform_int_distribution<int>(0, 2)(random)]);
    const OdModelerBodyPtr shape = made([&](auto& result) -> OdStatus {
      if (kind == 8) return odModeler().cone(size(), 0.5, size(), result);
      if (kind == 9) return odModeler().sphere(size(), result);
      return odModeler().cylinder(size() / 2.0, size() + 2.0, result);
    });
    return moved(shape, place);
  }

  /// A block with a few shapes added and taken away; null when nothing is left.
  OdModelerBodyPtr randomPart(std::mt19937& random, bool onGrid) {
    OdModelerBodyPtr part = box(10.0, 10.0, 6.0);
    const int steps = std::uniform_int_distribution<int>(0, 5)(random);
    for (int i = 0; i < steps; ++i) {
      const Tools tool{randomShape(random, onGrid, 4.0)};
      const Kind kind = random() % 3 == 0 ? Kind::kUnite : Kind::kSubtract;
      OdModelerBodyPtr next;
      if (m_whole->boolean(kind, part, tool, next, nullptr).ok() && next->check().ok()) part = next;
    }
    return part;
  }

  std::shared_ptr<OdModeler> m_whole;
  int m_count = 0;
  int m_numLocal = 0;
  std::map<std::string, int> m_reasons;
};

int randomCases() {
  const char* text = std::getenv("VDM_LOCAL_CASES");
  return text != nullptr ? std::atoi(text) : 60;
}

TEST_F(LocalBoolean, RandomPartsAndToolsGiveWhatTheWholeBodiesGive) {
  const unsigned seed = freshSeed();
  for (int number = 0; number < randomCases(); ++number) {
    std::mt19937 random(seed + static_cast<unsigned>(number));
    const bool onGrid = number % 2 == 0;
    const OdModelerBodyPtr part = randomPart(random, onGrid);
    const OdModelerBodyPtr tool = randomShape(random, onGrid, 4.0);
    for (const Kind kind : {Kind::kSubtract, Kind::kUnite, Kind::kIntersect}) {
      SCOPED_TRACE("seed " + std::to_string(seed + static_cast<unsigned>(number)) + ", on grid " +
                   std::to_string(onGrid) + ", kind " + std::to_string(static_cast<int>(kind)));
      expectSame(kind, part, {tool});
    }
  }
  RecordProperty("local", m_numLocal);
  for (const auto& [reason, count] : m_reasons) printf("%5d  %s\n", count, reason.c_str());
  printf("%d of %d local\n", m_numLocal, m_count);
  EXPECT_GT(m_numLocal, m_count / 4);
}

TEST_F(LocalBoolean, RealPartsWithHolesAndPiecesPutBack) {
  const char* folder = std::getenv("VDM_STEP_DIR");
  if (folder == nullptr) GTEST_SKIP() << "VDM_STEP_DIR names no folder of parts";
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    OdModelerAssembly assembly;
    if (!odModeler().importStep(OdString::fromUtf8(entry.path().string()), assembly).ok()) continue;
    for (const OdModelerProduct& product : assembly.products) {
      for (const OdModelerBodyPtr& body : product.bodies) {
        if (body->kind() != OdModelerBodyKind::kSolid || body->numFaces() < 100) continue;
        SCOPED_TRACE(entry.path().stem().string());
        std::mt19937 random(freshSeed());
        for (int i = 0; i < 8; ++i) {
          const OdUInt32 index = 1 + static_cast<OdUInt32>(random() % body->numFaces());
          SCOPED_TRACE("at face " + std::to_string(index));
          const OdModelerFace& face = body->face(index);
          const OdGeVector3d at = face.pointOnFace.asVector() - OdGeVector3d(0.0, 0.0, 5.0);
          const Tools tool{cylinder(2.0, 10.0, at)};
          const Outcome cut = expectSame(Kind::kSubtract, body, tool);
          const Outcome piece = expectSame(Kind::kIntersect, body, tool);
          if (cut.status.ok() && piece.status.ok())
            expectSame(Kind::kUnite, cut.body, {piece.body});
        }
      }
    }
  }
  for (const auto& [reason, count] : m_reasons) printf("%5d  %s\n", count, reason.c_str());
  printf("%d of %d local\n", m_numLocal, m_count);
}

// ---- Cases built to break the local way

struct HardCase {
  const char* name;
  Kind kind;
  OdModelerBodyPtr base;
  OdModelerBodyPtr tool;
  bool isLocal;  ///< expected; a whole way is right too, but dear
};

TEST_F(LocalBoolean, HardCasesGiveWhatTheWholeBodiesGive) {
  const auto block = [] { return box(30.0, 20.0, 10.0); };
  const auto withBoss = [&] {
    return combine(Kind::kUnite, block(), {cylinder(3.0, 5.0, {8.0, 8.0, 10.0})});
  };
  const auto withCavity = [&] {
    return combine(Kind::kSubtract, block(), {box(4.0, 4.0, 4.0, {3.0, 3.0, 3.0})});
  };
  const auto twoSolids = [&] {
    return made([&](auto& result) {
      const OdModelerBodyPtr both[] = {block(), box(9.0, 9.0, 9.0, {100.0, 0.0, 0.0})};
      return odModeler().compound(both, result);
    });
  };
  const auto mirrored = [&] {
    const OdGeMatrix3d flip =
        OdGeMatrix3d::mirroring(OdGePlane(OdGePoint3d(), OdGeVector3d::kXAxis));
    return moved(plateWithHole(), OdGeMatrix3d::translation({110.0, 5.0, -3.0}) * flip);
  };
  const auto pin = [](double x, double y) { return cylinder(2.0, 20.0, {x, y, -5.0}); };
  const HardCase cases[] = {
      {"a hole", Kind::kSubtract, block(), pin(8.0, 8.0), true},
      {"a boss", Kind::kUnite, block(), pin(8.0, 8.0), true},
      {"swallows a boss and cuts deeper", Kind::kSubtract, withBoss(),
       box(8.0, 8.0, 10.0, {4.0, 4.0, 8.0}), true},
      {"swallows a boss, flush", Kind::kSubtract, withBoss(), box(8.0, 8.0, 10.0, {4.0, 4.0, 10.0}),
       true},
      {"splits the body", Kind::kSubtract, block(), box(2.0, 40.0, 40.0, {10.0, -5.0, -5.0}),
       false},
      {"opens a cavity", Kind::kSubtract, block(), box(2.0, 2.0, 2.0, {9.0, 9.0, 4.0}), false},
      {"reaches a cavity", Kind::kSubtract, withCavity(), cylinder(1.0, 8.0, {5.0, 5.0, 5.0}),
       false},
      {"beside a cavity", Kind::kSubtract, withCavity(), pin(20.0, 10.0), true},
      {"closes a cavity", Kind::kUnite,
       combine(Kind::kSubtract, block(), {box(4.0, 4.0, 9.0, {3.0, 3.0, 3.0})}),
       box(8.0, 8.0, 2.0, {1.0, 1.0, 9.0}), false},
      {"touches along an edge", Kind::kUnite, block(), box(5.0, 5.0, 5.0, {30.0, 5.0, 10.0}),
       false},
      {"touches at a vertex", Kind::kSubtract, block(), box(5.0, 5.0, 5.0, {30.0, 20.0, 10.0}),
       false},
      {"is tangent from inside", Kind::kSubtract, block(), cylinder(2.0, 20.0, {2.0, 8.0, -5.0}),
       false},
      {"is tangent from outside", Kind::kUnite, block(), cylinder(2.0, 10.0, {-2.0, 8.0, 0.0}),
       false},
      {"lies in a face", Kind::kSubtract, block(), box(5.0, 5.0, 5.0, {5.0, 5.0, 5.0}), true},
      {"lies on a face", Kind::kUnite, block(), box(5.0, 5.0, 5.0, {5.0, 5.0, 10.0}), true},
      {"lies on a face, nothing to take", Kind::kSubtract, block(),
       box(5.0, 5.0, 5.0, {5.0, 5.0, 10.0}), false},
      {"crosses the seam of a cylinder", Kind::kSubtract, cylinder(10.0, 30.0),
       box(20.0, 4.0, 4.0, {5.0, -2.0, 10.0}), true},
      {"crosses several faces at a vertex", Kind::kSubtract, block(),
       cylinder(4.0, 20.0, {30.0, 20.0, 3.0}), true},
      {"in one of two solids", Kind::kSubtract, twoSolids(), pin(8.0, 8.0), true},
      {"in both of two solids", Kind::kSubtract, twoSolids(), box(90.0, 2.0, 2.0, {25.0, 4.0, 4.0}),
       false},
      {"a mirrored body", Kind::kSubtract, mirrored(), cylinder(3.0, 30.0, {40.0, 20.0, -10.0}),
       true},
      {"a sheet", Kind::kSubtract, made([&](auto& result) {
         return block()->subentBody({Type::kFace, 6}, result);
       }),
       pin(8.0, 8.0), false},
  };
  for (const HardCase& row : cases) {
    SCOPED_TRACE(row.name);
    const Outcome outcome = expectSame(row.kind, row.base, {row.tool});
    if (outcome.status.ok()) {
      EXPECT_EQ(outcome.isLocal(), row.isLocal)
          << std::string(outcome.history.effort.wholeBecause.utf8());
    }
  }
}

TEST_F(LocalBoolean, APieceThatIsPutBackLeavesTheFacesAsTheyWere) {
  const OdModelerBodyPtr parts[] = {box(30.0, 20.0, 10.0), plateWithHole(), cylinder(10.0, 30.0)};
  const OdModelerBodyPtr tools[] = {cylinder(2.0, 30.0, {8.0, 8.0, -5.0}),
                                    box(5.0, 5.0, 5.0, {-2.0, -2.0, 4.0}),
                                    cylinder(3.0, 30.0, {3.0, 0.0, -5.0})};
  for (const OdModelerBodyPtr& part : parts) {
    for (const OdModelerBodyPtr& tool : tools) {
      const Outcome piece = expectSame(Kind::kIntersect, part, {tool});
      const Outcome cut = expectSame(Kind::kSubtract, part, {tool});
      const Outcome healed = expectSame(Kind::kUnite, cut.body, {piece.body});
      EXPECT_EQ(healed.body->numFaces(), part->numFaces());
      EXPECT_EQ(healed.body->numEdges(), part->numEdges());
    }
  }
}

TEST_F(LocalBoolean, SeveralToolsInAFaceOfManyLoopsAndFacesElsewhereStay) {
  Tools grid;
  for (int i = 0; i < 25; ++i) {
    grid.push_back(cylinder(2.0, 30.0, {10.0 + 10.0 * (i % 5), 10.0 + 10.0 * (i / 5), -10.0}));
  }
  const OdModelerBodyPtr plate = expectSame(Kind::kSubtract, box(60.0, 60.0, 10.0), grid).body;
  // Across the plate, so that loops go to either side, and beside a hole.
  const Tools slot{box(70.0, 2.0, 4.0, {-5.0, 24.0, 8.0}),
                   cylinder(1.0, 30.0, {15.0, 15.0, -10.0})};
  const Outcome cut = expectSame(Kind::kSubtract, plate, slot);
  EXPECT_TRUE(cut.isLocal()) << std::string(cut.history.effort.wholeBecause.utf8());
  EXPECT_EQ(cut.history.effort.numFaces, 4u);
  const auto& before = od_occt::asOcct(*plate).topology().faces;
  const auto& after = od_occt::asOcct(*cut.body).topology().faces;
  int same = 0;
  for (int i = 1; i <= before.Extent(); ++i) same += after.Contains(before(i)) ? 1 : 0;
  EXPECT_EQ(same, before.Extent() - 4);
}

TEST_F(LocalBoolean, AFailureAtAnyStepTakesTheWholeWay) {
  std::vector<std::string> steps;
  std::string failsAt;
  const auto modeler = odCreateOcctModeler({OdOcctReach::kLocal, [&](std::string_view step) {
                                              steps.emplace_back(step);
                                              if (step == failsAt) throw std::bad_alloc();
                                            }});
  const OdModelerBodyPtr plate = plateWithHole();
  const Tools tool{cylinder(3.0, 30.0, {20.0, 20.0, -10.0})};
  for (const Kind kind : {Kind::kSubtract, Kind::kUnite, Kind::kIntersect}) {
    failsAt.clear();
    steps.clear();
    const Outcome good = run(*modeler, kind, plate, tool);
    EXPECT_TRUE(good.isLocal());
    const std::vector<std::string> all = steps;
    EXPECT_GE(all.size(), 8u);
    for (const std::string& step : all) {
      failsAt.clear();
      (void)run(*modeler, Kind::kUnite, plate, {box(1.0, 1.0, 20.0)});  // drops what is kept
      failsAt = step;
      const Outcome other = run(*modeler, kind, plate, tool);
      ASSERT_TRUE(succeeded(other.status)) << step;
      EXPECT_FALSE(other.isLocal()) << step;
      expectSameBodies(*other.body, *good.body);
    }
  }
}

TEST_F(LocalBoolean, FacesThatEndInHolesAreTakenOffAsByExtendingTheirNeighbours) {
  const OdModelerBodyPtr plate = plateWithHole();
  const OdModelerBodyPtr boss =
      combine(Kind::kUnite, plate, {cylinder(3.0, 5.0, {20.0, 20.0, 10.0})});
  const OdModelerBodyPtr notch =
      combine(Kind::kSubtract, plate, {box(5.0, 5.0, 5.0, {-1.0, 20.0, 7.0})});
  struct Row {
    OdModelerBodyPtr body;
    std::vector<OdUInt32> faces;
    bool isLocal;
  };
  const auto newFaces = [&](const OdModelerBodyPtr& body) {
    std::vector<OdUInt32> faces;
    for (OdUInt32 i = plate->numFaces() + 1; i <= body->numFaces(); ++i) faces.push_back(i);
    return faces;
  };
  const Row rows[] = {{plate, {faceOfKind(*plate, OdModelerSurfaceKind::kCylinder)}, true},
                      {boss, newFaces(boss), true},
                      {notch, newFaces(notch), false}};
  for (const Row& row : rows) {
    Outcome local;
    Outcome whole;
    local.status = odModeler().removeFaces(row.body, row.faces, local.body, &local.history);
    whole.status = m_whole->removeFaces(row.body, row.faces, whole.body, &whole.history);
    ASSERT_TRUE(succeeded(local.status));
    ASSERT_TRUE(succeeded(whole.status));
    EXPECT_EQ(local.isLocal(), row.isLocal);
    expectSameBodies(*local.body, *whole.body);
    for (std::size_t face = 0; face < row.body->numFaces(); ++face) {
      const OdModelerFate& a = local.history.inputs[0].faces[face];
      const OdModelerFate& b = whole.history.inputs[0].faces[face];
      expectAlike(imagesOf(a, Type::kFace, *local.body), imagesOf(b, Type::kFace, *whole.body),
                  "face " + std::to_string(face + 1));
    }
  }
}

TEST_F(LocalBoolean, ThreeHundredEditsEndWithTheBodyOfOneWholeCut) {
  std::mt19937 random(freshSeed());
  const OdModelerBodyPtr block = box(100.0, 100.0, 10.0);
  OdModelerBodyPtr body = block;
  std::map<int, std::pair<OdModelerBodyPtr, OdModelerBodyPtr>> holes;  // tool, piece
  for (int edit = 0; edit < 300; ++edit) {
    const int place = static_cast<int>(random() % 81);
    const auto known = holes.find(place);
    if (known != holes.end()) {
      body = combine(Kind::kUnite, body, {known->second.second});
      holes.erase(known);
      continue;
    }
    const double radius = 1.0 + static_cast<double>(random() % 30) / 10.0;
    const OdGeVector3d at(10.0 + 10.0 * (place % 9), 10.0 + 10.0 * (place / 9), -1.0);
    const OdModelerBodyPtr tool =
        random() % 2 == 0 ? cylinder(radius, 12.0, at) : box(radius, 2.0, 6.0, at);
    const OdModelerBodyPtr piece = combine(Kind::kIntersect, body, {tool});
    body = combine(Kind::kSubtract, body, {tool});
    holes[place] = {tool, piece};
  }
  Tools tools;
  for (const auto& [place, hole] : holes) tools.push_back(hole.first);
  const Outcome whole = run(*m_whole, Kind::kSubtract, block, tools);
  ASSERT_TRUE(succeeded(whole.status));
  expectSameBodies(*body, *whole.body);
}

}  // namespace
