// Seeded random sequences of edits end as a model that is built fresh.
#include <numbers>
#include <random>

#include "tests/host/modeling/modeling_testing.h"

using namespace vdm_host;

namespace {

/// Components of all kinds at places of a coarse grid, so that they overlap, leave the plate, stand
/// in the same place, and are moved back to where they were.
class SequenceTest : public ModelingTest, public testing::WithParamInterface<unsigned> {
 protected:
  SequenceTest() : m_random(GetParam()) {
    EXPECT_TRUE(
        succeeded(makeSlot(m_database, L"slot", {14.0, 60.0, 6.0}, m_blocks.emplace_back())));
    EXPECT_TRUE(succeeded(
        makeCounterbore(m_database, L"bore", {11.0, {}, 20.0, 5.0}, m_blocks.emplace_back())));
    m_blocks.push_back(hole(L"hole", 18.0));
    m_blocks.push_back(boss(L"boss", 31.0, 7.0));
  }
  int upTo(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
  OdGeVector3d step() { return {13.0 * (upTo(5) - 2), 13.0 * (upTo(5) - 2), 0.0}; }

  void edit() {
    const int choice = m_inserts.size() < 3 ? 0 : upTo(8);
    if (choice < 3 && m_inserts.size() < 7) {
      m_inserts.push_back(insert(m_blocks[static_cast<std::size_t>(upTo(4))],
                                 150.0 + 13.0 * upTo(6), 170.0 + 13.0 * upTo(4))
                              .created);
      return;
    }
    const auto at = static_cast<std::size_t>(upTo(static_cast<int>(m_inserts.size())));
    const OdDbObjectId chosen = m_inserts[at];
    if (choice == 7) {
      EXPECT_TRUE(done(m_editor->eraseObject(chosen)));
      m_inserts.erase(m_inserts.begin() + static_cast<std::ptrdiff_t>(at));
    } else if (choice == 6) {
      EXPECT_TRUE(done(m_editor->suppress(chosen)));
    } else if (choice == 5) {
      EXPECT_TRUE(done(m_editor->unsuppress(chosen)));
    } else {
      EXPECT_TRUE(done(m_editor->moveObject(chosen, step())));
    }
  }

  std::mt19937 m_random;
  std::vector<OdDbObjectId> m_blocks;
  std::vector<OdDbObjectId> m_inserts;
};

TEST_P(SequenceTest, EndsAsBuiltFresh) {
  for (int i = 0; i < 14; ++i) {
    edit();
    ASSERT_TRUE(isAsFresh(m_base)) << "seed " << GetParam() << ", edit " << i;
  }
  while (!m_inserts.empty()) {
    ASSERT_TRUE(done(m_editor->eraseObject(m_inserts.back())));
    m_inserts.pop_back();
  }
  EXPECT_EQ(numFaces(), 6U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, SequenceTest, testing::Range(1U, 6U));

}  // namespace
