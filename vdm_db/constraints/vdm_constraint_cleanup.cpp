// Removing what constraints do not use, and constraints whose arguments were erased.
#include "vdm_db/constraints/vdm_constraint_cleanup.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>
#include <vector>

#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/references/vdm_path_utils.h"
#include "vdm_utils/vdmc_assert.h"

namespace vdmu {

namespace {

constexpr const char* kSource = "vdm_db/vdm_constraint_cleanup";

}  // namespace

// ---- Unused dependencies and model objects

namespace {

using IdSet = std::unordered_set<OdDbObjectId, OdDbObjectIdHash>;

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
    if (object.isNull()) continue;
    const OdDbObjectId csm =
        VdmDbPersIdManager::getInstance(object->attachedEntityId().ownerId(), /*create=*/false);
    VDM_ASSERT_AT(!csm.isNull(), kSource, __LINE__);
    object->eraseWithSubObjects();
  }
}

// ---- Invalid constraints

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
  const auto pe = VdmDbConstraintManagerPE::cast(manager);
  if (!pe.isNull()) pe->constraintsRemoved(names, OdDbObjectId::kNull);
}

}  // namespace vdmu
