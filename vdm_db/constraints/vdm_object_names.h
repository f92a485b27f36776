// Names of the model objects that a constraint manager registers.
#pragma once

#include <map>
#include <set>

#include "platform/base/string.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"

class OdDbEntity;

/// What the model object of an entity is called before a number makes it unique: references by
/// their block, others by their kind. "Object" for null.
OdString vdmNameBaseOf(const OdDbEntity* entity);

/// Valid until the generation of names changes. Objects that are registered later are added.
struct VdmDbConstraintManager::ObjectNames {
  OdUInt64 generation = 0;
  std::set<OdString> taken;       ///< in upper case
  std::map<OdString, int> nexts;  ///< by base in upper case: no lower number is free
};
