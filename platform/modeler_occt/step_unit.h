// The length unit that a STEP file is written in.
#pragma once

#include "platform/modeler/assembly.h"

class Interface_InterfaceModel;

namespace od_occt {

/// The unit of the first geometric context of the file; millimetres when it names none.
OdModelerLengthUnit lengthUnitOf(const Interface_InterfaceModel& model);

}  // namespace od_occt
