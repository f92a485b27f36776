// A drawing in memory and verbs for the tests of the drawing database's containers.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/db/dictionary.h"
#include "platform/filer/memory_filer.h"
#include "tests/support/drawing_testing.h"
#include "tests/support/status_testing.h"

class DbTest : public DrawingVerbs, public testing::Test {
 protected:
  DbTest() : m_database(m_host.createDatabase()) { m_database->startUndoRecord(); }

  OdDbDictionaryPtr rootDictionary() {
    return edit<OdDbDictionary>(m_database->getNamedObjectsDictionaryId());
  }
  OdDbObjectId addDictionary(const OdString& name) {
    const OdDbDictionaryPtr made = OdDbDictionary::createObject();
    return rootDictionary()->setAt(name, made);
  }
  using DrawingVerbs::addBlock;
  OdDbObjectId addBlock(const OdString& name) { return addBlock(m_database, name); }
  static void erase(OdDbObjectId id, bool erasing = true) {
    const OdDbObjectPtr object = id.openObject(OdDb::kForWrite, /*openErased=*/true);
    EXPECT_EQ(object->erase(erasing), eOk);
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
