// Tests of locked layers: what they refuse, and what goes through them.
#include "platform/db/locked_layers.h"

#include "platform/cloning/id_mapping.h"
#include "platform/cloning/long_transaction_man.h"
#include "platform/cloning/xref_man.h"
#include "platform/db/audit_info.h"
#include "platform/db/open_upgrade.h"
#include "tests/platform/db/db_testing.h"

namespace {

class LockedLayersTest : public DbTest {
 protected:
  LockedLayersTest() {
    edit<OdDbLine>(m_line)->setLayer(m_layer);
    lock(true);
  }

  void lock(bool locked) { edit<OdDbLayerTableRecord>(m_layer)->setIsLocked(locked); }
  OdResult raisedByOpening(OdDbObjectId id) {
    return raisedBy([&] { (void)id.safeOpenObject(OdDb::kForWrite); });
  }

  OdDbObjectId m_space = m_database->getModelSpaceId();
  OdDbObjectId m_layer = addLayer(m_database, L"Kept");
  OdDbObjectId m_line = addLine(m_space);
};

TEST_F(LockedLayersTest, RefuseToOpenTheirEntitiesForWrite) {
  EXPECT_EQ(raisedByOpening(m_line), eOnLockedLayer);
  EXPECT_TRUE(m_line.openObject(OdDb::kForWrite).isNull());
  EXPECT_EQ(raisedBy([&] { open<OdDbLine>(m_line)->upgradeOpen(); }), eOnLockedLayer);
  EXPECT_TRUE(oddbIsOnLockedLayer(open<OdDbLine>(m_line)));
  EXPECT_EQ(open<OdDbLine>(m_line)->endPoint(), OdGePoint3d(1, 0, 0)) << "can be read";
  EXPECT_EQ(raisedByOpening(m_space), eOk) << "their block can be changed";
  EXPECT_EQ(raisedByOpening(addLine(m_space)), eOk);
  lock(false);
  EXPECT_EQ(raisedByOpening(m_line), eOk);
}

TEST_F(LockedLayersTest, LetThroughWhatIsOpenAndWhatAsks) {
  const auto through = oddbOpenThroughLock<OdDbLine>(m_line);
  ASSERT_FALSE(through.isNull());
  through->setEndPoint({5, 0, 0});
  EXPECT_EQ(raisedByOpening(m_line), eOk) << "open already";
  const OdDbLinePtr made = OdDbLine::createObject();
  made->setLayer(m_layer);
  const OdDbObjectId added = addTo(m_space, made);
  made->setEndPoint({6, 0, 0});
  {
    const OdDbLockedLayerAccess outer(m_database);
    { const OdDbLockedLayerAccess inner(m_database); }
    EXPECT_EQ(raisedByOpening(added), eOk);
  }
  const OdDbLinePtr read = open<OdDbLine>(m_line);
  EXPECT_NO_THROW({ const OdDbOpenUpgrade upgrade(read); });
}

// Undo, aborts, clones, edits in place, external references and mending go through.
TEST_F(LockedLayersTest, DoNotStopServices) {
  m_database->startUndoRecord();
  lock(false);
  edit<OdDbLine>(m_line)->setEndPoint({9, 0, 0});
  lock(true);
  ASSERT_EQ(m_database->undo(), eOk);
  EXPECT_EQ(open<OdDbLine>(m_line)->endPoint(), OdGePoint3d(1, 0, 0));

  const OdDbObjectId block = addBlock(L"PART");
  const OdDbObjectId shown = addReference(m_space, block);
  edit<OdDbBlockReference>(shown)->setLayer(m_layer);
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
  OdDbObjectIdArray ids;
  ids.append(m_line);
  ids.append(shown);
  ASSERT_EQ(m_database->deepCloneObjects(ids, m_space, *mapping), eOk);
  EXPECT_EQ(open<OdDbBlockTableRecord>(block)->getBlockReferenceIds().size(), 2u);
  const OdDbDatabasePtr other = m_host.createDatabase();
  const OdDbIdMappingPtr across = OdDbIdMapping::createObject();
  ASSERT_EQ(
      m_database->wblockCloneObjects(ids, other->getModelSpaceId(), *across, OdDb::kDrcIgnore),
      eOk);

  OdDbIdPair pair(m_line);
  ASSERT_TRUE(across->compute(pair));
  EXPECT_EQ(open<OdDbLine>(pair.value())->layerId().database(), other.get());

  OdDbObjectId editing;
  ASSERT_EQ(OdDbLongTransactionMan::checkOut(ids, addBlock(L"WORK"), L"edit", editing), eOk);
  const OdDbObjectId copy = open<OdDbLongTransaction>(editing)->workSet()[0];
  lock(false);
  edit<OdDbLine>(copy)->setEndPoint({3, 0, 0});
  lock(true);
  ASSERT_EQ(OdDbLongTransactionMan::checkIn(editing), eOk);
  EXPECT_EQ(open<OdDbLine>(m_line)->endPoint(), OdGePoint3d(3, 0, 0));
  EXPECT_TRUE(copy.isErased());

  OdDbObjectId xref;
  EXPECT_EQ(OdDbXRefMan::attach(m_database, L"missing.vdm", L"X", xref), eFileNotFound);
  const OdDbObjectId inserted = addReference(m_space, xref);
  edit<OdDbBlockReference>(inserted)->setLayer(m_layer);
  EXPECT_EQ(OdDbXRefMan::detach(edit<OdDbBlockTableRecord>(xref)), eOk);
  EXPECT_TRUE(inserted.isErased());

  OdDbLinePtr lost = OdDbLine::createObject();
  const OdDbObjectId unlisted = m_database->addOdDbObject(lost, m_space);
  lost->setLayer(m_layer);
  lost.release();
  OdDbAuditInfo info;
  info.setFixErrors(true);
  m_database->audit(&info);
  EXPECT_EQ(info.numErrors(), info.numFixes());
  EXPECT_TRUE(open<OdDbBlockTableRecord>(m_space)->entityIds().contains(unlisted));
}

}  // namespace
