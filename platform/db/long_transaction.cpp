// Long transactions: editing what a block or an external drawing holds, in place.
#include "platform/db/long_transaction.h"

namespace {
OdApLongTransactionManager* g_manager = nullptr;
}  // namespace

OdApLongTransactionManager* odapLongTransactionManager() { return g_manager; }

void odapSetLongTransactionManager(OdApLongTransactionManager* manager) { g_manager = manager; }
