// A drawing in memory and verbs for the tests of the drawing database's containers.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/host_app_services.h"
#include "platform/entities/line.h"
#include "platform/filer/memory_filer.h"
#include "platform/runtime/runtime_init.h"

/// What an OdError says about a call; eOk when it does not throw.
template <class Call>
OdResult raisedBy(const Call& call) {
  try {
    call();
  } catch (const OdError& error) {
    return error.code();
  }
  return eOk;
}

class DbTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { oddbInitialize(); }
  static void TearDownTestSuite() { oddbUninitialize(); }

  DbTest() : m_database(m_host.createDatabase()) { m_database->startUndoRecord(); }

  template <class T>
  static OdSmartPtr<T> open(OdDbObjectId id, OdDb::OpenMode mode = OdDb::kForRead) {
    return id.safeOpenAs<T>(mode);
  }
  template <class T>
  static OdSmartPtr<T> edit(OdDbObjectId id) {
    return open<T>(id, OdDb::kForWrite);
  }
  OdDbDictionaryPtr rootDictionary() {
    return edit<OdDbDictionary>(m_database->getNamedObjectsDictionaryId());
  }
  OdDbObjectId addDictionary(const OdString& name) {
    const OdDbDictionaryPtr made = OdDbDictionary::createObject();
    return rootDictionary()->setAt(name, made);
  }
  OdDbObjectId addBlock(const OdString& name) {
    const OdDbBlockTablePtr table = edit<OdDbBlockTable>(m_database->getBlockTableId());
    const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
    block->setName(name);
    return table->add(block);
  }
  OdDbObjectId addLine(OdDbObjectId block, const OdGePoint3d& from = {},
                       const OdGePoint3d& to = {1, 0, 0}) {
    const OdDbLinePtr line = OdDbLine::createObject();
    line->setStartPoint(from);
    line->setEndPoint(to);
    return edit<OdDbBlockTableRecord>(block)->appendOdDbEntity(line);
  }
  static void erase(OdDbObjectId id, bool erasing = true) {
    const OdDbObjectPtr object = id.openObject(OdDb::kForWrite, /*openErased=*/true);
    EXPECT_EQ(object->erase(erasing), eOk);
  }

  /// The whole state of an object as bytes and strings, for comparing before and after.
  static std::string stateOf(OdDbObjectId id) {
    OdDbFilerBuffer buffer;
    OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, buffer);
    id.safeOpenObject(OdDb::kForRead, /*openErased=*/true)->dwgOutFields(&filer);
    std::string state(buffer.bytes.begin(), buffer.bytes.end());
    for (const OdString& text : buffer.strings) state += "|" + std::string(text.utf8());
    return state;
  }
  /// Undo gives back `before`, redo what stands now; the undone state is left.
  void expectUndone(OdDbObjectId id, const std::string& before) {
    const std::string after = stateOf(id);
    EXPECT_NE(after, before);
    ASSERT_EQ(m_database->undo(), eOk);
    EXPECT_EQ(stateOf(id), before);
    ASSERT_EQ(m_database->redo(), eOk);
    EXPECT_EQ(stateOf(id), after);
    ASSERT_EQ(m_database->undo(), eOk);
    EXPECT_EQ(stateOf(id), before);
  }
  /// A second object of the class with the same filed state reads every truncation of it as an
  /// error or not at all, and the whole as itself.
  static void expectTruncationsFail(OdDbObjectId id) {
    OdDbFilerBuffer buffer;
    OdDbMemoryFiler filer(OdDbDwgFiler::kCopyFiler, buffer);
    const OdDbObjectPtr source = id.safeOpenObject();
    source->dwgOutFields(&filer);
    for (std::size_t end = 0; end < buffer.bytes.size(); ++end) {
      const OdDbObjectPtr copy = source->isA()->create();
      filer.startReading(0, 0, end);
      OdResult result = eOk;
      EXPECT_NE(raisedBy([&] { result = copy->dwgInFields(&filer); }) + result, eOk)
          << source->isA()->name() << " cut at byte " << end;
    }
  }

  OdDbHostAppServices m_host;
  OdDbDatabasePtr m_database;
};
