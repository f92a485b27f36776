// Start and end of the run-time class system.
#include "platform/rx/rx_init.h"

#include <iterator>

#include "platform/base/error.h"
#include "platform/rx/class_rows.h"
#include "platform/rx/memory_stream.h"
#include "platform/rx/module.h"
#include "platform/rx/overrule.h"
#include "platform/rx/rx_class.h"

namespace {

// In the order of registration: a parent comes before its children.
constexpr OdRxClassRow kClasses[] = {
    odrxClassRow<OdRxObject>(),      odrxClassRow<OdRxClass>(),   odrxClassRow<OdRxModule>(),
    odrxClassRow<OdRxOverrule>(),    odrxClassRow<OdStreamBuf>(), odrxClassRow<OdMemoryStream>(),
    odrxClassRow<OdFlatMemStream>(),
};

int g_initializations = 0;

// The classes above stand first in the order of registration; every other one derives from them.
void refuseWhileOthersAreRegistered() {
  const auto classes = odrxClassDictionary()->classes();
  if (classes.size() > std::size(kClasses)) {
    throw OdError(eInvalidInput, L"odrxUninitialize while class " +
                                     classes[std::size(kClasses)]->name() + L" is registered");
  }
}

}  // namespace

void odrxInitialize() {
  if (g_initializations == 0) {
    for (const OdRxClassRow& row : kClasses) row.registerClass();
  }
  ++g_initializations;
}

void odrxUninitialize() {
  if (g_initializations == 0) {
    throw OdError(eInvalidInput, L"odrxUninitialize without odrxInitialize");
  }
  if (g_initializations > 1) {
    --g_initializations;
    return;
  }
  refuseWhileOthersAreRegistered();
  g_initializations = 0;
  for (auto row = std::rbegin(kClasses); row != std::rend(kClasses); ++row) row->releaseClass();
}
