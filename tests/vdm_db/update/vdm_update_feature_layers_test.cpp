// Solids by layer: in blocks, external drawings, long transactions and associative arrays.
#include "platform/db/long_transaction.h"
#include "tests/support/array_action.h"
#include "tests/vdm_db/update/update_testing.h"
#include "vdm_db/drawing_utils/vdm_assoc_array_utils.h"
#include "vdm_db/features/vdm_simple_feature_interface.h"

namespace {

using Interface = VdmUpdateFeatureInterface;

class VdmUpdateFeatureLayersTest : public UpdateTest {
 protected:
  VdmUpdateFeatureLayersTest() { ArrayAction::rxInit(); }
  ~VdmUpdateFeatureLayersTest() override {
    m_database.release();
    ArrayAction::rxUninit();
  }
  OdDbObjectId addBox(const OdDbObjectId& block, const wchar_t* layer) {
    return addTo(block, newSolid(box(1.0, 1.0, 1.0)), layer);
  }
};

TEST_F(VdmUpdateFeatureLayersTest, SolidsCountByTheirLayer) {
  const OdDbObjectId block = addBlock(L"part");
  addBox(block, L"0");
  const OdDbObjectId reference = insert(block, space());
  EXPECT_FALSE(Interface::hasSubtrsOrUnitors(reference));
  const OdDbObjectId unite = addBox(block, L"vc_unite");
  EXPECT_TRUE(Interface::hasSubtrsOrUnitors(reference));
  EXPECT_FALSE(Interface::hasSubtrsOrUnitors(unite)) << "no insert";
  const OdDbObjectId cut = addBox(block, L"BIM_SUBTRACT");
  addTo(block, OdDbBlockReference::createObject(), L"VC_SUBTRACT");
  const VdmSolidOccurrences found = Interface::getSubtractorsOnDedicatedLayer(block, false);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].first, cut);
  EXPECT_EQ(found[0].second, OdArray<OdGeMatrix3d>{OdGeMatrix3d::kIdentity});
  EXPECT_EQ(Interface::getAdditionsOnDedicatedLayer(block, false)[0].first, unite);
  EXPECT_TRUE(Interface::findLayersByName(block, {}).empty());
  const auto bound = Interface::cast(VdmFeature::open(addFeature({})).get());
  for (const OdStringArray& names : {bound->layersToHide(), bound->layersToShowOnInsert()}) {
    EXPECT_EQ(names, OdStringArray({L"VC_SUBTRACT", L"BIM_SUBTRACT", L"VC_UNITE", L"BIM_UNITE"}));
  }
  struct Hiding : OdStaticRxObject<VdmSimpleFeatureInterface> {
    [[nodiscard]] OdStringArray layersToHide() const override { return {L"MINE"}; }
  };
  EXPECT_EQ(Hiding().layersToShowOnInsert(), OdStringArray({L"MINE"})) << "what it hides";
  EXPECT_TRUE(bound->layersToShow().isEmpty() && bound->layersToHideOnInsert().isEmpty());
  EXPECT_TRUE(Interface::findLayersByName(unite, {OdString(L"0")}).empty());
}

TEST_F(VdmUpdateFeatureLayersTest, ExternalDrawingsCarryTheNameOfTheirBlock) {
  const OdDbDatabasePtr other = m_services.createDatabase();
  addBox(other->getModelSpaceId(), L"N|VC_SUBTRACT");
  addBox(other->getModelSpaceId(), L"M|VC_SUBTRACT");
  const OdDbObjectId plain = addBox(other->getModelSpaceId(), L"VC_UNITE");
  const OdDbObjectId block = addBlock(L"N");
  blockRecord(block)->setXrefDatabase(other.get());
  EXPECT_EQ(Interface::findLayersByName(block, {OdString(L"VC_SUBTRACT")}).size(), 1u);
  EXPECT_EQ(Interface::getSubtractorsOnDedicatedLayer(block, false).size(), 1u);
  ASSERT_EQ(Interface::getAdditionsOnDedicatedLayer(block, false).size(), 1u);
  EXPECT_EQ(Interface::getAdditionsOnDedicatedLayer(block, false)[0].first, plain);
  blockRecord(block)->setXrefDatabase(nullptr);
}

TEST_F(VdmUpdateFeatureLayersTest, CheckedOutLayersCountWhileEditedInPlace) {
  struct Editing : OdApLongTransactionManager {
    OdDbObjectId currentLongTransactionFor(const OdDbDatabase* database) const override {
      return database->getModelSpaceId();
    }
  } editing;
  addBox(space(), L"$2$VC_SUBTRACT");
  EXPECT_TRUE(Interface::getSubtractorsOnDedicatedLayer(space(), false).isEmpty());
  odapSetLongTransactionManager(&editing);
  EXPECT_EQ(Interface::getSubtractorsOnDedicatedLayer(space(), false).size(), 1u);
  odapSetLongTransactionManager(nullptr);
}

TEST_F(VdmUpdateFeatureLayersTest, ArraysGiveTheirSolidsWithTheItemsTransforms) {
  const OdDbObjectId source = addBlock(L"source");
  const OdDbObjectId cut = addBox(source, L"VC_SUBTRACT");
  addBox(source, L"0");
  const OdDbObjectId element = addBlock(L"element");
  const OdDbObjectId sourceReference = insert(source, element, {0.0, 0.0, 1.0});
  const OdDbObjectId array = addBlock(L"array");
  insert(element, array, {10.0, 0.0, 0.0});
  insert(element, array, {20.0, 0.0, 0.0});
  const OdDbObjectId reference = insert(array, space(), {0.0, 5.0, 0.0});
  EXPECT_FALSE(vdmu::isAssociativeArray(blockRecord(array)));
  EXPECT_TRUE(Interface::getSubtractorsOnDedicatedLayer(array, false).isEmpty());

  blockRecord(array, OdDb::kForWrite)
      ->addPersistentReactor(m_database->addOdDbObject(ArrayAction::createObject()));
  EXPECT_TRUE(vdmu::isAssociativeArray(blockRecord(array)));
  EXPECT_TRUE(vdmu::isAssociativeArray(reference.openObject()));
  EXPECT_TRUE(vdmu::isAssocArrayElement(blockRecord(element)));
  EXPECT_FALSE(vdmu::isAssocArrayElement(blockRecord(array)));
  EXPECT_EQ(vdmu::getAssocArraySourceBlockRef(blockRecord(array))->objectId(), sourceReference);
  const VdmSolidOccurrences inBlock = Interface::getSubtractorsOnDedicatedLayer(array, false);
  ASSERT_EQ(inBlock.size(), 1u);
  EXPECT_EQ(inBlock[0].first, cut);
  ASSERT_EQ(inBlock[0].second.size(), 2u);
  EXPECT_TRUE(inBlock[0].second[1].isEqualTo(OdGeMatrix3d::translation({20.0, 0.0, 1.0})));
  const VdmSolidOccurrences inSpace = Interface::getSubtractorsOnDedicatedLayer(space(), false);
  ASSERT_EQ(inSpace.size(), 1u);
  EXPECT_TRUE(inSpace[0].second[0].isEqualTo(OdGeMatrix3d::translation({10.0, 5.0, 1.0})));

  reference.safeOpenAs<OdDbEntity>(OdDb::kForWrite)->setLayer(L"VC_SUBTRACT");
  EXPECT_EQ(Interface::getSubtractorsOnDedicatedLayer(space(), false).size(), 2u)
      << "the whole array cuts";
  addBox(array, L"0");
  EXPECT_FALSE(vdmu::isAssociativeArray(blockRecord(array))) << "not only items";
}

}  // namespace
