// VdmDbTrailingLinePE: the trailing lines of a host.
#pragma once

#include "platform/base/result.h"
#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbEntity;

/// Protocol extension of a class of entities: the lines along which its parts came apart, in an
/// exploded view. For hosts among themselves; the module does not call it.
class VDM_DB_EXPORT VdmDbTrailingLinePE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbTrailingLinePE)

  /// Appends the trailing lines that belong to an entity.
  virtual OdResult getTrailingLines(const OdDbEntity* entity, OdDbObjectIdArray& lines) = 0;
};
