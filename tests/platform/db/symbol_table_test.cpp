// Symbol tables: names, duplicates, erased records, anonymous numbers, properties.
#include "platform/db/symbol_table.h"

#include "platform/db/layer_table.h"
#include "platform/db/regapp_table.h"
#include "tests/platform/db/db_testing.h"

namespace {

class OdDbSymbolTableTest : public DbTest {
 protected:
  using DbTest::addLayer;
  OdDbObjectId addLayer(const OdString& name) { return addLayer(m_database, name); }
  OdResult rename(OdDbObjectId id, const OdString& name) {
    return raisedBy([&] { edit<OdDbLayerTableRecord>(id)->setName(name); });
  }

  OdDbObjectId m_table = m_database->getLayerTableId();
};

TEST_F(OdDbSymbolTableTest, FixedRecordsStay) {
  EXPECT_EQ(edit<OdDbLayerTableRecord>(m_database->getLayerZeroId())->erase(), eInvalidInput);
  EXPECT_EQ(rename(m_database->getLayerZeroId(), "zero"), eInvalidInput);
  EXPECT_EQ(edit<OdDbLayerTable>(m_table)->erase(), eInvalidInput);
}

TEST_F(OdDbSymbolTableTest, NameRules) {
  for (const wchar_t* good : {L"A", L"walls 2", L"*U", L"*Model_Space", L"*D12", L"part|WALLS",
                              L"part|*U1", L"\u00C4u\u00DFen", L"a'b$0$c"}) {
    EXPECT_TRUE(odDbIsValidRecordName(good)) << OdString(good);
  }
  for (const wchar_t* bad : {L"", L"a*", L"*", L"*1", L"a\\b", L"a:b", L"a;b", L"a<b", L"a>b",
                             L"a?b", L"a\"b", L"a,b", L"a=b", L"a\nb", L"|a", L"a|", L"a|b|c"}) {
    EXPECT_FALSE(odDbIsValidRecordName(bad)) << OdString(bad);
    EXPECT_EQ(raisedBy([&] { addLayer(bad); }), eInvalidKey) << OdString(bad);
  }
}

TEST_F(OdDbSymbolTableTest, NamesAreUniqueWithoutRegardToCase) {
  const OdDbObjectId walls = addLayer("Walls");
  const OdDbObjectId doors = addLayer("doors");
  try {
    addLayer("WALLS");
    FAIL() << "a second record of the name was added";
  } catch (const OdError& error) {
    EXPECT_EQ(error.code(), eDuplicateRecordName);
    EXPECT_GE(error.description().find("WALLS"), 0) << error.what();
  }
  EXPECT_EQ(rename(doors, "walls"), eDuplicateRecordName);
  EXPECT_EQ(rename(doors, "a:b"), eInvalidKey);
  EXPECT_EQ(rename(walls, "WALLS"), eOk);
  const OdDbLayerTablePtr table = open<OdDbLayerTable>(m_table);
  EXPECT_EQ(table->getAt("walls"), walls);
  EXPECT_EQ(open<OdDbLayerTableRecord>(walls)->getName(), OdString("WALLS"));
  EXPECT_EQ(table->numRecords(), 3u);
}

TEST_F(OdDbSymbolTableTest, AnErasedRecordFreesItsName) {
  const OdDbObjectId first = addLayer("walls");
  erase(first);
  const OdDbLayerTablePtr table = open<OdDbLayerTable>(m_table);
  EXPECT_TRUE(table->getAt("walls").isNull());
  EXPECT_EQ(table->getAt("walls", /*getErased=*/true), first);
  const OdDbObjectId second = addLayer("Walls");
  EXPECT_EQ(edit<OdDbLayerTable>(m_table)->getAt("walls"), second);
  EXPECT_EQ(first.openObject(OdDb::kForWrite, true)->erase(false), eDuplicateRecordName);
  erase(second);
  erase(first, /*erasing=*/false);
  EXPECT_EQ(table->getAt("walls"), first) << "unerasing lists the record again";
}

TEST_F(OdDbSymbolTableTest, TakesRecordsOfItsClassOnly) {
  const OdDbRegAppTableRecordPtr app = OdDbRegAppTableRecord::createObject();
  app->setName("app");
  EXPECT_EQ(raisedBy([&] { edit<OdDbLayerTable>(m_table)->add(app); }), eWrongObjectType);
  EXPECT_EQ(raisedBy([&] { edit<OdDbLayerTable>(m_table)->add(nullptr); }), eNullPointer);
  const OdDbLayerTableRecordPtr used = edit<OdDbLayerTableRecord>(addLayer("used"));
  EXPECT_EQ(raisedBy([&] { edit<OdDbLayerTable>(m_table)->add(used); }), eOk) << "listed already";
}

TEST_F(OdDbSymbolTableTest, WalksBothWaysAndFindsRecords) {
  const OdDbObjectId b = addLayer("b");
  const OdDbObjectId a = addLayer("A");
  const OdDbObjectId c = addLayer("c");
  erase(b);
  const OdDbLayerTablePtr table = open<OdDbLayerTable>(m_table);
  OdString names;
  for (auto at = table->newIterator(); !at->done(); at->step()) names += at->getRecordName() + " ";
  for (auto at = table->newIterator(false, false); !at->done(); at->step(false)) {
    names += at->getRecordName() + " ";
  }
  EXPECT_EQ(names, OdString("0 A c c b A 0 "));
  const OdDbSymbolTableIteratorPtr at = table->newIterator();
  EXPECT_FALSE(at->seek(m_table));
  EXPECT_TRUE(at->seek(c));
  EXPECT_EQ(at->getRecord()->getName(), OdString("c"));
  EXPECT_EQ(a.ownerId(), m_table);
}

TEST_F(OdDbSymbolTableTest, AnonymousBlocksAreNumbered) {
  EXPECT_EQ(open<OdDbBlockTableRecord>(addBlock("*U7"))->getName(), OdString("*U7"));
  EXPECT_EQ(open<OdDbBlockTableRecord>(addBlock("*U"))->getName(), OdString("*U8"));
  EXPECT_EQ(open<OdDbBlockTableRecord>(addBlock("*D"))->getName(), OdString("*D1"));
  const OdDbObjectId last = addBlock("*U");
  erase(last);
  const OdDbBlockTableRecordPtr next = open<OdDbBlockTableRecord>(addBlock("*u"));
  EXPECT_EQ(next->getName(), OdString("*u10")) << "numbers of erased blocks stay theirs";
  EXPECT_TRUE(next->isAnonymous());
  EXPECT_FALSE(open<OdDbBlockTableRecord>(m_database->getModelSpaceId())->isAnonymous());
}

TEST_F(OdDbSymbolTableTest, LayerPropertiesAreCheckedUndoneAndFiled) {
  const OdDbObjectId id = addLayer("walls");
  m_database->startUndoRecord();
  const std::string before = stateOf(id);
  {
    const OdDbLayerTableRecordPtr layer = edit<OdDbLayerTableRecord>(id);
    layer->setIsFrozen(true);
    layer->setIsHidden(true);
    layer->setIsPlottable(false);
    layer->setColor(OdCmColor::fromRGB(255, 1, 2));
    layer->setLineWeight(OdDb::kLnWt025);
    EXPECT_EQ(raisedBy([&] { layer->setColor(OdCmColor()); }), eInvalidInput);
    EXPECT_EQ(raisedBy([&] { layer->setLineWeight(OdDb::kLnWtByLayer); }), eInvalidInput);
  }
  expectTruncationsFail(id);
  expectUndone(id, before);
}

}  // namespace
