// VdmConstraintManagerServices: constraints that are made in a batch.
#pragma once

#include <map>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/constraints/vdm_constraint.h"
#include "vdm_db/constraints/vdm_db_assembly_pe.h"
#include "vdm_db/references/vdm_extended_path.h"

class OdDbDatabase;
class VdmDbConstraintManager;

/// Base of what a solver's module passes along when it makes constraints. Two operations are its
/// own: attachIndexesToArgs() and updateDatabase(). As a batch it is used in this order:
/// appendConstraint() for each constraint, createConstraints(), and changeExpressions() if the
/// values are expressions. An entity that many constraints name is opened once, and arguments with
/// one path share a dependency.
///
/// All or none: when createConstraints() raises, or attachIndexesToArgs() refuses, all constraints
/// of the batch are removed. The batch keeps its constraints after that, without an owner. A plain
/// value: copies share the constraints. Used on the thread that holds the drawing.
class VDM_DB_EXPORT VdmConstraintManagerServices {
 public:
  virtual ~VdmConstraintManagerServices();

  /// Called once for a batch, or for a constraint that is made alone, when its dependencies are
  /// set. `paths` and `dependencies` are parallel: the arguments with a path, each path once.
  /// eInvalidInput (4) refuses: the constraints are removed again. The extension may be null.
  /// `wanted` is what VdmDbConstraintManagerPE::attachmentWanted() says; false without one.
  virtual OdResult attachIndexesToArgs(OdSmartPtr<VdmDbAssemblyPE> pe,
                                       const OdArray<OdDbFullSubentPath>& paths,
                                       const OdArray<OdDbObjectId>& dependencies, bool wanted);
  /// Called after that, unless it was refused, when needToUpdateDatabase() says so.
  virtual void updateDatabase(OdSmartPtr<VdmDbAssemblyPE> pe, OdDbDatabase* database);
  [[nodiscard]] bool needToUpdateDatabase() const { return m_needUpdate; }

  /// Makes a constraint in the manager of the block that holds the first argument's entity, without
  /// dependencies as yet, and gives its name. A parametric one gets the value. Nothing is made, and
  /// the name is empty, when the first argument leads to no entity. `flag` and `name` are handed to
  /// VdmDbConstraintManagerPE::generateConstraintName().
  OdString appendConstraint(OdLong type, const VdmExtendedPathArray& args, double value,
                            const OdString& name, bool flag);
  /// Makes the dependencies of all constraints. Raises OdError "Failed to create dependency" for an
  /// argument whose path cannot be referred to.
  void createConstraints();
  /// Sets the expressions of the constraints by their names. Raises OdError_InvalidKey "invalid
  /// map<K, T> key" at the first constraint whose name is not in the map; those before it are set.
  /// The last result of VdmDbConstraintManager::setConstraintExpression() that is not eOk.
  OdResult changeExpressions(const std::map<OdString, OdString>& expressions);
  /// Removes the constraints from their managers.
  void removeConstraints();

 protected:
  bool m_needUpdate = false;

 private:
  struct Pending {
    std::vector<VdmExtendedPath> args;
    VdmConstraintPtr constraint;
    std::vector<ExtendedDep> deps;  ///< of the arguments, once they are made
  };
  class Batch;

  void makeDependencies(Batch& batch);
  void setDependencies();

  std::vector<Pending> m_pending;
};
