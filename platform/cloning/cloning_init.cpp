// Registration of this folder's run-time classes.
#include "platform/cloning/cloning_init.h"

#include "platform/cloning/clone_service.h"
#include "platform/cloning/id_mapping.h"
#include "platform/rx/class_rows.h"

namespace {

// Parents before their children.
constexpr OdRxClassRow kRows[] = {
    odrxClassRow<OdDbIdMapping>(),
    odrxClassRow<OdDbIdMappingIter>(),
};
constinit OdRxClassRows g_classes(kRows);

}  // namespace

void oddbInitializeCloning() {
  if (g_classes.start()) oddbInstallCloneService();
}

void oddbUninitializeCloning() {
  if (g_classes.stop()) oddbRemoveCloneService();
}
