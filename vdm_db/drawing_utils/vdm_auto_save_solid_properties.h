// AutoSaveSolidProperties: keeps how an entity looks while it is worked on.
#pragma once

#include "platform/base/non_copyable.h"
#include "platform/db/entity.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Keeps layer, colour, line type, weight, visibility and material of an entity while it is worked
/// on, and puts them back at its end. The entity is open for write then. Null is legal.
class VDM_DB_EXPORT AutoSaveSolidProperties : OdNonCopyable {
 public:
  explicit AutoSaveSolidProperties(OdSmartPtr<OdDbEntity> entity);
  ~AutoSaveSolidProperties();

 private:
  OdSmartPtr<OdDbEntity> m_entity;
  OdSmartPtr<OdDbEntity> m_memo;  // in no database
};

}  // namespace vdmu
