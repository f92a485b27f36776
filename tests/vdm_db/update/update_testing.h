// Features, an interface and a helper that do what a test says, and verbs for update passes.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/db/layer_table.h"
#include "tests/support/model_testing.h"
#include "tests/support/solid_drawing_testing.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_impl.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_feature_subents_to_remove.h"
#include "vdm_db/update/vdm_feature_update_data.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"
#include "vdm_db/update/vdm_feature_update_driver.h"

/// What a feature and its interface do. What is not said is the simplest legal thing.
struct Script {
  using Step = std::function<bool(VdmFeatureUpdateData&)>;
  Step prepare = [](VdmFeatureUpdateData&) { return false; };
  Step update = prepare;
  Step init = prepare;  ///< of the interface
  std::function<bool(VdmFeatureSubentsToRemove&)> removeSubents;
  VdmUpdateFeatureInterface::OpeningFaces opening;
  OdDbObjectIdArray ownIds;  ///< the interface is active when there are any
  int filteredTag = -1;      ///< of the reactor to leave out of filtered dependencies
  bool needsBaseFaces = false;
  bool acceptsEntity = true;
  bool required = false;
  bool recalculates = false;  ///< a reactor asks for it after constraints were solved
  bool forced = false;        ///< out: what prepareUpdateData got
};

/// The world that the scripted classes look into; one per test.
struct Scene {
  std::map<OdDbObjectId, Script> scripts;
  OdString componentName;
  OdUInt32 numTools = 0;      ///< of the last boolean
  OdDbObjectIdArray applied;  ///< objects of applyExtension and attachToSolid
  const VdmUpdateContext* contextOfHelper = nullptr;  ///< when the last one was made
  bool hasHelper = true;
  bool preparesSubtract = true;
  bool acceptsTools = true;
  bool acceptsSolids = true;
  std::function<void()> beforeSolids;            ///< in prepareForSubtract
  std::function<void()> beforeInit;              ///< in prepareInit
  std::vector<std::string> abortsHeardByHelper;  ///< phase and text
  bool removesSubents = false;
  static Scene* current;
};

class ScriptedFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(ScriptedFeature)

  bool prepareUpdateData(VdmFeatureUpdateData& data, bool forced) override {
    script().forced = forced;
    return script().prepare(data);
  }
  bool update(VdmFeatureUpdateData& data) override { return script().update(data); }
  bool isRequiredDependency(int, int) override { return script().required; }
  bool hasChanges(bool& needRecalculation) const override {
    needRecalculation = script().recalculates;
    return false;
  }

 private:
  [[nodiscard]] Script& script() const { return Scene::current->scripts[objectId()]; }
};

class TestHelper : public VdmFeatureUpdateDataHelper {
 public:
  using VdmFeatureUpdateDataHelper::booleanOperation;
  using VdmFeatureUpdateDataHelper::solidsToSubtract;
  using VdmFeatureUpdateDataHelper::VdmFeatureUpdateDataHelper;

  bool addCopiesToUpdateData(VdmUpdateFeatureInterface*, OdDbObjectId feature,
                             VdmOpeningEntities& entities) override;
  bool getMatchingFaces(VdmUpdateFeatureInterface*, OdDbObjectId,
                        const VdmFeatureUpdateDataUtils::OpeningIds&,
                        VdmFeatureUpdateDataUtils::FeatureArgs&) override {
    return true;
  }
  void collectForEntity(const OdDbObjectId&, const IdSet&) override {}
  void collectDependentsForEntity(const OdDbObjectId&, const IdSet&) override {}
  bool removeSubents(const OdDbObjectId&, OdSmartPtr<OdDbEntity>&, VdmFeatureSubentsToRemove&,
                     bool) override {
    return Scene::current->removesSubents;
  }
  bool clearEntity(OdSmartPtr<OdDbEntity>&) override { return true; }
  void prepareInit() override {
    if (Scene::current->beforeInit) Scene::current->beforeInit();
  }
  void addGrossData(VdmUpdateFeatureInterface*, const OdDbObjectId& feature,
                    OdSmartPtr<OdDbBlockReference>, OdSmartPtr<OdDb3dSolid> solid) override {
    subtractorsOnLayers()[solid->objectId()][feature].append(OdDb3dSolid::createObject());
  }
  bool prepareForSubtract() override {
    if (Scene::current->beforeSolids) Scene::current->beforeSolids();
    return Scene::current->preparesSubtract;
  }
  bool acceptSolids() override { return Scene::current->acceptsSolids; }
  void solidsAborted(VdmUpdatePhase phase, const OdString& text) override;
  bool checkTools(OdSmartPtr<OdDb3dSolid>&, Tools& tools) override {
    Scene::current->numTools = tools.size();
    return Scene::current->acceptsTools;
  }
};

/// Writes a pass down, one line for an event, with the names that the test gave to ids.
class Recorder : public VdmUpdateObserver {
 public:
  std::vector<std::string> lines;
  std::map<OdDbObjectId, std::string> names;
  void phaseBegan(VdmUpdatePhase phase) override { lines.push_back("- " + nameOf(phase)); }
  void featureSkipped(const OdDbObjectId& id) override { add("skip ", id); }
  void featureTaken(const OdDbObjectId& id, VdmUpdateReason reason) override {
    static constexpr const char* kReasons[] = {"forced", "constraint", "replaced",     "cloned",
                                               "moved",  "several",    "insert moved", "changed"};
    add("take ", id, std::string(": ") + kReasons[static_cast<int>(reason)]);
  }
  void featurePrepared(const OdDbObjectId& id, VdmUpdatePreparation result) override {
    static constexpr const char* kResults[] = {"done ", "queued ", "condemned "};
    add(kResults[static_cast<int>(result)], id);
  }
  void featureCondemned(const OdDbObjectId& id) override { add("erase ", id); }
  void featureUpdated(const OdDbObjectId& id, bool) override { add("update ", id); }
  void featureFailed(const OdDbObjectId& id, const OdString&) override { add("failed ", id); }
  void solidChanged(const OdDbObjectId& id, OdModelerBooleanKind,
                    const OdDbObjectIdArray& sources) override {
    add("cut ", id, " by " + std::to_string(sources.size()));
  }
  void solidFailed(const OdDbObjectId& id, OdModelerBooleanKind, const OdString& text) override {
    add(text.isEmpty() ? "fail without text " : "fail ", id);
  }
  void transactionAborted(VdmUpdatePhase phase) override {
    lines.push_back("abort in " + nameOf(phase));
  }
  void reactorDropped(const OdDbObjectId& id, const OdDbObjectId&) override { add("drop ", id); }
  static std::string nameOf(VdmUpdatePhase phase) {
    static constexpr const char* kNames[] = {
        "intake", "early removal", "prepare subtract", "subtract",    "unite",    "update",
        "init",   "late removal",  "dependencies",     "recognition", "geometry", "unfolding"};
    return kNames[static_cast<int>(phase)];
  }

 private:
  void add(const char* verb, const OdDbObjectId& id, const std::string& detail = "") {
    lines.push_back(verb + names[id] + detail);
  }
};

class UpdateTest : public virtual SolidRuntime,
                   public virtual VdmModule,
                   public RegisteredClass<ScriptedFeature>,
                   public DrawingTest {
 protected:
  UpdateTest();
  ~UpdateTest() override;

  static OdDbFullSubentPath facePath(const OdDbObjectId& entity, int face) {
    return {entity, OdDbSubentId(OdDb::kFaceSubentType, face)};
  }
  [[nodiscard]] OdDbObjectId space() const { return m_database->getModelSpaceId(); }
  [[nodiscard]] VdmDbFeatureManagerPtr manager() const;
  /// A feature with one reactor for each list of paths: mask 1, tag by position.
  OdDbObjectId addFeature(const std::vector<OdDbFullSubentPathArray>& references);
  Script& script(const OdDbObjectId& feature) { return m_scene.scripts[feature]; }
  /// Dependencies of the reactor at a position.
  static OdDbObjectIdArray dependencies(const OdDbObjectId& feature, OdUInt32 reactor = 0);
  static OdUInt32 numReactors(const OdDbObjectId& feature) {
    return VdmFeature::open(feature)->reactorIds().size();
  }
  /// A pass with the recorder and the map; `m_erase` gets the dependencies to erase.
  bool pass(const OdDbObjectIdArray& ids, bool force = false, bool constraintsCalculated = false);
  OdDbObjectId addBlock(const wchar_t* name) { return DrawingTest::addBlock(m_database, name); }
  using DrawingTest::addTo;
  /// On a layer that is made when it is missing.
  static OdDbObjectId addTo(const OdDbObjectId& block, OdDbEntity* entity, const wchar_t* layer);
  static OdDbObjectId insert(const OdDbObjectId& block, const OdDbObjectId& into,
                             OdGeVector3d at = {}, const wchar_t* layer = L"0");
  /// The messages of the assertions reported since the last call.
  std::vector<std::string> takeAssertions() { return std::exchange(m_assertions, {}); }

  Scene m_scene;
  Recorder m_recorder;
  VdmDependenciesReplacementMap m_map;
  OdDbObjectIdArray m_erase;
  std::vector<std::string> m_assertions;
  AssertionSink m_assertionSink;
};
