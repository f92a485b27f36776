// What a constraint manager remembers of the names of its model objects.
#pragma once

#include <map>
#include <set>

#include "platform/base/string.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"

/// Valid until the generation of names changes. Objects that are registered later are added.
struct VdmDbConstraintManager::ObjectNames {
  OdUInt64 generation = 0;
  std::set<OdString> taken;       ///< in upper case
  std::map<OdString, int> nexts;  ///< by base in upper case: no lower number is free
};
