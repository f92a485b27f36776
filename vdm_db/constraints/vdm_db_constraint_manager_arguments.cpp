// Constraint managers: the arguments of constraints.
#include <algorithm>

#include "platform/base/error.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

/// Equal to the last part; the order of paths takes default geometry by its number alone.
bool isSamePath(const VdmExtendedPath& a, const VdmExtendedPath& b) {
  return a.isDefaultGeometry == b.isDefaultGeometry &&
         (!a.isDefaultGeometry || a.defaultGeometry == b.defaultGeometry) && a.path == b.path;
}

bool holdsPath(const VdmExtendedPathArray& paths, const VdmExtendedPath& path) {
  return std::any_of(paths.begin(), paths.end(),
                     [&path](const VdmExtendedPath& held) { return isSamePath(held, path); });
}

}  // namespace

ExtendedDep VdmDbConstraintManager::dependencyOf(const VdmExtendedPath& path) {
  ExtendedDep dependency;
  dependency.isDefaultGeometry = path.isDefaultGeometry;
  dependency.defaultGeometry = path.defaultGeometry;
  const OdDbObjectId entity = vdmu::getInsertId(path.path);
  if (!entity.isNull()) {
    const auto object =
        VdmDbObject::getInstance(entity, objectId()).openAs<VdmDbObject>(OdDb::kForWrite);
    if (!object.isNull()) dependency.dependency = object->append(path.path);
  }
  if (dependency.dependency.isNull() && !dependency.isDefaultGeometry) {
    throw OdError(OdString("Failed to create dependency"));
  }
  return dependency;
}

void VdmDbConstraintManager::addArguments(VdmConstraint* constraint,
                                          const VdmExtendedPathArray& paths,
                                          VdmExtendedPathArray& added) {
  assertWriteEnabled(/*autoUndo=*/false);
  invalidateTCCache();
  if (constraint == nullptr) return;
  std::vector<ExtendedDep> dependencies = constraint->dependencies();
  VdmExtendedPathArray held = constraint->getExtArguments();
  VdmExtendedPathArray fresh;
  for (const VdmExtendedPath& path : paths) {
    if (holdsPath(held, path)) continue;
    dependencies.push_back(dependencyOf(path));
    held.append(path);
    fresh.append(path);
  }
  constraint->setDependencies(dependencies);
  added.append(fresh);
}

void VdmDbConstraintManager::removeArguments(VdmConstraint* constraint,
                                             const VdmExtendedPathArray& paths) {
  assertWriteEnabled(/*autoUndo=*/false);
  invalidateTCCache();
  if (constraint == nullptr) return;
  const std::vector<ExtendedDep> dependencies = constraint->dependencies();
  std::vector<ExtendedDep> kept;
  VdmExtendedPath path;
  for (OdUInt32 i = 0; i < dependencies.size(); ++i) {
    const bool goes = constraint->getExtArgument(i, path) && holdsPath(paths, path);
    if (!goes) kept.push_back(dependencies[i]);
  }
  constraint->setDependencies(kept);
}

void VdmDbConstraintManager::replaceConstraintDependencies(
    const VdmDbObject* object, const std::map<OdDbObjectId, OdDbObjectId>& replacements,
    const std::map<OdDbObjectId, OdDbObjectId>& chained) {
  const OdDbObjectIdArray ofObject = object->dependencies();
  const std::set<OdDbObjectId> replaceable(ofObject.begin(), ofObject.end());
  for (const auto& [nodeId, constraint] : m_constraints) {
    if (constraint.isNull()) continue;
    std::vector<ExtendedDep> dependencies = constraint->dependencies();
    for (ExtendedDep& dependency : dependencies) {
      if (dependency.dependency.isNull() || !replaceable.contains(dependency.dependency)) continue;
      const auto replacement = replacements.find(dependency.dependency);
      if (replacement == replacements.end()) continue;
      const auto final = chained.find(replacement->second);
      dependency.dependency = final == chained.end() ? replacement->second : final->second;
    }
    constraint->setDependencies(dependencies);
  }
}
