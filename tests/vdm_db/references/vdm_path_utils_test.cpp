// Tests of comparing, testing and formatting of ids and subentity paths.
#include "vdm_db/references/vdm_path_utils.h"

#include "tests/support/reference_testing.h"
#include "vdm_db/common/vdm_object_id_hash.h"

namespace {

const OdDbSubentId kFace1(OdDb::kFaceSubentType, 1);
const OdDbSubentId kFace2(OdDb::kFaceSubentType, 2);

class VdmPathUtilsTest : public ReferenceTest {
 protected:
  VdmPathUtilsTest()
      : m_block(addBlock(m_drawing, L"B")),
        m_carrier(addCarrier(m_block)),
        m_reference(addReference(m_modelSpace, m_block)) {}

  OdDbObjectId m_block, m_carrier, m_reference;
};

TEST_F(VdmPathUtilsTest, OrdersAreAntisymmetricAndRising) {
  const OdDbObjectId low = m_drawing->getLayerZeroId();
  const OdDbFullSubentPath rising[] = {
      {OdDbObjectIdArray(), OdDbSubentId()},
      {low, OdDbSubentId()},
      {low, kFace1},
      {low, kFace2},
      {low, OdDbSubentId(OdDb::kEdgeSubentType, -1)},
      {low, OdDbSubentId(OdDb::kEdgeSubentType, 0x100000000LL)},
      {m_carrier, OdDbSubentId()},
      {OdDbObjectIdArray{low, low}, OdDbSubentId()},
  };
  for (std::size_t i = 0; i < std::size(rising); ++i) {
    for (std::size_t j = 0; j < std::size(rising); ++j) {
      const VdmCmpRes expected = i < j ? kVdmLess : i > j ? kVdmGreater : kVdmEqual;
      EXPECT_EQ(vdmu::compareFullSubentPathStable(rising[i], rising[j]), expected) << i << j;
      EXPECT_EQ(vdmu::isEqualFullSubentPath(rising[i], rising[j]), i == j);
    }
  }
  EXPECT_EQ(vdmu::compareObjectIdArray({low, low}, {m_carrier}), kVdmGreater);
}

TEST_F(VdmPathUtilsTest, EqualHandlesOfTwoDrawingsDifferAndHashAlike) {
  const OdDbDatabasePtr other = m_host.createDatabase();
  const OdDbObjectId a = m_drawing->getLayerZeroId();
  const OdDbObjectId b = other->getLayerZeroId();
  const VdmCmpRes order = vdmu::compareObjectIdStable(a, b);
  EXPECT_NE(order, kVdmEqual);
  EXPECT_EQ(vdmu::compareObjectIdStable(b, a), -order);
  const vdmu::OdDbObjectIdHash hash;
  EXPECT_EQ(hash(OdDbObjectId::kNull), 0xA8C7F832281A39C5ULL);  // FNV-1a of eight zero bytes
  EXPECT_EQ(hash(a), hash(b));
}

TEST_F(VdmPathUtilsTest, ValidPathsLeadFromBlockToBlock) {
  const OdDbObjectId line = addLine(m_modelSpace);
  EXPECT_FALSE(vdmu::isValidObjectIdPath({m_block}, false));  // no entity
  EXPECT_TRUE(vdmu::isValidObjectIdPath({m_reference, m_carrier}, false));
  EXPECT_FALSE(vdmu::isValidObjectIdPath({m_reference, line}, false));  // of another block
  EXPECT_FALSE(vdmu::isValidObjectIdPath({line, m_carrier}, false));    // shows no block
  EXPECT_TRUE(vdmu::doesPathExist({OdDbObjectIdArray{m_reference, m_carrier}, kFace1}));
  EXPECT_FALSE(vdmu::doesPathExist({m_carrier, OdDbSubentId(OdDb::kFaceSubentType, 4)}));
  edit<OdDbEntity>(m_reference)->erase();
  EXPECT_FALSE(vdmu::isValidObjectIdPath({m_reference, m_carrier}, false));
  EXPECT_TRUE(vdmu::isValidObjectIdPath({m_reference, m_carrier}, true));
}

TEST(VdmPathUtils, FormatsTheSubentityByItsLetter) {
  EXPECT_EQ(vdmu::strSubentId(kFace2), OdString("f_2"));
  EXPECT_EQ(vdmu::strSubentId(OdDbSubentId(OdDb::kEdgeSubentType, 3)), OdString("e_3"));
  EXPECT_EQ(vdmu::strSubentId(OdDbSubentId(OdDb::kVertexSubentType, -1)), OdString("v_-1"));
  EXPECT_EQ(vdmu::strSubentId(OdDbSubentId(static_cast<OdDb::SubentType>(4), 5)), OdString("0_5"));
}

}  // namespace
