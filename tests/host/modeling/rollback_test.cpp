// Failures within a pass: everything is rolled back and reported.
#include "tests/host/modeling/failing_modeler.h"
#include "tests/host/modeling/modeling_testing.h"

using namespace vdm_host;

namespace {

class RollbackTest : public ModelingTest {
 protected:
  RollbackTest() : m_modeler(std::make_shared<FailingModeler>(odCreateOcctModeler())) {
    odSetModeler(m_modeler);
  }
  std::shared_ptr<FailingModeler> m_modeler;
};

TEST_F(RollbackTest, EveryFailingBooleanLeavesTheDrawingAsItWas) {
  const OdDbObjectId small = hole(L"small", 20.0);
  const EditResult first = insert(small, 50.0, 50.0);
  put(small, 62.0, 50.0);
  const EditResult stud = insert(boss(L"boss", 30.0, 5.0), 60.0, 60.0);
  const auto before = snapshot();
  const std::vector<std::function<EditResult()>> edits = {
      [&] {
        return m_editor->moveObject(first.created, {3.0, 0.0, 0.0});
      },
      [&] {
        return m_editor->moveObject(stud.created, {0.0, -3.0, 0.0});
      },
      [&] { return m_editor->eraseObject(first.created); },
  };
  for (const auto& edit : edits) {
    m_modeler->failAt(0);
    ASSERT_TRUE(done(edit()));
    const int booleans = m_modeler->count();
    ASSERT_EQ(m_database->undo(), eOk);
    int rolledBack = 0;
    for (int n = 1; n <= booleans; ++n) {
      m_modeler->failAt(n);
      const EditResult result = edit();
      m_modeler->failAt(0);
      if (result.ok()) {
        // The same was come by in another way.
        EXPECT_TRUE(isAsFresh(m_base)) << "boolean " << n;
        ASSERT_EQ(m_database->undo(), eOk);
      } else {
        ++rolledBack;
        EXPECT_TRUE(result.report.rolledBack);
        EXPECT_GE(result.report.rollbackReason.find(L"the modeller gave up"), 0)
            << result.report.rollbackReason.utf8();
      }
      ASSERT_EQ(snapshot(), before) << "boolean " << n << " of " << booleans;
    }
    EXPECT_GE(rolledBack, 2);
  }
}

TEST_F(RollbackTest, ACutThatLeavesNothingIsRefused) {
  const OdDbObjectId block = hole(L"huge", 900.0);
  const auto before = snapshot();
  ComponentPlacement placement;
  placement.solid = m_plate;
  placement.point = {150.0, 100.0, 10.0};
  const EditResult result = m_editor->insertComponent(block, placement);
  EXPECT_FALSE(result.ok());
  EXPECT_EQ(snapshot(), before);
}

}  // namespace
