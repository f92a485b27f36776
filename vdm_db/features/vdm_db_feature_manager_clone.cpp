// Feature managers: which features a clone takes along, their variables, and merging.
//
// Cloning. A clone of a block takes those features along that work on something cloned. Ownership
// alone would take all, since the manager owns every carrier. The manager therefore files only the
// wanted carriers while the base clones it: the list is exchanged for the filtered one and put back
// at the end of the scope, also when cloning raises. The base then clones exactly the carriers that
// the filed list owns, and the clone's list has exactly their clones. The filter opens each feature
// once and looks ids up in the mapping.
//
// Merging. Cloning into a block that has a manager gives the block a second one. mergeManagers
// moves the features of that one (the source) which refer to clones into this one and erases the
// source with the rest. A moved feature keeps its id, so references to it stay valid; it gets a new
// name, which is unique here. `replaced` gets the old and new ids of the manager, the sheet-metal
// context and its variable, by which the caller corrects references to these. Blocks of different
// sheet metal are not merged: a bend that was computed for one thickness is wrong for another.
#include <algorithm>
#include <iterator>

#include "platform/base/error.h"
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"
#include "vdm_db/drawing_utils/vdm_erase_utils.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_feature_manager_impl.h"
#include "vdm_db/features/vdm_feature_reactor_walk.h"
#include "vdm_db/features/vdm_naming_service.h"
#include "vdm_db/features/vdm_sheet_metal_source.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_exchanged_ids.h"
#include "vdm_db/model/vdm_merge_context.h"

namespace {

// Contexts in which variables that depend on features count, too.
constexpr OdDb::DeepCloneType kAllVariablesContexts[] = {
    OdDb::kDcExplode, OdDb::kDcXrefBind, OdDb::kDcInsert, OdDb::kDcXrefInsert, OdDb::kDcInsertCopy};

bool takesAllVariables(const OdDbIdMapping& mapping) {
  return std::find(std::begin(kAllVariablesContexts), std::end(kAllVariablesContexts),
                   mapping.deepCloneContext()) != std::end(kAllVariablesContexts);
}

template <class Predicate>
bool anyOf(const OdDbObjectIdArray& ids, const Predicate& holds) {
  return std::any_of(ids.begin(), ids.end(), holds);
}

}  // namespace

// ---- The clone filter

namespace {

// Whether one of the entities that the feature depends on, or a variable that depends on it, is
// mapped.
template <class IsMapped>
bool dependsOnMapped(const OdDbObjectIdArray& dependencies, const OdDbObjectIdArray& variables,
                     const IsMapped& isMapped) {
  return anyOf(vdmEntitiesOf(dependencies), isMapped) || anyOf(variables, isMapped);
}

}  // namespace

OdDbObjectIdArray VdmDbFeatureManager::featuresToClone(const OdDbIdMapping& mapping) const {
  const OdDbObjectIdArray& all = featureIds();
  if (mapping.deepCloneContext() == OdDb::kDcInsertCopy) return all;
  const auto isMapped = [&mapping](const OdDbObjectId& id) {
    OdDbIdPair pair(id);
    return !id.isNull() && mapping.compute(pair);
  };
  const auto isTaken = [&](const VdmFeature& feature) {
    if (feature.mustBeCloned(mapping)) return true;
    if (!feature.canBeCloned(mapping)) return false;
    if (dependsOnMapped(feature.getAllDependencies(/*filtered=*/false),
                        feature.getDependentVariables(), isMapped)) {
      return true;
    }
    const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(&feature);
    return !active.isNull() && active->openingFaces().isValid() &&
           anyOf(active->ownObjectIds(), isMapped);
  };
  OdDbObjectIdArray taken;
  for (const OdDbObjectId& id : all) {
    const VdmFeaturePtr feature = VdmFeature::open(id);
    if (!feature.isNull() && isTaken(*feature)) taken.append(id);
  }
  return taken;
}

// The list is the filtered one while the base files and clones the manager.
template <class Clone>
OdDbObjectPtr VdmDbFeatureManager::cloneWithFeatures(const OdDbIdMapping& mapping,
                                                     const Clone& clone) const {
  const VdmExchangedIds filtered(m_impl->features, featuresToClone(mapping));
  return clone();
}

OdDbObjectPtr VdmDbFeatureManager::subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                                bool isPrimary) const {
  return cloneWithFeatures(mapping,
                           [&] { return OdDbObject::subDeepClone(mapping, owner, isPrimary); });
}

OdDbObjectPtr VdmDbFeatureManager::subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                                  bool isPrimary) const {
  return cloneWithFeatures(mapping,
                           [&] { return OdDbObject::subWblockClone(mapping, owner, isPrimary); });
}

void VdmDbFeatureManager::onAppendToOwner(VdmDbFeatureData* carrier) {
  if (carrier->adapter() != nullptr) {
    const VdmFeaturePtr feature = VdmFeature::cast(carrier);
    feature->setName(finalName(feature->isA(), feature->name(), /*numberGiven=*/false,
                               /*trim=*/false));
  }
  appendFeature(carrier->objectId());
}

// ---- Variables

OdDbObjectIdArray VdmDbFeatureManager::getVariables(bool withSheetMetal,
                                                    OdDbIdMapping* mapping) const {
  const OdDbObjectIdArray features = mapping == nullptr ? featureIds() : featuresToClone(*mapping);
  const bool all = mapping != nullptr && takesAllVariables(*mapping);
  OdDbObjectIdArray variables;
  for (const OdDbObjectId& id : features) {
    const VdmFeaturePtr feature = VdmFeature::open(id);
    if (feature.isNull()) continue;
    variables.append(all ? feature->getAllVariables() : feature->getVariables());
  }
  if (withSheetMetal) variables.append(vdmu::sheetMetalVariables(sheetMetalContext()));
  return variables;
}

// ---- Merging

namespace {

// Whether a feature of the source belongs to what was cloned. The model object of the insert that
// decides is noted.
bool belongsToClones(const VdmFeature& feature, const OdDbObjectIdArray& dependencies,
                     VdmMergeContext& context) {
  const auto isClone = [&context](const OdDbObjectId& id) {
    OdDbIdPair pair;
    return !id.isNull() && context.reverse.compute(id, pair);
  };
  const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(&feature);
  if (!active.isNull()) {
    const VdmUpdateFeatureInterface::OpeningFaces faces = active->openingFaces();
    if (faces.isValid() && isClone(faces.insertId())) {
      const VdmDbObjectPtr insert = VdmDbObject::openVdmDbObject(faces.insertId());
      if (!insert.isNull()) context.mergedObjects.insert(insert->objectId());
      return true;
    }
  }
  return dependsOnMapped(dependencies, feature.getDependentVariables(), isClone);
}

OdDbObjectId firstOrNull(const OdDbObjectIdArray& ids) {
  return ids.isEmpty() ? OdDbObjectId::kNull : ids.first();
}

}  // namespace

void VdmDbFeatureManager::mergeManagers(VdmDbFeatureManager* source, OdDbIdMapping& mapping,
                                        VdmDbReverseIdMapping& reverse,
                                        std::unordered_set<OdDbObjectId>& mergedObjects,
                                        bool keepAll,
                                        std::map<OdDbObjectId, OdDbObjectId>& replaced) {
  if (source == nullptr) throw OdError(eNullPointer, "merging of feature managers");
  VdmMergeContext context{mapping, reverse, keepAll, mergedObjects, replaced};
  if (source != this) takeOver(*source, context);
}

void VdmDbFeatureManager::takeOver(VdmDbFeatureManager& source, VdmMergeContext& context) {
  assertWriteEnabled();
  source.assertWriteEnabled();
  if (adoptContext(source)) adoptFeatures(source, context);
  leaveMerged(source, context);
}

// False when the two blocks are of different sheet metal.
bool VdmDbFeatureManager::adoptContext(const VdmDbFeatureManager& source) {
  const OdDbObjectId theirs = source.sheetMetalContext();
  if (theirs.isNull()) return true;
  if (!sheetMetalContext().isNull()) return vdmu::isSameSheetMetal(sheetMetalContext(), theirs);
  setSheetMetalContext(theirs);
  return true;
}

void VdmDbFeatureManager::adoptFeatures(const VdmDbFeatureManager& source,
                                        VdmMergeContext& context) {
  for (VdmDbIterator<VdmFeature> it = source.newFeatureIterator(); !it.done(); it.next()) {
    const VdmFeaturePtr feature = it.object(OdDb::kForWrite);
    const bool belongs =
        belongsToClones(*feature, feature->getAllDependencies(/*filtered=*/false), context);
    if (!belongs && !context.keepAll) continue;
    feature->getDbObject()->setOwnerId(objectId());
    feature->setName(finalName(feature->isA(), feature->name(), /*numberGiven=*/false,
                               /*trim=*/false));
    appendFeature(it.objectId());
  }
}

// Erases the source with the features that were not taken over.
void VdmDbFeatureManager::leaveMerged(VdmDbFeatureManager& source, VdmMergeContext& context) {
  context.replaced[source.objectId()] = objectId();
  const OdDbObjectId theirs = source.sheetMetalContext();
  if (!theirs.isNull() && theirs != sheetMetalContext()) {
    context.replaced[theirs] = sheetMetalContext();
    const OdDbObjectId variable = firstOrNull(vdmu::sheetMetalVariables(theirs));
    if (!variable.isNull()) {
      context.replaced[variable] = firstOrNull(vdmu::sheetMetalVariables(sheetMetalContext()));
    }
    vdmu::eraseObject(theirs);
  }
  const OdDbObjectIdArray features = source.featureIds();
  for (const OdDbObjectId& id : features) {
    if (id.ownerId() == source.objectId()) vdmu::eraseObject(id);
  }
  source.m_impl->sheetMetalContext.setNull();
  source.m_impl->features.array().clear();
  source.m_impl->features.replaced();
  source.erase();
}
