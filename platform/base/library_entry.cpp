// Libraries that are loaded when they are first needed.
#include "platform/base/library_entry.h"

#include <dlfcn.h>

#include <string>

#include "platform/base/error.h"

namespace {

/// With the folder in front: a plain name would be looked for on the run path of whatever calls the
/// loader, and a sanitizer calls it in the place of this library.
std::string besideThisLibrary(const char* library) {
  Dl_info self{};
  if (::dladdr(reinterpret_cast<const void*>(&odLibraryEntry), &self) == 0) return library;
  const std::string path = self.dli_fname != nullptr ? self.dli_fname : "";
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? library : path.substr(0, slash + 1) + library;
}

}  // namespace

void* odLibraryEntry(const char* library, const char* entry, OdResult failure) {
  void* loaded =
      ::dlopen(besideThisLibrary(library).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* found = loaded != nullptr ? ::dlsym(loaded, entry) : nullptr;
  if (found != nullptr) return found;
  const char* cause = ::dlerror();
  throw OdError(failure, OdString::fromUtf8(cause != nullptr ? cause : library));
}
