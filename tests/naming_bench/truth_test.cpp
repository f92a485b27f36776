// The benchmark's truths against what is known otherwise: worked cases, the modeller's histories.
#include "bench/naming/truth.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "bench/naming/edits.h"
#include "bench/naming/families.h"
#include "bench/naming/fates.h"
#include "bench/naming/judge.h"
#include "platform/modeler_occt/occt_modeler.h"

using namespace naming_bench;

namespace {

constexpr OdModelerSubentType kFace = OdModelerSubentType::kFace;
constexpr OdModelerSubentType kEdge = OdModelerSubentType::kEdge;

class PlanTruth : public testing::Test {
 protected:
  PlanTruth() { odInstallOcctModeler(); }
  ~PlanTruth() override { odSetModeler(nullptr); }

  /// A block 100 x 60 x 10 with a hole of radius 4 at (30, 30).
  static Plan plateWithHole() {
    Plan plan;
    plan.length = 100.0;
    plan.width = 60.0;
    plan.height = 10.0;
    Feature hole;
    hole.name = "hole";
    hole.a = 4.0;
    hole.b = 11.0;
    hole.slack = 10.0;
    hole.frame = OdGeMatrix3d::translation({30.0, 30.0, 10.0});
    plan.features = {hole};
    return plan;
  }
  static OdModelerSubent near(const OdModelerBody& body, OdModelerSubentType type,
                              const OdGePoint3d& point) {
    OdModelerSubent best{type, 1};
    const auto distance = [&](OdModelerSubent s) {
      return point.distanceTo(s.type == kFace ? body.face(s.index).centroid
                                              : body.edge(s.index).midPoint);
    };
    for (const OdModelerSubent s : referable(body)) {
      if (s.type == type && distance(s) < distance(best)) best = s;
    }
    return best;
  }
  static std::vector<Truth> truths(const EditScene& scene, const EditTrace& trace,
                                   const std::vector<OdModelerSubent>& subents) {
    return truthsOf(scene.before, NamedBody(scene.before, trace.before), scene.stage.part().plan,
                    NamedBody(scene.stage.part().plan, trace.after), scene.meaning, subents);
  }
};

TEST_F(PlanTruth, FollowsAHoleThatMovesAndAFaceThatIsSplit) {
  Part part = startPart(plateWithHole());
  const OdModelerBodyPtr before = part.body;
  Stage stage(part);
  Random random(1);
  EditScene scene(stage, random);
  Feature hole = part.plan.features.front();
  hole.frame = OdGeMatrix3d::translation({70.0, 20.0, 10.0});
  stage.recut({hole});
  // A groove 2 wide across the top at x = 50.
  Feature groove;
  groove.name = "groove";
  groove.kind = FeatureKind::kPocket;
  groove.a = 2.0;
  groove.b = 80.0;
  groove.c = 3.0;
  groove.frame = OdGeMatrix3d::translation({50.0, 30.0, 10.0});
  stage.insert(groove);
  part.plan.features.push_back(groove);

  const OdModelerBody& now = *part.body;
  const auto found =
      truths(scene, stage.finish(),
             {near(*before, kFace, {30.0, 30.0, 5.0}), near(*before, kFace, {50.0, 30.0, 10.0}),
              near(*before, kEdge, {50.0, 0.0, 10.0}), near(*before, kEdge, {0.0, 30.0, 0.0})});
  const auto sorted = [](std::vector<OdModelerSubent> subents) {
    std::ranges::sort(subents);
    return subents;
  };
  EXPECT_EQ(found[0].subents, sorted({near(now, kFace, {70.0, 20.0, 5.0})}));
  EXPECT_EQ(found[1].subents,
            sorted({near(now, kFace, {24.5, 30.0, 10.0}), near(now, kFace, {75.5, 30.0, 10.0})}));
  EXPECT_EQ(found[2].subents,
            sorted({near(now, kEdge, {24.5, 0.0, 10.0}), near(now, kEdge, {75.5, 0.0, 10.0})}));
  EXPECT_EQ(found[3].subents, sorted({near(now, kEdge, {0.0, 30.0, 0.0})}));
}

TEST_F(PlanTruth, KnowsEveryFaceOfEveryModel) {
  for (const Model& model : generateModels(2, 3)) {
    const NamedBody named(model.part.plan, model.part.body);
    EXPECT_EQ(named.unnamed(), 0U) << model.name;
    EXPECT_EQ(model.part.body->numSolids(), 1U) << model.name;
    Random random(5);
    const OdModelerBodyPtr again = rebuild(model.part.plan, random);
    EXPECT_NEAR(again->massProperties().volume, model.part.body->massProperties().volume, 1e-3);
    EXPECT_EQ(again->numFaces(), model.part.body->numFaces()) << model.name;
  }
}

// The construction and the modeller know of each other nothing.
TEST_F(PlanTruth, AgreesWithTheModellersHistoryOfFaces) {
  std::size_t compared = 0;
  for (const Model& model : generateModels(1, 7)) {
    for (const EditRow& row : editRows()) {
      if (!row.hasHistory) continue;
      Part part = model.part;
      Stage stage(part);
      Random random(11);
      EditScene scene(stage, random);
      if (!row.run(scene)) continue;
      const EditTrace& trace = stage.finish();
      std::vector<OdModelerSubent> faces;
      for (OdUInt32 i = 1; i <= trace.before->numFaces(); ++i) faces.push_back({kFace, i});
      const std::vector<Truth> found = truths(scene, trace, faces);
      const auto images = faceImages(trace);
      for (std::size_t i = 0; i < faces.size(); ++i) {
        std::vector<OdUInt32> numbers;
        for (const OdModelerSubent s : found[i].subents) numbers.push_back(s.index);
        EXPECT_EQ(numbers, images[i]) << model.name << ", " << row.name << ", face " << i + 1;
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 1000U);
}

// Through holes leave no face in its place; of blind ones top and bottom keep theirs.
TEST_F(PlanTruth, SymmetricPartsAtAnUnknownPlaceAreAmbiguous) {
  std::set<std::size_t> answers;
  for (const Model& model : generateModels(6, 1, "symmetric")) {
    const NamedBody named(model.part.plan, model.part.body);
    EditMeaning meaning;
    meaning.anywhere = true;
    const auto all = referable(*model.part.body);
    const auto found = truthsOf(model.part.plan, named, model.part.plan, named, meaning, all);
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (found[i].kind == TruthKind::kAmbiguous) continue;
      EXPECT_EQ(all[i].type, kFace);
      EXPECT_GT(std::abs(model.part.body->face(all[i].index).normal.z), 0.9);
    }
    answers.insert(
        static_cast<std::size_t>(std::ranges::count(found, TruthKind::kAnswer, &Truth::kind)));
  }
  EXPECT_EQ(answers, (std::set<std::size_t>{0, 2}));
}

TEST(Judge, HoldsEachAnswerAgainstTheTruth) {
  const Truth split{TruthKind::kAnswer, {{kFace, 2}, {kFace, 5}}};
  const Truth gone{TruthKind::kGone, {}};
  const Truth unknowable{TruthKind::kAmbiguous, {}};
  const Answer part{Answer::Kind::kNamed, {{kFace, 5}}, {}};
  const Answer all{Answer::Kind::kNamed, split.subents, {}};
  const Answer other{Answer::Kind::kNamed, {{kFace, 3}}, {}};
  const Answer lost;
  const Answer ambiguous{Answer::Kind::kAmbiguous, {}, {}};
  struct Row {
    const Truth& truth;
    const Answer& answer;
    bool namesAll;
    Verdict verdict;
  };
  const Row rows[] = {
      {split, all, true, Verdict::kRight},          {split, part, true, Verdict::kWrong},
      {split, part, false, Verdict::kRight},        {split, other, false, Verdict::kWrong},
      {split, lost, true, Verdict::kLost},          {split, ambiguous, true, Verdict::kAmbiguous},
      {gone, lost, true, Verdict::kRight},          {gone, part, true, Verdict::kWrong},
      {gone, ambiguous, true, Verdict::kAmbiguous}, {unknowable, ambiguous, true, Verdict::kRight},
      {unknowable, part, true, Verdict::kWrong},    {unknowable, lost, true, Verdict::kLost},
  };
  for (const Row& row : rows) EXPECT_EQ(judge(row.truth, row.answer, row.namesAll), row.verdict);
}

}  // namespace
