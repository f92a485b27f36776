// Features: their reactors, dependencies and variables.
#include <set>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/features/vdm_db_feature_manager_transaction.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_reactor_walk.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/references/vdm_path_utils.h"

// ---- Reactors

OdDbObjectIdArray VdmFeature::reactors() const { return reactorIds(); }

const OdDbObjectIdArray& VdmFeature::reactorIds() const {
  assertReadable();
  return m_reactors;
}

OdDbObjectId VdmFeature::addReactor(OdRxClass* cls, int mask, int tag) {
  const OdDbObjectId id = addReactor(cls, mask);
  const VdmDbPersIdReactorPtr reactor = id.openAs<VdmDbPersIdReactor>(OdDb::kForWrite);
  if (!reactor.isNull()) reactor->setTag(tag);
  return id;
}

OdDbObjectId VdmFeature::addReactor(OdRxClass* cls, int mask) {
  OdDbObject* carrier = assertWritable();
  if (cls == nullptr) return OdDbObjectId::kNull;
  const OdRxObjectPtr made = cls->create();
  if (made.isNull() || !made->isKindOf(OdDbObject::desc())) {
    throw OdError_NotThatKindOfClass(cls->name(), OdDbObject::desc()->name());
  }
  if (carrier->database() == nullptr) {
    throw OdError(eNoDatabase, "reactor of the feature \"" + m_name + "\"");
  }
  auto* object = static_cast<OdDbObject*>(made.get());
  const OdDbObjectId id = carrier->database()->addOdDbObject(object, carrier->objectId());
  m_reactors.append(id);
  if (object->isKindOf(VdmDbPersIdReactor::desc())) {
    static_cast<VdmDbPersIdReactor*>(object)->setMask(mask);
  }
  return id;
}

void VdmFeature::eraseReactor(OdDbObjectId reactor, int mask, int tag) {
  OdDbObject* carrier = assertWritable();
  if (!m_reactors.contains(reactor)) return;
  if (isRequiredDependency(mask, tag)) {
    carrier->erase();
  } else {
    removeReactor(reactor, /*eraseReactor=*/true);
  }
}

void VdmFeature::removeReactor(OdDbObjectId reactor, bool eraseReactor) {
  if (reactor.isNull()) return;
  assertWritable();
  m_reactors.remove(reactor);
  const bool isPersIdReactor = vdmu::isIdOf<VdmDbPersIdReactor>(reactor);
  if (!eraseReactor && !isPersIdReactor) return;
  const OdDbObjectPtr object = reactor.openObject(OdDb::kForWrite);
  if (object.isNull()) return;
  if (isPersIdReactor) static_cast<VdmDbPersIdReactor*>(object.get())->removePersIds();
  if (eraseReactor) object->erase();
}

OdDbObjectId VdmFeature::findPersIdReactor(int mask, const int* tag) const {
  OdDbObjectId found;
  vdmVisitReactors<VdmDbPersIdReactor>(m_reactors, [&](const VdmDbPersIdReactor* reactor) {
    if (static_cast<int>(reactor->mask()) != mask) return false;
    if (tag != nullptr && !reactor->hasTag(*tag)) return false;
    found = reactor->objectId();
    return true;
  });
  return found;
}

// ---- Giving references

void VdmFeature::init(const OdArray<VdmFeatureGroupFaces>& groups) {
  assertWritable();
  OdDbObjectIdArray old;
  vdmVisitReactors<VdmDbPersIdReactor>(m_reactors, [&old](const VdmDbPersIdReactor* reactor) {
    old.append(reactor->objectId());
    return false;
  });
  for (const OdDbObjectId& id : old) removeReactor(id, /*eraseReactor=*/true);
  if (groups.isEmpty()) return;
  const VdmDbFeatureManagerTransactionPtr transaction =
      VdmDbFeatureManagerTransaction::createObject();
  for (const VdmFeatureGroupFaces& group : groups) {
    if (group.tag == -1) {
      transaction->append(this, group.paths, group.mask);
    } else {
      transaction->append(this, group.paths, group.mask, group.tag);
    }
  }
}

void VdmFeature::updatePaths(int mask, const OdDbFullSubentPathArray& paths) {
  assertWritable();
  {
    const OdDbObjectId id = findPersIdReactor(mask, nullptr);
    const VdmDbPersIdReactorPtr reactor = id.openAs<VdmDbPersIdReactor>(OdDb::kForWrite);
    if (!reactor.isNull()) reactor->removePersIds();
  }
  VdmDbFeatureManagerTransaction::createObject()->append(this, paths, mask);
}

// ---- Dependencies

template <class Matches>
OdDbObjectIdArray VdmFeature::collectDependencies(const Matches& matches, bool filtered) const {
  assertReadable();
  const VdmUpdateFeatureInterfacePtr active =
      filtered ? VdmUpdateFeatureInterface::activeOf(this) : VdmUpdateFeatureInterfacePtr();
  OdDbObjectIdArray dependencies;
  vdmVisitReactors<VdmDbPersIdReactor>(m_reactors, [&](const VdmDbPersIdReactor* reactor) {
    if (!matches(reactor)) return false;
    if (!active.isNull() && active->isReactorFiltered(reactor)) return false;
    dependencies.append(reactor->persIdsRef());
    return false;
  });
  return dependencies;
}

OdDbObjectIdArray VdmFeature::getDependencies(int mask, bool filtered) const {
  return collectDependencies(
      [mask](const VdmDbPersIdReactor* reactor) { return reactor->hasMask(mask); }, filtered);
}

OdDbObjectIdArray VdmFeature::getDependencies(int mask, int tag, bool filtered) const {
  return collectDependencies(
      [mask, tag](const VdmDbPersIdReactor* reactor) {
        return reactor->hasMask(mask) && reactor->hasTag(tag);
      },
      filtered);
}

OdDbObjectIdArray VdmFeature::getAllDependencies(bool filtered) const {
  return getDependencies(-1, filtered);
}

OdResult VdmFeature::getDependenciesGroupedByTags(int mask,
                                                  std::map<int, OdDbObjectIdArray>& groups) const {
  assertReadable();
  groups.clear();
  vdmVisitReactors<VdmDbPersIdReactor>(m_reactors, [&](const VdmDbPersIdReactor* reactor) {
    if (reactor->hasMask(mask)) groups[reactor->tag()].append(reactor->persIdsRef());
    return false;
  });
  return eOk;
}

OdResult VdmFeature::getTags(int mask, OdArray<int>& tags) const {
  assertReadable();
  vdmVisitReactors<VdmDbPersIdReactor>(m_reactors, [&](const VdmDbPersIdReactor* reactor) {
    if (reactor->hasMask(mask)) tags.append(reactor->tag());
    return false;
  });
  return eOk;
}

// ---- Paths

OdDbFullSubentPathArray VdmFeature::getFSPfromDepencencies(const OdDbObjectIdArray& dependencies) {
  OdDbFullSubentPathArray paths(dependencies.size());
  for (const OdDbObjectId& id : dependencies) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull()) continue;
    OdDbObjectIdArray ids;
    if (dependency->compoundId().getFullPathEx(ids, /*openErased=*/false) == vdmu::ePathInvalid) {
      continue;
    }
    paths.append(OdDbFullSubentPath(ids, dependency->subentId()));
  }
  return paths;
}

OdDbFullSubentPathArray VdmFeature::getFeatureEntities(int mask, bool filtered) const {
  return getFSPfromDepencencies(getDependencies(mask, filtered));
}

OdDbFullSubentPathArray VdmFeature::getEntities(int mask, int tag) const {
  return getFSPfromDepencencies(getDependencies(mask, tag, /*filtered=*/false));
}

// ---- What reactors answer

namespace {

/// What the reactors answer, one after the other.
OdDbObjectIdArray askedOf(const OdDbObjectIdArray& reactors,
                          OdDbObjectIdArray (VdmDbFeatureReactor::*question)()) {
  OdDbObjectIdArray all;
  vdmVisitReactors<VdmDbFeatureReactor>(reactors, [&](VdmDbFeatureReactor* reactor) {
    all.append((reactor->*question)());
    return false;
  });
  return all;
}

}  // namespace

bool VdmFeature::hasChanges(bool& needConstraintsRecalculation) const {
  assertReadable();
  needConstraintsRecalculation = false;
  bool changed = false;
  for (const OdDbObjectId& id : m_reactors) {
    if (!vdmAnswersChanges(id.objectClass())) continue;
    const VdmDbFeatureReactorPtr reactor = id.openAs<VdmDbFeatureReactor>();
    if (reactor.isNull()) continue;
    changed |= reactor->hasChanges();
    needConstraintsRecalculation |= reactor->needConstraintsRecalculation();
  }
  return changed;
}

OdDbObjectIdArray VdmFeature::getVariables() const {
  assertReadable();
  return askedOf(m_reactors, &VdmDbFeatureReactor::getVariables);
}

OdDbObjectIdArray VdmFeature::getDependentVariables() const {
  assertReadable();
  return askedOf(m_reactors, &VdmDbFeatureReactor::getDependentVariables);
}

OdDbObjectIdArray VdmFeature::getAllVariables() const {
  assertReadable();
  std::set<OdDbObjectId, vdmu::ObjectIdLess> all;
  vdmVisitReactors<VdmDbFeatureReactor>(m_reactors, [&all](VdmDbFeatureReactor* reactor) {
    for (const OdDbObjectId& id : reactor->getVariables()) all.insert(id);
    for (const OdDbObjectId& id : reactor->getDependentVariables()) all.insert(id);
    return false;
  });
  OdDbObjectIdArray variables;
  variables.assign(all.begin(), all.end());
  return variables;
}
