// A modeller that is made when it is first asked for.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "platform/base/error.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace {

class ModelerSource : public testing::Test {
 protected:
  ~ModelerSource() override { odSetModeler(nullptr); }
  std::atomic<int> m_numMade = 0;
};

TEST_F(ModelerSource, MakesOneModellerForAllThreads) {
  odSetModelerSource([this] {
    ++m_numMade;
    return odCreateOcctModeler();
  });
  EXPECT_TRUE(odHasModeler());
  EXPECT_EQ(m_numMade, 0);
  std::vector<OdModeler*> seen(4);
  {
    std::vector<std::jthread> threads;
    for (OdModeler*& each : seen) threads.emplace_back([&each] { each = &odModeler(); });
  }
  EXPECT_EQ(seen, std::vector<OdModeler*>(4, &odModeler()));
  EXPECT_EQ(m_numMade, 1);
  odSetModeler(nullptr);
  EXPECT_FALSE(odHasModeler());
  EXPECT_THROW((void)odModeler(), OdError);
}

TEST_F(ModelerSource, IsAskedAgainAfterAFailure) {
  odSetModelerSource([this]() -> std::shared_ptr<OdModeler> {
    if (++m_numMade == 1) throw OdError(eNoModeler, L"not yet");
    if (m_numMade == 2) return nullptr;
    return odCreateOcctModeler();
  });
  EXPECT_THROW((void)odModeler(), OdError);
  EXPECT_THROW((void)odModeler(), OdError);
  OdModelerBodyPtr body;
  EXPECT_TRUE(odModeler().box(1.0, 1.0, 1.0, body).ok());
}

}  // namespace
