// Tests of comparing, testing and formatting of ids and subentity paths.
#include "vdm_db/references/vdm_path_utils.h"

#include "tests/references/reference_testing.h"
#include "vdm_db/references/vdm_object_id_hash.h"

namespace {

const OdDbSubentId kFace1(OdDb::kFaceSubentType, 1);
const OdDbSubentId kFace2(OdDb::kFaceSubentType, 2);

class VdmPathUtilsTest : public ReferenceTest {
 protected:
  VdmPathUtilsTest()
      : m_block(addBlock(m_drawing, L"B")),
        m_carrier(addCarrier(m_block)),
        m_reference(show(m_modelSpace, m_block)) {}

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

TEST_F(VdmPathUtilsTest, EqualHandlesOfTwoDrawingsAreNotEqual) {
  const OdDbDatabasePtr other = m_host.createDatabase();
  const OdDbObjectId a = m_drawing->getLayerZeroId();
  const OdDbObjectId b = other->getLayerZeroId();
  const VdmCmpRes order = vdmu::compareObjectIdStable(a, b);
  EXPECT_NE(order, kVdmEqual);
  EXPECT_EQ(vdmu::compareObjectIdStable(b, a), -order);
  EXPECT_EQ(vdmu::compareObjectIdStable(OdDbObjectId::kNull, a), kVdmLess);
}

TEST_F(VdmPathUtilsTest, HashIsFnv1aOverTheHandle) {
  const vdmu::OdDbObjectIdHash hash;
  // Eight zero bytes, and 08 with seven zeros behind it.
  EXPECT_EQ(hash(OdDbObjectId::kNull), 0xA8C7F832281A39C5ULL);
  EXPECT_EQ(hash(m_drawing->getLayerZeroId()), hash(m_host.createDatabase()->getLayerZeroId()));
  EXPECT_NE(hash(m_carrier), hash(m_reference));
}

TEST_F(VdmPathUtilsTest, DefaultGeometryComesFirstByItsNumber) {
  const VdmExtendedPath axis{{m_carrier, kFace1}, vdmu::kDefaultXAxis, true};
  const VdmExtendedPath plane{{m_reference, kFace2}, vdmu::kDefaultXYPlane, true};
  const VdmExtendedPath otherAxis{{m_reference, kFace2}, vdmu::kDefaultXAxis, true};
  const VdmExtendedPath face{{m_carrier, kFace1}, 0, false};
  EXPECT_EQ(vdmu::compareExtendedPath(axis, face), kVdmLess);
  EXPECT_EQ(vdmu::compareExtendedPath(face, axis), kVdmGreater);
  EXPECT_EQ(vdmu::compareExtendedPath(axis, plane), kVdmLess);
  EXPECT_EQ(vdmu::compareExtendedPath(axis, otherAxis), kVdmEqual);
  EXPECT_EQ(vdmu::compareExtendedPath(face, {{m_carrier, kFace2}, 0, false}), kVdmLess);
  EXPECT_STREQ(vdmu::defaultGeometryName(6), "ZX Plane");
}

TEST_F(VdmPathUtilsTest, ArraysAreEqualAsSets) {
  const OdDbFullSubentPath a(m_carrier, kFace1), b(m_carrier, kFace2), c(m_reference, kFace1);
  EXPECT_TRUE(vdmu::isEqualFullSubentPathArray({}, {}));
  EXPECT_TRUE(vdmu::isEqualFullSubentPathArray({a, b, c}, {c, a, b}));
  EXPECT_FALSE(vdmu::isEqualFullSubentPathArray({a, b}, {a, c}));
  EXPECT_FALSE(vdmu::isEqualFullSubentPathArray({a, a}, {a, b}));
  OdDbFullSubentPath found(m_block, kFace2);
  EXPECT_FALSE(vdmu::findCommonFullSubentPath({a, b}, {c}, found));
  EXPECT_EQ(found.objectIds().first(), m_block);
  EXPECT_TRUE(vdmu::findCommonFullSubentPath({a, b, c}, {c, b}, found));  // the shorter one leads
  EXPECT_EQ(found, c);
}

TEST_F(VdmPathUtilsTest, ValidPathsLeadFromBlockToBlock) {
  const OdDbObjectId line = addLine(m_modelSpace);
  EXPECT_FALSE(vdmu::isValidObjectIdPath({}, false));
  EXPECT_TRUE(vdmu::isValidObjectIdPath({line}, false));
  EXPECT_FALSE(vdmu::isValidObjectIdPath({m_block}, false));  // no entity
  EXPECT_TRUE(vdmu::isValidObjectIdPath({m_reference, m_carrier}, false));
  EXPECT_FALSE(vdmu::isValidObjectIdPath({m_reference, line}, false));  // of another block
  EXPECT_FALSE(vdmu::isValidObjectIdPath({line, m_carrier}, false));    // shows no block
  EXPECT_TRUE(vdmu::doesPathExist({OdDbObjectIdArray{m_reference, m_carrier}, kFace1}));
  EXPECT_TRUE(vdmu::doesPathExist({m_carrier, OdDbSubentId()}));
  EXPECT_FALSE(vdmu::doesPathExist({m_carrier, OdDbSubentId(OdDb::kFaceSubentType, 4)}));
  EXPECT_TRUE(vdmu::isNullObjectLink({OdDbObjectId::kNull, kFace1}));
  edit<OdDbEntity>(m_reference)->erase();
  EXPECT_FALSE(vdmu::isValidObjectIdPath({m_reference, m_carrier}, false));
  EXPECT_TRUE(vdmu::isValidObjectIdPath({m_reference, m_carrier}, true));
}

TEST_F(VdmPathUtilsTest, TextsNameIdsAndSubentities) {
  const struct {
    OdDbSubentId subent;
    const wchar_t* text;
  } kCases[] = {
      {{OdDb::kFaceSubentType, 12}, L"f_12"},
      {{OdDb::kEdgeSubentType, -3}, L"e_-3"},
      {{OdDb::kVertexSubentType, 5000000000}, L"v_5000000000"},
      {{OdDb::kNullSubentType, 0}, L"0_0"},
      {{static_cast<OdDb::SubentType>(4), 7}, L"0_7"},
  };
  for (const auto& item : kCases) EXPECT_EQ(vdmu::strSubentId(item.subent), item.text);
  const OdString ids = m_reference.getHandle().ascii() + L"," + m_carrier.getHandle().ascii();
  const OdDbFullSubentPath path(OdDbObjectIdArray{m_reference, m_carrier}, kFace2);
  const OdDbFullSubentPath whole(m_carrier, OdDbSubentId());
  EXPECT_EQ(vdmu::formatFullSubentPath(path, false), L"0x" + ids + L":f_2");
  EXPECT_EQ(vdmu::strFullSubentPathArray({path, whole}),
            L"0x" + ids + L":f_2 0x" + m_carrier.getHandle().ascii() + L" ");
  EXPECT_EQ(vdmu::strFullSubentPathArray({}), L"empty");
  edit<OdDbEntity>(m_carrier)->erase();
  EXPECT_EQ(vdmu::strObjectIdArray({m_reference, m_carrier}, true), ids + L"(erased)");
}

}  // namespace
