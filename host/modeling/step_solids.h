// Solids of a STEP file.
#pragma once

#include <vector>

#include "platform/base/status.h"
#include "platform/base/string.h"
#include "platform/db/units.h"
#include "platform/modeler/body.h"
#include "platform/modeler/modeler.h"

namespace vdm_host {

/// All solids that the file places, in the given units, at their places in the assembly. A part
/// that occurs twice gives two bodies. Sheets and wires are left out; `leftOut`, which may be null,
/// gets a line for each kind. eModelerError for a file that is incomplete: what the model is made
/// of must be whole.
[[nodiscard]] OdStatus readStepSolids(const OdString& path, const OdModelerReadOptions& options,
                                      OdDb::UnitsValue units, std::vector<OdModelerBodyPtr>& solids,
                                      OdStringArray* leftOut = nullptr);

}  // namespace vdm_host
