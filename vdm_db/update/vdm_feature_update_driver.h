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
  OdDbObjectIdArray depsToErase;  ///< out: dependencies that no feature watches any more
  const VdmDependenciesReplacementMap* replacementMap = nullptr;  ///< not owned; null means empty
  VdmFeatureUpdateData* data = nullptr;                           ///< not owned
  bool force = false;                                             ///< take every feature
};

/// Runs a pass over features of one manager, in the order of `ids`. True when anything changed;
/// whether the solid operations succeeded is told to the observer of the data. Without a manager,
/// data or ids nothing happens. The laws of a pass are told in docs/update-pass.md.
///
/// The solid operations stand in a transaction of the drawing: they are done all, or none is. An
/// error that they raise aborts it and passes through. One that a feature's update or
/// initAfterUpdate raises is reported as an assertion and to the observer, and the pass goes on.
VDM_DB_EXPORT bool vdmRunFeatureUpdate(VdmDbFeatureManager* manager, const OdDbObjectIdArray& ids,
                                       VdmFeatureUpdateInput& input);
