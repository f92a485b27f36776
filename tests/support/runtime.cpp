// The runtime and its modules for the time of a test.
#include "tests/support/runtime.h"

#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"

Runtime::Runtime() { oddbInitialize(); }

Runtime::~Runtime() { oddbUninitialize(); }

LoadedModule::LoadedModule(const OdString& file) : m_file(file) { load(); }

LoadedModule::~LoadedModule() { unload(); }

void LoadedModule::load() {
  if (m_isLoaded) return;
  odrxDynamicLinker()->loadModule(m_file);
  m_isLoaded = true;
}

void LoadedModule::unload() {
  if (!m_isLoaded) return;
  odrxDynamicLinker()->unloadModule(m_file);
  m_isLoaded = false;
}
