// Assemblies: what makes one unsound.
#include <functional>

#include "platform/modeler/assembly.h"
#include "tests/modeler/modeler_fixture.h"

namespace {

class OdModelerAssemblyTest : public ModelerTest {
 protected:
  // car -> wheel x 2, car -> axle -> wheel
  static OdModelerAssembly car() {
    OdModelerAssembly a;
    a.products = {
        {L"car", L"car", {}, {{1, {}, L"left", {}}, {1, {}, L"right", {}}, {2, {}, L"", {}}}},
        {L"wheel", L"wheel", {box(1.0, 1.0, 1.0)}, {}},
        {L"axle", L"axle", {}, {{1, {}, L"spare", {}}}}};
    a.roots = {{0, {}, L"car", {}}};
    return a;
  }
};

TEST_F(OdModelerAssemblyTest, SharedProductsAreSoundAndCyclesAreNot) {
  EXPECT_TRUE(succeeded(car().check()));
  const std::function<void(OdModelerAssembly&)> faults[] = {
      [](OdModelerAssembly& a) {
        a.products[1].occurrences.push_back({0, {}, L"", {}});
      },
      [](OdModelerAssembly& a) {
        a.products[1].occurrences.push_back({1, {}, L"", {}});
      },
      [](OdModelerAssembly& a) { a.products[0].occurrences[0].product = 3; },
      [](OdModelerAssembly& a) { a.products[1].bodies.push_back(nullptr); },
      [](OdModelerAssembly& a) { a.roots[0].product = 9; },
  };
  for (const auto& damage : faults) {
    OdModelerAssembly broken = car();
    damage(broken);
    const OdModelerStatus status = broken.check();
    EXPECT_EQ(status.code, eInvalidInput);
    EXPECT_FALSE(status.text.isEmpty());
  }
}

TEST_F(OdModelerAssemblyTest, DeepChainsNeedNoDeepStack) {
  OdModelerAssembly chain;
  constexpr OdUInt32 kDepth = 200000;
  chain.products.resize(kDepth);
  for (OdUInt32 i = 0; i + 1 < kDepth; ++i)
    chain.products[i].occurrences.push_back({i + 1, {}, L"", {}});
  EXPECT_TRUE(succeeded(chain.check()));
  chain.products.back().occurrences.push_back({0, {}, L"", {}});
  EXPECT_EQ(chain.check().code, eInvalidInput);
}

}  // namespace
