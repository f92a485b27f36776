// The modeller's STEP exchange: loads the library of it when it is first needed.
#include <utility>

#include "platform/base/library_entry.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_operations.h"
#include "platform/modeler_occt/step_exchange.h"

namespace od_occt {
namespace {

StepExchange load() {
  void* entry = odLibraryEntry(VDM_STEP_LIBRARY, "odMakeStepExchange", eNoModeler);
  StepExchange exchange;
  reinterpret_cast<decltype(&odMakeStepExchange)>(entry)(exchange);
  return exchange;
}

// The function, once the library is loaded. A load that failed is tried again by the next exchange.
template <class Function, class... Arguments>
OdStatus call(Function StepExchange::*function, Arguments&&... arguments) {
  const StepExchange* exchange = nullptr;
  OdStatus status = guarded("STEP exchange", [&exchange] {
    static const StepExchange loaded = load();
    exchange = &loaded;
    return OdStatus();
  });
  return status.ok() ? (exchange->*function)(std::forward<Arguments>(arguments)...) : status;
}

}  // namespace

OdStatus importStep(const OdString& path, const OdModelerReadOptions& options,
                    OdModelerAssembly& result) {
  return call(&StepExchange::import, path, options, result);
}

OdStatus exportStep(const OdString& path, const OdModelerAssembly& assembly) {
  return call(&StepExchange::exportTo, path, assembly);
}

}  // namespace od_occt
