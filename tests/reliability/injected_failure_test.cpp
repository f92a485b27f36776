// Every boolean of every kind of edit fails once: nothing remains of the edit, and the report
// tells.
#include <algorithm>
#include <filesystem>

#include "tests/host/modeling/modeling_testing.h"
#include "tests/support/dump_drawing.h"
#include "tests/support/failing_modeler.h"

using namespace vdm_host;

namespace {

class InjectedFailures : public ModelingTest {
 protected:
  InjectedFailures() : m_modeler(std::make_shared<FailingModeler>(odCreateOcctModeler())) {
    odSetModeler(m_modeler);
    m_hole = hole(L"hole", 20.0);
    EXPECT_TRUE(succeeded(makeSlot(m_database, L"slot", {14.0, 60.0, 6.0}, m_slot)));
    m_first = insert(m_hole, 50.0, 50.0);
    m_second = insert(m_hole, 62.0, 50.0);
    m_stud = insert(boss(L"boss", 30.0, 5.0), 60.0, 60.0);
    m_away = insert(m_slot, 200.0, 100.0);
    EXPECT_TRUE(done(m_editor->suppress(m_away.created)));
    m_tool = addSolid(box(80.0, 10.0, 30.0, {30.0, 45.0, -10.0}));
  }
  ~InjectedFailures() override { std::filesystem::remove(kFile); }

  EditResult placeSlot() { return insertAt(m_slot, {55.0, 52.0, 10.0}, OdGeVector3d::kZAxis); }
  [[nodiscard]] std::string dump() const { return dumpDrawing(m_database.get()); }
  /// What is in a file of the drawing.
  std::string saved() {
    EXPECT_TRUE(m_database->saveAs(OdString(kFile)).ok());
    OdStatus status;
    OdDbReadOptions options;
    options.mode = OdDbStoreOpenMode::kReadOnly;
    const OdDbDatabasePtr read = m_files.readFile(OdString(kFile), status, options);
    EXPECT_TRUE(status.ok()) << status.text.utf8();
    return read.isNull() ? std::string() : dumpDrawing(read.get());
  }
  /// The feature whose operation failed is named, and what failed, and at which solid.
  void expectExplained(const EditResult& result) const {
    EXPECT_TRUE(result.report.rolledBack);
    const std::string reason(result.report.rollbackReason.utf8());
    EXPECT_NE(reason.find("the modeller gave up"), std::string::npos) << reason;
    EXPECT_NE(reason.find("solid " + std::string(m_plate.getHandle().ascii().utf8())),
              std::string::npos)
        << reason;
    const auto failed =
        std::ranges::find(result.report.features, FeatureOutcome::kFailed, &FeatureReport::outcome);
    if (failed == result.report.features.end()) return;
    EXPECT_EQ(reason.find(failed->name.utf8()), 0U) << reason;
    EXPECT_GE(failed->text.find(L"the modeller gave up"), 0);
  }

  static constexpr const char* kFile = "injected.vdm";
  std::shared_ptr<FailingModeler> m_modeler;
  OdDbObjectId m_hole;
  OdDbObjectId m_slot;
  OdDbObjectId m_tool;
  EditResult m_first;
  EditResult m_second;
  EditResult m_stud;
  EditResult m_away;
};

TEST_F(InjectedFailures, LeaveNoByteAndAreExplained) {
  const struct {
    const char* name;
    std::function<EditResult()> run;
  } edits[] = {
      {"insert", [&] { return placeSlot(); }},
      {"rotate", [&] { return m_editor->rotateObject(m_stud.created, OdGeVector3d::kXAxis, 0.2); }},
      {"suppress", [&] { return m_editor->suppress(m_second.created); }},
      {"unsuppress", [&] { return m_editor->unsuppress(m_away.created); }},
      {"remove", [&] { return m_editor->removeFeature(m_stud.feature); }},
      {"replace", [&] { return m_editor->replaceBody(m_plate, box(300.0, 200.0, 12.0)); }},
      {"tool",
       [&] {
         return m_editor->booleanSolid(OdModelerBooleanKind::kSubtract, m_plate, m_tool, true);
       }},
      {"force", [&] { return m_editor->update(/*force=*/true); }},
  };
  for (const auto& edit : edits) {
    SCOPED_TRACE(edit.name);
    const std::string before = dump();
    const std::string fileBefore = saved();
    int failures = 0;
    for (int boolean = 1;; ++boolean) {
      SCOPED_TRACE(boolean);
      ASSERT_LT(boolean, 80);
      m_modeler->failAt(boolean);
      const EditResult result = edit.run();
      const bool wasReached = m_modeler->count() >= boolean;
      m_modeler->failAt(0);
      if (result.ok()) {
        ASSERT_EQ(m_database->undo(), eOk);
      } else {
        ++failures;
        expectExplained(result);
      }
      ASSERT_EQ(firstDifference(before, dump()), "");
      if (!wasReached) break;
    }
    EXPECT_GT(failures, 0);
    EXPECT_EQ(firstDifference(fileBefore, saved()), "");
  }
}

TEST_F(InjectedFailures, TakeBackOnlyTheirOwnEditOfAGroup) {
  const std::string before = dump();
  {
    EditGroup group(*m_editor);
    ASSERT_TRUE(done(m_editor->moveObject(m_first.created, {30.0, 0.0, 0.0})));
    const std::string between = dump();
    m_modeler->failAt(1);
    EXPECT_FALSE(m_editor->moveObject(m_second.created, {30.0, 0.0, 0.0}).ok());
    m_modeler->failAt(0);
    EXPECT_EQ(firstDifference(between, dump()), "");
    ASSERT_TRUE(done(m_editor->eraseObject(m_stud.created)));
  }
  EXPECT_EQ(firstDifference(before, dump()), "");
}

}  // namespace
