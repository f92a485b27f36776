// What constraint managers of a drawing hold, and how their users reach them.
#include "vdm_db/constraints/vdm_constraint_utils.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace vdmu {

namespace {

constexpr const wchar_t* kValueVariableName = L"value";

/// The model object of the entity, open for write; made when there is none.
VdmDbObjectPtr modelObjectOf(const OdDbObjectId& entity, const VdmDbConstraintManager* manager) {
  VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(entity, OdDb::kForWrite);
  if (object.isNull() && !entity.isNull()) {
    object = VdmDbObject::getInstance(entity, manager->objectId()).openObject(OdDb::kForWrite);
  }
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

// ---- What is there

OdDbObjectIdArray getWatchedObjects(OdDbDatabase* database) {
  OdDbObjectIdArray entities;
  forEachManager(database, [&entities](const OdDbObjectId& id) {
    const auto manager = id.safeOpenAs<VdmDbConstraintManager>();
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
  for (const VdmConstraintPtr& constraint : constraints) {
    const double value = constraint->userValue();
    if (!std::isnan(value)) values.push_back(value);  // has no place in the order
  }
  std::sort(values.begin(), values.end());
  OdArray<double> unique;
  for (const double value : values) {
    if (unique.isEmpty() || value - unique.last() > tolerance) unique.append(value);
  }
  return unique;
}

void createVariablesForConstraintValues(OdDbObjectId block, double tolerance) {
  const auto manager = getObjInExtDict(block, kVdmDatabaseKey, nullptr)
                           .openAs<VdmDbConstraintManager>(OdDb::kForWrite);
  if (manager.isNull()) return;
  const OdArray<VdmConstraintPtr> constraints = manager->constraints();
  for (const double value : getUniqueConstraintValues(constraints, tolerance)) {
    const OdString name = generateVariableName(block, OdString(kValueVariableName));
    const OdDbObjectId variable =
        getAssocVariable(block, name, /*create=*/true, getConstExpression(value));
    if (variable.isNull()) continue;
    for (const VdmConstraintPtr& constraint : constraints) {
      if (std::abs(constraint->userValue() - value) > tolerance) continue;
      manager->setConstraintExpression(constraint, name);
    }
  }
}

}  // namespace vdmu
