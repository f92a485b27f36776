// Utilities around constraint managers.
#include "vdm_db/constraints/vdm_constraint_utils.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/base/case_compare.h"
#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace vdmu {

namespace {

using IdSet = std::unordered_set<OdDbObjectId, OdDbObjectIdHash>;

/// The model object of the entity, open for write; made when there is none.
VdmDbObjectPtr modelObjectOf(const OdDbObjectId& entity, const VdmDbConstraintManager* manager) {
  VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(entity, OdDb::kForWrite);
  if (object.isNull() && !entity.isNull())
    object = VdmDbObject::getInstance(entity, manager->objectId()).openObject(OdDb::kForWrite);
  return object;
}

/// Calls back for the manager of each block that has one.
template <class Call>
void forEachManager(OdDbDatabase* database, const Call& call) {
  if (database == nullptr) return;
  const auto table = database->getBlockTableId().openAs<OdDbBlockTable>();
  if (table.isNull()) return;
  for (const auto iterator = table->newIterator(); !iterator->done(); iterator->step()) {
    const OdDbObjectId manager = getObjInExtDict(iterator->getRecordId(), kVdmDatabaseKey, nullptr);
    if (!manager.isNull()) call(manager);
  }
}

}  // namespace

// ---- Dependencies and status

OdDbObjectIdArray createConstrDependencies(VdmDbConstraintManager* manager,
                                           const OdDbFullSubentPathArray& paths) {
  OdDbObjectIdArray dependencies(paths.size());
  for (const OdDbFullSubentPath& path : paths) {
    const VdmDbObjectPtr object = modelObjectOf(getInsertId(path), manager);
    const OdDbObjectId dependency = object.isNull() ? OdDbObjectId::kNull : object->append(path);
    if (dependency.isNull()) throw OdError(OdString("Failed to create dependency"));
    dependencies.append(dependency);
  }
  return dependencies;
}

void markConstraintManagerChanged(const OdDbObjectId& id,
                                  VdmDbConstraintManager::ConstraintManagerStatus status) {
  const auto manager = id.openAs<VdmDbConstraintManager>(OdDb::kForWrite);
  if (manager.isNull()) return;
  if (status > manager->getStatus()) manager->setStatus(status);
  manager->invalidateTCCache();
}

// ---- Names

void getConstraintNamesSet(VdmDbConstraintManager* manager, std::set<OdString>& names) {
  for (const VdmConstraintPtr& constraint : manager->constraints())
    names.insert(odToUpper(constraint->name()));
}

OdString takeNumberedName(const OdString& base, std::set<OdString>& taken, int& number) {
  while (true) {
    const OdString name = OdString().format(L"%ls_%d", base.c_str(), number);
    if (taken.insert(odToUpper(name)).second) return name;
    ++number;
  }
}

OdString generateUniqueName(const OdString& base, std::set<OdString>& taken, int start,
                            bool tryBase) {
  if (tryBase && !taken.contains(odToUpper(base))) return base;
  return takeNumberedName(base, taken, start);
}

OdString removeNumericSuffix(const OdString& name) {
  int length = name.getLength();
  while (length > 0 && name[length - 1] >= L'0' && name[length - 1] <= L'9') --length;
  if (length > 0 && name[length - 1] == L'_') --length;
  return name.left(length);
}

OdString uniqueNameNumericSuffix(const OdString& name, std::set<OdString>& taken) {
  if (taken.insert(odToUpper(name)).second) return name;
  return generateUniqueName(removeNumericSuffix(name), taken, static_cast<int>(taken.size()),
                            /*tryBase=*/false);
}

// ---- What is there

OdDbObjectIdArray getWatchedObjects(OdDbDatabase* database) {
  OdDbObjectIdArray entities;
  forEachManager(database, [&entities](const OdDbObjectId& id) {
    const auto manager = id.openAs<VdmDbConstraintManager>();
    if (manager.isNull()) return;
    for (const OdDbObjectId& objectId : manager->vdmDbObjects()) {
      const auto object = objectId.openAs<VdmDbObject>();
      if (!object.isNull()) entities.append(object->attachedEntityId());
    }
  });
  return entities;
}

OdDbObjectIdArray getBTRsConstraintManagers(OdDbDatabase* database) {
  OdDbObjectIdArray managers;
  forEachManager(database, [&managers](const OdDbObjectId& id) { managers.append(id); });
  return managers;
}

OdArray<double> getUniqueConstraintValues(const OdArray<VdmConstraintPtr>& constraints,
                                          double tolerance) {
  std::vector<double> values;
  values.reserve(constraints.size());
  for (const VdmConstraintPtr& constraint : constraints) values.push_back(constraint->userValue());
  std::sort(values.begin(), values.end());
  OdArray<double> unique;
  for (const double value : values) {
    if (unique.isEmpty() || value - unique.last() > tolerance) unique.append(value);
  }
  return unique;
}

// ---- Cleaning up

namespace {

IdSet dependenciesOf(const VdmDbConstraintManager* manager) {
  IdSet used;
  for (const VdmConstraintPtr& constraint : manager->constraints()) {
    for (const OdDbObjectId& argument : constraint->argumentIds()) {
      if (!argument.isNull()) used.insert(argument);
    }
  }
  return used;
}

/// Erases the constraint dependencies of the object that are not used. True when none of any kind
/// is left.
bool dropUnused(const OdDbObjectId& id, const IdSet& used) {
  const auto object = id.openAs<VdmDbObject>(OdDb::kForRead);
  if (object.isNull()) return false;
  OdDbObjectIdArray unused;
  for (const OdDbObjectId& dependency : object->constraintDependencies()) {
    if (!used.contains(dependency)) unused.append(dependency);
  }
  if (!unused.isEmpty()) {
    const VdmOpenUpgrade upgrade(object);
    object->removeConstraintDependencies(unused);
  }
  return !object->hasDependencies();
}

}  // namespace

void cleanupVdmDbObjects(VdmDbConstraintManager* manager, const OdDbObjectIdArray& candidates) {
  if (candidates.isEmpty()) return;
  manager->assertWriteEnabled(/*autoUndo=*/false);
  const IdSet used = dependenciesOf(manager);
  OdDbObjectIdArray dropped;
  for (const OdDbObjectId& id : std::as_const(candidates)) {
    if (dropUnused(id, used)) dropped.append(id);
  }
  if (dropped.isEmpty()) return;
  manager->dropFromRegistry(dropped);
  for (const OdDbObjectId& id : std::as_const(dropped)) {
    const auto object = id.openAs<VdmDbObject>(OdDb::kForWrite);
    if (!object.isNull()) object->eraseWithSubObjects();
  }
}

namespace {

constexpr OdLong kTypeThatLosesArguments = 12;

bool isResolved(const OdDbObjectId& id) {
  const auto dependency = id.openAs<VdmDbObjectDependency>(OdDb::kForRead);
  if (dependency.isNull()) return false;
  OdDbObjectIdArray ids;
  const EVdmPathRes result = dependency->compoundId().getFullPathEx(ids, /*openErased=*/false);
  return result == ePathXrefUnreferenced ||
         (result == ePathOk && isValidObjectIdPath(ids, /*allowErased=*/false));
}

bool isValidArgument(const ExtendedDep& argument) {
  const bool isOpenReference = argument.dependency.isNull() && argument.isDefaultGeometry;
  return isOpenReference || isResolved(argument.dependency);
}

/// The constraint can stay; it loses arguments where its type allows that.
bool staysValid(VdmConstraint* constraint, VdmDbConstraintManager* manager) {
  if (!constraint->isSupportedVersion()) return true;
  const std::vector<ExtendedDep> arguments = constraint->dependencies();
  std::vector<ExtendedDep> valid;
  std::copy_if(arguments.begin(), arguments.end(), std::back_inserter(valid), isValidArgument);
  if (valid.size() == arguments.size()) return true;
  if (constraint->type() != kTypeThatLosesArguments || valid.empty()) return false;
  const VdmOpenUpgrade upgrade(manager);
  constraint->setDependencies(valid);
  return true;
}

}  // namespace

void removeInvalidConstraints(VdmDbConstraintManager* manager) {
  manager->assertReadEnabled();
  OdArray<VdmConstraintPtr> invalid;
  OdStringArray names;
  for (const VdmConstraintPtr& constraint : manager->constraints()) {
    if (staysValid(constraint, manager)) continue;
    invalid.append(constraint);
    names.append(constraint->name());
  }
  if (!invalid.isEmpty()) {
    const VdmOpenUpgrade upgrade(manager);
    manager->removeConstraints(invalid);
  }
  const auto pe = VdmDbConstraintManagerPE::cast(static_cast<const OdRxObject*>(manager));
  if (!pe.isNull()) pe->constraintsRemoved(names, OdDbObjectId::kNull);
}

}  // namespace vdmu
