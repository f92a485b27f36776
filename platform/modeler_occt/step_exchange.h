// STEP exchange as the modeller's library sees it: two functions in a library of their own.
//
// The translators bring some thirty libraries along, and most programs that need a body never read
// or write a STEP file. So they are linked to a second library of this room, which is loaded by the
// first exchange.
#pragma once

#include "platform/modeler/modeler.h"

namespace od_occt {

/// Contracts: OdModeler::importStep and OdModeler::exportStep.
struct StepExchange {
  OdStatus (*import)(const OdString& path, const OdModelerReadOptions& options,
                     OdModelerAssembly& result) = nullptr;
  OdStatus (*exportTo)(const OdString& path, const OdModelerAssembly& assembly) = nullptr;
};

// step_import.cpp, step_export.cpp
OdStatus importStepFile(const OdString& path, const OdModelerReadOptions& options,
                        OdModelerAssembly& result);
OdStatus exportStepFile(const OdString& path, const OdModelerAssembly& assembly);

}  // namespace od_occt

/// The entry of the library of STEP exchange, with a plain name: it is looked up at run time.
extern "C" void odMakeStepExchange(od_occt::StepExchange& result);
