// Tests of what observers of a drawing hear, and of ids that wait for translation.
#include "platform/db/database_reactor.h"

#include "platform/cloning/id_mapping.h"
#include "tests/platform/db/core_testing.h"

namespace {

/// Notes what it hears: a letter and the text of the cell.
class Recorder : public OdDbDatabaseReactor {
 public:
  void objectAppended(const OdDbDatabase*, const OdDbObject* object) override {
    inFluxWhenAppended = inFluxWhenAppended || object->isOdDbObjectIdsInFlux();
    hear('+', object);
    if (throws) throw OdError(eGeneralFailure);
  }
  void objectUnAppended(const OdDbDatabase*, const OdDbObject* object) override {
    hear('<', object);
  }
  void objectReAppended(const OdDbDatabase*, const OdDbObject* object) override {
    hear('>', object);
  }
  void objectOpenedForModify(const OdDbDatabase*, const OdDbObject* object) override {
    hear('o', object);
  }
  void objectModified(const OdDbDatabase*, const OdDbObject* object) override { hear('m', object); }
  void objectErased(const OdDbDatabase*, const OdDbObject* object, bool erasing) override {
    hear(erasing ? '-' : 'u', object);
  }
  void headerSysVarChanged(const OdDbDatabase*, const OdString& name) override {
    heard += "[" + std::string(name.utf8()) + "]";
  }
  void goodbye(const OdDbDatabase*) override { heard += "bye"; }

  std::string taken() { return std::exchange(heard, std::string()); }

  std::string heard;
  bool throws = false;
  bool inFluxWhenAppended = false;

 private:
  void hear(char letter, const OdDbObject* object) {
    const TestCellPtr cell = TestCell::cast(object);
    if (cell.isNull()) return;
    heard += letter;
    heard += std::string(cell->text().utf8());
  }
};

class OdDbDatabaseReactorTest : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    database->addReactor(&m_recorder);
    database->startUndoRecord();
  }
  /// The drawing outlives the recorder.
  void TearDown() override {
    if (!database.isNull()) database->removeReactor(&m_recorder);
    CoreTest::TearDown();
  }

  OdStaticRxObject<Recorder> m_recorder;
};

TEST_F(OdDbDatabaseReactorTest, HearsOfTheWholeLifeOfObjects) {
  const OdDbObjectId cell = addCell(L"a");
  EXPECT_EQ(m_recorder.taken(), "+oma");  // its text came later
  setNumber(cell, 1);
  EXPECT_EQ(m_recorder.taken(), "oama");
  (void)open(cell);
  EXPECT_EQ(m_recorder.taken(), "");
  open(cell, OdDb::kForWrite)->erase();
  EXPECT_NE(m_recorder.taken().find("-a"), std::string::npos);
  EXPECT_EQ(database->undo(), eOk);
  EXPECT_NE(m_recorder.taken().find("<a"), std::string::npos);
  EXPECT_EQ(database->redo(), eOk);
  EXPECT_NE(m_recorder.taken().find(">a"), std::string::npos);
  database->setINSUNITS(OdDb::kUnitsYards);
  EXPECT_EQ(m_recorder.taken(), "[INSUNITS]");
  database.release();
  EXPECT_EQ(m_recorder.taken(), "bye");
}

TEST_F(OdDbDatabaseReactorTest, AThrowingOneDoesNotLoseTheOthers) {
  OdStaticRxObject<Recorder> second;
  database->addReactor(&second);
  m_recorder.throws = true;
  const OdDbObjectId cell = addCell(L"a");
  EXPECT_FALSE(cell.isNull());
  EXPECT_EQ(second.taken(), "+oma");
  database->removeReactor(&second);
  addCell(L"b");
  EXPECT_EQ(second.taken(), "");
}

TEST_F(OdDbDatabaseReactorTest, ClonesAreInFluxUntilTheyAreTranslated) {
  const OdDbObjectId part = addCell(L"part");
  const OdDbObjectId whole = addCell(L"whole");
  open(part, OdDb::kForWrite)->setOwnerId(whole);
  open(whole, OdDb::kForWrite)->own(part);
  m_recorder.taken();
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  for (const bool defer : {true, false}) {
    ASSERT_EQ(database->deepCloneObjects({whole}, database->getNamedObjectsDictionaryId(), *mapping,
                                         defer),
              eOk);
    OdDbIdPair pair(whole);
    ASSERT_TRUE(mapping->compute(pair));
    EXPECT_EQ(open(pair.value())->isOdDbObjectIdsInFlux(), defer);
    EXPECT_FALSE(open(whole)->isOdDbObjectIdsInFlux());
  }
  const std::string heard = m_recorder.taken();
  EXPECT_EQ(heard.find("+whole"), heard.rfind("+whole"));
  EXPECT_NE(heard.find("+part"), std::string::npos);
}

}  // namespace
