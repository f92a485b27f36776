// The entry of the library of STEP exchange.
#include "platform/modeler_occt/step_exchange.h"

void odMakeStepExchange(od_occt::StepExchange& result) {
  result = {&od_occt::importStepFile, &od_occt::exportStepFile};
}
