// Modules and the names of their files.
#include "platform/rx/module.h"

#include <dlfcn.h>
#include <link.h>

#include <cstdlib>
#include <memory>

OD_RX_DEFINE_ABSTRACT(OdRxModule, OdRxObject, L"OdRxModule")

namespace {

OdString absolutePath(const char* path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path, nullptr), &std::free);
  return OdString(real ? real.get() : path);
}

}  // namespace

OdString odrxModuleFileName(OdRxModuleHandle handle, const void* address) {
  if (handle) {
    const link_map* map = nullptr;
    if (::dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 && map && map->l_name && *map->l_name) {
      return absolutePath(map->l_name);
    }
    return OdString();
  }
  Dl_info info{};
  if (::dladdr(address, &info) != 0 && info.dli_fname) return absolutePath(info.dli_fname);
  return OdString();
}
