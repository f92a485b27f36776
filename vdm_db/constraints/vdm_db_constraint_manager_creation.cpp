// Constraint managers: making a constraint.
#include "vdm_db/constraints/vdm_constraint_manager_services.h"
#include "vdm_db/constraints/vdm_constraint_utils.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"

namespace {

OdDbFullSubentPathArray pathsOf(const VdmExtendedPathArray& args) {
  OdDbFullSubentPathArray paths;
  for (const VdmExtendedPath& arg : args) {
    if (!arg.path.objectIds().isEmpty()) paths.append(arg.path);
  }
  return paths;
}

/// The arguments by their dependencies, which `made` has for those with a path, in order.
std::vector<ExtendedDep> dependenciesOf(const VdmExtendedPathArray& args,
                                        const OdDbObjectIdArray& made) {
  std::vector<ExtendedDep> dependencies;
  dependencies.reserve(args.size());
  OdUInt32 next = 0;
  for (const VdmExtendedPath& arg : args) {
    const bool hasPath = !arg.path.objectIds().isEmpty();
    dependencies.push_back(
        {hasPath ? made[next++] : OdDbObjectId::kNull, arg.isDefaultGeometry, arg.defaultGeometry});
  }
  return dependencies;
}

}  // namespace

VdmConstraintPtr VdmDbConstraintManager::makeConstraint(OdLong type, const OdString& name,
                                                        bool flag) {
  assertWriteEnabled();
  invalidateTCCache();
  VdmConstraintPtr constraint = VdmConstraint::createObject();
  constraint->setType(type);
  addConstraint(constraint);
  constraint->setOwner(objectId());
  const auto pe = VdmDbConstraintManagerPE::cast(this);
  if (pe.isNull()) return constraint;
  try {
    OdString generated;
    constraint->setName(pe->generateConstraintName(generated, this, constraint, name, flag));
  } catch (...) {
    removeConstraint(constraint);
    throw;
  }
  return constraint;
}

// The variable is made first: making it takes its value, which has 12 digits, into the constraint.
void VdmDbConstraintManager::setFirstValue(VdmConstraint* constraint, double value) {
  if (!constraint->isParametric()) return;
  ensureVariable(constraint);
  setConstraintValue(constraint, value);
}

VdmConstraintPtr VdmDbConstraintManager::addConstraint(int type, const VdmExtendedPathArray& args,
                                                       VdmConstraintManagerServices& services,
                                                       const OdString& name, bool flag) {
  const VdmConstraintPtr constraint = makeConstraint(type, name, flag);
  const auto assembly = VdmDbAssemblyPE::cast(this);
  try {
    const OdDbFullSubentPathArray paths = pathsOf(args);
    ensureVariable(constraint);
    const OdDbObjectIdArray made = vdmu::createConstrDependencies(this, paths);
    constraint->setDependencies(dependenciesOf(args, made));
    const auto pe = VdmDbConstraintManagerPE::cast(this);
    const bool isWanted = !pe.isNull() && pe->attachmentWanted();
    if (services.attachIndexesToArgs(assembly, paths, made, isWanted) == eInvalidInput) {
      removeConstraint(constraint);
      return {};
    }
  } catch (...) {
    removeConstraint(constraint);
    throw;
  }
  if (services.needToUpdateDatabase()) services.updateDatabase(assembly, database());
  return constraint;
}
