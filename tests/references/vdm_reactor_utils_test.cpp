// Tests of persistent reactors and result buffers.
#include "vdm_db/cloning/vdm_reactor_utils.h"

#include "platform/db/xrecord.h"
#include "tests/references/reference_testing.h"
#include "vdm_db/cloning/vdm_block_utils.h"

namespace {

class VdmReactorUtilsTest : public ReferenceTest {
 protected:
  VdmReactorUtilsTest() : m_line(addLine(m_modelSpace)), m_reactor(addCarrier(m_modelSpace)) {
    edit<OdDbObject>(m_line)->addPersistentReactor(m_reactor);
  }
  OdDbObjectId m_line, m_reactor;
};

TEST_F(VdmReactorUtilsTest, KindsCountDerivedClassesAndLivingReactors) {
  EXPECT_FALSE(vdmu::hasReactorOfKind(nullptr, OdDbEntity::desc()));
  EXPECT_TRUE(vdmu::hasReactorOfKind(open<OdDbObject>(m_line), OdDbEntity::desc()));
  EXPECT_FALSE(vdmu::hasReactorOfKind(open<OdDbObject>(m_line), OdDbXrecord::desc()));
  EXPECT_TRUE(vdmu::hasReactor(m_line, {OdDbXrecord::desc(), PathCarrier::desc()}));
  edit<OdDbObject>(m_reactor)->erase();
  EXPECT_FALSE(vdmu::hasReactor(m_line, {PathCarrier::desc()}));
}

TEST_F(VdmReactorUtilsTest, DetachesFromObjectsAndTheirClones) {
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  ASSERT_EQ(m_drawing->deepCloneObjects({m_line, m_reactor}, m_modelSpace, *mapping), eOk);
  const OdDbObjectId clone = vdmu::findClone(*mapping, m_line);
  ASSERT_TRUE(vdmu::hasReactor(clone, {PathCarrier::desc()}));
  const OdArray<OdDbObjectId> objects{m_line, OdDbObjectId::kNull, m_reactor};
  vdmu::detachReactor(objects, m_reactor, nullptr);
  EXPECT_FALSE(vdmu::hasReactor(m_line, {PathCarrier::desc()}));
  EXPECT_TRUE(vdmu::hasReactor(clone, {PathCarrier::desc()}));
  vdmu::detachReactor(objects, m_reactor, mapping);
  EXPECT_FALSE(vdmu::hasReactor(clone, {PathCarrier::desc()}));
}

TEST_F(VdmReactorUtilsTest, LongChainsAreReleasedFromTheFront) {
  OdResBufPtr chain = OdResBuf::newRb(90, 0);
  OdResBufPtr last = chain;
  for (int i = 1; i < 300000; ++i) last = last->insert(OdResBuf::newRb(90, i));
  vdmu::clearRbSequence(chain);
  EXPECT_TRUE(chain.isNull());
  EXPECT_EQ(last->getInt32(), 299999);
}

}  // namespace
