// Features, an interface and a helper that do what a test says, and verbs for update passes.
#include "tests/vdm_db/update/update_testing.h"

#include "platform/rx/dynamic_linker.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/update/vdm_db_feature_manager_pe.h"
#include "vdm_utils/vdmc_assert.h"

Scene* Scene::current = nullptr;

VDM_DEFINE_FEATURE_CLASS(ScriptedFeature, VdmFeature, L"TestScriptedFeature")

class ScriptedInterface : public VdmUpdateFeatureInterface {
 public:
  OD_RX_DECLARE_MEMBERS(ScriptedInterface)

  [[nodiscard]] OpeningFaces openingFaces() const override { return script().opening; }
  bool prepareUpdateData(VdmFeatureUpdateData&, bool) override { return false; }
  bool removeSubents(VdmFeatureSubentsToRemove& record, const OdDbFullSubentPathArray&) override {
    return script().removeSubents && script().removeSubents(record);
  }
  bool initAfterUpdate(VdmFeatureUpdateData& data) override { return script().init(data); }
  bool createForEntity(VdmDbFeatureManager*, const OdDbFullSubentPath&, const OdDbObjectId& entity,
                       VdmFeatureUpdateData&) override {
    return Scene::current->scripts[entity].acceptsEntity;
  }
  VdmSolidOccurrences subtractSolids(const OdDbObjectId& block, bool forWrite) override {
    return getSubtractorsOnDedicatedLayer(block, forWrite);
  }
  VdmSolidOccurrences uniteSolids(const OdDbObjectId& block, bool forWrite) override {
    return getAdditionsOnDedicatedLayer(block, forWrite);
  }
  [[nodiscard]] bool needsBaseFaces() const override { return script().needsBaseFaces; }
  bool isRequiredDependency(int, int) override { return false; }
  bool isReactorFiltered(const VdmDbPersIdReactor* reactor) const override {
    return reactor->hasTag(script().filteredTag);
  }
  [[nodiscard]] OdDbObjectIdArray ownObjectIds() const override { return script().ownIds; }
  [[nodiscard]] bool erasesOwnObjects() const override { return false; }
  void onDeepClone(OdDbIdMapping&, OdDbObject*, OdDbObject*, bool) const override {}
  void onWblockClone(OdDbIdMapping&, OdDbObject*, OdDbObject*, bool) const override {}
  [[nodiscard]] OdString componentName() const override { return Scene::current->componentName; }
  [[nodiscard]] OdString extensionValue() const override { return L"value"; }
  void applyExtension(OdDbObject* object, const OdString&) override {
    Scene::current->applied.append(object->objectId());
  }
  void setEntities(const OdDbObjectIdArray& entities) override { script().ownIds = entities; }
  void attachToSolid(VdmDbFeatureManager*, const OdDbObjectId& solid) override {
    Scene::current->applied.append(solid);
  }

 private:
  [[nodiscard]] Script& script() const { return Scene::current->scripts[objectId()]; }
};
OD_RX_DEFINE(ScriptedInterface, VdmUpdateFeatureInterface, L"TestScriptedInterface")

namespace {

class TestManagerPE : public VdmDbFeatureManagerPE {
 public:
  OdSharedPtr<VdmFeatureUpdateDataHelper> createHelper(VdmDbFeatureManager*,
                                                       VdmFeatureUpdateData& data) override {
    Scene::current->contextOfHelper = &data.context();
    return Scene::current->hasHelper ? new TestHelper(data) : nullptr;
  }
};

}  // namespace

bool TestHelper::addCopiesToUpdateData(VdmUpdateFeatureInterface*, OdDbObjectId feature,
                                       VdmOpeningEntities& entities) {
  for (const auto& [id, matrices] : entities.subtractors) {
    for (const OdGeMatrix3d& matrix : matrices) {
      OdDbEntityPtr copy;
      id.openAs<OdDbEntity>()->getTransformedCopy(entities.insert->blockTransform() * matrix, copy);
      appendSolidToSubtract(feature, entities.solid->objectId(), OdDb3dSolid::cast(copy));
    }
  }
  return true;
}

void TestHelper::solidsAborted(VdmUpdatePhase phase, const OdString& text) {
  Scene::current->abortsHeardByHelper.push_back(Recorder::nameOf(phase) + ": " +
                                                std::string(text.utf8()));
}

UpdateTest::UpdateTest()
    : m_assertionSink([this](const VdmAssertion& assertion) {
        m_assertions.emplace_back(assertion.message.utf8());
      }) {
  ScriptedInterface::rxInit();
  ScriptedFeature::desc()->addX(VdmUpdateFeatureInterface::desc(),
                                ScriptedInterface::createObject());
  VdmDbFeatureManager::desc()->addX(VdmDbFeatureManagerPE::desc(),
                                    OdRxObjectImpl<TestManagerPE>::createObject());
  VdmDbPersIdManager::desc()->addX(VdmDbPersIdManagerPE::desc(),
                                   OdRxObjectPtr(new ManagerHost, kOdRxObjAttach));
  Scene::current = &m_scene;
}

UpdateTest::~UpdateTest() {
  m_database.release();
  VdmDbPersIdManager::desc()->delX(VdmDbPersIdManagerPE::desc());
  VdmDbFeatureManager::desc()->delX(VdmDbFeatureManagerPE::desc());
  ScriptedFeature::desc()->delX(VdmUpdateFeatureInterface::desc());
  ScriptedInterface::rxUninit();
}

VdmDbFeatureManagerPtr UpdateTest::manager() const {
  return VdmDbFeatureManager::getInstance(space(), true)
      .openAs<VdmDbFeatureManager>(OdDb::kForWrite);
}

OdDbObjectId UpdateTest::addFeature(const std::vector<OdDbFullSubentPathArray>& references) {
  const OdDbObjectId id = manager()->createFeatureData(ScriptedFeature::desc(), L"", false, false);
  OdArray<VdmFeatureGroupFaces> groups;
  for (const OdDbFullSubentPathArray& paths : references) {
    groups.append(VdmFeatureGroupFaces(1, paths, static_cast<int>(groups.size())));
  }
  VdmFeature::open(id, OdDb::kForWrite)->init(groups);
  return id;
}

OdDbObjectIdArray UpdateTest::dependencies(const OdDbObjectId& feature, OdUInt32 reactor) {
  const OdDbObjectId id = VdmFeature::open(feature)->reactorIds()[reactor];
  return id.openAs<VdmDbPersIdReactor>()->persIds();
}

bool UpdateTest::pass(const OdDbObjectIdArray& ids, bool force, bool constraintsCalculated) {
  m_recorder.lines.clear();
  const VdmDbFeatureManagerPtr owner = manager();
  VdmFeatureUpdateData data(owner);
  data.context().constraintsWereCalculated = constraintsCalculated;
  data.context().constraintsWereCalculatedSuccesfully = true;
  data.setObserver(&m_recorder);
  VdmFeatureUpdateInput input{{}, &m_map, &data, force};
  const bool changed = vdmRunFeatureUpdate(owner, ids, input);
  m_erase = input.depsToErase;
  return changed;
}

OdDbObjectId UpdateTest::addTo(const OdDbObjectId& block, OdDbEntity* entity,
                               const wchar_t* layer) {
  if (!open<OdDbLayerTable>(block.database()->getLayerTableId())->has(layer)) {
    addLayer(block.database(), layer);
  }
  const OdDbObjectId id = addTo(block, entity);
  entity->setLayer(layer);
  return id;
}

OdDbObjectId UpdateTest::insert(const OdDbObjectId& block, const OdDbObjectId& into,
                                OdGeVector3d at, const wchar_t* layer) {
  const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
  reference->setBlockTableRecord(block);
  reference->setBlockTransform(OdGeMatrix3d::translation(at));
  return addTo(into, reference, layer);
}
