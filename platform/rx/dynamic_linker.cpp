// Loading and unloading of module files.
#include "platform/rx/dynamic_linker.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "platform/base/error.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kModuleExtension = ".tx";

fs::path toPath(const OdString& text) { return fs::path(std::string(text.utf8())); }

OdString toString(const fs::path& path) { return OdString(path.native()); }

OdString existingFile(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return OdString();
  const fs::path canonical = fs::canonical(path, error);
  return error ? toString(path) : toString(canonical);
}

// Whoever may write a module, or put another file in its place, runs code in this process.
void requireUnshared(const fs::path& path, const wchar_t* what, const OdString& module) {
  constexpr mode_t kOthersWrite = S_IWGRP | S_IWOTH;
  constexpr mode_t kPermissions = 07777;
  struct stat found = {};
  if (::stat(path.c_str(), &found) != 0) {
    throw OdError(eModuleNotLoaded, toString(path) + L": " +
                                        OdString(std::generic_category().message(errno).c_str()));
  }
  if ((found.st_mode & kOthersWrite) == 0) return;
  throw OdError(eModuleNotLoaded,
                OdString().format(L"%ls: others may write %ls %ls (mode %o), at most its owner may",
                                  module.c_str(), what, toString(path).c_str(),
                                  static_cast<unsigned>(found.st_mode & kPermissions)));
}

// Closes the file of a load that fails.
struct LibraryGuard {
  OdRxModuleHandle handle;
  ~LibraryGuard() {
    if (handle) ::dlclose(handle);
  }
};

// Destroys the object of a load that fails; before the file is closed.
struct ModuleGuard {
  OdRxModule* module;
  ~ModuleGuard() {
    if (module) module->deleteModule();
  }
};

template <class Function>
Function findEntryPoint(OdRxModuleHandle handle, const char* name, const OdString& path) {
  void* found = ::dlsym(handle, name);
  if (!found) throw OdError(eModuleNotLoaded, path + L" has no entry point " + OdString(name));
  return reinterpret_cast<Function>(found);
}

void checkApiVersion(OdRxApiVersionFunction getVersion, const OdString& path) {
  OdUInt32 major = 0, minor = 0, maintenance = 0, build = 0;
  getVersion(major, minor, maintenance, build);
  if (major == kOdRxApiMajor && minor == kOdRxApiMinor) return;
  throw OdError(eModuleVersionMismatch,
                OdString().format(L"%ls wants version %u.%u, the runtime is %u.%u", path.c_str(),
                                  major, minor, kOdRxApiMajor, kOdRxApiMinor));
}

// Releases the classes that were registered since the registry had `known` ones.
void releaseClassesFrom(std::size_t known) noexcept {
  std::vector<OdRxClass*> classes = odrxClassDictionary()->classes();
  while (classes.size() > known) {
    try {
      deleteOdRxClass(classes.back());
    } catch (const OdError&) {
      // A class that something else derives from by now stays.
    }
    classes.pop_back();
  }
}

// Errors leave as values of this library: the exception class of a module is unloaded with its
// file.
void runInitApp(OdRxModule* module) {
  const std::size_t known = odrxClassDictionary()->classes().size();
  OdResult code = eGeneralFailure;
  OdString text;
  try {
    module->initApp();
    return;
  } catch (const OdError& error) {
    code = error.code();
    text = error.description();
  } catch (const std::exception& error) {
    text = error.what();
  } catch (...) {
    text = L"unknown exception";
  }
  releaseClassesFrom(known);
  throw OdError(code, L"initApp of " + module->moduleName() + L": " + text);
}

}  // namespace

OdRxDynamicLinker* odrxDynamicLinker() {
  // Never destroyed: what is still loaded at the end of the program stays as it is.
  static OdRxDynamicLinker* linker = new OdRxDynamicLinker;
  return linker;
}

void OdRxDynamicLinker::addSearchPath(const OdString& folder) {
  if (!toPath(folder).is_absolute()) {
    throw OdError(eInvalidInput, L"search path \"" + folder + L"\" is not absolute");
  }
  if (std::find(m_searchPaths.begin(), m_searchPaths.end(), folder) == m_searchPaths.end()) {
    m_searchPaths.push_back(folder);
  }
}

OdString OdRxDynamicLinker::resolve(const OdString& module) const {
  const fs::path path = toPath(module);
  if (path.is_absolute()) {
    const OdString file = existingFile(path);
    if (file.isEmpty()) throw OdError(eFileNotFound, module);
    return file;
  }
  if (path.empty() || path.has_parent_path()) {
    throw OdError(eInvalidInput,
                  L"module \"" + module + L"\" is neither an absolute path nor a bare file name");
  }
  for (const OdString& folder : m_searchPaths) {
    for (const char* extension : {"", kModuleExtension}) {
      const OdString file = existingFile(toPath(folder) / (path.native() + extension));
      if (!file.isEmpty()) return file;
    }
  }
  throw OdError(eFileNotFound, OdString().format(L"module %ls in %zu search paths", module.c_str(),
                                                 m_searchPaths.size()));
}

OdRxDynamicLinker::Entry OdRxDynamicLinker::open(const OdString& path) {
  requireUnshared(toPath(path), L"the file", path);
  requireUnshared(toPath(path).parent_path(), L"its folder", path);
  LibraryGuard library{::dlopen(static_cast<const char*>(path), RTLD_NOW | RTLD_LOCAL)};
  if (!library.handle) throw OdError(eModuleNotLoaded, OdString(::dlerror()));

  checkApiVersion(
      findEntryPoint<OdRxApiVersionFunction>(library.handle, kOdRxApiVersionEntry, path), path);
  const auto create =
      findEntryPoint<OdRxCreateModuleFunction>(library.handle, kOdRxCreateModuleEntry, path);
  OdRxModuleHandle handle = library.handle;
  ModuleGuard module{create(handle)};
  if (!module.module) throw OdError(eModuleNotLoaded, path + L" made no module object");
  if (handle) {
    // The object was there before and belongs to the code that made it.
    module.module = nullptr;
    throw OdError(eModuleInUse, path + L" was started by another loader");
  }

  runInitApp(module.module);
  return {path, OdRxModulePtr(std::exchange(module.module, nullptr)),
          std::exchange(library.handle, nullptr), 1};
}

// Whether an entry is the module of a path, file name or file name without extension.
class OdRxDynamicLinker::EntryIs {
 public:
  explicit EntryIs(const OdString& module)
      : m_module(module),
        m_wanted(toPath(module)),
        m_real(m_wanted.is_absolute() ? existingFile(m_wanted) : OdString()) {}
  bool operator()(const Entry& entry) const {
    if (m_wanted.is_absolute()) return entry.path == m_module || entry.path == m_real;
    const fs::path path = toPath(entry.path);
    return path.filename() == m_wanted || path.stem() == m_wanted;
  }

 private:
  OdString m_module;
  fs::path m_wanted;
  OdString m_real;
};

OdRxModulePtr OdRxDynamicLinker::load(const OdString& module) {
  const OdString path = resolve(module);
  if (const auto entry = findEntry(path); entry != m_entries.end()) {
    ++entry->loads;
    return entry->module;
  }
  // initApp may load further modules, so the table is touched only afterwards.
  Entry opened = open(path);
  m_entries.push_back(std::move(opened));
  return m_entries.back().module;
}

OdRxModulePtr OdRxDynamicLinker::loadModule(const OdString& module, bool silent) {
  if (!silent) return load(module);
  try {
    return load(module);
  } catch (const OdError&) {
    return OdRxModulePtr();
  }
}

std::vector<OdRxDynamicLinker::Entry>::iterator OdRxDynamicLinker::findEntry(
    const OdString& module) {
  return std::find_if(m_entries.begin(), m_entries.end(), EntryIs(module));
}

void OdRxDynamicLinker::close(Entry& entry) {
  if (entry.module->numRefs() > 1) {
    throw OdError(eModuleInUse, OdString().format(L"%ls has %d more references", entry.path.c_str(),
                                                  entry.module->numRefs() - 1));
  }
  entry.module->uninitApp();
  OdRxModule* module = entry.module.detach();
  module->release();
  module->deleteModule();
  ::dlclose(entry.handle);
}

bool OdRxDynamicLinker::unloadModule(const OdString& module) {
  auto entry = findEntry(module);
  if (entry == m_entries.end()) return false;
  if (entry->loads > 1) {
    --entry->loads;
    return true;
  }
  // uninitApp may unload further modules, which moves the entries.
  const OdString path = entry->path;
  Entry closing = *entry;
  entry->module.release();
  try {
    close(closing);
  } catch (...) {
    findEntry(path)->module = closing.module;
    throw;
  }
  m_entries.erase(findEntry(path));
  return true;
}

void OdRxDynamicLinker::unloadAllModules() {
  while (!m_entries.empty()) {
    m_entries.back().loads = 1;
    unloadModule(OdString(m_entries.back().path));
  }
}

OdRxModulePtr OdRxDynamicLinker::getModule(const OdString& module) const {
  const auto entry = std::find_if(m_entries.begin(), m_entries.end(), EntryIs(module));
  return entry == m_entries.end() ? OdRxModulePtr() : entry->module;
}

std::vector<OdRxModulePtr> OdRxDynamicLinker::modules() const {
  std::vector<OdRxModulePtr> loaded;
  for (const Entry& entry : m_entries) loaded.push_back(entry.module);
  return loaded;
}
