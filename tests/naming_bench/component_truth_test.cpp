// The truth of parts with components: it follows from the construction and finds a wrong one out.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "bench/naming/component_truth.h"
#include "bench/naming/reference_drawing.h"
#include "platform/modeler/modeler.h"

namespace naming_bench {
namespace {

using Type = OdModelerSubentType;

PartPlan twoPockets(double distance, double depth) {
  OpeningPlan pocket;
  pocket.length = pocket.width = 20.0;
  pocket.depth = 10.0;
  pocket.x = 30.0;
  pocket.y = 40.0;
  OpeningPlan other = pocket;
  other.number = 1;
  other.x += distance;
  other.depth = depth;
  PartPlan plan;
  plan.openings = {pocket, other};
  return plan;
}

OdModelerBodyPtr bodyOf(const PartPlan& plan) {
  std::vector<OdModelerBodyPtr> tools;
  for (const OpeningPlan& one : plan.openings) {
    tools.push_back(
        moved(openingTool(one), OdGeMatrix3d::translation({one.x, one.y, plan.height})));
  }
  OdModelerBodyPtr body;
  EXPECT_TRUE(odModeler()
                  .boolean(OdModelerBooleanKind::kSubtract, plan.baseBody(), tools, body, nullptr)
                  .ok());
  return body;
}

std::size_t facesOf(const SourcedBody& body, const Source& source) {
  return body.truthOf({Type::kFace, {source}, {}}).subents.size();
}

// Pockets of one depth that overlap have one floor between them; its birth is both, and each of
// them finds it. Of different depths they have floors of their own.
TEST(ComponentTruth, MergedFacesComeFromAllTheirMakers) {
  const DrawingRuntime runtime;
  const PartPlan meet = twoPockets(10.0, 10.0);
  const SourcedBody together(meet, bodyOf(meet));
  const Truth floor = together.truthOf({Type::kFace, {{0, 0}}, {}});
  ASSERT_EQ(floor.subents.size(), 1U);
  EXPECT_EQ(together.birthOf(floor.subents[0]).sources, (std::set<Source>{{0, 0}, {1, 0}}));
  // The wall of each that lies in the other one is gone, and so are its rims.
  EXPECT_EQ(facesOf(together, {0, 2}), 0U);
  EXPECT_EQ(together.truthOf({Type::kEdge, {}, {{{-1, 0}, {0, 2}}}}).kind, TruthKind::kGone);

  const PartPlan apart = twoPockets(10.0, 5.0);
  const SourcedBody stepped(apart, bodyOf(apart));
  EXPECT_EQ(facesOf(stepped, {0, 0}), 1U);
  EXPECT_EQ(stepped.birthOf(stepped.truthOf({Type::kFace, {{1, 0}}, {}}).subents[0]).sources,
            (std::set<Source>{{1, 0}}));
  // All parts of the base's top are still its one face.
  EXPECT_EQ(facesOf(stepped, {-1, 0}), 1U);
}

TEST(ComponentTruth, APlanThatIsNotTheBodysIsFound) {
  const DrawingRuntime runtime;
  EXPECT_THROW(SourcedBody(twoPockets(40.0, 10.0), bodyOf(twoPockets(50.0, 10.0))),
               std::logic_error);
}

}  // namespace
}  // namespace naming_bench
