// VdmFeatureExternalPE: protocols of other modules on features and carriers.
#pragma once

#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbFeatureData;
class VdmFeature;

/// Attached to a protocol class of another module: queries of features and carriers for that class,
/// or one below it, go here.
class VDM_DB_EXPORT VdmFeatureExternalPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmFeatureExternalPE)

  /// The object of the asked class for a feature, or for a carrier; null when there is none.
  [[nodiscard]] virtual OdRxObjectPtr queryFeature(const VdmFeature* feature) = 0;
  [[nodiscard]] virtual OdRxObjectPtr queryFeatureData(const VdmDbFeatureData* carrier) = 0;

  /// The extension of the class or of the nearest class above it; null without one and for null.
  [[nodiscard]] static OdSmartPtr<VdmFeatureExternalPE> getFrom(const OdRxClass* cls);
};
