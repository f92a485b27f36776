// Booleans, fillets and chamfers: sizes, the truth of their history, attributes, refusals.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>

#include "tests/support/modeler_testing.h"

namespace {

using Kind = OdModelerBooleanKind;
using Type = OdModelerSubentType;

class OdModelerBoolean : public ModelerTest {
 protected:
  // What must hold of any history: indices exist, are sorted, unique and of live subentities, and
  // every new face comes from somewhere.
  static void expectSound(const OdModelerHistory& history,
                          const std::vector<OdModelerBodyPtr>& inputs,
                          const OdModelerBody& result) {
    ASSERT_EQ(history.inputs.size(), inputs.size());
    std::set<OdUInt32> explained;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
      for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
        const std::vector<OdModelerFate>& fates = history.inputs[i].fates(type);
        ASSERT_EQ(fates.size(), inputs[i]->numSubents(type));
        for (const OdModelerFate& fate : fates) {
          EXPECT_TRUE(std::ranges::is_sorted(fate.images));
          for (const OdUInt32 image : fate.images) {
            EXPECT_TRUE(result.hasSubent({type, image}));
            if (type == Type::kFace) explained.insert(image);
          }
          for (const OdModelerSubent& made : fate.generated) EXPECT_TRUE(result.hasSubent(made));
        }
      }
    }
    EXPECT_EQ(explained.size(), result.numFaces());
  }
};

TEST_F(OdModelerBoolean, VolumesFollowSetArithmeticAndInputsAreNotTouched) {
  const OdModelerBodyPtr a = box(10.0, 10.0, 10.0);
  const OdModelerBodyPtr b = box(10.0, 10.0, 10.0, {5.0, 5.0, 5.0});
  const OdBinaryData before[] = {bytesNow(a), bytesNow(b)};
  const auto volume = [&](Kind kind) { return combine(kind, a, {b})->massProperties().volume; };
  EXPECT_NEAR(volume(Kind::kUnite), 1875.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kIntersect), 125.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kSubtract), 875.0, 1e-6);
  EXPECT_EQ(bytesNow(a), before[0]);
  EXPECT_EQ(bytesNow(b), before[1]);
}

// A ring in an upper and a lower half, as exchange files have them, whose axes are opposite.
TEST_F(OdModelerBoolean, ACutElsewhereLeavesThePartAndItsOtherFacesAsTheyAre) {
  OdModelerProfile halfDisc;
  halfDisc.plane = OdGePlane(OdGePoint3d(), OdGeVector3d::kXAxis, OdGeVector3d::kZAxis);
  halfDisc.outer = {{{17.0, 0.0}, 0.0}, {{23.0, 0.0}, 1.0}};
  constexpr double kAngle = 4.2;
  const OdModelerBodyPtr upper = made(
      [&](auto& r) { return odModeler().revolve(halfDisc, {}, OdGeVector3d::kZAxis, kAngle, r); });
  const OdModelerBodyPtr lower =
      moved(upper, OdGeMatrix3d::rotation(kAngle, OdGeVector3d::kZAxis) *
                       OdGeMatrix3d::rotation(std::numbers::pi, OdGeVector3d::kXAxis));
  const OdModelerBodyPtr block = box(10.0, 20.0, 10.0, {15.0, -10.0, -5.0});
  // As read from a file, where nothing is known of how it was made.
  const OdModelerBodyPtr part = bodyOf(bytesOf(combine(Kind::kUnite, upper, {lower, block})));
  const OdBinaryData before = bytesNow(part);
  const OdModelerBodyPtr tool = box(2.0, 2.0, 2.0, {24.0, -9.0, 4.0});
  const OdModelerBodyPtr piece = combine(Kind::kIntersect, part, {tool});
  const OdModelerBodyPtr cut = combine(Kind::kSubtract, part, {tool});
  const OdModelerBodyPtr healed = combine(Kind::kUnite, cut, {piece});
  for (const OdModelerBodyPtr& body : {part, cut, healed}) EXPECT_TRUE(succeeded(body->check()));
  EXPECT_EQ(bytesNow(part), before);
  EXPECT_EQ(cut->numFaces(), part->numFaces() + 4);
  EXPECT_EQ(healed->numFaces(), part->numFaces());
}

TEST_F(OdModelerBoolean, WhatAnIntersectionLeavesServesItsOwnSubtractionOnly) {
  const OdModelerBodyPtr a = box(10.0, 10.0, 10.0);
  const OdModelerBodyPtr b = box(10.0, 10.0, 5.0, {5.0, 5.0, 5.0});
  const OdModelerBodyPtr c = box(10.0, 10.0, 10.0, {9.0, 0.0, 0.0});
  const auto volume = [](Kind kind, const OdModelerBodyPtr& base, const OdModelerBodyPtr& tool) {
    return combine(kind, base, {tool})->massProperties().volume;
  };
  // The next operation has another tool, the inputs in another order, another kind, or comes later.
  EXPECT_NEAR(volume(Kind::kIntersect, a, b), 125.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kSubtract, a, c), 900.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kIntersect, a, b), 125.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kSubtract, b, a), 375.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kIntersect, a, b), 125.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kUnite, a, b), 1375.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kSubtract, a, b), 875.0, 1e-6);
  // The one that it serves has its own history, and the body of a fresh subtraction.
  EXPECT_NEAR(volume(Kind::kIntersect, a, b), 125.0, 1e-6);
  OdModelerHistory history;
  const OdModelerBodyPtr cut = combine(Kind::kSubtract, a, {b}, &history);
  expectSound(history, {a, b}, *cut);
  EXPECT_EQ(cut->fingerprint(), combine(Kind::kSubtract, a, {b})->fingerprint());
}

TEST_F(OdModelerBoolean, FacesOfOnePlaneStayApartWhereTheyLieApart) {
  // A step that is ten times what the modeller counts as one point, and one of a tenth of it.
  for (const auto& [step, faces] : {std::pair(1e-6, 8u), std::pair(1e-8, 6u)}) {
    const OdModelerBodyPtr both = combine(Kind::kUnite, box(10.0, 10.0, 10.0),
                                          {box(10.0, 10.0, 10.0 + step, {10.0, 0.0, 0.0})});
    EXPECT_EQ(both->numFaces(), faces) << step;
  }
}

TEST_F(OdModelerBoolean, FacesOfOnePlaneMergeAndBothOldOnesPointToTheNewOne) {
  const OdModelerBodyPtr inputs[] = {box(10.0, 10.0, 10.0),
                                     box(10.0, 10.0, 10.0, {10.0, 0.0, 0.0})};
  OdModelerHistory history;
  const OdModelerBodyPtr result = combine(Kind::kUnite, inputs[0], {inputs[1]}, &history);
  expectSound(history, {inputs[0], inputs[1]}, *result);
  EXPECT_EQ(result->numFaces(), 6u);
  EXPECT_EQ(result->numEdges(), 12u);
  const std::vector<OdUInt32> top{faceTowards(*result, OdGeVector3d::kZAxis)};
  for (std::size_t i = 0; i < 2; ++i) {
    const OdUInt32 old = faceTowards(*inputs[i], OdGeVector3d::kZAxis);
    EXPECT_EQ(history.inputs[i].faces[old - 1].images, top);
  }
  const OdUInt32 joint = faceTowards(*inputs[0], OdGeVector3d::kXAxis);
  EXPECT_TRUE(history.inputs[0].faces[joint - 1].deleted()) << "the common wall is inside now";
}

TEST_F(OdModelerBoolean, WhatStoodApartInThePartStaysApartAlsoWhereItIsCutAndHealed) {
  OdModelerProfile profile;  // the side along y = 0 in two halves, as exchange files have them
  for (const OdGePoint2d& corner : {OdGePoint2d(0, 0), OdGePoint2d(50, 0), OdGePoint2d(100, 0),
                                    OdGePoint2d(100, 60), OdGePoint2d(0, 60)}) {
    profile.outer.push_back({corner, 0.0});
  }
  const OdModelerBodyPtr part =
      made([&](auto& r) { return odModeler().extrude(profile, OdGeVector3d::kZAxis * 10.0, r); });
  ASSERT_EQ(part->numFaces(), 7u);
  // Away from the border of the halves, and across it.
  const std::pair<OdModelerBodyPtr, OdUInt32> tools[] = {
      {cylinder(8.0, 30.0, {20.0, 30.0, -5.0}), 1u}, {box(8.0, 20.0, 4.0, {46.0, -10.0, 3.0}), 5u}};
  for (const auto& [tool, walls] : tools) {
    const OdModelerBodyPtr piece = combine(Kind::kIntersect, part, {tool});
    const OdModelerBodyPtr cut = combine(Kind::kSubtract, part, {tool});
    EXPECT_EQ(cut->numFaces(), part->numFaces() + walls);
    const OdModelerBodyPtr healed = combine(Kind::kUnite, cut, {piece});
    EXPECT_EQ(healed->numFaces(), 7u);
    EXPECT_EQ(healed->numEdges(), part->numEdges());
    EXPECT_EQ(healed->numVertices(), part->numVertices());
  }
}

/// A part that is cut by a tool and gets back what the tool took.
class OdModelerHealedHole : public OdModelerBoolean {
 protected:
  // The faces of the cut part and of the piece that came to lie in `wall`.
  static std::size_t sourcesOf(const OdModelerHistory& history, OdUInt32 wall) {
    std::size_t count = 0;
    for (const OdModelerInputHistory& input : history.inputs) {
      for (const OdModelerFate& fate : input.faces) {
        EXPECT_LE(fate.images.size(), 1u) << "nothing is divided";
        count += static_cast<std::size_t>(std::ranges::count(fate.images, wall));
      }
    }
    return count;
  }
  static void expectAsBefore(const OdModelerBodyPtr& part, const OdModelerBodyPtr& cut,
                             const OdModelerBodyPtr& piece, OdModelerSurfaceKind kind,
                             double radius) {
    const OdBinaryData before[] = {bytesNow(cut), bytesNow(piece)};
    OdModelerHistory history;
    const OdModelerBodyPtr healed = combine(Kind::kUnite, cut, {piece}, &history);
    expectSound(history, {cut, piece}, *healed);
    EXPECT_TRUE(succeeded(healed->check()));
    EXPECT_EQ(healed->numFaces(), part->numFaces());
    EXPECT_EQ(healed->numEdges(), part->numEdges());
    EXPECT_EQ(healed->numVertices(), part->numVertices());
    const OdModelerMassProperties have = healed->massProperties();
    const OdModelerMassProperties wanted = part->massProperties();
    EXPECT_NEAR(have.volume, wanted.volume, 1e-9 * wanted.volume);
    EXPECT_NEAR(have.area, wanted.area, 1e-9 * wanted.area);
    std::vector<OdUInt32> walls;
    for (OdUInt32 i = 1; i <= healed->numFaces(); ++i) {
      const OdModelerFace& face = healed->face(i);
      if (face.kind == kind && std::abs(face.radius - radius) < 1e-9) walls.push_back(i);
    }
    ASSERT_EQ(walls.size(), 1u);
    EXPECT_GE(sourcesOf(history, walls[0]), 2u);
    EXPECT_EQ(bytesNow(cut), before[0]) << "bodies are shared and never change";
    EXPECT_EQ(bytesNow(piece), before[1]);
  }
};

TEST_F(OdModelerHealedHole, LeavesAPartAloneWhoseWallIsInHalves) {
  OdModelerProfile profile;
  profile.outer = {
      {{-50.0, -40.0}, 0.0}, {{50.0, -40.0}, 0.0}, {{50.0, 40.0}, 0.0}, {{-50.0, 40.0}, 0.0}};
  profile.holes = {{{{-8.0, 0.0}, 1.0}, {{8.0, 0.0}, 1.0}}};
  const OdModelerBodyPtr part =
      made([&](auto& r) { return odModeler().extrude(profile, OdGeVector3d::kZAxis * 20.0, r); });
  const OdBinaryData before = bytesNow(part);
  const std::pair<double, OdGeVector3d> tools[] = {
      {7.656393297, {6.14407611, 6.056526531, -2.596086521}},
      {4.338322892, {9.338039187, -0.7120746715, -4.797622615}},
      {4.0, {0.0, 9.0, 5.0}}};
  for (const auto& [radius, place] : tools) {
    const OdModelerBodyPtr tool = cylinder(radius, 30.0, place);
    const OdModelerBodyPtr piece = combine(Kind::kIntersect, part, {tool});
    combine(Kind::kUnite, combine(Kind::kSubtract, part, {tool}), {piece});
    EXPECT_EQ(bytesNow(part), before) << "radius " << radius;
  }
}

TEST_F(OdModelerHealedHole, HasOneWallWhereTheSeamIsPartlyInEitherPart) {
  const OdModelerBodyPtr drill = cylinder(3.5, 100.0, {22.916666666666668, 181.349206, -85.0});
  const OdModelerBodyPtr part = combine(Kind::kSubtract, box(300.0, 200.0, 10.0), {drill});
  const OdGeVector3d axis(20.535714285714285, 182.738095, 0.0);
  const OdModelerBodyPtr counterbore =
      combine(Kind::kUnite, cylinder(4.5, 21.0, axis + OdGeVector3d(0.0, 0.0, -10.0)),
              {cylinder(8.0, 6.0, axis + OdGeVector3d(0.0, 0.0, 5.0))});
  expectAsBefore(part, combine(Kind::kSubtract, part, {counterbore}),
                 combine(Kind::kIntersect, part, {counterbore}), OdModelerSurfaceKind::kCylinder,
                 3.5);
}

TEST_F(OdModelerHealedHole, HasOneWallWhereItIsDrilledThroughASlotThatIsFilledAgain) {
  const OdModelerBodyPtr block = box(120.0, 90.0, 40.0);
  const OdModelerBodyPtr slot =
      combine(Kind::kUnite, box(28.0, 12.0, 14.0, {86.6, -0.3, 36.0}),
              {cylinder(6.0, 14.0, {86.6, 5.7, 36.0}), cylinder(6.0, 14.0, {114.6, 5.7, 36.0})});
  const OdModelerBodyPtr drill = cylinder(3.5, 100.0, {79.4, 8.75, -55.0});
  const auto drilled = [&](Kind kind) {
    return combine(Kind::kSubtract, combine(kind, block, {slot}), {drill});
  };
  expectAsBefore(combine(Kind::kSubtract, block, {drill}), drilled(Kind::kSubtract),
                 drilled(Kind::kIntersect), OdModelerSurfaceKind::kCylinder, 3.5);
}

TEST_F(OdModelerHealedHole, HasOneWallAlsoWhereThatIsABallACounterSinkOrAGroove) {
  const auto cone = made([](auto& r) { return odModeler().cone(6.0, 9.0, 3.001, r); });
  const auto at = [](const OdModelerBodyPtr& body, OdGeVector3d place) {
    return moved(body, OdGeMatrix3d::translation(place));
  };
  const std::pair<OdModelerBodyPtr, OdModelerSurfaceKind> tools[] = {
      {made([](auto& r) { return odModeler().sphere(9.0, r); }), OdModelerSurfaceKind::kSphere},
      {combine(Kind::kUnite, cylinder(6.0, 60.0, {0.0, 0.0, -50.0}), {at(cone, {0.0, 0.0, -3.0})}),
       OdModelerSurfaceKind::kCylinder},
      {made([](auto& r) { return odModeler().torus(12.0, 4.0, r); }), OdModelerSurfaceKind::kTorus},
  };
  for (const auto& [tool, kind] : tools) {
    SCOPED_TRACE(static_cast<int>(kind));
    const OdModelerBodyPtr part =
        combine(Kind::kSubtract, box(100.0, 80.0, 40.0), {at(tool, {50.0, 40.0, 40.0})});
    const OdModelerBodyPtr mill = cylinder(5.0, 30.0, {57.0, 43.0, 25.0});
    const OdUInt32 wall = faceOfKind(*part, kind);
    expectAsBefore(part, combine(Kind::kSubtract, part, {mill}),
                   combine(Kind::kIntersect, part, {mill}), kind, part->face(wall).radius);
  }
}

TEST_F(OdModelerBoolean, ColoursFollowTheFaces) {
  const OdModelerColor red{255, 0, 0};
  const OdModelerColor blue{0, 0, 255};
  const OdModelerBodyPtr plain = box(100.0, 60.0, 10.0);
  OdModelerBodyAttributes attributes;
  attributes.faceColors[faceTowards(*plain, OdGeVector3d::kZAxis)] = red;
  attributes.faceNames[faceTowards(*plain, OdGeVector3d::kXAxis)] = L"datum";
  const OdModelerBodyPtr drill = colored(cylinder(8.0, 30.0, {50.0, 30.0, -10.0}), blue);
  const OdModelerBodyPtr result =
      combine(Kind::kSubtract, plain->withAttributes(attributes), {drill});
  const OdModelerBodyAttributes& kept = result->attributes();
  ASSERT_EQ(kept.faceColors.size(), 2u);
  EXPECT_EQ(kept.faceColors.at(faceTowards(*result, OdGeVector3d::kZAxis)), red);
  EXPECT_EQ(kept.faceColors.at(faceOfKind(*result, OdModelerSurfaceKind::kCylinder)), blue);
  EXPECT_EQ(kept.faceNames.at(faceTowards(*result, OdGeVector3d::kXAxis)), L"datum");
}

TEST_F(OdModelerBoolean, FilletRoundsTheEdgeAndTellsWhichFaceCameOfIt) {
  const OdModelerBodyPtr cube = box(10.0, 10.0, 10.0);
  OdModelerBodyPtr result;
  OdModelerHistory history;
  const OdUInt32 edges[] = {1};
  ASSERT_TRUE(succeeded(odModeler().fillet(cube, edges, 2.0, result, &history)));
  EXPECT_NEAR(result->massProperties().volume, 1000.0 - 10.0 * (4.0 - std::numbers::pi), 1e-6);
  const OdModelerFate& fate = history.inputs.at(0).edges[0];
  EXPECT_TRUE(fate.deleted());
  ASSERT_FALSE(fate.generated.empty());
  EXPECT_EQ(fate.generated.front().type, OdModelerSubentType::kFace);
  EXPECT_EQ(fate.generated.front().index, faceOfKind(*result, OdModelerSurfaceKind::kCylinder));
  EXPECT_EQ(std::ranges::count(history.inputs[0].faces, true, &OdModelerFate::changed), 4)
      << "two beside the edge, two at its ends";
}

TEST_F(OdModelerBoolean, ChamferCutsItsEdgeBack) {
  OdModelerBodyPtr result;
  OdModelerHistory history;
  const OdUInt32 edges[] = {1};
  ASSERT_TRUE(succeeded(odModeler().chamfer(box(10.0, 10.0, 10.0), edges, 1.0, result, &history)));
  EXPECT_NEAR(result->massProperties().volume, 1000.0 - 5.0, 1e-6);
  EXPECT_FALSE(history.inputs[0].edges[0].generated.empty());
}

}  // namespace
