// Dictionaries: names, owners, erased entries, order, refusals.
#include "platform/db/dictionary.h"

#include <map>
#include <random>

#include "platform/db/chunked_order.h"
#include "platform/db/xrecord.h"
#include "platform/filer/id_filer.h"
#include "tests/platform/db/db_testing.h"

namespace {

class OdDbDictionaryTest : public DbTest {
 protected:
  OdDbObjectId add(const OdString& name) {
    return edit<OdDbDictionary>(m_dictionary)->setAt(name, OdDbXrecord::createObject());
  }
  OdString names() {
    OdString text;
    const OdDbDictionaryPtr dictionary = open<OdDbDictionary>(m_dictionary);
    for (OdDbDictionaryIteratorPtr at = dictionary->newIterator(); !at->done(); at->next()) {
      text += at->name() + " ";
    }
    return text;
  }

  OdDbObjectId m_dictionary = addDictionary("test");
};

TEST_F(OdDbDictionaryTest, NamesIgnoreCaseAndKeepTheirSpelling) {
  const OdDbObjectId id = add(L"Stra\u00DFe");
  const OdDbDictionaryPtr dictionary = open<OdDbDictionary>(m_dictionary);
  EXPECT_EQ(dictionary->getAt(L"STRASSE"), id);
  EXPECT_EQ(dictionary->nameAt(id), OdString(L"Stra\u00DFe"));
  EXPECT_EQ(id.ownerId(), m_dictionary);
  OdResult status = eOk;
  EXPECT_TRUE(dictionary->getAt("other", &status).isNull());
  EXPECT_EQ(status, eKeyNotFound);
  EXPECT_TRUE(dictionary->getAt("other", OdDb::kForRead).isNull());
}

TEST_F(OdDbDictionaryTest, WalksInTheOrderOfTheNamesWhileEntriesChange) {
  for (const char* name : {"delta", "Alpha", "charlie", "bravo"}) add(name);
  EXPECT_EQ(names(), OdString("Alpha bravo charlie delta "));
  const OdDbDictionaryPtr dictionary = edit<OdDbDictionary>(m_dictionary);
  OdString walked;
  for (OdDbDictionaryIteratorPtr at = dictionary->newIterator(); !at->done(); at->next()) {
    walked += at->name() + " ";
    if (at->name() == "Alpha") dictionary->remove("Alpha");
    if (at->name() == "charlie") add("coda");
    if (at->name() == "bravo") {
      EXPECT_TRUE(at->setPosition(at->objectId()));
    }
  }
  EXPECT_EQ(walked, OdString("Alpha bravo charlie coda delta "));
}

TEST_F(OdDbDictionaryTest, ErasedElementsAreNotFoundUntilTheyComeBack) {
  const OdDbObjectId id = add("key");
  erase(id);
  const OdDbDictionaryPtr dictionary = edit<OdDbDictionary>(m_dictionary);
  EXPECT_FALSE(dictionary->has("key"));
  EXPECT_FALSE(dictionary->has(id));
  EXPECT_EQ(dictionary->nameAt(id), OdString());
  EXPECT_EQ(dictionary->numEntries(), 0u);
  EXPECT_TRUE(dictionary->isEmpty());
  EXPECT_TRUE(dictionary->newIterator()->done());
  OdDbIdFiler references;
  dictionary->dwgOutFields(&references);
  EXPECT_TRUE(references.ids().empty()) << "what is erased is not filed";
  erase(id, /*erasing=*/false);
  EXPECT_EQ(dictionary->getAt("key"), id);
  EXPECT_EQ(dictionary->remove("key"), id);
  EXPECT_FALSE(id.isErased()) << "removing is not erasing";
  EXPECT_TRUE(dictionary->remove("key").isNull());
}

TEST_F(OdDbDictionaryTest, RenamesOnlyToAFreeName) {
  const OdDbObjectId id = add("one");
  add("two");
  m_database->startUndoRecord();
  const std::string before = stateOf(m_dictionary);
  {
    const OdDbDictionaryPtr dictionary = edit<OdDbDictionary>(m_dictionary);
    EXPECT_FALSE(dictionary->setName("one", "TWO"));
    EXPECT_FALSE(dictionary->setName("three", "four"));
    EXPECT_FALSE(dictionary->setName("one", ""));
    EXPECT_TRUE(dictionary->setName("one", "ONE"));
    EXPECT_TRUE(dictionary->setName("one", "uno"));
    EXPECT_EQ(dictionary->getAt("uno"), id);
    EXPECT_FALSE(dictionary->has("one"));
  }
  expectUndone(m_dictionary, before);
}

TEST_F(OdDbDictionaryTest, RefusesWhatItCannotHold) {
  const OdDbObjectId id = add("one");
  const OdDbDatabasePtr other = m_host.createDatabase();
  const OdDbDictionaryPtr dictionary = edit<OdDbDictionary>(m_dictionary);
  const OdDbXrecordPtr fresh = OdDbXrecord::createObject();
  const auto set = [&](const char* name, const OdDbObjectId& value) {
    return raisedBy([&] { dictionary->setAt(name, value); });
  };
  EXPECT_EQ(raisedBy([&] { dictionary->setAt("", fresh); }), eInvalidKey);
  EXPECT_EQ(raisedBy([&] { dictionary->setAt("x", OdDbXrecordPtr()); }), eNullPointer);
  EXPECT_EQ(set("two", id), eDuplicateKey);
  EXPECT_EQ(set("two", other->getModelSpaceId()), eWrongDatabase);
  EXPECT_EQ(raisedBy([&] { OdDbDictionary::createObject()->setAt("x", fresh); }), eNoDatabase);
  EXPECT_EQ(fresh->database(), nullptr);
  EXPECT_EQ(dictionary->numEntries(), 1u);
  EXPECT_EQ(raisedBy([&] { open<OdDbDictionary>(addDictionary("b"))->setAt("x", fresh); }),
            eNotOpenForWrite);
  EXPECT_EQ(rootDictionary()->erase(), eInvalidInput);
}

TEST_F(OdDbDictionaryTest, FilesElementsByTheirOwnership) {
  const OdDbObjectId id = add("one");
  for (const bool hard : {false, true}) {
    edit<OdDbDictionary>(m_dictionary)->setTreatElementsAsHard(hard);
    OdDbIdFiler filer;
    open<OdDbDictionary>(m_dictionary)->dwgOutFields(&filer);
    ASSERT_EQ(filer.ids().size(), 1u);
    EXPECT_EQ(filer.ids()[0].id, id);
    EXPECT_EQ(filer.ids()[0].type, hard ? OdDb::kHardOwnershipRef : OdDb::kSoftOwnershipRef);
  }
  expectTruncationsFail(m_dictionary);
}

struct Ascending {
  static int compare(int a, int b) { return a < b ? -1 : a > b ? 1 : 0; }
};

TEST(OdDbChunkedOrderTest, StaysSortedThroughInsertionsAndRemovals) {
  std::mt19937 random(7);
  OdDbChunkedOrder<int, Ascending> order;
  std::map<int, bool> model;
  for (int step = 0; step < 20000; ++step) {
    const int key = static_cast<int>(random() % 3000);
    if (random() % 3 == 0) {
      EXPECT_EQ(order.erase(key), model.erase(key) == 1);
    } else {
      EXPECT_EQ(order.insert(key), model.emplace(key, true).second);
    }
  }
  ASSERT_EQ(order.size(), model.size());
  auto expected = model.begin();
  for (auto at = order.first(); !order.isEnd(at); order.advance(at), ++expected) {
    ASSERT_EQ(order.item(at), expected->first);
  }
  auto back = order.last();
  for (auto at = model.rbegin(); at != model.rend(); ++at) {
    ASSERT_EQ(order.item(back), at->first);
    EXPECT_EQ(order.retreat(back), std::next(at) != model.rend());
  }
}

}  // namespace
