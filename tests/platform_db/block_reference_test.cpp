// Block references: exact placement, parameters, cloning of what they show.
#include "platform/entities/block_reference.h"

#include <cmath>
#include <random>

#include "tests/platform_db/db_testing.h"

namespace {

class OdDbBlockReferenceTest : public DbTest {
 protected:
  OdDbBlockReferencePtr make() {
    const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
    reference->setBlockTableRecord(m_block);
    return reference;
  }
  OdGeMatrix3d randomMatrix(bool rigid) {
    std::uniform_real_distribution<double> number(-2, 2);
    OdGeMatrix3d matrix =
        OdGeMatrix3d::translation({number(m_random), number(m_random), number(m_random)}) *
        OdGeMatrix3d::rotation(number(m_random) * 2, {number(m_random), number(m_random), 3}) *
        OdGeMatrix3d::scaling(
            OdGeScale3d(1 + std::abs(number(m_random)), 0.5, number(m_random) < 0 ? -2.0 : 3.0));
    if (!rigid) matrix(0, 1) += 0.7;
    return matrix;
  }

  OdDbObjectId m_block = addBlock("A");
  std::mt19937 m_random{42};
};

TEST_F(OdDbBlockReferenceTest, EveryPlacementIsHeldToTheLastBit) {
  for (int i = 0; i < 200; ++i) {
    const OdGeMatrix3d matrix = randomMatrix(i % 2 == 0);
    const OdDbBlockReferencePtr reference = make();
    ASSERT_EQ(reference->setBlockTransform(matrix), eOk);
    EXPECT_EQ(reference->blockTransform(), matrix);
    const OdDbBlockReferencePtr copy = OdDbBlockReference::createObject();
    copy->copyFrom(reference);
    EXPECT_EQ(copy->blockTransform(), matrix) << "filed and read back";
  }
}

TEST_F(OdDbBlockReferenceTest, ParametersGiveBackPlacementsWithoutShear) {
  for (int i = 0; i < 200; ++i) {
    const OdGeMatrix3d matrix = randomMatrix(/*rigid=*/true);
    const OdDbBlockReferencePtr reference = make();
    ASSERT_EQ(reference->setBlockTransform(matrix), eOk);
    const OdDbBlockReferencePtr other = make();
    other->setNormal(reference->normal());
    other->setRotation(reference->rotation());
    other->setScaleFactors(reference->scaleFactors());
    other->setPosition(reference->position());
    EXPECT_TRUE(other->blockTransform().isEqualTo(matrix, OdGeTol(1e-9))) << "matrix " << i;
  }
}

TEST_F(OdDbBlockReferenceTest, SettingPartsOfAShearedPlacement) {
  const OdDbBlockReferencePtr reference = make();
  OdGeMatrix3d sheared;
  sheared(0, 1) = 0.5;
  ASSERT_EQ(reference->setBlockTransform(sheared), eOk);
  reference->setPosition({1, 2, 3});
  sheared.setTranslation({1, 2, 3});
  EXPECT_EQ(reference->blockTransform(), sheared) << "a move keeps the shear";
  reference->setRotation(0.25);
  EXPECT_TRUE(reference->blockTransform().getCsXAxis().isPerpendicularTo(
      reference->blockTransform().getCsYAxis()))
      << "turning drops it";
}

TEST_F(OdDbBlockReferenceTest, RefusesBadPlacements) {
  const OdDbBlockReferencePtr reference = make();
  OdGeMatrix3d matrix;
  matrix(0, 0) = 0;
  EXPECT_EQ(reference->setBlockTransform(matrix), eDegenerateGeometry);
  EXPECT_EQ(reference->transformBy(matrix), eDegenerateGeometry);
  matrix(0, 0) = HUGE_VAL;
  EXPECT_EQ(reference->setBlockTransform(matrix), eInvalidInput);
  EXPECT_EQ(reference->transformBy(matrix), eInvalidInput);
  matrix(0, 0) = 1;
  matrix(3, 0) = 1;
  EXPECT_EQ(reference->setBlockTransform(matrix), eInvalidInput) << "perspective";
  const auto scale = [&](double x) {
    return raisedBy([&] { reference->setScaleFactors(OdGeScale3d(x, 1, 1)); });
  };
  EXPECT_EQ(scale(0), eInvalidInput);
  EXPECT_EQ(scale(HUGE_VAL), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { reference->setNormal({}); }), eDegenerateGeometry);
  EXPECT_EQ(raisedBy([&] { reference->setRotation(HUGE_VAL); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { reference->setPosition({0, HUGE_VAL, 0}); }), eInvalidInput);
  EXPECT_EQ(raisedBy([&] { reference->setBlockTableRecord(m_database->getLayerZeroId()); }),
            eWrongObjectType);
  EXPECT_EQ(raisedBy([&] { reference->setBlockTableRecord({}); }), eNullObjectId);
  EXPECT_EQ(reference->blockTransform(), OdGeMatrix3d());
}

TEST_F(OdDbBlockReferenceTest, DamagedPlacementsAreRefused) {
  const OdDbObjectId id =
      edit<OdDbBlockTableRecord>(m_database->getModelSpaceId())->appendOdDbEntity(make());
  ASSERT_EQ(edit<OdDbBlockReference>(id)->setBlockTransform(randomMatrix(false)), eOk);
  expectTruncationsFail(id);
  // The scale factors are three equal doubles here; one that is no number must not come in.
  const OdDbBlockReferencePtr source = make();
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler filer(OdDbDwgFiler::kCopyFiler, buffer);
  source->dwgOutFields(&filer);
  const double one = 1.0;
  const auto* pattern = reinterpret_cast<const OdUInt8*>(&one);
  const auto at =
      std::search(buffer.bytes.begin(), buffer.bytes.end(), pattern, pattern + sizeof one);
  ASSERT_NE(at, buffer.bytes.end());
  std::fill(at, at + sizeof one, OdUInt8{0xFF});
  filer.startReading(0, 0);
  EXPECT_EQ(OdDbBlockReference::createObject()->dwgInFields(&filer), eCorruptData);
}

}  // namespace
