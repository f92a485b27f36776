// Finding subentities again without a history: right, or not at all.
#include "host/naming/body_match.h"

#include <algorithm>
#include <numbers>
#include <random>

#include "tests/host/naming/naming_fixture.h"

namespace vdm_host {
namespace {

class VdmSignatureMatch : public NamingTest {
 protected:
  struct Counts {
    int right = 0, wrong = 0, ambiguous = 0, lost = 0;
    [[nodiscard]] int all() const { return right + wrong + ambiguous + lost; }
  };

  // `motion` is where the geometry of `before` went; `wrong` counts matches that lie elsewhere.
  static Counts judge(const OdModelerBody& before, const OdModelerBody& now,
                      const OdGeMatrix3d& motion = {}, double slack = 0.0) {
    const BodyMatch match = matchBySignature(before, now);
    MatchTolerance tolerance = MatchTolerance::of(before, now);
    tolerance.length += slack;
    Counts counts;
    for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
      for (OdUInt32 i = 1; i <= before.numSubents(type); ++i) {
        const SubentMatch& found = match.of({type, i});
        counts.ambiguous += found.grade == ReferenceGrade::kAmbiguous;
        counts.lost += found.grade == ReferenceGrade::kLost;
        for (const OdUInt32 image : found.images) {
          const SubentSignature wanted = signatureOf(before, {type, i}).movedBy(motion);
          const bool right = liesOnSame(wanted, signatureOf(now, {type, image}), tolerance);
          (right ? counts.right : counts.wrong) += 1;
          EXPECT_TRUE(right) << static_cast<int>(type) << " " << i << " -> " << image << " at "
                             << wanted.place.x << " " << wanted.place.y << " " << wanted.place.z;
        }
      }
    }
    return counts;
  }
};

TEST_F(VdmSignatureMatch, TheSamePartBuiltInAnotherOrder) {
  std::vector<OdModelerBodyPtr> tools = drills(10, 7);
  tools.push_back(box(40.0, 20.0, 5.0, {240.0, 100.0, 5.0}));
  const OdModelerBodyPtr before = drilled(tools);
  std::mt19937 random(7);
  OdModelerBodyPtr now = box(310.0, 200.0, 10.0);
  std::ranges::shuffle(tools, random);
  for (const OdModelerBodyPtr& tool : tools) {
    now = combine(BooleanKind::kSubtract, now, {tool});
  }
  now = combine(BooleanKind::kSubtract, now, {box(10.0, 200.0, 10.0, {300.0, 0.0, 0.0})});
  const Counts counts = judge(*before, *now);
  EXPECT_EQ(counts.right, counts.all());
}

TEST_F(VdmSignatureMatch, DroppedAndDisplacedHoles) {
  std::vector<OdModelerBodyPtr> tools = drills(10, 7);
  const OdModelerBodyPtr before = drilled(tools);
  const OdModelerBodyPtr last = tools.back();
  tools.erase(tools.begin() + 23);
  Counts counts = judge(*before, *drilled(tools));
  EXPECT_EQ(counts.wrong + counts.ambiguous, 0);
  EXPECT_EQ(counts.lost, 1 + 3 + 2) << "one hole";
  tools.back() = moved(last, OdGeMatrix3d::translation({0.5, 0.0, 0.0}));
  counts = judge(*before, *drilled(tools), {}, 0.6);
  EXPECT_EQ(counts.wrong + counts.ambiguous, 0);
  EXPECT_EQ(counts.lost, 6) << "a hole that moved by an eighth of its radius is the same";
}

TEST_F(VdmSignatureMatch, SmallChangesOfSize) {
  const OdModelerBodyPtr before = drilled(drills(10, 7));
  Counts counts = judge(*before, *drilled(drills(10, 7), 300.4), {}, 0.5);
  EXPECT_EQ(counts.right, counts.all());
  const OdModelerBodyPtr centred = moved(before, OdGeMatrix3d::translation({-150.0, 0.0, 0.0}));
  const OdModelerBodyPtr longer =
      moved(drilled(drills(10, 7, 30.2), 300.4), OdGeMatrix3d::translation({-150.2, 0.0, 0.0}));
  counts = judge(*centred, *longer, {}, 0.5);
  EXPECT_EQ(counts.right, counts.all());
}

TEST_F(VdmSignatureMatch, BodiesThatMovedTurnedOrWereMirrored) {
  std::vector<OdModelerBodyPtr> tools = drills(5, 3);
  tools.push_back(cylinder(10.0, 30.0, {200.0, 150.0, -5.0}));
  tools.push_back(box(10.0, 40.0, 5.0, {250.0, 30.0, 5.0}));
  const OdModelerBodyPtr before = drilled(tools);
  const OdGeMatrix3d motions[] = {
      OdGeMatrix3d::translation({1000.0, -20.0, 7.0}),
      OdGeMatrix3d::rotation(0.7, {1.0, 2.0, 3.0}, {5.0, 5.0, 5.0}),
      OdGeMatrix3d::rotation(std::numbers::pi, OdGeVector3d::kZAxis, {150.0, 100.0, 0.0}),
      OdGeMatrix3d::mirroring(OdGePlane(OdGePoint3d(150.0, 0.0, 0.0), OdGeVector3d::kXAxis)),
  };
  for (const OdGeMatrix3d& motion : motions) {
    // Baked in, so that nothing but geometry tells.
    const OdModelerBodyPtr now = combine(BooleanKind::kSubtract, moved(before, motion),
                                         {box(1.0, 1.0, 1.0, {5000.0, 0.0, 0.0})});
    const Counts counts = judge(*before, *now, motion);
    EXPECT_EQ(counts.right, counts.all());
  }
}

TEST_F(VdmSignatureMatch, WhatLooksAlikeIsAmbiguous) {
  // A box on its own, elsewhere: which end is which?
  const OdModelerBodyPtr block = box(100.0, 60.0, 10.0);
  Counts counts = judge(*block, *moved(block, OdGeMatrix3d::translation({500.0, 0.0, 0.0})));
  EXPECT_EQ(counts.wrong + counts.right, 0);
  EXPECT_EQ(counts.ambiguous, counts.all());
  EXPECT_EQ(judge(*block, *box(100.0, 60.0, 10.0)).right, 26) << "in its place, position tells";
  // A hole in the middle is the same whichever way the block was turned; its rims are not.
  const OdModelerBodyPtr bored =
      combine(BooleanKind::kSubtract, block, {cylinder(5.0, 20.0, {50.0, 30.0, -5.0})});
  const BodyMatch match =
      matchBySignature(*bored, *moved(bored, OdGeMatrix3d::translation({500.0, 0.0, 0.0})));
  const OdUInt32 hole = faceOfKind(*bored, OdModelerSurfaceKind::kCylinder);
  EXPECT_EQ(match.of({Type::kFace, hole}).grade, ReferenceGrade::kBySignature);
  // One of two slots side by side is gone, the other has moved to the middle between them.
  const OdModelerBodyPtr two = combine(BooleanKind::kSubtract, plate(),
                                       {box(10.0, 40.0, 20.0, {100.0, 50.0, -5.0}),
                                        box(10.0, 40.0, 20.0, {104.0 + 10.0, 50.0, -5.0})});
  const OdModelerBodyPtr one =
      combine(BooleanKind::kSubtract, plate(), {box(10.0, 40.0, 20.0, {107.0, 50.0, -5.0})});
  const BodyMatch slots = matchBySignature(*two, *one);
  for (OdUInt32 face = 1; face <= two->numFaces(); ++face) {
    if (std::abs(two->face(face).area - 400.0) > 1e-6) continue;
    EXPECT_TRUE(slots.of({Type::kFace, face}).images.empty()) << "wall " << face;
  }
}

TEST_F(VdmSignatureMatch, AFaceThatMeetsOtherNeighboursIsAnotherFace) {
  // The wall of a notch at a corner, and the side of a block on top, as large and near to it.
  const OdModelerBodyPtr notched =
      combine(BooleanKind::kSubtract, plate(), {box(20.0, 100.0, 10.0)});
  const OdModelerBodyPtr topped =
      combine(BooleanKind::kUnite, plate(), {box(50.0, 100.0, 10.0, {22.0, 2.0, 10.0})});
  const BodyMatch match = matchBySignature(*notched, *topped);
  EXPECT_TRUE(match.of({Type::kFace, faceAt(*notched, {20, 50, 5})}).images.empty());
  EXPECT_EQ(match.of({Type::kFace, faceAt(*notched, {300, 100, 5})}).images,
            std::vector{faceAt(*topped, {300, 100, 5})});
}

TEST_F(VdmSignatureMatch, WhatIsLeftOfASurfaceOutranksWhatIsNear) {
  const OdModelerBodyPtr bore = cylinder(5.0, 20.0, {100.0, 100.0, -5.0});
  const OdModelerBodyPtr before = combine(BooleanKind::kSubtract, plate(), {bore});
  // A wider mouth takes nine tenths of the wall; the top is milled but for a land.
  const OdModelerBodyPtr now = combine(
      BooleanKind::kSubtract, plate(),
      {bore, cylinder(5.5, 20.0, {100.0, 100.0, 1.0}), box(230.0, 240.0, 5.0, {80.0, -20.0, 9.8})});
  const BodyMatch match = matchBySignature(*before, *now);
  const auto imagesAt = [&](const OdGePoint3d& point) {
    return match.of({Type::kFace, faceAt(*before, point)}).images;
  };
  EXPECT_EQ(imagesAt({105, 100, 5}), std::vector{faceAt(*now, {105, 100, 0.5})});
  EXPECT_EQ(imagesAt({20, 100, 10}), std::vector{faceAt(*now, {20, 100, 10})});
  // A groove across: the top is split, and its long edges are.
  const OdModelerBodyPtr grooved =
      combine(BooleanKind::kSubtract, before, {box(10.0, 240.0, 5.0, {150.0, -20.0, 8.0})});
  const BodyMatch split = matchBySignature(*before, *grooved);
  const SubentMatch& top = split.of({Type::kFace, faceAt(*before, {20, 100, 10})});
  EXPECT_EQ(top.grade, ReferenceGrade::kSplit);
  EXPECT_EQ(top.images.size(), 2u);
  EXPECT_EQ(split.of({Type::kEdge, edgeAt(*before, {20, 0, 10})}).images.size(), 2u);
}

TEST_F(VdmSignatureMatch, ARowThatMovedByItsPitchIsAmbiguousAndNothingElse) {
  const OdModelerBodyPtr before = drilled(drills(6, 1, 30.0, 100.0));
  const OdModelerBodyPtr byPitch = drilled(drills(6, 1, 50.0, 100.0));
  const BodyMatch match = matchBySignature(*before, *byPitch);
  const OdUInt32 side = faceAt(*before, {0, 100, 5});
  EXPECT_EQ(match.of({Type::kFace, side}).images, std::vector{faceAt(*byPitch, {0, 100, 5})});
  for (int i = 0; i < 6; ++i) {
    const OdUInt32 wall = faceAt(*before, {34.0 + 20.0 * i, 100, 5});
    EXPECT_EQ(match.of({Type::kFace, wall}).grade, ReferenceGrade::kAmbiguous) << i;
  }
  // By most of it, nothing stays in its place and one reading explains all.
  const OdModelerBodyPtr byPart = drilled(drills(6, 1, 46.0, 100.0));
  const BodyMatch moved = matchBySignature(*before, *byPart);
  for (int i = 0; i < 6; ++i) {
    const OdUInt32 wall = faceAt(*before, {34.0 + 20.0 * i, 100, 5});
    EXPECT_EQ(moved.of({Type::kFace, wall}).images,
              std::vector{faceAt(*byPart, {50.0 + 20.0 * i, 100, 5})});
  }
}

TEST_F(VdmSignatureMatch, SeveralSignaturesWithoutABody) {
  const std::vector<OdModelerBodyPtr> tools = drills(5, 3);
  const OdModelerBodyPtr before = drilled(tools);
  std::vector<SubentSignature> wanted = signaturesOf(*before, Type::kFace);
  const std::vector<SubentMatch> found = matchSignatures(wanted, *drilled(tools, 300.0));
  for (const SubentMatch& match : found) EXPECT_EQ(match.grade, ReferenceGrade::kBySignature);
  wanted.resize(1);
  wanted[0].place.x += 1000.0;
  wanted[0].anchor = wanted[0].place;
  EXPECT_EQ(matchSignatures(wanted, *before).front().grade, ReferenceGrade::kLost);
}

}  // namespace
}  // namespace vdm_host
