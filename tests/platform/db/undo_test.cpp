// Undo, redo, marks and transactions.
#include "tests/platform/db/core_testing.h"

class OdDbUndoLogTest : public CoreTest {
 protected:
  void step(const std::function<void()>& work) {
    database->startUndoRecord();
    work();
  }
};

TEST_F(OdDbUndoLogTest, ANewChangeForgetsWhatCouldBeRedone) {
  OdDbObjectId a;
  step([&] { a = addCell(L"a"); });
  step([&] { addCell(L"gone"); });
  ASSERT_EQ(database->undo(), eOk);
  EXPECT_TRUE(database->hasRedo());
  step([&] { setNumber(a, 5); });
  EXPECT_FALSE(database->hasRedo());
  EXPECT_EQ(database->redo(), eNothingToUndo);
  ASSERT_EQ(database->undo(), eOk);
  EXPECT_EQ(open(a)->number(), 0);
}

TEST_F(OdDbUndoLogTest, UndoBackReturnsToTheMarkOverManySteps) {
  OdDbObjectId a;
  step([&] { a = addCell(L"a"); });
  const std::string marked = dumpDrawing(database.get());
  database->setUndoMark();
  for (int i = 1; i < 6; ++i) step([&] { setNumber(a, i); });
  EXPECT_EQ(database->numUndoSteps(), 6u);
  EXPECT_EQ(database->undoBack(), eOk);
  EXPECT_EQ(dumpDrawing(database.get()), marked);
  EXPECT_FALSE(database->hasUndoMark());
  EXPECT_EQ(database->undoBack(), eNothingToUndo);
}

TEST_F(OdDbUndoLogTest, AChangeThatIsFiledThroughTheUndoFilerAloneIsAStepOfItsOwn) {
  OdDbObjectId a;
  step([&] { a = addCell(L"a"); });
  step([&] { setNumber(a, 1); });
  step([&] { open(a, OdDb::kForWrite)->setNumberAlone(2); });
  step([&] {
    const TestCellPtr cell = open(a, OdDb::kForWrite);
    cell->setText(L"whole");  // the state covers what follows
    cell->setNumberAlone(3);
  });
  for (const OdInt32 number : {2, 1, 0}) {
    ASSERT_EQ(database->undo(), eOk);
    EXPECT_EQ(open(a)->number(), number);
  }
  EXPECT_EQ(open(a)->text(), L"a");
  for (const OdInt32 number : {1, 2, 3}) {
    ASSERT_EQ(database->redo(), eOk);
    EXPECT_EQ(open(a)->number(), number);
  }
  database->disableUndoRecording(true);
  EXPECT_EQ(open(a, OdDb::kForWrite)->undoFiler(), nullptr);
}

TEST_F(OdDbUndoLogTest, NestedTransactionsAbortByThemselves) {
  OdDbObjectId a;
  step([&] { a = addCell(L"a"); });
  database->startUndoRecord();
  {
    OdDbTransaction outer(database.get());
    setText(a, L"outer");
    {
      OdDbTransaction inner(database.get());
      setText(a, L"inner");
      setNumber(a, 7);
      addCell(L"inner cell");
    }
    EXPECT_EQ(open(a)->text(), L"outer");
    EXPECT_EQ(open(a)->number(), 0);
    {
      OdDbTransaction inner(database.get());
      setNumber(a, 8);
      EXPECT_EQ(inner.commit(), eOk);
    }
    EXPECT_EQ(outer.commit(), eOk);
  }
  EXPECT_EQ(open(a)->number(), 8);
  EXPECT_EQ(database->endTransaction(), eTransactionMismatch);
  ASSERT_EQ(database->undo(), eOk);
  EXPECT_EQ(open(a)->text(), L"a");
  EXPECT_EQ(open(a)->number(), 0);
}

TEST_F(OdDbUndoLogTest, AStepOlderThanTheTransactionCannotBeUndoneInIt) {
  OdDbObjectId a;
  step([&] { a = addCell(L"a"); });
  const OdDbTransaction transaction(database.get());
  EXPECT_EQ(database->undo(), eTransactionMismatch);
  step([&] { setNumber(a, 4); });
  EXPECT_EQ(database->undo(), eOk);
  EXPECT_EQ(open(a)->number(), 0);
}

TEST_F(OdDbUndoLogTest, WithoutRecordingTransactionsStillAbortAndUndoKeepsNoRedo) {
  OdDbObjectId a;
  step([&] { a = addCell(L"a"); });
  step([&] { setNumber(a, 1); });
  database->disableUndoRecording(true);
  {
    const OdDbTransaction aborted(database.get());
    setNumber(a, 9);
  }
  EXPECT_EQ(open(a)->number(), 1);
  EXPECT_EQ(database->numUndoSteps(), 2u);
  EXPECT_EQ(database->undo(), eOk);
  database->disableUndoRecording(false);
  EXPECT_EQ(open(a)->number(), 0);
  EXPECT_FALSE(database->hasRedo());
}

TEST_F(OdDbUndoLogTest, AnObjectThatFailsToReadItsUndoRecordStaysClosedForWriting) {
  struct Row {
    const char* what;
    std::function<void(OdDbObjectId)> change;
  };
  const Row rows[] = {{"state", [](OdDbObjectId id) { setText(id, L"changed"); }},
                      {"partial", [](OdDbObjectId id) { setNumber(id, 1); }}};
  for (const Row& row : rows) {
    OdDbObjectId a;
    step([&] { a = addCell(L"a"); });
    step([&] { row.change(a); });
    TestCell::raisesInUndo = true;
    EXPECT_EQ(raisedBy([&] { database->undo(); }), eCorruptData) << row.what;
    TestCell::raisesInUndo = false;
    const TestCellPtr opened = open(a);
    EXPECT_FALSE(opened->isWriteEnabled()) << row.what;
    EXPECT_EQ(raisedBy([&] { opened->setText(L"through a read open"); }), eNotOpenForWrite)
        << row.what;
    EXPECT_FALSE(database->isUndoing()) << row.what;
  }
}
