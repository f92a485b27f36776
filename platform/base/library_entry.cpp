// Libraries that are loaded when they are first needed.
#include "platform/base/library_entry.h"

#include <dlfcn.h>

#include "platform/base/error.h"

// A plain file name is looked for where this library finds those that it is linked with.
void* odLibraryEntry(const char* library, const char* entry, OdResult failure) {
  void* loaded = ::dlopen(library, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* found = loaded != nullptr ? ::dlsym(loaded, entry) : nullptr;
  if (found != nullptr) return found;
  const char* cause = ::dlerror();
  throw OdError(failure, OdString::fromUtf8(cause != nullptr ? cause : library));
}
