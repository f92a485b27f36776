// VdmDbFeatureManagerPE: brings the solid side of the update pass to a manager.
#pragma once

#include "platform/base/shared_ptr.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbFeatureManager;
class VdmFeatureUpdateData;
class VdmFeatureUpdateDataHelper;

/// Protocol extension of VdmDbFeatureManager. Without one a pass touches no solids.
class VDM_DB_EXPORT VdmDbFeatureManagerPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbFeatureManagerPE)

  /// A helper for one pass over the features of the manager. It works for `data`, which keeps it.
  [[nodiscard]] virtual OdSharedPtr<VdmFeatureUpdateDataHelper> createHelper(
      VdmDbFeatureManager* manager, VdmFeatureUpdateData& data) = 0;
};
