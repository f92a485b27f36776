// ModuleSession: the runtime's classes, and the module's while it is loaded.
#pragma once

#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/rx/rx_init.h"

/// Starts the runtime and loads the module; its end undoes both. One at a time.
class ModuleSession {
 public:
  ModuleSession() {
    odrxInitialize();
    oddbInitialize();
    load();
  }
  ~ModuleSession() {
    unload();
    oddbUninitialize();
    odrxUninitialize();
  }
  ModuleSession(const ModuleSession&) = delete;
  ModuleSession& operator=(const ModuleSession&) = delete;

  /// Registers and releases the module's classes.
  static void load() { odrxDynamicLinker()->loadModule(OdString(VDM_MODULE_FILE)); }
  static void unload() { odrxDynamicLinker()->unloadModule(OdString(VDM_MODULE_FILE)); }
};
