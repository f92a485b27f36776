// What few objects have beside their own fields. For the runtime's own rooms.
#pragma once

#include <vector>

#include "platform/db/db_object.h"
#include "platform/filer/object_id.h"
#include "platform/filer/res_buf.h"

/// Made when an object gets its first reactor, extended data or extension dictionary.
struct OdDbObject::Extra {
  /// One of the two is set. The order is that of attachment.
  struct Reactor {
    OdDbIdRecord* persistent = nullptr;
    OdDbObjectReactor* transient = nullptr;
  };

  std::vector<Reactor> reactors;
  OdDbIdRecord* extensionDictionary = nullptr;
  OdResBufPtr xdata;  ///< chains of all applications, each led by its 1001 record
  OdDbIdRecord* pendingOwner = nullptr;  ///< owner chosen before the object is in a database
};
