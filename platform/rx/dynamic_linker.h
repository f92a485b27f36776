// Loading and unloading of module files.
#pragma once

#include <vector>

#include "platform/base/export.h"
#include "platform/base/string.h"
#include "platform/rx/module.h"

/// The modules of the process. One thread at a time.
///
/// 1. A module is named by an absolute path, or by a bare file name, which is looked for (as it is,
///    then with ".tx" behind it) in the folders that addSearchPath named, in their order, and
///    nowhere else. Any other relative path is refused: the working folder of the program has no
///    influence.
/// 2. Loading a loaded module counts up and gives the same object; unloading counts down, and the
///    last one runs uninitApp, destroys the object and closes the file.
/// 3. A file is refused that group or others may write, and one in a folder that they may write:
///    they could put code of theirs into the process. The folder is the one that holds the file
///    after links are resolved.
/// 4. A load that fails leaves nothing: the file is closed, classes that initApp registered before
///    it failed are released.
class OD_API OdRxDynamicLinker {
 public:
  /// Raises OdError for a folder that is not an absolute path.
  void addSearchPath(const OdString& folder);

  /// Loads, calls both entry points and initApp. Failure raises OdError naming the module:
  /// eInvalidInput (relative path), eFileNotFound, eModuleNotLoaded (loader, missing entry
  /// point, or writable by others), eModuleVersionMismatch, or what initApp raised. With `silent`
  /// it gives null instead.
  OdRxModulePtr loadModule(const OdString& module, bool silent = false);

  /// False when no such module is loaded. Raises OdError(eModuleInUse) when the last load is taken
  /// back while others hold references of the module; what uninitApp raises passes through. The
  /// module stays loaded in both cases.
  bool unloadModule(const OdString& module);
  /// In the reverse order of loading; whatever their counts.
  void unloadAllModules();

  /// A loaded module by path, file name or file name without extension; null when there is none.
  [[nodiscard]] OdRxModulePtr getModule(const OdString& module) const;
  /// In the order of loading.
  [[nodiscard]] std::vector<OdRxModulePtr> modules() const;

 private:
  struct Entry {
    OdString path;  // absolute, with links resolved
    OdRxModulePtr module;
    OdRxModuleHandle handle = nullptr;
    OdUInt32 loads = 0;
  };
  class EntryIs;

  [[nodiscard]] OdString resolve(const OdString& module) const;
  Entry open(const OdString& path);
  void close(Entry& entry);
  std::vector<Entry>::iterator findEntry(const OdString& module);
  OdRxModulePtr load(const OdString& module);

  std::vector<OdString> m_searchPaths;
  std::vector<Entry> m_entries;
};

OD_API OdRxDynamicLinker* odrxDynamicLinker();
