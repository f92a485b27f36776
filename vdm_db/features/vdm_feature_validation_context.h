// VdmFeatureValidationContext: what a run of validations shares.
#pragma once

#include <set>
#include <utility>

#include "platform/filer/object_id.h"

// Passed to VdmFeature::validate of each feature in turn; its fields belong to the features that
// validate. A moved-from context has no ids.
class VdmFeatureValidationContext {
 public:
  explicit VdmFeatureValidationContext(bool flag) : m_flag(flag) {}
  VdmFeatureValidationContext(const VdmFeatureValidationContext&) = default;
  VdmFeatureValidationContext(VdmFeatureValidationContext&& other) noexcept
      : m_flag(other.m_flag), m_ids(std::exchange(other.m_ids, {})) {}
  VdmFeatureValidationContext& operator=(const VdmFeatureValidationContext&) = default;
  VdmFeatureValidationContext& operator=(VdmFeatureValidationContext&& other) noexcept {
    m_flag = other.m_flag;
    m_ids = std::exchange(other.m_ids, {});
    return *this;
  }
  ~VdmFeatureValidationContext() = default;

  [[nodiscard]] bool flag() const { return m_flag; }
  [[nodiscard]] std::set<OdDbObjectId>& ids() { return m_ids; }
  [[nodiscard]] const std::set<OdDbObjectId>& ids() const { return m_ids; }

 private:
  bool m_flag;
  std::set<OdDbObjectId> m_ids;
};
