// Protocol extensions of features: bound to one feature, for classes from outside, for colours.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/gi/entity_color.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbFeatureData;
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

/// Colours of the references of a feature class. One object for all features of the class.
class VDM_DB_EXPORT VdmFeatureColorPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmFeatureColorPE)

  /// True when references with the mask have a colour of their own, which `color` then is.
  [[nodiscard]] virtual bool overrideColor(int mask, OdCmEntityColor& color) = 0;
};
