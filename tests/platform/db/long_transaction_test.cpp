// Tests of long transactions: what originals become, what stays, undo, refusals, observers.
#include "platform/cloning/long_transaction_man.h"

#include "tests/platform/db/db_testing.h"
#include "tests/support/dump_drawing.h"
#include "tests/support/dxf_testing.h"
#include "tests/support/test_folder.h"

namespace {

using Man = OdDbLongTransactionMan;

/// Refuses on request; notes what the active map says about one id.
class Watcher : public OdDbLongTransactionReactor {
 public:
  Watcher() { Man::addReactor(this); }
  ~Watcher() override { Man::removeReactor(this); }
  void checkedOut(OdDbLongTransaction& transaction) override { note(transaction, "out "); }
  void checkedIn(OdDbLongTransaction& transaction) override {
    note(transaction, "in ");
    if (refuses) throw OdError(eUserBreak);
  }
  void discarding(OdDbLongTransaction&) override { heard += "discard "; }

  OdDbObjectId asked;
  OdDbObjectId answer;
  std::string heard;
  bool refuses = false;

 private:
  void note(OdDbLongTransaction& transaction, const char* event) {
    heard += event;
    OdDbIdPair pair(asked);
    answer = transaction.activeIdMap()->compute(pair) ? pair.value() : OdDbObjectId::kNull;
  }
};

class OdDbLongTransactionTest : public DbTest {
 protected:
  OdDbLongTransactionTest() {
    m_origin = addBlock(L"PART");
    m_work = addBlock(L"WORK");
    for (int i = 0; i < 3; ++i) m_lines.append(addLine(m_origin, OdGePoint3d(i, 0, 0)));
    m_reactor = addDictionary(L"REACTOR");
    edit<OdDbObject>(m_lines[0])->addPersistentReactor(m_reactor);
    m_database->clearUndo();
    m_database->startUndoRecord();
  }
  void checkOut() {
    ASSERT_EQ(Man::checkOut(m_lines, m_work, L"edit", m_transaction), eOk);
    m_copies = open<OdDbLongTransaction>(m_transaction)->workSet();
    ASSERT_EQ(m_copies.size(), m_lines.size());
  }
  static OdDbObjectIdArray liveEntities(OdDbObjectId block) {
    OdDbObjectIdArray ids;
    const OdDbBlockTableRecordPtr record = open<OdDbBlockTableRecord>(block);
    for (const OdDbObjectIteratorPtr it = record->newIterator(); !it->done(); it->step()) {
      ids.append(it->objectId());
    }
    return ids;
  }
  static OdGePoint3d endOf(OdDbObjectId line) { return open<OdDbLine>(line)->endPoint(); }
  [[nodiscard]] std::string state() const { return dumpDrawing(m_database); }

  OdDbObjectId m_origin, m_work, m_reactor, m_transaction;
  OdDbObjectIdArray m_lines, m_copies;
};

TEST_F(OdDbLongTransactionTest, OriginalsTakeOverAndKeepTheirPlaces) {
  checkOut();
  EXPECT_EQ(Man::current(m_database), m_transaction);
  EXPECT_EQ(odapLongTransactionManager()->currentLongTransactionFor(m_database), m_transaction);
  EXPECT_EQ(open<OdDbLongTransaction>(m_transaction)->originalOf(m_copies[1]), m_lines[1]);
  edit<OdDbLine>(m_copies[0])->setEndPoint(OdGePoint3d(7, 8, 9));
  edit<OdDbObject>(m_copies[0])->removePersistentReactor(m_reactor);
  edit<OdDbObject>(m_copies[0])->addPersistentReactor(m_copies[2]);
  edit<OdDbObject>(m_copies[2])->createExtensionDictionary();
  erase(m_copies[1]);
  const OdDbObjectId added = addLine(m_work, {}, {5, 5, 5});
  const OdDbObjectId other = addLine(m_work);
  EXPECT_EQ(edit<OdDbLongTransaction>(m_transaction)->addToWorkSet({added, m_lines[0]}),
            eWrongObjectType);
  EXPECT_EQ(edit<OdDbLongTransaction>(m_transaction)->addToWorkSet({added, added, other}), eOk);
  EXPECT_TRUE(edit<OdDbLongTransaction>(m_transaction)->removeFromWorkSet(other));
  EXPECT_FALSE(edit<OdDbLongTransaction>(m_transaction)->removeFromWorkSet(m_copies[0]));
  const OdDbObjectIdArray numbers = liveEntities(m_origin);

  const std::string before = state();
  m_database->startUndoRecord();
  ASSERT_EQ(Man::checkIn(m_transaction), eOk);
  const OdDbObjectIdArray entities = liveEntities(m_origin);
  ASSERT_EQ(entities.size(), 3u);
  EXPECT_EQ(entities[0], m_lines[0]);
  EXPECT_EQ(entities[1], m_lines[2]);
  EXPECT_EQ(endOf(m_lines[0]), OdGePoint3d(7, 8, 9));
  EXPECT_EQ(endOf(entities[2]), OdGePoint3d(5, 5, 5));
  EXPECT_EQ(open<OdDbObject>(m_lines[0])->getPersistentReactors(),
            (OdDbObjectIdArray{m_lines[2], m_reactor}));
  EXPECT_EQ(open<OdDbObject>(m_lines[2])->extensionDictionary().ownerId(), m_lines[2]);
  EXPECT_EQ(liveEntities(m_work), OdDbObjectIdArray{other});
  EXPECT_TRUE(m_transaction.isErased() && Man::current(m_database).isNull());
  const std::string after = state();
  ASSERT_EQ(m_database->undo(), eOk);
  EXPECT_EQ(state(), before);
  ASSERT_EQ(m_database->redo(), eOk);
  EXPECT_EQ(state(), after);
}

TEST_F(OdDbLongTransactionTest, DiscardingLeavesNoTraceAndUndoEndsIt) {
  const std::string originals = stateOf(m_lines[0]) + stateOf(m_origin);
  checkOut();
  edit<OdDbLine>(m_copies[0])->setEndPoint(OdGePoint3d(7, 8, 9));
  ASSERT_EQ(Man::discard(m_transaction), eOk);
  EXPECT_EQ(stateOf(m_lines[0]) + stateOf(m_origin), originals);
  EXPECT_TRUE(liveEntities(m_work).isEmpty());
  EXPECT_EQ(Man::discard(m_transaction), eWrongObjectType);
  m_database->startUndoRecord();
  checkOut();
  ASSERT_EQ(m_database->undo(), eOk);
  EXPECT_TRUE(Man::current(m_database).isNull());
  EXPECT_TRUE(liveEntities(m_work).isEmpty());
}

TEST_F(OdDbLongTransactionTest, ReferencesLeaveTheBlockThatTheyShowed) {
  const OdDbObjectId first = addBlock(L"FIRST");
  const OdDbObjectId second = addBlock(L"SECOND");
  m_lines = {addReference(m_origin, first)};
  checkOut();
  edit<OdDbBlockReference>(m_copies[0])->setBlockTableRecord(second);
  ASSERT_EQ(Man::checkIn(m_transaction), eOk);
  const auto shownBy = [](OdDbObjectId block) {
    return open<OdDbBlockTableRecord>(block)->getBlockReferenceIds();
  };
  EXPECT_TRUE(shownBy(first).isEmpty());
  EXPECT_EQ(shownBy(second), OdDbObjectIdArray{m_lines[0]});
}

TEST_F(OdDbLongTransactionTest, ItIsSavedWithTheDrawing) {
  const TestFolder folder;
  FilingHost host;
  OdDbDatabasePtr drawing = host.createDatabase();
  const OdDbObjectId part = DrawingVerbs::addBlock(drawing, L"PART");
  const OdDbObjectId line = addLine(part);
  OdDbObjectId transaction;
  ASSERT_EQ(Man::checkOut({line}, drawing->getModelSpaceId(), L"edit", transaction), eOk);
  expectTruncationsFail(transaction);
  {
    const auto running = edit<OdDbLongTransaction>(transaction);
    ASSERT_EQ(running->addToWorkSet({addLine(drawing->getModelSpaceId())}), eOk);
    const std::string groups = groupsOf(*running);
    const auto copy = OdDbLongTransaction::createObject();
    ASSERT_EQ(readGroups(*copy, groups, drawing), eOk);
    EXPECT_EQ(copy->workSet(), running->workSet());
    EXPECT_EQ(copy->originalOf(running->workSet()[0]), line);
    EXPECT_TRUE(copy->originalOf(running->workSet()[1]).isNull());
    EXPECT_EQ(groupsOf(*copy), groups);
    EXPECT_EQ(readGroups(*copy, replaced(groups, "333\n", "334\n"), drawing), eCorruptData);
    EXPECT_EQ(copy->workSet().size(), 2u);
    ASSERT_TRUE(running->removeFromWorkSet(running->workSet()[1]));
  }
  const OdDbHandle handle = line.getHandle();
  saveAs(drawing, folder.odFile("a.vdm"));
  drawing = nullptr;
  drawing = read(host, folder.odFile("a.vdm"));
  const auto running = edit<OdDbLongTransaction>(Man::current(drawing));
  EXPECT_EQ(running->name(), L"edit");
  ASSERT_EQ(running->workSet().size(), 1u);
  edit<OdDbLine>(running->workSet()[0])->setEndPoint(OdGePoint3d(7, 8, 9));
  ASSERT_EQ(Man::checkIn(running->objectId()), eOk);
  EXPECT_EQ(endOf(drawing->getOdDbObjectId(handle)), OdGePoint3d(7, 8, 9));
}

TEST_F(OdDbLongTransactionTest, ObserversSeeTheMapAndWhatTheyRaiseTakesAllBack) {
  Watcher watcher;
  watcher.asked = m_lines[0];
  checkOut();
  EXPECT_EQ(watcher.answer, m_copies[0]);
  EXPECT_EQ(open<OdDbLongTransaction>(m_transaction)->activeIdMap(), nullptr);
  const std::string before = state();
  watcher.asked = m_copies[0];
  watcher.refuses = true;
  EXPECT_EQ(raisedBy([&] { (void)Man::checkIn(m_transaction); }), eUserBreak);
  EXPECT_EQ(watcher.answer, m_lines[0]);
  EXPECT_EQ(state(), before);
  EXPECT_EQ(Man::discard(m_transaction), eOk);
  EXPECT_EQ(watcher.heard, "out in discard ");
}

TEST_F(OdDbLongTransactionTest, RefusesWhatItCannotWorkOn) {
  OdDbObjectId made;
  OdString reason;
  EXPECT_EQ(Man::checkOut({}, m_work, L"e", made), eInvalidInput);
  EXPECT_EQ(Man::checkOut(m_lines, m_origin, L"e", made), eInvalidInput);
  EXPECT_EQ(Man::checkOut({m_lines[0], addLine(m_work)}, m_work, L"e", made), eWrongObjectType);
  EXPECT_EQ(Man::checkOut(m_lines, m_lines[0], L"e", made), eWrongObjectType);
  checkOut();
  EXPECT_EQ(Man::checkOut(m_lines, m_work, L"second", made, &reason), eInvalidOpenState);
  EXPECT_EQ(reason, L"long transaction second: edit is running");
  EXPECT_TRUE(made.isNull());
  erase(m_origin);
  EXPECT_EQ(Man::checkIn(m_transaction), eWasErased);
  EXPECT_EQ(Man::discard(m_transaction), eOk);
}

}  // namespace
