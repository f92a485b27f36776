// The update pass: the one sequence by which features catch up with their solids.
#pragma once

#include "platform/base/array.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbFeatureManager;
class VdmDependenciesReplacementMap;
class VdmFeatureUpdateData;

/// Input of a pass, and what it leaves to its caller.
struct VdmFeatureUpdateInput {
  OdDbObjectIdArray depsToErase;  ///< out: dependencies without a watcher left
  const VdmDependenciesReplacementMap* replacementMap = nullptr;  ///< not owned; null means empty
  VdmFeatureUpdateData* data = nullptr;                           ///< not owned
  bool force = false;                                             ///< take every feature
  /// The ids are the manager's list, and features that are not due need not be looked at.
  bool onlyDue = false;
};

/// Runs a pass over features of one manager, in the order of `ids`, then what the context of the
/// data asks to be done with sheet metal. True when anything changed; the observer hears whether
/// the solid operations succeeded. Without a manager or data nothing happens, and without ids no
/// feature is asked. docs/update-pass.md has the laws of a pass.
///
/// One transaction of the drawing holds the solid operations: they are done all, or none is. An
/// error that they raise aborts it like an operation that fails. The helper and the observer hear
/// of every abort. An error of any type that a feature raises fails that feature: it is reported as
/// an assertion and to the observer, and the pass continues. A feature that fails while it prepares
/// has nothing done of what it gathered.
VDM_DB_EXPORT bool vdmRunFeatureUpdate(VdmDbFeatureManager* manager, const OdDbObjectIdArray& ids,
                                       VdmFeatureUpdateInput& input);
