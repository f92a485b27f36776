// Tests of finding, making and deleting of objects in dictionaries.
#include "vdm_db/cloning/vdm_dictionary_utils.h"

#include "platform/db/xrecord.h"
#include "tests/references/reference_testing.h"

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
  const OdString name(L"OTHER");
  const OdDbObjectId other = vdmu::getObjInExtDict(m_owner, L"KEY", OdDbXrecord::desc(), &name);
  EXPECT_NE(other, made);
  EXPECT_EQ(vdmu::getDict(m_drawing, name, m_owner), other.ownerId());
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
  EXPECT_TRUE(vdmu::getObjInExtDict(OdDbObjectId::kNull, L"KEY", OdDbXrecord::desc()).isNull());
}

TEST_F(VdmDictionaryUtilsTest, RootObjectsStandInTheFixedDictionary) {
  EXPECT_TRUE(vdmu::getRootObjectByName(m_drawing, L"KEY", nullptr).isNull());
  const OdDbObjectId made = vdmu::getRootObjectByName(m_drawing, L"KEY", OdDbXrecord::desc());
  EXPECT_EQ(vdmu::getRootObjectByName(m_drawing, L"KEY", nullptr), made);
  EXPECT_EQ(root()->getAt(L"VDM_DATABASE"), made.ownerId());
  root()->setAt(L"VDM_DATABASE", OdDbXrecord::createObject());
  EXPECT_EQ(raisedBy([&] { (void)vdmu::getRootObjectByName(m_drawing, L"KEY", nullptr); }),
            eNotThatKindOfClass);
}

TEST_F(VdmDictionaryUtilsTest, DictionariesComeAndGo) {
  for (const OdDbObjectId& owner : {OdDbObjectId::kNull, m_owner}) {
    EXPECT_TRUE(vdmu::getDict(m_drawing, L"D", owner).isNull());
    vdmu::deleteDict(m_drawing, L"D", owner);
    const OdDbObjectId made = vdmu::createDict(m_drawing, L"D", owner);
    EXPECT_EQ(vdmu::createDict(m_drawing, L"D", owner), made);
    EXPECT_EQ(vdmu::getDict(m_drawing, L"D", owner), made);
    const OdDbObjectId entry = edit<OdDbDictionary>(made)->setAt(L"E", OdDbXrecord::createObject());
    const OdDbObjectId fresh = vdmu::createNewDict(m_drawing, L"D", owner);
    EXPECT_NE(fresh, made);
    EXPECT_TRUE(made.isErased() && entry.isErased());
    vdmu::deleteDict(m_drawing, L"D", owner);
    EXPECT_TRUE(fresh.isErased());
    EXPECT_TRUE(vdmu::getDict(m_drawing, L"D", owner).isNull());
  }
  EXPECT_TRUE(extension(m_owner).isErased());
}

TEST_F(VdmDictionaryUtilsTest, SwapsThroughAFreeNameOnly) {
  const OdDbObjectId a = root()->setAt(L"A", OdDbXrecord::createObject());
  const OdDbObjectId b = root()->setAt(L"B", OdDbXrecord::createObject());
  vdmu::swapDictionaries(root(), L"A", L"B", L"T");
  EXPECT_EQ(root()->getAt(L"A"), b);
  EXPECT_EQ(root()->getAt(L"B"), a);
  EXPECT_TRUE(m_assertions.empty());
  const OdDbObjectId taken = root()->setAt(L"T", OdDbXrecord::createObject());
  vdmu::swapDictionaries(root(), L"A", L"B", L"T");
  EXPECT_EQ(m_assertions, std::vector<std::string>{"!pOwnerDict->has(tmpSwapName)"});
  EXPECT_EQ(root()->getAt(L"A"), b);
  EXPECT_EQ(root()->getAt(L"T"), taken);
}

}  // namespace
