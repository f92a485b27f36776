// VdmFeaturePE: protocol extensions that are bound to one feature.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmFeature;

/// Base of extensions that work on one feature. What is attached to a feature class is the pattern:
/// each query of a feature gives a new object of the pattern's class, bound to that feature. It
/// keeps its feature, and so the feature's carrier, open.
class VDM_DB_EXPORT VdmFeaturePE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmFeaturePE)

  VdmFeaturePE();
  ~VdmFeaturePE() override;

  /// In place of the feature before; null releases it.
  void attach(const VdmFeature* feature);
  /// Null while none is attached.
  [[nodiscard]] const OdSmartPtr<VdmFeature>& feature() const { return m_feature; }
  /// Id of the feature's carrier; null without a feature.
  [[nodiscard]] OdDbObjectId objectId() const;

 private:
  OdSmartPtr<VdmFeature> m_feature;
};
