// VdmDbConstraintManagerPE: what a solver's module knows about constraints.
#pragma once

#include <vector>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/constraints/vdm_constraint_orientation.h"

class OdDbDatabase;
class VdmConstraint;
class VdmDbConstraintManager;

/// Protocol extension of the class VdmDbConstraintManager. It answers what depends on the meaning
/// of a type code. Without one constraints are not parametric, get no names and offer no
/// orientation. The order of the operations is fixed for modules that are built apart.
class VDM_DB_EXPORT VdmDbConstraintManagerPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbConstraintManagerPE)

  /// The constraint has a value.
  virtual bool isParametric(const VdmConstraint* constraint) = 0;
  virtual bool isLinearDimension(const VdmConstraint* constraint) = 0;
  virtual bool isAngularDimension(const VdmConstraint* constraint) = 0;
  /// New constraints are to be attached to their arguments.
  virtual bool attachmentWanted() = 0;
  /// Not called by this module; keeps its place.
  virtual void reservedOperationA() = 0;
  /// A merge drops a constraint whose arguments could not be mapped.
  virtual bool dropUnmappedConstraint() = 0;
  /// Constraints were removed because their arguments do not resolve; `names` are their names. The
  /// id is null.
  virtual void constraintsRemoved(const OdStringArray& names, const OdDbObjectId& id) = 0;
  /// A name for a new constraint; returns it, too.
  virtual OdString generateConstraintName(OdString& name, VdmDbConstraintManager* manager,
                                          VdmConstraint* constraint, const OdString& wanted,
                                          bool flag) = 0;
  /// A merge leaves the constraint's arguments as they are. `deepCloneContext` is one of
  /// OdDb::DeepCloneType.
  virtual bool skipRemapping(VdmConstraint* constraint, OdInt32 deepCloneContext) = 0;
  /// The network of constraints changed: derived data is to be dropped. The database is null for a
  /// manager that is in none.
  virtual void invalidateTCCache(OdDbDatabase* database) = 0;
  /// Not called by this module; keeps its place.
  virtual void reservedOperationB() = 0;
  /// As the drawing shows it; false when it shows nothing.
  virtual bool getAlignmentFromDrawing(const VdmConstraint* constraint,
                                       AlignmentOrientation& alignment) = 0;
  /// One entry for each argument, as the drawing shows it; false when it shows nothing.
  virtual bool getHalfSpacesFromDrawing(const VdmConstraint* constraint,
                                        std::vector<HalfSpaceOrientation>& halfSpaces) = 0;
  virtual VdmConstraintOrientationProperties getConstraintOrientationProperties(
      const VdmConstraint* constraint) = 0;
};
using VdmDbConstraintManagerPEPtr = OdSmartPtr<VdmDbConstraintManagerPE>;
