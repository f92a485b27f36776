// Drawings and their files: laziness, erased owners, proxies, refused changes.
#include <filesystem>

#include "platform/cloning/id_mapping.h"
#include "platform/db/dictionary.h"
#include "platform/db/proxy_object.h"
#include "tests/platform/db/core_testing.h"
#include "tests/support/test_folder.h"

namespace fs = std::filesystem;

class OdDbDatabaseFile : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    database = files.createDatabase();
  }
  void saveAs() { ASSERT_TRUE(succeeded(database->saveAs(OdString(path)))); }
  void save() { ASSERT_TRUE(succeeded(database->save())); }
  void reopen(OdDbStoreOpenMode mode = OdDbStoreOpenMode::kReadWrite) {
    database = OdDbDatabasePtr();
    OdDbReadOptions options;
    options.mode = mode;
    OdStatus status;
    database = files.readFile(OdString(path), status, options);
    ASSERT_TRUE(succeeded(status));
  }
  OdDbObjectId find(OdUInt64 handle) { return database->getOdDbObjectId(OdDbHandle(handle)); }

  FilingHost files;
  const TestFolder folder;
  const std::string path = folder.file("drawing.vdm");
};

TEST_F(OdDbDatabaseFile, OpensWithoutReadingObjectsAndKnowsIdsWithoutLoading) {
  const auto root = [this](OdDb::OpenMode mode) {
    return database->getNamedObjectsDictionaryId().openAs<OdDbDictionary>(mode);
  };
  const OdDbObjectId kept = addCell(L"kept");
  root(OdDb::kForWrite)->setAt("name", kept);
  const auto handle = static_cast<OdUInt64>(kept.getHandle());
  const std::string before = dumpDrawing(database.get());
  saveAs();
  reopen();
  const OdDbObjectId id = find(handle);
  EXPECT_EQ(id.objectClass(), TestCell::desc());
  EXPECT_EQ(id.ownerId(), database->getNamedObjectsDictionaryId());
  EXPECT_FALSE(id.isErased());
  EXPECT_EQ(root(OdDb::kForRead)->getAt("name"), id);
  EXPECT_FALSE(id.isResident());
  EXPECT_TRUE(find(0x7777).isNull());
  EXPECT_EQ(open(id)->text(), L"kept");
  EXPECT_TRUE(id.isResident());
  EXPECT_GT(database->pageOut(0), 0u);
  EXPECT_FALSE(id.isResident());
  EXPECT_EQ(dumpDrawing(database.get()), before);
  EXPECT_FALSE(database->isModified());
  EXPECT_GT(static_cast<OdUInt64>(addCell().getHandle()), handle);
}

// What undo and redo take away may come back: it is read first where it is in the file alone.
TEST_F(OdDbDatabaseFile, UndoAndRedoKeepWhatHasLeftMemory) {
  const OdDbObjectId erased = addCell(L"erased");
  saveAs();
  const auto dropFromMemory = [this](const OdDbObjectId& id) {
    save();
    (void)database->pageOut(0);
    EXPECT_FALSE(id.isResident());
  };
  database->startUndoRecord();
  open(erased, OdDb::kForWrite)->erase();
  EXPECT_EQ(database->undo(), eOk);
  dropFromMemory(erased);
  EXPECT_EQ(database->redo(), eOk);
  EXPECT_TRUE(erased.isErased());
  save();
  EXPECT_EQ(database->undo(), eOk);
  EXPECT_EQ(open(erased)->text(), L"erased");
  database->startUndoRecord();
  const OdDbObjectId made = addCell(L"made");
  dropFromMemory(made);
  EXPECT_EQ(database->undo(), eOk);
  save();
  EXPECT_EQ(database->redo(), eOk);
  EXPECT_EQ(open(made)->text(), L"made");
}

TEST_F(OdDbDatabaseFile, AResidentProxyTurnsIntoItsObjectOnceTheClassIsThere) {
  const auto handle = static_cast<OdUInt64>(addCell(L"text").getHandle());
  saveAs();
  database = OdDbDatabasePtr();
  TestCell::rxUninit();
  reopen();
  {
    const OdDbObjectPtr proxy = find(handle).openObject(OdDb::kForWrite);
    EXPECT_FALSE(OdDbProxyObject::cast(proxy).isNull());
    proxy->addPersistentReactor(database->getModelSpaceId());
    proxy->createExtensionDictionary();
  }
  save();
  EXPECT_FALSE(find(handle).openAs<OdDbProxyObject>().isNull());
  TestCell::rxInit();
  ASSERT_FALSE(open(find(handle)).isNull());
  EXPECT_EQ(open(find(handle))->text(), L"text");
  EXPECT_EQ(open(find(handle))->getPersistentReactors().size(), 1u);
  EXPECT_FALSE(open(find(handle))->extensionDictionary().isNull());
}

TEST_F(OdDbDatabaseFile, ARevivedProxyIsInTheFileOnlyIfItsProxyWas) {
  const OdDbObjectId saved = addCell(L"text");
  const auto handle = static_cast<OdUInt64>(saved.getHandle());
  saveAs();
  database = OdDbDatabasePtr();
  TestCell::rxUninit();
  reopen();
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcCopy);
  ASSERT_EQ(database->deepCloneObjects({find(handle)}, OdDbObjectId::kNull, *mapping), eOk);
  OdDbIdPair pair(find(handle));
  ASSERT_TRUE(mapping->compute(pair));
  TestCell::rxInit();
  EXPECT_FALSE(open(find(handle))->isNewObject());
  EXPECT_TRUE(open(pair.value())->isNewObject());
  save();
  EXPECT_FALSE(open(pair.value())->isNewObject());
}

TEST_F(OdDbDatabaseFile, AReadOnlyDrawingRefusesChangesAndSaving) {
  const auto handle = static_cast<OdUInt64>(addCell(L"x").getHandle());
  saveAs();
  reopen(OdDbStoreOpenMode::kReadOnly);
  EXPECT_TRUE(find(handle).openObject(OdDb::kForWrite).isNull());
  EXPECT_THROW(open(find(handle))->upgradeOpen(), OdError);
  EXPECT_THROW(addCell(), OdError);
  EXPECT_THROW(database->setINSUNITS(OdDb::kUnitsFeet), OdError);
  EXPECT_EQ(database->save().code, eReadOnlyDatabase);
}

TEST_F(OdDbDatabaseFile, WhatAnErasedOwnerOwnsComesBackAfterSeveralSaves) {
  const OdDbObjectId owner = addCell(L"owner");
  saveAs();
  const OdDbObjectId child = addCell(L"child");  // is in no file yet
  open(child, OdDb::kForWrite)->setOwnerId(owner);
  open(owner, OdDb::kForWrite)->own(child);
  const std::string whole = dumpDrawing(database.get());
  database->startUndoRecord();
  open(owner, OdDb::kForWrite)->erase();
  save();
  addCell(L"another change");
  save();
  ASSERT_EQ(database->undo(), eOk);
  save();
  const auto handle = static_cast<OdUInt64>(owner.getHandle());
  reopen();
  EXPECT_EQ(dumpDrawing(database.get()), whole);

  database->startUndoRecord();
  open(find(handle), OdDb::kForWrite)->erase();
  saveAs();  // of the owned object the new file holds nothing, unloaded as it was
  ASSERT_EQ(database->undo(), eOk);
  saveAs();
  reopen();
  EXPECT_EQ(dumpDrawing(database.get()), whole);
}
