// Objects that exchange ids: what goes with the id, what with the object, undo.
#include "tests/platform/db/core_testing.h"

namespace {

class SwapTest : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    m_a = addCell(L"a");
    m_b = addCell(L"b");
    m_ofA = database->addOdDbObject(TestCell::createObject(), m_a);
    open(m_a, OdDb::kForWrite)->own(m_ofA);
    database->disableUndoRecording(false);
  }
  static OdString textAt(OdDbObjectId id) { return open(id)->text(); }
  void swap(bool data = false, bool dictionary = false) {
    open(m_a, OdDb::kForWrite)->swapIdWith(m_b, data, dictionary);
  }

  OdDbObjectId m_a, m_b, m_ofA;
};

TEST_F(SwapTest, ObjectsChangePlacesAndTakeWhatTheyOwn) {
  const TestCellPtr held = open(m_a);
  swap();
  EXPECT_EQ(held->objectId(), m_b);
  EXPECT_EQ(textAt(m_a), L"b");
  EXPECT_EQ(m_ofA.ownerId(), m_b);
}

TEST_F(SwapTest, UndoAndRedoWithChangesAround) {
  database->startUndoRecord();
  setNumber(m_a, 1);
  setText(m_b, L"b1");
  swap();
  setNumber(m_b, 2);  // the first one, which was recorded under its old id
  setText(m_a, L"b2");
  ASSERT_EQ(database->undo(), eOk);
  EXPECT_EQ(textAt(m_a), L"a");
  EXPECT_EQ(open(m_a)->number(), 0);
  EXPECT_EQ(textAt(m_b), L"b");
  EXPECT_EQ(m_ofA.ownerId(), m_a);
  ASSERT_EQ(database->redo(), eOk);
  EXPECT_EQ(textAt(m_a), L"b2");
  EXPECT_EQ(open(m_b)->number(), 2);
  EXPECT_EQ(m_ofA.ownerId(), m_b);
  ASSERT_EQ(database->undo(), eOk);
  EXPECT_EQ(textAt(m_a), L"a");

  {
    const OdDbTransaction transaction(database);
    swap();
  }
  EXPECT_EQ(textAt(m_a), L"a") << "aborted";
}

TEST_F(SwapTest, ExtensionDictionaryStaysWithTheIdWhenAsked) {
  const OdDbObjectId dictionary = open(m_a, OdDb::kForWrite)->createExtensionDictionary();
  swap(/*data=*/true, /*dictionary=*/true);
  EXPECT_EQ(open(m_a)->extensionDictionary(), dictionary);
  EXPECT_EQ(dictionary.ownerId(), m_a);
  swap();
  EXPECT_EQ(open(m_b)->extensionDictionary(), dictionary);
  EXPECT_EQ(dictionary.ownerId(), m_b);
}

}  // namespace
