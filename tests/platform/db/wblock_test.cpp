// Tests of cloning into another drawing: what is followed, names that are taken, refusals.
#include "platform/db/regapp_table.h"
#include "tests/platform/db/clone_testing.h"

namespace {

class OdDbWblockTest : public CloneTest {
 protected:
  static OdUInt16 layerColor(OdDbObjectId layer) {
    return open<OdDbLayerTableRecord>(layer)->color().colorIndex();
  }

  OdResult wblockClone(const OdDbObjectIdArray& ids, OdDbObjectId owner,
                       OdDb::DuplicateRecordCloning rule = OdDb::kDrcIgnore) {
    return m_source->wblockCloneObjects(ids, owner, *m_mapping, rule);
  }
  OdDbObjectId space(const OdDbDatabasePtr& drawing) { return drawing->getModelSpaceId(); }

  OdDbDatabasePtr m_source = m_host.createDatabase();
  OdDbDatabasePtr m_target = m_host.createDatabase();
  OdDbIdMappingPtr m_mapping = OdDbIdMapping::createObject(OdDb::kDcWblkObjects);
};

TEST_F(OdDbWblockTest, HardPointersAreFollowedAndSoftOnesAreNot) {
  const OdDbObjectId root = addRoot(m_source, L"root");
  const OdDbObjectId hard = addRoot(m_source, L"hard");
  const OdDbObjectId behind = addRoot(m_source, L"behind");
  const OdDbObjectId soft = addRoot(m_source, L"soft");
  refer(root, OdDb::kHardPointerRef, hard);
  refer(hard, OdDb::kHardPointerRef, behind);
  refer(hard, OdDb::kSoftPointerRef, root);
  refer(root, OdDb::kSoftPointerRef, soft);
  refer(root, OdDb::kSoftPointerRef, m_source->getLayerTableId());
  open<CloneNode>(root, OdDb::kForWrite)->addPersistentReactor(soft);
  const OdDbObjectId owner = m_target->getNamedObjectsDictionaryId();
  ASSERT_EQ(wblockClone({root}, owner), eOk);
  const OdDbObjectId clone = cloneOf(m_mapping, root);
  const OdDbObjectId hardClone = cloneOf(m_mapping, hard);
  EXPECT_EQ(clone.originalDatabase(), m_target.get());
  EXPECT_EQ(reference(clone, OdDb::kHardPointerRef), hardClone);
  EXPECT_EQ(hardClone, open<OdDbDictionary>(owner)->getAt(L"hard"));
  EXPECT_EQ(reference(hardClone, OdDb::kHardPointerRef), cloneOf(m_mapping, behind));
  EXPECT_EQ(reference(hardClone, OdDb::kSoftPointerRef), clone);
  EXPECT_TRUE(reference(clone, OdDb::kSoftPointerRef).isNull());
  EXPECT_EQ(reference(clone, OdDb::kSoftPointerRef, 1), m_target->getLayerTableId());
  EXPECT_TRUE(node(clone)->getPersistentReactors().isEmpty());
  EXPECT_TRUE(cloneOf(m_mapping, soft).isNull());
}

TEST_F(OdDbWblockTest, TakenLayerNamesGoByTheRule) {
  struct Row {
    OdDb::DuplicateRecordCloning rule;
    const wchar_t* layer;
    OdUInt16 color;
  };
  for (const Row& row : {Row{OdDb::kDrcIgnore, L"WALLS", 2}, Row{OdDb::kDrcReplace, L"WALLS", 1},
                         Row{OdDb::kDrcMangleName, L"$0$WALLS", 1}}) {
    const OdDbDatabasePtr target = m_host.createDatabase();
    const OdDbObjectId present = addLayer(target, L"Walls", 2);
    const OdDbObjectId user = addLine(space(target), 7, present);
    const OdDbObjectId walls = addLayer(m_source, L"WALLS", 1);
    const OdDbObjectId line = addLine(space(m_source), 5, walls);
    m_mapping = OdDbIdMapping::createObject(OdDb::kDcWblkObjects);
    ASSERT_EQ(wblockClone({line}, space(target), row.rule), eOk);
    const OdDbLinePtr clone = open<OdDbLine>(cloneOf(m_mapping, line));
    EXPECT_TRUE(clone->layer().iCompare(row.layer) == 0) << "rule " << row.rule;
    EXPECT_EQ(layerColor(clone->layerId()), row.color) << "rule " << row.rule;
    EXPECT_EQ(clone->layerId() == present, row.rule != OdDb::kDrcMangleName);
    EXPECT_EQ(open<OdDbLine>(user)->layerId(), present);
    EXPECT_EQ(clone->layerId().ownerId(), target->getLayerTableId());
    open<OdDbLayerTableRecord>(walls, OdDb::kForWrite)->erase();
  }
}

TEST_F(OdDbWblockTest, ReplacedBlocksKeepTheirIdAndTakeTheNewContents) {
  const OdDbObjectId old = addBlock(m_target, L"PART");
  const OdDbObjectId oldLine = addLine(old, 1);
  const OdDbObjectId shows = addReference(space(m_target), old);
  const OdDbObjectId block = addBlock(m_source, L"PART");
  const OdDbObjectId line = addLine(block, 2);
  const OdDbObjectId reference = addReference(space(m_source), block);
  ASSERT_EQ(wblockClone({reference}, space(m_target), OdDb::kDrcReplace), eOk);
  EXPECT_EQ(cloneOf(m_mapping, block), old);
  EXPECT_TRUE(oldLine.isErased());
  const OdDbBlockTableRecordPtr replaced = open<OdDbBlockTableRecord>(old);
  EXPECT_EQ(replaced->entityIds(), (OdDbObjectIdArray{cloneOf(m_mapping, line)}));
  EXPECT_EQ(replaced->getBlockReferenceIds(),
            (OdDbObjectIdArray{shows, cloneOf(m_mapping, reference)}));
}

TEST_F(OdDbWblockTest, ExtendedDataIsRegisteredAndTranslated) {
  m_source->newRegApp(L"TEST");
  const OdDbObjectId root = addRoot(m_source, L"root");
  const OdDbObjectId child = addChild(root, L"child");
  const OdResBufPtr data = OdResBuf::newRb(OdResBuf::kDxfRegAppName, OdString(L"TEST"));
  data->setNext(OdResBuf::newRb(OdResBuf::kDxfXdHandle, child.getHandle()));
  data->last()->setNext(OdResBuf::newRb(OdResBuf::kDxfXdHandle, OdDbHandle(0xABCDE)));
  open<CloneNode>(root, OdDb::kForWrite)->setXData(data);
  addRoot(m_target, L"shifts handles");
  ASSERT_EQ(wblockClone({root}, m_target->getNamedObjectsDictionaryId()), eOk);
  const OdResBufPtr copied = node(cloneOf(m_mapping, root))->xData(L"TEST");
  EXPECT_EQ(copied->next()->getHandle(), cloneOf(m_mapping, child).getHandle());
  EXPECT_TRUE(copied->last()->getHandle().isNull());
  EXPECT_TRUE(open<OdDbRegAppTable>(m_target->getRegAppTableId())->has(L"TEST"));
}

TEST_F(OdDbWblockTest, RefusesWhatIsNotItsOwnAndFailsWithoutTrace) {
  const OdDbObjectId root = addRoot(m_source, L"root");
  const OdDbObjectId foreign = addRoot(m_target, L"foreign");
  const OdDbObjectId owner = m_target->getNamedObjectsDictionaryId();
  EXPECT_EQ(wblockClone({foreign}, owner), eWrongDatabase);
  EXPECT_EQ(m_source->deepCloneObjects({root}, owner, *m_mapping), eWrongDatabase);
  const OdDbObjectId bad = addRoot(m_source, L"bad");
  node(bad)->failsToRead = true;
  refer(root, OdDb::kHardPointerRef, bad);
  const OdUInt64 count = m_target->approxNumObjects();
  EXPECT_EQ(wblockClone({root}, owner), eCorruptData);
  EXPECT_EQ(m_target->approxNumObjects(), count);
  EXPECT_TRUE(m_mapping->newIterator()->done());
}

}  // namespace
