// Start and end of the run-time class system.
#include "platform/rx/rx_init.h"

#include <iterator>

#include "platform/base/error.h"
#include "platform/rx/memory_stream.h"
#include "platform/rx/module.h"
#include "platform/rx/overrule.h"
#include "platform/rx/rx_class.h"

namespace {

struct ClassRow {
  void (*init)();
  void (*uninit)();
};

// In the order of registration: a parent comes before its children.
constexpr ClassRow kClasses[] = {
    {&OdRxObject::rxInit, &OdRxObject::rxUninit},
    {&OdRxClass::rxInit, &OdRxClass::rxUninit},
    {&OdRxModule::rxInit, &OdRxModule::rxUninit},
    {&OdRxOverrule::rxInit, &OdRxOverrule::rxUninit},
    {&OdStreamBuf::rxInit, &OdStreamBuf::rxUninit},
    {&OdMemoryStream::rxInit, &OdMemoryStream::rxUninit},
    {&OdFlatMemStream::rxInit, &OdFlatMemStream::rxUninit},
};

int g_initializations = 0;

// The classes above stand first in the order of registration; every other one derives from them.
void refuseWhileOthersAreRegistered() {
  const auto classes = odrxClassDictionary()->classes();
  if (classes.size() > std::size(kClasses))
    throw OdError(eInvalidInput, L"odrxUninitialize while class " +
                                     classes[std::size(kClasses)]->name() + L" is registered");
}

}  // namespace

void odrxInitialize() {
  if (g_initializations == 0)
    for (const ClassRow& row : kClasses) row.init();
  ++g_initializations;
}

void odrxUninitialize() {
  if (g_initializations == 0)
    throw OdError(eInvalidInput, L"odrxUninitialize without odrxInitialize");
  if (g_initializations > 1) {
    --g_initializations;
    return;
  }
  refuseWhileOthersAreRegistered();
  g_initializations = 0;
  for (auto row = std::rbegin(kClasses); row != std::rend(kClasses); ++row) row->uninit();
}
