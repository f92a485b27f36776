// What features and their managers ask an update interface outside of passes.
#include "tests/vdm_db/update/update_testing.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"
#include "vdm_db/features/vdm_feature_manager_utils.h"
#include "vdm_db/model/vdm_db_object.h"

namespace {

/// A feature without references whose interface has the insert as its own, in the plate.
class VdmFeatureWithInterfaceTest : public UpdateTest {
 protected:
  VdmFeatureWithInterfaceTest()
      : m_plate(addSolid(box(100.0, 60.0, 10.0))),
        m_insert(insert(addBlock(L"drill"), space())),
        m_feature(addFeature({})) {
    script(m_feature).ownIds.append(m_insert);
    script(m_feature).opening = {m_plate, m_insert, {}};
  }

  OdDbObjectId m_plate, m_insert, m_feature;
};

TEST_F(VdmFeatureWithInterfaceTest, FilteredDependenciesLeaveOutWhatAnActiveInterfaceSays) {
  const OdDbObjectId id = addFeature({{facePath(m_plate, 1)}, {facePath(m_plate, 2)}});
  script(id).filteredTag = 0;
  const auto count = [&id](bool filtered) {
    return VdmFeature::open(id)->getAllDependencies(filtered).size();
  };
  EXPECT_EQ(count(true), 2u) << "the interface has nothing of its own";
  script(id).ownIds.append(m_insert);
  EXPECT_EQ(count(false), 2u);
  EXPECT_EQ(VdmFeature::open(id)->getAllDependencies(true), dependencies(id, 1));
}

TEST_F(VdmFeatureWithInterfaceTest, ComponentFeaturesAreFoundThroughTheirInsert) {
  namespace utils = VdmFeatureManagerUtils;
  const OdDbObjectId second = addFeature({}), passive = addFeature({});
  EXPECT_TRUE(utils::getComponentFeatures(m_insert, {}, false).isEmpty());
  for (const OdDbObjectId& id : {m_feature, second, passive}) {
    m_insert.safeOpenObject(OdDb::kForWrite)->addPersistentReactor(id);
  }
  EXPECT_TRUE(utils::getComponentFeatures(m_insert, {}, false).isEmpty()) << "nobody's own";
  script(second).ownIds = {m_plate, second};
  script(m_feature).ownIds.append(m_feature);
  EXPECT_EQ(utils::getComponentFeatures(m_insert, {}, false),
            (OdDbObjectIdArray{m_feature, second}));
  EXPECT_EQ(utils::getComponentFeatures(m_insert, {VdmFeature::desc()}, true),
            OdDbObjectIdArray{m_feature});
  EXPECT_TRUE(utils::getComponentFeatures(m_insert, {OdDb3dSolid::desc()}, false).isEmpty());
  EXPECT_TRUE(utils::getComponentFeatures(m_plate, {}, false).isEmpty()) << "no insert";
  EXPECT_EQ(utils::getFeature(m_insert, {}), m_feature);
}

TEST_F(VdmFeatureWithInterfaceTest, AClonedOwnObjectTakesTheFeatureAlong) {
  const OdDbObjectId manager = VdmDbFeatureManager::getInstance(space(), false);
  for (const bool hasOpening : {true, false}) {
    if (!hasOpening) script(m_feature).opening = {m_plate, {}, {}};
    const OdDbObjectId block = addBlock(hasOpening ? L"with" : L"without");
    const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
    ASSERT_EQ(m_database->deepCloneObjects({m_insert}, block, *mapping, /*deferXlation=*/true),
              eOk);
    const OdDbObjectId dictionary =
        blockRecord(block, OdDb::kForWrite)->createExtensionDictionary();
    ASSERT_EQ(m_database->deepCloneObjects({manager.ownerId()}, dictionary, *mapping), eOk);
    const auto clone = vdmu::findClone(*mapping, manager).safeOpenAs<VdmDbFeatureManager>();
    EXPECT_EQ(clone->featureIds().size(), hasOpening ? 1u : 0u);
  }
}

TEST_F(VdmFeatureWithInterfaceTest, MergingTakesTheFeatureOfAClonedInsert) {
  const OdDbObjectId solidIsClone = addFeature({});
  script(solidIsClone).ownIds.append(m_insert);
  script(solidIsClone).opening = {m_insert, m_plate, {}};
  const OdDbObjectId model = VdmDbObject::getInstance(
      m_insert, VdmDbConstraintManager::getInstance(space(), /*create=*/true));
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject();
  mapping->assign(OdDbIdPair(m_plate, m_insert, /*cloned=*/true));
  VdmDbReverseIdMapping reverse(*mapping);
  std::unordered_set<OdDbObjectId> merged;
  std::map<OdDbObjectId, OdDbObjectId> replaced;
  const auto target = VdmDbFeatureManager::getInstance(addBlock(L"A"), true)
                          .safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite);
  target->mergeManagers(manager(), *mapping, reverse, merged, /*keepAll=*/false, replaced);
  EXPECT_EQ(target->featureIds(), OdDbObjectIdArray{m_feature});
  EXPECT_EQ(merged, std::unordered_set<OdDbObjectId>{model});
}

}  // namespace
