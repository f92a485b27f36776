// Long transactions: editing what a block or an external drawing holds, in place.
#pragma once

#include "platform/filer/object_id.h"

class OdDbDatabase;

/// What knows about long transactions. The runtime installs one for those that drawings hold
/// (OdDbLongTransactionMan); a host that runs its own puts its own in that place.
class OdApLongTransactionManager {
 public:
  virtual ~OdApLongTransactionManager() = default;

  /// The long transaction that is running in the drawing; null when there is none.
  [[nodiscard]] virtual OdDbObjectId currentLongTransactionFor(
      const OdDbDatabase* database) const = 0;
};

/// The installed manager; null when there is none.
[[nodiscard]] OdApLongTransactionManager* odapLongTransactionManager();
/// Not owned; null removes it. Not to be called while another thread works on a drawing.
void odapSetLongTransactionManager(OdApLongTransactionManager* manager);
