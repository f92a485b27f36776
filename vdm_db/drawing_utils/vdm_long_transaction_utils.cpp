// Long transactions of drawings.
#include "vdm_db/drawing_utils/vdm_long_transaction_utils.h"

#include "platform/db/long_transaction.h"

namespace vdmu {

OdDbObjectId getLongTransaction(OdDbDatabase* database) {
  const OdApLongTransactionManager* manager = odapLongTransactionManager();
  if (database == nullptr || manager == nullptr) return OdDbObjectId::kNull;
  return manager->currentLongTransactionFor(database);
}

bool isInLongTransaction(OdDbDatabase* database) { return !getLongTransaction(database).isNull(); }

}  // namespace vdmu
