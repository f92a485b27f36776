// VdmComponentSizeFeature: dimensions of a component that expressions give.
#pragma once

#include "host/modeling/stored_sizes.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_impl.h"

/// Follows expressions over the variables of model space, in whose feature manager it is: one
/// reactor of expressions for each dimension that has one. It keeps what they say; an update makes
/// the tool in the component's block anew when that differs, and its inserts follow. It ends with
/// its last expression.
///
/// Carrier's properties of its own: "Block" (id, soft pointer), "SizeNames", "Sizes".
class VdmComponentSizeFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmComponentSizeFeature)

  /// The feature of a component's block; null without one.
  [[nodiscard]] static OdDbObjectId of(const OdDbObjectId& block);

  [[nodiscard]] OdDbObjectId blockId() const { return m_block; }
  [[nodiscard]] vdm_host::ComponentSizes sizes() const { return m_sizes.all(); }

  // Writing; the carrier is open for write.
  void bind(const OdDbObjectId& block);
  /// The size is not given by an expression any more.
  void dropSize(const OdString& name);

  OdResult onPropertyModified(const OdString& key, double value) override;
  /// The end of an expression ends that size alone.
  [[nodiscard]] bool isRequiredDependency(int mask, int tag) override;
  void subMapProperties(VdmProperties& bag) override;

 private:
  OdDbObjectId m_block;
  vdm_host::StoredSizes m_sizes;
};
using VdmComponentSizeFeaturePtr = OdSmartPtr<VdmComponentSizeFeature>;
