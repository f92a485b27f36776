// Drawings and their files: laziness, changed records, erased subtrees, proxies, damage.
#include <filesystem>
#include <fstream>

#include "platform/db/dictionary.h"
#include "platform/db/proxy_object.h"
#include "platform/storage/sqlite_record_store.h"
#include "tests/platform_db/core_testing.h"

namespace fs = std::filesystem;

class OdDbDatabaseFile : public CoreTest {
 protected:
  OdDbDatabaseFile() : files(createSqliteStoreFactory()) {}

  void SetUp() override {
    CoreTest::SetUp();
    database = files.createDatabase();
    fs::remove(path);
  }
  void TearDown() override {
    database = OdDbDatabasePtr();
    fs::remove(path);
  }
  void saveAs() {
    const OdDbStoreStatus status = database->saveAs(OdString(path));
    ASSERT_TRUE(status.ok()) << status.text.utf8();
  }
  void save() {
    const OdDbStoreStatus status = database->save();
    ASSERT_TRUE(status.ok()) << status.text.utf8();
  }
  void reopen(OdDbStoreOpenMode mode = OdDbStoreOpenMode::kReadWrite) {
    database = OdDbDatabasePtr();
    OdDbStoreStatus status;
    OdDbReadOptions options;
    options.mode = mode;
    database = files.readFile(OdString(path), status, options);
    ASSERT_TRUE(status.ok()) << status.text.utf8();
  }
  OdDbObjectId find(OdUInt64 handle) { return database->getOdDbObjectId(OdDbHandle(handle)); }

  OdDbHostAppServices files;
  const std::string path = "core_test.vdm";
};

TEST_F(OdDbDatabaseFile, OpensWithoutReadingObjectsAndKnowsIdsWithoutLoading) {
  const auto handle = static_cast<OdUInt64>(addCell(L"kept").getHandle());
  const std::string before = dumpDrawing(database.get());
  saveAs();
  reopen();
  const OdDbObjectId id = find(handle);
  EXPECT_EQ(id.objectClass(), TestCell::desc());
  EXPECT_EQ(id.ownerId(), database->getNamedObjectsDictionaryId());
  EXPECT_FALSE(id.isErased());
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

TEST_F(OdDbDatabaseFile, SavesAgainWhatUndoAndErasingLeave) {
  const OdDbObjectId owner = addCell(L"owner");
  const OdDbObjectId child = addCell(L"child");
  open(child, OdDb::kForWrite)->setOwnerId(owner);
  open(owner, OdDb::kForWrite)->own(child);
  const auto ownerHandle = static_cast<OdUInt64>(owner.getHandle());
  const auto childHandle = static_cast<OdUInt64>(child.getHandle());
  saveAs();
  const std::string whole = dumpDrawing(database.get());
  reopen();

  database->startUndoRecord();
  open(find(ownerHandle), OdDb::kForWrite)->erase();
  save();  // the child leaves the file with its owner, unloaded as it was
  ASSERT_EQ(database->undo(), eOk);
  save();
  reopen();
  EXPECT_EQ(dumpDrawing(database.get()), whole);

  database->startUndoRecord();
  open(find(ownerHandle), OdDb::kForWrite)->erase();
  saveAs();
  ASSERT_EQ(database->undo(), eOk);
  EXPECT_EQ(open(find(childHandle))->text(), L"child");
  saveAs();
  reopen();
  EXPECT_EQ(dumpDrawing(database.get()), whole);

  open(find(ownerHandle), OdDb::kForWrite)->erase();
  save();
  reopen();
  EXPECT_TRUE(find(ownerHandle).isNull());
  EXPECT_TRUE(find(childHandle).isNull());
}

TEST_F(OdDbDatabaseFile, TheSameDrawingGivesTheSameBytes) {
  addCell(L"a");
  database->setINSUNITS(OdDb::kUnitsMeters);
  saveAs();
  const auto bytes = [this] {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  const std::string first = bytes();
  reopen();
  saveAs();
  EXPECT_EQ(bytes(), first);
  EXPECT_EQ(database->getINSUNITS(), OdDb::kUnitsMeters);
}

TEST_F(OdDbDatabaseFile, UnknownClassesKeepEveryByteAndComeBack) {
  const OdDbObjectId cell = addCell(L"plain");
  const OdDbObjectId other = addCell(L"other");
  open(cell, OdDb::kForWrite)->own(other);
  open(cell, OdDb::kForWrite)->addPersistentReactor(other);
  setNumber(cell, 41);
  const auto handle = static_cast<OdUInt64>(cell.getHandle());
  saveAs();
  const std::string known = dumpDrawing(database.get());
  database = OdDbDatabasePtr();
  TestCell::rxUninit();

  reopen();
  {
    const OdSmartPtr<OdDbProxyObject> proxy = OdDbProxyObject::cast(find(handle).openObject());
    ASSERT_FALSE(proxy.isNull());
    EXPECT_EQ(proxy->originalClassName(), L"TestCell");
    EXPECT_EQ(proxy->originalDxfName(), L"TESTCELL");
    EXPECT_EQ(proxy->references().size(), 1u);
    EXPECT_EQ(proxy->getPersistentReactors().size(), 1u);
    proxy->upgradeOpen();
    proxy->removePersistentReactor(proxy->getPersistentReactors()[0]);
    proxy->createExtensionDictionary();
  }
  save();
  saveAs();
  reopen();
  TestCell::rxInit();
  {
    const TestCellPtr cellAgain = open(find(handle));
    ASSERT_FALSE(cellAgain.isNull());
    EXPECT_EQ(cellAgain->number(), 41);
    EXPECT_EQ(open(cellAgain->owned()[0])->text(), L"other");
    EXPECT_TRUE(cellAgain->getPersistentReactors().isEmpty());
    EXPECT_FALSE(cellAgain->extensionDictionary().isNull());
  }
  database->startUndoRecord();
  open(find(handle), OdDb::kForWrite)->releaseExtensionDictionary();
  open(find(handle), OdDb::kForWrite)->addPersistentReactor(open(find(handle))->owned()[0]);
  EXPECT_EQ(dumpDrawing(database.get()), known);
}

TEST_F(OdDbDatabaseFile, AResidentProxyTurnsIntoItsObjectOnceTheClassIsThere) {
  const auto handle = static_cast<OdUInt64>(addCell(L"text").getHandle());
  saveAs();
  database = OdDbDatabasePtr();
  TestCell::rxUninit();
  reopen();
  EXPECT_FALSE(OdDbProxyObject::cast(find(handle).openObject()).isNull());
  TestCell::rxInit();
  ASSERT_FALSE(open(find(handle)).isNull());
  EXPECT_EQ(open(find(handle))->text(), L"text");
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

TEST_F(OdDbDatabaseFile, AFailedSaveChangesNothing) {
  saveAs();
  addCell(L"later");
  EXPECT_FALSE(database->saveAs(OdString("no_such_folder/x.vdm")).ok());
  EXPECT_TRUE(database->isModified());
  save();
  const std::string now = dumpDrawing(database.get());
  reopen();
  EXPECT_EQ(dumpDrawing(database.get()), now);
}

TEST_F(OdDbDatabaseFile, RecoveryBringsBackWhatIsIntact) {
  for (int i = 0; i < 200; ++i) addCell(L"some text to fill a page with records");
  saveAs();
  const OdUInt64 objects = database->approxNumObjects();
  database = OdDbDatabasePtr();
  {
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(fs::file_size(path)) - 4096 - 700);
    file.write("damage damage damage", 20);
  }
  OdStringArray report;
  OdDbStoreStatus status;
  database = files.recoverFile(OdString(path), report, status);
  ASSERT_TRUE(status.ok()) << status.text.utf8();
  EXPECT_FALSE(report.isEmpty());
  EXPECT_LT(database->approxNumObjects(), objects);
  EXPECT_GT(database->approxNumObjects(), objects - 20);
  saveAs();
  reopen();
  EXPECT_TRUE(database->loadAll().ok());
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
  reopen();
  EXPECT_EQ(dumpDrawing(database.get()), whole);
}
