// Start and end of the drawing runtime: its libraries in the order of the layers.
#include "platform/runtime/runtime_init.h"

#include "platform/assoc/assoc_init.h"
#include "platform/cloning/cloning_init.h"
#include "platform/db/db_init.h"
#include "platform/entities/entities_init.h"

namespace {

int g_starts = 0;

}  // namespace

void oddbInitialize() {
  if (g_starts++ > 0) return;
  oddbInitializeCore();
  oddbInitializeEntities();
  oddbInitializeAssoc();
  oddbInitializeCloning();
}

void oddbUninitialize() {
  if (g_starts == 0 || --g_starts > 0) return;
  oddbUninitializeCloning();
  oddbUninitializeAssoc();
  oddbUninitializeEntities();
  oddbUninitializeCore();
}
