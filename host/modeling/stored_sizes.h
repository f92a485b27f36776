// StoredSizes: dimensions by name as features keep them in their bags.
#pragma once

#include "host/modeling/component_sizes.h"
#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/properties/vdm_property_types.h"

namespace vdm_host {

/// Two arrays of one length under the keys "SizeNames" and "Sizes".
class StoredSizes {
 public:
  void map(VdmProperties& bag);
  [[nodiscard]] ComponentSizes all() const;
  [[nodiscard]] bool isEmpty() const { return m_names.isEmpty(); }
  void set(const OdString& name, double value);
  /// Nothing happens for a size that is not there.
  void drop(const OdString& name);

 private:
  void store(const ComponentSizes& sizes);

  VdmStringArray m_names;
  VdmDoubleArray m_values;
};

}  // namespace vdm_host
