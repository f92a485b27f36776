// VdmDbVariableReactor: how a constraint manager hears of its variables.
#pragma once

#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"

/// A persistent reactor of the variables that carry the values of constraints. The
/// VdmDbConstraintManager of the constraints owns it, has one of it, and is called when such a
/// variable changes and when it is erased. It has no state of its own.
class VDM_DB_EXPORT VdmDbVariableReactor : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbVariableReactor)

  void modified(const OdDbObject* object) override;
  void erased(const OdDbObject* object, bool erasing) override;
  /// A copy of a variable belongs to no constraint of the manager: takes itself off.
  void copied(const OdDbObject* object, const OdDbObject* clone) override;
};
using VdmDbVariableReactorPtr = OdSmartPtr<VdmDbVariableReactor>;
