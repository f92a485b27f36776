// Evaluation of variables that are out of date.
#pragma once

#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Evaluates the variables and the actions that read one, as far as they are out of date, in the
/// network of an object: each once, after what it depends on. A network that is up to date costs
/// nothing; without a network nothing happens.
VDM_DB_EXPORT void evaluateVariables(OdDbObjectId owner);
/// The same for one variable and the variables that depend on it. Nothing happens for an id that is
/// no variable, classes derived from it included.
VDM_DB_EXPORT void propagateVariableModification(OdDbObjectId variable);

}  // namespace vdmu
