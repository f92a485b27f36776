// The registry of component features, extensions of objects, making of features, gross solids.
#include "tests/vdm_db/update/update_testing.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/properties/vdm_properties_pe.h"

namespace {

using Interface = VdmUpdateFeatureInterface;

class VdmUpdateFeatureInterfaceTest : public UpdateTest {
 protected:
  VdmUpdateFeatureInterfaceTest() : m_plate(addSolid(box(100.0, 60.0, 10.0))) {}

  OdDbObjectId m_plate;
};

TEST_F(VdmUpdateFeatureInterfaceTest, OnlyNamedComponentsAreListed) {
  for (OdRxClass* cls : {static_cast<OdRxClass*>(nullptr), OdDb3dSolid::desc(), VdmFeature::desc(),
                         ScriptedFeature::desc()}) {
    Interface::registerComponentFeature(cls);
  }
  EXPECT_TRUE(Interface::getRegisteredExtensions().isEmpty()) << "none has a name";
  m_scene.componentName = L"opening";
  Interface::registerComponentFeature(ScriptedFeature::desc());
  Interface::unregisterComponentFeature(VdmFeature::desc());
  EXPECT_EQ(Interface::getRegisteredExtensions(), OdStringArray{OdString(L"opening")});
  EXPECT_EQ(Interface::getRegisteredExtensionsDesc(),
            OdStringArray{ScriptedFeature::desc()->name()});
  m_scene.componentName = L"";
  Interface::unregisterComponentFeature(ScriptedFeature::desc());
  EXPECT_EQ(Interface::getRegisteredExtensionsDesc().size(), 1u) << "it has no name now";
  m_scene.componentName = L"opening";
  Interface::unregisterComponentFeature(ScriptedFeature::desc());
  EXPECT_TRUE(Interface::getRegisteredExtensions().isEmpty());
  EXPECT_TRUE(Interface::getRegisteredExtensionsDesc().isEmpty());
}

TEST_F(VdmUpdateFeatureInterfaceTest, ExtensionsAreKeptInTheObjectsProperties) {
  const OdDb3dSolidPtr plate = solid(m_plate);
  EXPECT_TRUE(Interface::getExtension(nullptr).isNull());
  Interface::setExtension(ScriptedFeature::desc(), plate);
  EXPECT_TRUE(Interface::getExtension(plate).isNull()) << "the class has no properties";
  EXPECT_EQ(m_scene.applied, OdDbObjectIdArray{m_plate});
  OdDb3dSolid::desc()->addX(VdmPropertiesPE::desc(),
                            OdRxObjectImpl<VdmPropertiesPE>::createObject());
  EXPECT_TRUE(Interface::getExtension(plate).isNull());
  VdmProperties other;
  other.setProperty(L"kept", OdString(L"as it is"));
  other.setProperty(kVdmFeatureType, OdLong{7});
  other.writeToDbObject(plate);
  Interface::setExtension(VdmFeature::desc(), plate);
  EXPECT_TRUE(Interface::getExtension(plate).isNull()) << "the class has no interface";
  Interface::setExtension(ScriptedFeature::desc(), plate);
  EXPECT_FALSE(ScriptedFeature::cast(Interface::getExtension(plate).get()).isNull());
  EXPECT_TRUE(other.readFromDbObject(plate) && other.hasProperty(L"kept"));
  OdDb3dSolid::desc()->delX(VdmPropertiesPE::desc());
}

TEST_F(VdmUpdateFeatureInterfaceTest, CreateFeatureRefersToTheFaceAndTheSets) {
  OdDbFullSubentPathArray sets[] = {
      {facePath(m_plate, 2)}, {}, {facePath(m_plate, 3), facePath(m_plate, 4)}};
  const auto create = [&](const OdDbObjectId& id, const OdDbFullSubentPath& path) {
    return Interface::createFeature(id, path, sets[0], sets[1], sets[2], ScriptedFeature::desc());
  };
  EXPECT_TRUE(create(OdDbObjectId::kNull, facePath(m_plate, 1)).isNull());
  EXPECT_TRUE(create(m_plate, OdDbFullSubentPath()).isNull());
  const OdDbObjectId id = create(m_plate, facePath(m_plate, 1));
  ASSERT_FALSE(id.isNull());
  ASSERT_EQ(numReactors(id), 3u);
  EXPECT_EQ(dependencies(id, 0).size(), 1u);
  EXPECT_EQ(dependencies(id, 2).size(), 2u);
  EXPECT_EQ(script(id).ownIds, OdDbObjectIdArray{m_plate});
  EXPECT_EQ(m_scene.applied, OdDbObjectIdArray{m_plate});
}

TEST_F(VdmUpdateFeatureInterfaceTest, CreateFeaturesTakesBackWhatIsRefused) {
  const OdDbObjectId refused = addSolid(box(1.0, 1.0, 1.0));
  script(refused).acceptsEntity = false;
  const OdDbFullSubentPath edge(m_plate, OdDbSubentId(OdDb::kEdgeSubentType, 1));
  EXPECT_TRUE(Interface::createFeatures(edge, {}, ScriptedFeature::desc()).isEmpty());
  const OdDbObjectIdArray ids =
      Interface::createFeatures(edge, {m_plate, refused}, ScriptedFeature::desc());
  ASSERT_EQ(ids.size(), 2u);
  EXPECT_EQ(numReactors(ids[0]), 0u) << "an edge is no base";
  EXPECT_TRUE(ids[1].isNull());
  EXPECT_EQ(takeAssertions().size(), 1u) << "the pass changed nothing";
  const OdDbObjectIdArray onFace =
      Interface::createFeatures(facePath(m_plate, 1), {m_plate}, ScriptedFeature::desc());
  EXPECT_EQ(dependencies(onFace[0]).size(), 1u);
  EXPECT_EQ(Interface::createFeatures(edge, {m_plate}, VdmFeature::desc()),
            OdDbObjectIdArray{OdDbObjectId::kNull})
      << "no interface";
}

TEST_F(VdmUpdateFeatureInterfaceTest, GrossSolidsAreCopiesWithoutOpenings) {
  Interface::Solids tools;
  const auto gross = [&](const OdDbObjectId& id, OdRxClass* cls) {
    return Interface::getGrossSolid(id, cls, &tools, nullptr);
  };
  EXPECT_TRUE(gross(space(), nullptr).isNull() && !gross(m_plate, nullptr).isNull());
  const OdDbObjectId drill = addBlock(L"drill");
  const OdDbObjectId id = addFeature({{facePath(m_plate, 1)}});
  const OdDbObjectId reference = insert(drill, space());
  script(id).ownIds.append(reference);
  script(id).prepare = [&](VdmFeatureUpdateData& data) {
    EXPECT_TRUE(data.isGrossMode());
    VdmUpdateInfo info{m_plate, reference, {}};
    info.faces.faces.append({facePath(m_plate, 5), 0});
    data.fillData(Interface::activeOf(VdmFeature::open(id)), id, info);
    return false;
  };
  OdDbEntityPtr changed;
  script(id).removeSubents = [&](VdmFeatureSubentsToRemove& record) {
    changed = record.entity;
    EXPECT_EQ(record.subents, std::vector<OdDbSubentId>{facePath(m_plate, 5).subentId()});
    return true;
  };
  EXPECT_FALSE(gross(m_plate, OdDb3dSolid::desc()).isNull());
  EXPECT_TRUE(changed.isNull()) << "no feature of that class";
  EXPECT_EQ(gross(m_plate, VdmFeature::desc()), changed) << "a scripted one is a plain one, too";
  EXPECT_TRUE(changed->objectId().isNull());
  EXPECT_EQ(tools.size(), 1u);
}

}  // namespace
