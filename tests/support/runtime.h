// The runtime and its modules for the time of a test. A fixture derives from these virtually, so
// that they start before its drawings and end after them.
#pragma once

#include "platform/base/non_copyable.h"
#include "platform/base/string.h"

/// Registers the classes of the drawing runtime; its end releases them.
class Runtime : OdNonCopyable {
 public:
  Runtime();
  ~Runtime();
};

/// Loads a module; its end unloads it.
class LoadedModule : public virtual Runtime {
 public:
  explicit LoadedModule(const OdString& file);
  ~LoadedModule();

  /// Releases and registers the module's classes again. Does nothing where that is so already.
  void unload();
  void load();

 private:
  OdString m_file;
  bool m_isLoaded = false;
};

/// Registers a class of a test; its end releases it.
template <class T>
class RegisteredClass : public virtual Runtime {
 public:
  RegisteredClass() { T::rxInit(); }
  ~RegisteredClass() { T::rxUninit(); }
};
