// Tests of finding, making and deleting of objects in dictionaries.
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"

#include "platform/db/layer_table.h"
#include "platform/db/xrecord.h"
#include "tests/support/reference_testing.h"

namespace {

class VdmDictionaryUtilsTest : public ReferenceTest {
 protected:
  VdmDictionaryUtilsTest() : m_owner(addLine(m_modelSpace)) {}

  static OdDbObjectId extension(OdDbObjectId id) {
    return open<OdDbObject>(id)->extensionDictionary();
  }
  OdDbDictionaryPtr root() {
    return edit<OdDbDictionary>(m_drawing->getNamedObjectsDictionaryId());
  }

  OdDbObjectId m_owner;
};

TEST_F(VdmDictionaryUtilsTest, FindsOnlyUntilAClassIsGiven) {
  EXPECT_TRUE(vdmu::getObjInExtDict(m_owner, L"KEY", nullptr).isNull());
  EXPECT_TRUE(extension(m_owner).isNull());
  const OdDbObjectId made = vdmu::getObjInExtDict(m_owner, L"KEY", OdDbXrecord::desc());
  EXPECT_EQ(made.objectClass(), OdDbXrecord::desc());
  EXPECT_EQ(vdmu::getObjInExtDict(m_owner, L"KEY", nullptr), made);
  EXPECT_EQ(open<OdDbDictionary>(extension(m_owner))->getAt(L"VDM_DATABASE"), made.ownerId());
  const OdDbObjectId inRoot = vdmu::getRootObjectByName(m_drawing, L"KEY", OdDbXrecord::desc());
  EXPECT_EQ(root()->getAt(L"VDM_DATABASE"), inRoot.ownerId());
}

TEST_F(VdmDictionaryUtilsTest, RefusedClassesMakeNothing) {
  for (const OdRxClass* cls : {OdDbEntity::desc(), OdRxObject::desc(), OdResBuf::desc()}) {
    EXPECT_EQ(raisedBy([&] { (void)vdmu::getObjInExtDict(m_owner, L"KEY", cls); }),
              eNotThatKindOfClass);
    EXPECT_EQ(raisedBy([&] { (void)vdmu::getRootObjectByName(m_drawing, L"KEY", cls); }),
              eNotThatKindOfClass);
  }
  EXPECT_TRUE(extension(m_owner).isNull());
  EXPECT_FALSE(root()->has(L"VDM_DATABASE"));
}

TEST_F(VdmDictionaryUtilsTest, DictionariesByName) {
  EXPECT_TRUE(vdmu::getDict(m_drawing, L"D", m_owner).isNull());
  const OdDbObjectId made = vdmu::createDict(m_drawing, L"D", m_owner);
  EXPECT_EQ(vdmu::createDict(m_drawing, L"D", m_owner), made);
  EXPECT_EQ(vdmu::getDict(m_drawing, L"D", m_owner), made);
  EXPECT_TRUE(vdmu::getDict(m_drawing, L"D", OdDbObjectId::kNull).isNull());
  const OdDbObjectId entry = edit<OdDbDictionary>(made)->setAt(L"E", OdDbXrecord::createObject());
  const OdDbObjectId anew = vdmu::createNewDict(m_drawing, L"D", m_owner);
  EXPECT_NE(anew, made);
  EXPECT_TRUE(made.isErased() && entry.isErased());
  EXPECT_EQ(open<OdDbDictionary>(anew)->numEntries(), 0u);
  edit<OdDbLayerTableRecord>(m_drawing->getLayerZeroId())->setIsLocked(true);
  vdmu::deleteDict(m_drawing, L"D", m_owner);
  EXPECT_TRUE(anew.isErased());
  EXPECT_TRUE(extension(m_owner).isNull()) << "it held nothing else";
}

TEST_F(VdmDictionaryUtilsTest, SwappedEntries) {
  const OdDbObjectId a = vdmu::createDict(m_drawing, L"A", OdDbObjectId::kNull);
  const OdDbObjectId b = vdmu::createDict(m_drawing, L"B", OdDbObjectId::kNull);
  vdmu::swapDictionaries(root(), L"A", L"B", L"FREE");
  EXPECT_EQ(root()->getAt(L"A"), b);
  EXPECT_EQ(root()->getAt(L"B"), a);
  EXPECT_FALSE(root()->has(L"FREE"));
  EXPECT_TRUE(m_assertions.empty());
}

}  // namespace
