// VdmOpenUpgrade: write access to an object that is open in some other way, for a scope.
#pragma once

#include "platform/db/db_object.h"

/// Upgrades an open object and takes that back at the end of the scope; reactors hear of changes
/// then. The object outlives the guard. It may be const, since code that has it open for read holds
/// it so: the upgrade is what allows changes.
class VdmOpenUpgrade {
 public:
  explicit VdmOpenUpgrade(const OdDbObject* object) : m_object(const_cast<OdDbObject*>(object)) {
    m_object->upgradeOpen();
  }
  ~VdmOpenUpgrade() { m_object->downgradeOpen(); }
  VdmOpenUpgrade(const VdmOpenUpgrade&) = delete;
  VdmOpenUpgrade& operator=(const VdmOpenUpgrade&) = delete;

 private:
  OdDbObject* m_object;
};
