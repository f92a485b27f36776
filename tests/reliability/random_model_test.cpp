// Random scripts of edits on models with components and references.
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "tests/host/modeling/modeling_testing.h"
#include "tests/reliability/model_play.h"
#include "tests/support/test_seed.h"

namespace {

/// VDM_RANDOM_SEED plays one script again; VDM_LONG_TESTS plays all.
class RandomModels : public ModelingTest {
 protected:
  /// A block with a pocket in its side and rounded corners, as another program would have sent it.
  static OdModelerBodyPtr importedPart() {
    OdModelerBodyPtr body = combine(OdModelerBooleanKind::kSubtract, box(120.0, 90.0, 40.0),
                                    {box(60.0, 30.0, 20.0, {30.0, 75.0, 10.0})});
    std::vector<OdUInt32> corners;
    for (OdUInt32 i = 1; i <= body->numEdges(); ++i) {
      const OdModelerEdge& edge = body->edge(i);
      if (std::abs(edge.direction.z) > 0.5 && edge.length > 30.0) corners.push_back(i);
    }
    body =
        made([&](auto& result) { return odModeler().fillet(body, corners, 6.0, result, nullptr); });
    OdModelerAssembly part;
    part.products = {{L"part", L"part", {body}, {}}};
    part.roots = {{0, {}, L"", {}}};
    const OdString file(L"random_model.stp");
    EXPECT_TRUE(succeeded(odModeler().exportStep(file, part)));
    const auto read =
        made<OdModelerAssembly>([&](auto& result) { return odModeler().importStep(file, result); });
    std::filesystem::remove("random_model.stp");
    return moved(read.products.at(0).bodies.at(0), OdGeMatrix3d::translation({400.0, 0.0, 0.0}));
  }
};

TEST_F(RandomModels, KeepAllLawsThroughEveryScript) {
  const bool isLong = std::getenv("VDM_LONG_TESTS") != nullptr;
  std::uint64_t seed = 1;
  std::uint64_t last = isLong ? 300 : 5;
  if (const auto wanted = requestedSeed()) seed = last = *wanted;
  const ModelParts parts{m_base, importedPart()};
  ReferenceTally tally;
  for (; seed <= last; ++seed) {
    const std::string failure = checkModelScript(parts, seed, 30, tally);
    EXPECT_TRUE(failure.empty()) << failure;
  }
  std::cout << tally.right << " references right, " << tally.missed << " missed, none wrong\n";
  EXPECT_GT(tally.right, 500U);
  EXPECT_LT(tally.missed * 50, tally.right);
}

}  // namespace
