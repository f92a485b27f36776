// Registration of this folder's run-time classes.
#include "platform/assoc/assoc_init.h"

#include "platform/assoc/assoc_2d_constraint_group.h"
#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/rx/class_rows.h"

namespace {

// Parents before their children.
constexpr OdRxClassRow kRows[] = {
    odrxClassRow<OdDbEvalVariant>(),
    odrxClassRow<OdDbAssocAction>(),
    odrxClassRow<OdDbAssocNetwork>(),
    odrxClassRow<OdDbAssocVariable>(),
    odrxClassRow<OdDbAssocDependency>(),
    odrxClassRow<OdDbAssocValueDependency>(),
    odrxClassRow<OdDbAssoc2dConstraintGroup>(),
};
constinit OdRxClassRows g_classes(kRows);

}  // namespace

void oddbInitializeAssoc() { g_classes.start(); }

void oddbUninitializeAssoc() { g_classes.stop(); }
