// VdmDbAssemblyPE: what an assembly module does for constraints and features.
#pragma once

#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmFeature;
class VdmFeatureUpdateData;
struct VdmMatchingFaces;
struct VdmUpdateInfo;

/// Protocol extension of the manager classes. Services of constraints get it handed through; the
/// update pass asks it about features.
class VDM_DB_EXPORT VdmDbAssemblyPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbAssemblyPE)

  /// Takes over what the feature has to do in an update pass; false when it has nothing to add.
  virtual bool collectFromFeature(VdmFeature* feature, const VdmMatchingFaces& faces,
                                  VdmFeatureUpdateData& data, VdmUpdateInfo& info, bool flag);
};
using VdmDbAssemblyPEPtr = OdSmartPtr<VdmDbAssemblyPE>;
