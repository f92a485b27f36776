// Registration of this folder's run-time classes.
#include "platform/cloning/cloning_init.h"

#include "platform/cloning/clone_service.h"
#include "platform/cloning/id_mapping.h"
#include "platform/cloning/long_transaction_man.h"
#include "platform/rx/class_rows.h"

namespace {

// Parents before their children.
constexpr OdRxClassRow kRows[] = {
    odrxClassRow<OdDbIdMapping>(),
    odrxClassRow<OdDbIdMappingIter>(),
    odrxClassRow<OdDbLongTransaction>(),
};
constinit OdRxClassRows g_classes(kRows);

/// The long transactions that drawings hold.
class LongTransactions : public OdApLongTransactionManager {
 public:
  [[nodiscard]] OdDbObjectId currentLongTransactionFor(
      const OdDbDatabase* database) const override {
    return OdDbLongTransactionMan::current(database);
  }
};
LongTransactions g_longTransactions;

}  // namespace

void oddbInitializeCloning() {
  if (!g_classes.start()) return;
  oddbInstallCloneService();
  odapSetLongTransactionManager(&g_longTransactions);
}

void oddbUninitializeCloning() {
  if (!g_classes.stop()) return;
  odapSetLongTransactionManager(nullptr);
  oddbRemoveCloneService();
}
