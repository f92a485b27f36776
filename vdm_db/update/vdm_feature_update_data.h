// VdmFeatureUpdateData: the state of one update pass over the features of a manager.
#pragma once

#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/base/shared_ptr.h"
#include "platform/db/entity.h"
#include "platform/db/subent.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/features/vdm_matching_faces.h"
#include "vdm_db/references/vdm_path_utils.h"
#include "vdm_db/update/vdm_update_context.h"
#include "vdm_db/update/vdm_update_observer.h"

class VdmDbFeatureManager;
class VdmDependenciesReplacementMap;
class VdmDueFeatures;
class VdmFeature;
class VdmFeatureUpdateDataHelper;
class VdmFeatureUpdateDriver;
class VdmUpdateFeatureInterface;
struct VdmFeatureSubentsToRemove;

/// What features, their interfaces and the host's helper gather in a pass, and what the pass does
/// with it. Lives on the stack of the caller for the length of the pass; nothing of it is stored.
/// A copy shares the helper, which keeps working for the original.
///
/// Features call the gathering operations from prepareUpdateData, and may condemn features and
/// geometry from update and initAfterUpdate, too. One thread: that of the drawing.
class VDM_DB_EXPORT VdmFeatureUpdateData {
 public:
  using IdSet = std::unordered_set<OdDbObjectId, vdmu::OdDbObjectIdHash>;
  template <class T>
  using IdMap = std::unordered_map<OdDbObjectId, T, vdmu::OdDbObjectIdHash>;
  using PathSet = std::set<OdDbFullSubentPath, vdmu::FullSubentPathLess>;
  using FeaturesByPath = std::map<OdDbFullSubentPath, IdSet, vdmu::FullSubentPathLess>;
  using SolidsBySource = IdMap<OdArray<OdSmartPtr<OdDb3dSolid>>>;

  /// Asks the manager's VdmDbFeatureManagerPE for the helper; a null manager, or one without that
  /// extension, gives a pass without helper, which touches no solids.
  explicit VdmFeatureUpdateData(VdmDbFeatureManager* manager);
  /// For a pass that is handed a context, which outlives the data and its copies.
  VdmFeatureUpdateData(VdmDbFeatureManager* manager, VdmUpdateContext& context);
  VdmFeatureUpdateData(const VdmFeatureUpdateData& other);
  VdmFeatureUpdateData& operator=(const VdmFeatureUpdateData& other);
  ~VdmFeatureUpdateData();

  // Gathering.
  /// Makes sure that the entity has its model object, and its block a constraint manager and a
  /// persistent id manager, once for an entity and pass. Null and what does not open is ignored.
  void initReactor(const OdDbObjectId& entity);
  /// The common gathering of a solid feature: its entities, the faces to go, and the solids that
  /// its insert cuts out and fills in. A feature whose insert, solid or block is missing is
  /// condemned, and so is one that fills something in and has no base face left.
  void fillData(VdmUpdateFeatureInterface* updateInterface, const OdDbObjectId& feature,
                VdmUpdateInfo& info);
  /// Hands over to the VdmDbAssemblyPE of the feature's manager; false without one.
  bool collectFromFeature(VdmFeature* feature, const VdmMatchingFaces& faces, VdmUpdateInfo& info,
                          bool flag);
  /// Whether the helper cleared the entity; false without one.
  bool clearEntity(OdSmartPtr<OdDbEntity>& entity) const;
  /// A path that is empty or ends in a null id is ignored.
  void appendSubEntityToRemove(const OdDbObjectId& feature, const OdDbFullSubentPath& path);
  void appendSubEntitiesToRemove(const OdDbObjectId& feature, const OdDbFullSubentPathArray& paths);
  void appendFeatureToRemove(const OdDbObjectId& feature);
  /// initReactor, then lists the entity with the feature; null is not listed.
  void appendFeatureEntity(const OdDbObjectId& feature, const OdDbObjectId& entity);
  void appendReactorsToRemove(const OdDbObjectId& carrier, const OdDbObjectIdArray& reactors);
  void appendNewFeature(const OdDbObjectId& feature);
  void appendFeatureToEnt(OdDbObjectId entity, OdDbObjectId feature);
  /// An entity that is erased at the next removal unless a feature that is not erased refers to it.
  void appendEntityToCheck(const OdDbObjectId& entity);
  // Through the helper; without one nothing happens and the answer is false.
  void setBaseFace(OdDbObjectId id, const OdDbFullSubentPath& path);
  bool addCopiesToUpdateData(VdmUpdateFeatureInterface* updateInterface, OdDbObjectId feature,
                             VdmOpeningEntities& entities);
  bool getMatchingFaces(VdmUpdateFeatureInterface* updateInterface, OdDbObjectId feature,
                        const VdmFeatureUpdateDataUtils::OpeningIds& opening,
                        VdmFeatureUpdateDataUtils::FeatureArgs& args);

  // Queries.
  /// The map of the running pass; null outside of one and in a pass that was given none.
  [[nodiscard]] const VdmDependenciesReplacementMap* replacementMap() const {
    return m_replacementMap;
  }
  /// Whether the map has replacements of the dependency; false without a map.
  [[nodiscard]] bool replacementMapContainsDep(OdDbObjectId dependency) const;
  [[nodiscard]] const IdMap<PathSet>& mapEntToSubents() const { return m_entToSubents; }
  [[nodiscard]] const FeaturesByPath& mapSubentToFeatures() const { return m_subentToFeatures; }
  [[nodiscard]] bool featureMustBeRemoved(const OdDbObjectId& feature) const;
  [[nodiscard]] bool hasFeaturesToRemove() const { return !m_featuresToRemove.empty(); }
  /// In the order of appendFeatureEntity; empty for a feature without.
  [[nodiscard]] OdDbObjectIdArray featureEntities(const OdDbObjectId& feature) const;
  [[nodiscard]] OdUInt32 countFeaturesToUpdate() const { return m_featuresToUpdate.size(); }
  [[nodiscard]] bool featuresNeedUpdate() const { return !m_featuresToUpdate.isEmpty(); }
  /// Subentities are to go, or solids wait to be subtracted or prepared for it.
  [[nodiscard]] bool hasSolidsModifications() const;
  [[nodiscard]] bool isNewFeature(const OdDbObjectId& feature) const;
  /// Base faces of the feature's subtraction by tag; null without a helper or when it has none.
  [[nodiscard]] const std::map<int, VdmFeatureUpdateDataUtils::Face>* subtrBaseFaceMap(
      OdDbObjectId feature) const;
  [[nodiscard]] bool constraintsWereCalculated() const {
    return context().constraintsWereCalculated;
  }
  [[nodiscard]] bool constraintsWereCalculatedSuccesfully() const {
    return context().constraintsWereCalculatedSuccesfully;
  }
  /// Tools that lie on the layers for subtracting and uniting, by source; empty without a helper.
  [[nodiscard]] SolidsBySource getSubtractorsOnLayers(OdDbObjectId solid) const;
  [[nodiscard]] SolidsBySource getUnitersOnLayers(OdDbObjectId solid) const;
  /// The ids that the pass has taken, in their order.
  [[nodiscard]] const OdDbObjectIdArray& featureIds() const { return m_featureIds; }
  /// Solids are gathered for VdmUpdateFeatureInterface::getGrossSolid, and nothing is done to them.
  [[nodiscard]] bool isGrossMode() const { return m_grossMode; }

  /// What the pass was handed; one of its own when it was handed none.
  [[nodiscard]] const VdmUpdateContext& context() const {
    return m_handedContext == nullptr ? m_ownContext : *m_handedContext;
  }
  [[nodiscard]] VdmUpdateContext& context() {
    return m_handedContext == nullptr ? m_ownContext : *m_handedContext;
  }
  /// Null without one.
  [[nodiscard]] VdmFeatureUpdateDataHelper* helper() const { return m_helper.get(); }
  /// Hears what the pass does; null, as at the start, for none. Not owned. Kept in the context.
  void setObserver(VdmUpdateObserver* observer) { context().observer = observer; }
  [[nodiscard]] VdmUpdateObserver* observer() const { return context().observer; }

 protected:
  friend class VdmDbFeatureManager;
  friend class VdmFeatureUpdateDriver;
  friend class VdmUpdateFeatureInterface;

  // Phases, in the order in which the driver runs them.
  /// Takes in the features that take part and has them prepare. False when there are no ids.
  bool init(const OdDbObjectIdArray& ids, const VdmDependenciesReplacementMap& map, bool force);
  /// The same for the features that are due, and the observer hears how many are not.
  void initDue(VdmDueFeatures& due, const VdmDependenciesReplacementMap& map);
  /// Erases what was condemned; with `geometry` also what is to go from solids.
  bool removeUnusedData(bool geometry);
  bool prepareForSubtract();
  bool subtractOperation();
  bool unionOperation();
  /// Whether the helper keeps what the operations made; true without one.
  bool acceptSolids();
  bool update();
  bool initFeatures();
  /// Points the reactors of the features to what replaced their dependencies, and drops reactors
  /// that have come to mean the same. Dependencies without a watcher then go to `depsToErase`.
  void removeUnusedDependencies(OdDbObjectIdArray& depsToErase);

  /// Has the features prepare in gross mode; nothing else of a pass follows.
  void initGrossData(const OdDbObjectIdArray& ids);
  /// Fills the record with what is to go from its entity and, with a helper, has the interfaces
  /// remove it from there.
  bool removeUnusedGeometry(VdmFeatureSubentsToRemove& record);
  /// Everything as after construction; the helper, the observer and a handed context stay.
  void clear();

 private:
  class DependencyRemap;
  struct Intake {
    bool taken = false;
    bool forced = false;
    VdmUpdateReason reason = VdmUpdateReason::kForced;
  };

  void makeHelper(VdmDbFeatureManager* manager);

  bool takeIn(const OdDbObjectId& id, bool force);
  void takeInOpen(const OdDbObjectId& id, OdSmartPtr<VdmFeature>& feature, bool force);
  Intake decideIntake(const VdmFeature* feature, bool force);
  bool featureHasChanges(const VdmFeature* feature, VdmUpdateReason& reason);
  const VdmUpdateFeatureInterface* patternOf(const OdRxClass* cls) const;
  bool openingWasMoved(const VdmFeature* feature) const;
  void prepareFeature(const OdDbObjectId& id, OdSmartPtr<VdmFeature>& feature, bool forced);
  void withdrawFeature(const OdDbObjectId& id);
  void removeUnusedReactors(VdmFeature* feature);
  void collectByEntity();

  bool removeUnusedGeometry();
  bool removeSubentsOf(const OdDbObjectId& entity, const PathSet& paths);
  bool removeSubentsWithFeatures(VdmFeatureSubentsToRemove& record);
  IdSet featuresOf(const VdmFeatureSubentsToRemove& record) const;
  void dropRemovedIds();
  bool removeUnusedFeatures();
  bool removeUnusedEntities();

  template <class Step>
  bool forEachFeatureToUpdate(Step step);

  // What is to go.
  IdSet m_entitiesToCheck;
  FeaturesByPath m_subentToFeatures;
  IdMap<PathSet> m_entToSubents;
  IdSet m_featuresToRemove;
  // What takes part.
  IdMap<IdSet> m_entToFeatures;
  OdDbObjectIdArray m_featureIds;
  OdArray<OdSmartPtr<VdmFeature>> m_featuresToUpdate;
  IdMap<OdDbObjectIdArray> m_featureEntitiesMap;
  IdMap<OdDbObjectIdArray> m_reactorsToRemove;
  IdSet m_newFeatures;
  IdSet m_initializedEntities;
  // What the pass was given.
  const VdmDependenciesReplacementMap* m_replacementMap = nullptr;
  VdmUpdateContext* m_handedContext = nullptr;
  VdmUpdateContext m_ownContext;
  OdSharedPtr<VdmFeatureUpdateDataHelper> m_helper;
  mutable const OdRxClass* m_patternClass = nullptr;  // of the feature asked last
  mutable OdSmartPtr<VdmUpdateFeatureInterface> m_pattern;
  bool m_grossMode = false;
};
