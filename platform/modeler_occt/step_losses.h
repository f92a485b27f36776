// What a STEP file declares and its reading did not give.
#pragma once

#include <TopTools_MapOfShape.hxx>

#include "platform/base/array.h"
#include "platform/modeler/assembly.h"
#include "platform/modeler_occt/step_strings.h"
#include "platform/modeler_occt/step_transfer.h"

namespace od_occt {

/// Where the text itself is damaged: statements that are none, numbers that two instances have,
/// references to instances that are not there, a missing end. One line for each of these.
OdStringArray stepDamage(const StepText& file);

/// Compares what the file declares with what was read: each solid, each shell and their faces, and
/// the placements of products. `taken` holds the shapes that became bodies, without their places.
/// One line for each thing that is missing in whole or in part.
OdStringArray stepLosses(const StepText& file, const StepStrings& strings,
                         const StepTransfer& transfer, const TopTools_MapOfShape& taken,
                         const OdModelerAssembly& assembly);

}  // namespace od_occt
