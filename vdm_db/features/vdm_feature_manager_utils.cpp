// From entities to the features on them.
#include "vdm_db/features/vdm_feature_manager_utils.h"

#include <algorithm>

#include "platform/entities/block_reference.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace {

using VdmFeatureManagerUtils::Classes;

bool isOfOneOf(const OdRxClass* cls, Classes classes) {
  return classes.size() == 0 ||
         (cls != nullptr && std::any_of(classes.begin(), classes.end(), [cls](const OdRxClass* c) {
            return c != nullptr && cls->isDerivedFrom(c);
          }));
}

// Calls visit(carrier's id, reactor) for each feature that holds the dependency, until it gives
// true; then the result is true.
template <class Visit>
bool visitFeatures(OdDbObjectId dependencyId, Classes classes, const Visit& visit) {
  const VdmDbObjectDependencyPtr dependency = dependencyId.openAs<VdmDbObjectDependency>();
  if (dependency.isNull()) return false;
  for (const OdDbObjectId& id : dependency->getPersistentReactors()) {
    const VdmDbPersIdReactorPtr reactor = id.openAs<VdmDbPersIdReactor>();
    if (reactor.isNull()) continue;
    const VdmDbFeatureDataPtr carrier = reactor->ownerId().openAs<VdmDbFeatureData>();
    if (carrier.isNull() || !isOfOneOf(carrier->adapterClass(), classes)) continue;
    if (visit(carrier->objectId(), *reactor)) return true;
  }
  return false;
}

OdDbObjectIdArray dependenciesOf(OdDbObjectId entity) {
  const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(entity);
  return object.isNull() ? OdDbObjectIdArray() : object->dependencies();
}

OdDbObjectIdArray listOf(const VdmFeatureManagerUtils::IdSet& features) {
  OdDbObjectIdArray list;
  list.assign(features.begin(), features.end());
  return list;
}

}  // namespace

namespace VdmFeatureManagerUtils {

void getFeaturesByDep(OdDbObjectId dependency, IdSet& features, Classes classes) {
  visitFeatures(dependency, classes, [&](OdDbObjectId feature, const VdmDbPersIdReactor&) {
    features.insert(feature);
    return false;
  });
}

void getFeaturesByDep(OdDbObjectId dependency, TagsByFeature& features, Classes classes) {
  visitFeatures(dependency, classes, [&](OdDbObjectId feature, const VdmDbPersIdReactor& reactor) {
    features[feature].insert(reactor.tag());
    return false;
  });
}

void getFeatures(OdDbObjectId entity, IdSet& features, Classes classes) {
  for (const OdDbObjectId& dependency : dependenciesOf(entity)) {
    getFeaturesByDep(dependency, features, classes);
  }
}

OdDbObjectIdArray getFeatures(OdDbObjectId entity, Classes classes) {
  IdSet features;
  getFeatures(entity, features, classes);
  return listOf(features);
}

void getFeatures(const OdDbFullSubentPath& path, IdSet& features, Classes classes) {
  const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(vdmu::getInsertId(path));
  if (!object.isNull()) getFeaturesByDep(object->getPersIdDependency(path), features, classes);
}

OdDbObjectIdArray getFeatures(const OdDbFullSubentPath& path, Classes classes) {
  IdSet features;
  getFeatures(path, features, classes);
  return listOf(features);
}

OdDbObjectId getFeature(OdDbObjectId entity, Classes classes) {
  OdDbObjectId first;
  const auto take = [&first](OdDbObjectId feature, const VdmDbPersIdReactor&) {
    first = feature;
    return true;
  };
  for (const OdDbObjectId& dependency : dependenciesOf(entity)) {
    if (visitFeatures(dependency, classes, take)) return first;
  }
  const OdDbObjectIdArray components = getComponentFeatures(entity, classes, /*first=*/true);
  return components.isEmpty() ? OdDbObjectId::kNull : components.first();
}

OdDbObjectIdArray getComponentFeatures(OdDbObjectId insert, Classes classes, bool first) {
  const OdDbBlockReferencePtr reference = insert.openAs<OdDbBlockReference>();
  if (reference.isNull()) return {};
  OdDbObjectIdArray attached = reference->getPersistentReactors();
  if (attached.isEmpty()) return {};
  std::sort(attached.begin(), attached.end());
  const VdmDbFeatureManagerPtr manager =
      VdmDbFeatureManager::getInstance(reference->ownerId(), /*create=*/false)
          .openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return {};

  const auto isAttached = [&attached](const OdDbObjectId& id) {
    return std::binary_search(std::as_const(attached).begin(), std::as_const(attached).end(), id);
  };
  OdDbObjectIdArray features;
  for (VdmDbIterator<VdmFeature> it = manager->newFeatureIterator(); !it.done(); it.next()) {
    const VdmFeaturePtr feature = it.object();
    const auto answers = [&feature](OdRxClass* cls) {
      return !OdRxObjectPtr(feature->queryX(cls), kOdRxObjAttach).isNull();
    };
    if (classes.size() != 0 && std::none_of(classes.begin(), classes.end(), answers)) continue;
    const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(feature);
    if (active.isNull()) continue;
    const OdDbObjectIdArray own = active->ownObjectIds();
    if (std::none_of(own.begin(), own.end(), isAttached)) continue;
    features.append(it.objectId());
    if (first) break;
  }
  return features;
}

}  // namespace VdmFeatureManagerUtils
