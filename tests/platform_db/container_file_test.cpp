// Containers through a drawing file: everything comes back, also what was erased and came back.
#include <filesystem>

#include "platform/db/block_reference.h"
#include "platform/db/layer_table.h"
#include "platform/db/viewport.h"
#include "platform/db/xrecord.h"
#include "platform/storage/sqlite_record_store.h"
#include "tests/platform_db/core_testing.h"
#include "tests/platform_db/db_testing.h"

namespace {

class ContainerFile : public DbTest {
 protected:
  ContainerFile() : m_files(createSqliteStoreFactory()) { m_database = m_files.createDatabase(); }
  ~ContainerFile() override {
    m_database = OdDbDatabasePtr();
    std::filesystem::remove(kPath);
  }
  void save() {
    const OdDbStoreStatus status =
        m_database->getFilename().isEmpty() ? m_database->saveAs(kPath) : m_database->save();
    ASSERT_TRUE(status.ok()) << status.text.utf8();
  }
  void reopen() {
    m_database = OdDbDatabasePtr();
    OdDbStoreStatus status;
    m_database = m_files.readFile(kPath, status);
    ASSERT_TRUE(status.ok()) << status.text.utf8();
  }
  OdDbObjectId idOf(OdUInt64 handle) { return m_database->getOdDbObjectId(OdDbHandle(handle)); }

  static constexpr const char* kPath = "container_file_test.vdm";
  OdDbHostAppServices m_files;
};

TEST_F(ContainerFile, EveryClassReadsBack) {
  const OdDbObjectId block = addBlock(L"\u00C4 block");
  addLine(block);
  OdGeMatrix3d sheared;
  sheared(0, 1) = 0.3;
  OdUInt64 placed = 0;
  {
    const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
    reference->setBlockTableRecord(block);
    ASSERT_EQ(reference->setBlockTransform(sheared), eOk);
    placed = edit<OdDbBlockTableRecord>(m_database->getModelSpaceId())
                 ->appendOdDbEntity(reference)
                 .getHandle();
    edit<OdDbBlockTableRecord>(m_database->getPaperSpaceId())
        ->appendOdDbEntity(OdDbViewport::createObject());
    const OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
    layer->setName("hidden");
    layer->setIsHidden(true);
    edit<OdDbLayerTable>(m_database->getLayerTableId())->add(layer);
    const OdDbXrecordPtr record = OdDbXrecord::createObject();
    ASSERT_EQ(record->setFromRbChain(OdResBuf::newRb(330, block)), eOk);
    edit<OdDbDictionary>(addDictionary("plans"))->setAt("one", record);
  }
  m_database->newRegApp("APP");
  m_database->setINSUNITS(OdDb::kUnitsFeet);

  const std::string before = dumpDrawing(m_database.get());
  const OdUInt64 blockHandle = block.getHandle();
  ASSERT_NO_FATAL_FAILURE(save());
  ASSERT_NO_FATAL_FAILURE(reopen());
  EXPECT_EQ(dumpDrawing(m_database.get()), before);
  EXPECT_EQ(m_database->getINSUNITS(), OdDb::kUnitsFeet);
  EXPECT_EQ(open<OdDbBlockTableRecord>(idOf(blockHandle))->getBlockReferenceIds(),
            (OdDbObjectIdArray{idOf(placed)}));
  EXPECT_EQ(open<OdDbBlockReference>(idOf(placed))->blockTransform(), sheared);
}

TEST_F(ContainerFile, LookingUpLoadsNoElement) {
  const OdDbObjectId block = addBlock("A");
  const OdUInt64 dictionary = addDictionary("plans").getHandle();
  edit<OdDbDictionary>(idOf(dictionary))->setAt("one", OdDbXrecord::createObject());
  const OdUInt64 handle = block.getHandle();
  ASSERT_NO_FATAL_FAILURE(save());
  ASSERT_NO_FATAL_FAILURE(reopen());
  EXPECT_EQ(open<OdDbBlockTable>(m_database->getBlockTableId())->getAt("a"), idOf(handle));
  EXPECT_FALSE(idOf(handle).isResident());
  const OdDbObjectId element = open<OdDbDictionary>(idOf(dictionary))->getAt("one");
  EXPECT_FALSE(element.isNull());
  EXPECT_FALSE(element.isResident());
}

// A list is saved without what is erased at that time. When that comes back, the list has to be
// saved again, or a reopened drawing would not find it.
TEST_F(ContainerFile, WhatComesBackAfterASaveIsListedInTheFile) {
  const OdDbObjectId block = addBlock("A");
  const OdDbObjectId space = m_database->getModelSpaceId();
  const OdDbObjectId dictionary = addDictionary("plans");
  const OdDbObjectId entry =
      edit<OdDbDictionary>(dictionary)->setAt("one", OdDbXrecord::createObject());
  OdDbBlockReferencePtr made = OdDbBlockReference::createObject();
  made->setBlockTableRecord(block);
  const OdUInt64 reference = edit<OdDbBlockTableRecord>(space)->appendOdDbEntity(made).getHandle();
  made = nullptr;
  ASSERT_NO_FATAL_FAILURE(save());

  m_database->startUndoRecord();
  edit<OdDbDictionary>(dictionary)->setAt("two", OdDbXrecord::createObject());
  addLine(space);
  edit<OdDbBlockTableRecord>(block)->setComments("changed");
  m_database->startUndoRecord();
  erase(entry);
  erase(idOf(reference));
  ASSERT_NO_FATAL_FAILURE(save());
  ASSERT_EQ(m_database->undo(), eOk);
  ASSERT_NO_FATAL_FAILURE(save());

  const OdUInt64 handles[] = {dictionary.getHandle(), space.getHandle(), block.getHandle()};
  ASSERT_NO_FATAL_FAILURE(reopen());
  EXPECT_TRUE(open<OdDbDictionary>(idOf(handles[0]))->has("one"));
  const OdDbObjectIdArray entities = open<OdDbBlockTableRecord>(idOf(handles[1]))->entityIds();
  EXPECT_TRUE(entities.contains(idOf(reference)));
  EXPECT_EQ(open<OdDbBlockTableRecord>(idOf(handles[2]))->getBlockReferenceIds(),
            (OdDbObjectIdArray{idOf(reference)}));
}

TEST_F(ContainerFile, ErasedEntriesSurvivePagingOut) {
  const OdDbObjectId dictionary = addDictionary("plans");
  const OdDbObjectId entry =
      edit<OdDbDictionary>(dictionary)->setAt("one", OdDbXrecord::createObject());
  m_database->startUndoRecord();
  erase(entry);
  edit<OdDbDictionary>(dictionary)->setAt("two", OdDbXrecord::createObject());
  ASSERT_NO_FATAL_FAILURE(save());
  m_database->pageOut(0);
  ASSERT_EQ(m_database->undo(), eOk);
  EXPECT_EQ(open<OdDbDictionary>(dictionary)->getAt("one"), entry);
}

}  // namespace
