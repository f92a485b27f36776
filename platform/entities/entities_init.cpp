// Registration of this folder's run-time classes.
#include "platform/entities/entities_init.h"

#include "platform/entities/block_reference.h"
#include "platform/entities/line.h"
#include "platform/entities/viewport.h"
#include "platform/rx/class_rows.h"

namespace {

// Parents before their children.
constexpr OdRxClassRow kRows[] = {
    odrxClassRow<OdDbBlockReference>(),
    odrxClassRow<OdDbViewRepBlockReference>(),
    odrxClassRow<OdDbViewport>(),
    odrxClassRow<OdDbLine>(),
};
constinit OdRxClassRows g_classes(kRows);

}  // namespace

void oddbInitializeEntities() { g_classes.start(); }

void oddbUninitializeEntities() { g_classes.stop(); }
