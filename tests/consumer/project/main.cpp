// A program outside this tree: links the installed package and loads the module as a host does.
#include <cstdio>

#include "platform/base/error.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/rx/rx_init.h"

namespace {

void loadAndUnload() {
  OdRxDynamicLinker& linker = *odrxDynamicLinker();
  linker.addSearchPath(VDM_MODULE_FOLDER);
  {
    const OdRxModulePtr module = linker.loadModule(L"vdm_db.tx");
    const OdString path = module->moduleName();
    std::printf("consumer: loaded %s\n", static_cast<const char*>(path));
  }
  const bool unloaded = linker.unloadModule(L"vdm_db.tx");
  std::printf("consumer: %s\n", unloaded ? "unloaded" : "still loaded");
}

}  // namespace

int main() {
  odrxInitialize();
  try {
    loadAndUnload();
  } catch (const OdError& error) {
    std::printf("consumer: %s\n", error.what());
    return 1;
  }
  odrxUninitialize();
  return 0;
}
