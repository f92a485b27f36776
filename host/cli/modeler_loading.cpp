// The solid modeller of the command, loaded when it is needed.
#include "host/cli/modeler_loading.h"

#include <dlfcn.h>

#include <string>

#include "platform/base/error.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace cli {

namespace {

constexpr const char* kLibrary = VDM_MODELER_LIBRARY;
constexpr const char* kEntry = "odMakeOcctModeler";

[[noreturn]] void refuse() {
  const char* cause = ::dlerror();
  throw OdError(eNoModeler, OdString::fromUtf8(std::string("the solid modeller: ") +
                                               (cause != nullptr ? cause : kLibrary)));
}

}  // namespace

// A plain file name is looked for where the linked libraries are. The library is never unloaded,
// since bodies outlive the modeller.
std::shared_ptr<OdModeler> loadModeler() {
  void* library = ::dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (library == nullptr) refuse();
  void* entry = ::dlsym(library, kEntry);
  if (entry == nullptr) refuse();
  std::shared_ptr<OdModeler> modeler;
  reinterpret_cast<decltype(&odMakeOcctModeler)>(entry)(modeler);
  return modeler;
}

}  // namespace cli
