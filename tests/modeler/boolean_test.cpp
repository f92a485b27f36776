// Booleans: sizes, the truth of their history, attributes, refusals.
#include <algorithm>
#include <numbers>
#include <set>

#include "tests/modeler/modeler_fixture.h"

namespace {

constexpr double kPi = std::numbers::pi;
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

TEST_F(OdModelerBoolean, VolumesFollowSetArithmetic) {
  const OdModelerBodyPtr a = box(10.0, 10.0, 10.0);
  const OdModelerBodyPtr b = box(10.0, 10.0, 10.0, {5.0, 5.0, 5.0});
  const auto volume = [&](Kind kind) { return combine(kind, a, {b})->massProperties().volume; };
  EXPECT_NEAR(volume(Kind::kUnite), 1875.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kIntersect), 125.0, 1e-6);
  EXPECT_NEAR(volume(Kind::kSubtract), 875.0, 1e-6);
}

TEST_F(OdModelerBoolean, HoleThroughAPlateTellsWhatBecameOfEachFace) {
  const OdModelerBodyPtr plate = box(100.0, 60.0, 10.0);
  const OdModelerBodyPtr drill = cylinder(8.0, 30.0, {50.0, 30.0, -10.0});
  OdModelerHistory history;
  const OdModelerBodyPtr result = combine(Kind::kSubtract, plate, {drill}, &history);
  expectSound(history, {plate, drill}, *result);

  for (const OdGeVector3d& side :
       {OdGeVector3d::kXAxis, -OdGeVector3d::kXAxis, OdGeVector3d::kYAxis, -OdGeVector3d::kYAxis,
        OdGeVector3d::kZAxis, -OdGeVector3d::kZAxis}) {
    const OdModelerFate& fate = history.inputs[0].faces[faceTowards(*plate, side) - 1];
    ASSERT_EQ(fate.images.size(), 1u);
    EXPECT_EQ(fate.images[0], faceTowards(*result, side));
    const bool cut = side.z != 0.0;
    EXPECT_EQ(fate.changed, cut);
    ASSERT_EQ(fate.generated.size(), cut ? 2u : 0u) << "the section circle and its vertex";
    if (!cut) continue;
    ASSERT_EQ(fate.generated[0].type, Type::kEdge);
    EXPECT_EQ(result->edge(fate.generated[0].index).kind, OdModelerCurveKind::kCircle);
    EXPECT_EQ(fate.generated[1].type, Type::kVertex);
  }
  const std::vector<OdModelerFate>& drilled = history.inputs[1].faces;
  const OdUInt32 wall = faceOfKind(*drill, OdModelerSurfaceKind::kCylinder);
  for (OdUInt32 i = 1; i <= drilled.size(); ++i) {
    if (i != wall) {
      EXPECT_TRUE(drilled[i - 1].deleted()) << "an end of the drill";
      continue;
    }
    ASSERT_EQ(drilled[i - 1].images.size(), 1u);
    EXPECT_EQ(drilled[i - 1].images[0], faceOfKind(*result, OdModelerSurfaceKind::kCylinder));
  }
}

TEST_F(OdModelerBoolean, SlotThatCutsAFaceInTwoGivesTwoImages) {
  const OdModelerBodyPtr plate = box(30.0, 20.0, 10.0);
  OdModelerHistory history;
  const OdModelerBodyPtr result =
      combine(Kind::kSubtract, plate, {box(10.0, 40.0, 5.0, {10.0, -10.0, 5.0})}, &history);
  const OdModelerFate& top = history.inputs[0].faces[faceTowards(*plate, OdGeVector3d::kZAxis) - 1];
  ASSERT_EQ(top.images.size(), 2u);
  for (const OdUInt32 image : top.images) EXPECT_NEAR(result->face(image).area, 200.0, 1e-6);
  EXPECT_EQ(history.faceMarkers(0).size(), 6u);
}

TEST_F(OdModelerBoolean, FacesOfOnePlaneMergeAndBothOldOnesPointToTheNewOne) {
  const OdModelerBodyPtr left = box(10.0, 10.0, 10.0);
  const OdModelerBodyPtr right = box(10.0, 10.0, 10.0, {10.0, 0.0, 0.0});
  OdModelerHistory history;
  const OdModelerBodyPtr result = combine(Kind::kUnite, left, {right}, &history);
  expectSound(history, {left, right}, *result);
  EXPECT_EQ(result->numFaces(), 6u);
  EXPECT_EQ(result->numEdges(), 12u);
  const OdUInt32 top = faceTowards(*result, OdGeVector3d::kZAxis);
  for (std::size_t i = 0; i < 2; ++i) {
    const OdModelerBody& input = i == 0 ? *left : *right;
    const OdModelerFate& fate =
        history.inputs[i].faces[faceTowards(input, OdGeVector3d::kZAxis) - 1];
    EXPECT_EQ(fate.images, std::vector<OdUInt32>{top});
  }
  const OdModelerFate& joint =
      history.inputs[0].faces[faceTowards(*left, OdGeVector3d::kXAxis) - 1];
  EXPECT_TRUE(joint.deleted()) << "the common wall is inside now";
}

TEST_F(OdModelerBoolean, SeveralToolsKeepTheirOwnHistories) {
  const OdModelerBodyPtr plate = box(100.0, 20.0, 10.0);
  std::vector<OdModelerBodyPtr> inputs{plate};
  for (int i = 0; i < 8; ++i) {
    inputs.push_back(cylinder(2.0 + 0.1 * i, 20.0, {10.0 + 11.0 * i, 10.0, -5.0}));
  }
  OdModelerHistory history;
  const OdModelerBodyPtr result =
      combine(Kind::kSubtract, plate, {inputs.begin() + 1, inputs.end()}, &history);
  expectSound(history, inputs, *result);
  EXPECT_EQ(result->numFaces(), 14u);
  for (std::size_t i = 1; i < inputs.size(); ++i) {
    const OdUInt32 wall = faceOfKind(*inputs[i], OdModelerSurfaceKind::kCylinder);
    const OdModelerFate& fate = history.inputs[i].faces[wall - 1];
    ASSERT_EQ(fate.images.size(), 1u);
    EXPECT_NEAR(result->face(fate.images[0]).radius, 2.0 + 0.1 * static_cast<double>(i - 1), 1e-9);
  }
}

TEST_F(OdModelerBoolean, ACutThroughGivesTwoSolidsThatCanBeTakenApart) {
  const OdModelerBodyPtr whole = box(30.0, 10.0, 10.0);
  const OdModelerBodyPtr result = combine(Kind::kSubtract, colored(whole, {1, 2, 3}, L"bar"),
                                          {box(10.0, 30.0, 30.0, {10.0, -5.0, -5.0})});
  EXPECT_EQ(result->numSolids(), 2u);
  const std::vector<OdModelerBodyPtr> parts = result->solids();
  ASSERT_EQ(parts.size(), 2u);
  for (const OdModelerBodyPtr& part : parts) {
    EXPECT_NEAR(part->massProperties().volume, 1000.0, 1e-6);
    EXPECT_EQ(part->attributes().name, L"bar");
  }
  OdModelerBodyPtr again;
  ASSERT_TRUE(succeeded(odModeler().compound(parts, again)));
  EXPECT_EQ(again->numFaces(), result->numFaces());
}

TEST_F(OdModelerBoolean, ColoursFollowTheFaces) {
  const OdModelerColor grey{128, 128, 128};
  const OdModelerColor red{255, 0, 0};
  const OdModelerColor blue{0, 0, 255};
  const OdModelerBodyPtr plain = box(100.0, 60.0, 10.0);
  OdModelerBodyAttributes attributes;
  attributes.color = grey;
  attributes.faceColors[faceTowards(*plain, OdGeVector3d::kZAxis)] = red;
  attributes.faceNames[faceTowards(*plain, OdGeVector3d::kXAxis)] = L"datum";
  const OdModelerBodyPtr result =
      combine(Kind::kSubtract, plain->withAttributes(attributes),
              {colored(cylinder(8.0, 30.0, {50.0, 30.0, -10.0}), blue)});
  const OdModelerBodyAttributes& kept = result->attributes();
  EXPECT_EQ(kept.color, grey);
  ASSERT_EQ(kept.faceColors.size(), 2u);
  EXPECT_EQ(kept.faceColors.at(faceTowards(*result, OdGeVector3d::kZAxis)), red);
  EXPECT_EQ(kept.faceColors.at(faceOfKind(*result, OdModelerSurfaceKind::kCylinder)), blue);
  EXPECT_EQ(kept.faceNames.at(faceTowards(*result, OdGeVector3d::kXAxis)), L"datum");
}

TEST_F(OdModelerBoolean, FailuresNameTheReasonAndLeaveResultAndHistoryAlone) {
  const OdModelerBodyPtr small = box(1.0, 1.0, 1.0);
  const OdModelerBodyPtr big = box(9.0, 9.0, 9.0, {-4.0, -4.0, -4.0});
  const OdModelerBodyPtr far = box(1.0, 1.0, 1.0, {50.0, 0.0, 0.0});
  struct Row {
    Kind kind;
    OdModelerBodyPtr base;
    std::vector<OdModelerBodyPtr> tools;
    OdResult code;
  };
  const Row rows[] = {
      {Kind::kSubtract, small, {big}, eDegenerateGeometry},
      {Kind::kSubtract, small, {small}, eDegenerateGeometry},
      {Kind::kIntersect, small, {far}, eDegenerateGeometry},
      {Kind::kUnite, small, {}, eInvalidInput},
      {Kind::kUnite, small, {nullptr}, eInvalidInput},
      {Kind::kUnite, nullptr, {small}, eInvalidInput},
  };
  for (const Row& row : rows) {
    OdModelerBodyPtr result = far;
    OdModelerHistory history;
    history.inputs.resize(7);
    const OdModelerStatus status =
        odModeler().boolean(row.kind, row.base, row.tools, result, &history);
    EXPECT_EQ(status.code, row.code) << status.text.utf8();
    EXPECT_FALSE(status.text.isEmpty());
    EXPECT_EQ(result, far);
    EXPECT_EQ(history.inputs.size(), 7u);
  }
}

TEST_F(OdModelerBoolean, InputsAreNotTouched) {
  const OdModelerBodyPtr plate = box(100.0, 60.0, 10.0);
  const OdModelerBodyPtr drill = cylinder(8.0, 10.0, {50.0, 0.0, 0.0});
  const OdBinaryData plateBefore = bytesOf(plate);
  const OdBinaryData drillBefore = bytesOf(drill);
  for (const Kind kind : {Kind::kUnite, Kind::kIntersect, Kind::kSubtract}) {
    combine(kind, plate, {drill});
  }
  EXPECT_EQ(bytesOf(plate), plateBefore);
  EXPECT_EQ(bytesOf(drill), drillBefore);
}

}  // namespace
