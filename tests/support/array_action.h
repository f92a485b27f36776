// The action that makes a block an associative array.
#pragma once

#include "platform/db/db_object.h"

/// Has the name of the class that fills arrays, and nothing of what it does.
class ArrayAction : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(ArrayAction)
};
