// What the fuzz targets share: the runtime with the module, and drawings to take inputs from.
#include "fuzz/fuzz_support.h"

#include <cstdio>
#include <cstdlib>

#include "fuzz/fuzz_target.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/rx/rx_init.h"
#include "platform/storage/sqlite_record_store.h"
#include "tests/random/edit_script.h"
#include "vdm_utils/vdmc_assert.h"

void fuzzStart() {
  static const bool started = [] {
    odrxInitialize();
    oddbInitialize();
    odrxDynamicLinker()->loadModule(OdString(VDM_MODULE_FILE));
    // Damaged bags are reported as assertions; here they are what is expected.
    setVdmAssertSink([](const VdmAssertion&) {});
    return true;
  }();
  fuzzRequire(started, "the runtime does not start");
}

void fuzzRequire(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "fuzz target: %s\n", what);
  std::abort();
}

OdDbHostAppServices& fuzzServices() {
  static OdDbHostAppServices services(createSqliteStoreFactory());
  return services;
}

OdDbDatabasePtr fuzzDrawing(std::uint64_t seed, int edits) {
  fuzzStart();
  OdDbDatabasePtr drawing = fuzzServices().createDatabase();
  EditScript script(seed);
  for (; edits > 0; --edits) script.edit(drawing.get());
  return drawing;
}

OdDbObjectId fuzzResolve(void* context, OdUInt64 handle) {
  return static_cast<OdDbDatabase*>(context)->getOdDbObjectId(OdDbHandle(handle));
}
