// Random edit scripts: undone, redone, saved and reopened they give the same drawings.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

#include "tests/random/script_check.h"
#include "tests/support/module_testing.h"
#include "tests/support/test_seed.h"

namespace {

/// VDM_RANDOM_SEED plays one script again; VDM_LONG_TESTS plays more and longer ones.
class RandomScripts : public testing::Test {
 protected:
  static bool isLong() { return std::getenv("VDM_LONG_TESTS") != nullptr; }

  static void play(ScriptOptions options, int scripts) {
    const VdmModule module;
    if (const auto seed = requestedSeed()) {
      options.seed = *seed;
      scripts = 1;
    }
    std::cout << "seeds " << options.seed << " to "
              << options.seed + static_cast<std::uint64_t>(scripts) - 1 << '\n';
    for (; scripts > 0; --scripts, ++options.seed) {
      const std::string failure = checkScript(options);
      ASSERT_TRUE(failure.empty()) << failure;
    }
  }
};

TEST_F(RandomScripts, AreUndoneAndRedoneToTheByte) {
  play({.seed = 1, .steps = isLong() ? 200 : 50}, isLong() ? 5000 : 900);
}

TEST_F(RandomScripts, SurviveSavingAndReopeningInBetween) {
  play({.seed = 100001, .steps = isLong() ? 200 : 60, .withFile = true}, isLong() ? 1000 : 100);
}

}  // namespace
