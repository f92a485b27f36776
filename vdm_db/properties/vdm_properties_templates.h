// Typed operations of property bags, for the sources that instantiate them.
#pragma once

#include <utility>

#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/properties/vdm_property_mapping.h"
#include "vdm_db/properties/vdm_property_shape.h"

// Into a null slot, which `slotOf` gives once the value is made.
template <class T, class SlotOf>
void VdmProperties::putValue(const T& value, SlotOf slotOf) {
  if constexpr (VdmSlotValue<T>) {
    m_slots.put(slotOf(), value);
  } else {
    const VdmPropertyDataPtr made = VdmPropertyData::create(value);
    m_slots.putBoxed(slotOf(), made);
  }
}

template <VdmPropertyValue T>
bool VdmProperties::setProperty(const OdString& key, const T& value) {
  const OdUInt32 slot = findSlot(key);
  if (slot == VdmPropertyShape::kNoSlot) {
    putValue(value, [&] { return addSlot(key); });
    return true;
  }
  if (m_slots.isBoxed(slot)) {
    VdmPropertyConcreteData<T>* concrete = vdmPropertyCast<T>(m_slots.boxed(slot).get());
    if (concrete == nullptr) return false;
    concrete->value() = value;
    return true;
  }
  if (m_slots.isNull(slot)) {
    putValue(value, [&] { return slot; });
    return true;
  }
  if constexpr (VdmSlotValue<T>) {
    if (!m_slots.holds<T>(slot)) return false;
    m_slots.set(slot, value);
    return true;
  } else {
    return false;
  }
}

template <VdmPropertyValue T>
bool VdmProperties::getProperty(const OdString& key, T& value) const {
  const OdUInt32 slot = findSlot(key);
  if (slot == VdmPropertyShape::kNoSlot) return false;
  if constexpr (VdmSlotValue<T>) {
    if (m_slots.holds<T>(slot)) {
      value = m_slots.get<T>(slot);
      return true;
    }
  }
  if (!m_slots.isBoxed(slot)) return false;
  const VdmPropertyData* data = m_slots.boxed(slot).get();
  const VdmPropertyConcreteData<T>* concrete = vdmPropertyCast<T>(data);
  if (concrete == nullptr) return false;
  value = concrete->value();
  return true;
}

// ---- Mapping: the present value is copied to the variable, then the mapping replaces it

template <VdmPropertyValue T>
bool VdmProperties::mapProperty(const OdString& key, T* variable) {
  getProperty(key, *variable);
  if constexpr (VdmSlotValue<T>) {
    removeProperty(key);
    m_slots.putMapped(addSlot(key), variable);
  } else {
    mapTo(key, new VdmPropertyDataMapping<T>(variable));
  }
  return true;
}

template <VdmPropertyValue T>
bool VdmProperties::mapProperty(const OdString& key, T* variable,
                                const std::type_identity_t<T>& defaultValue) {
  // May be the variable itself.
  const T kept(defaultValue);  // NOLINT(performance-unnecessary-copy-initialization)
  getProperty(key, *variable);
  mapTo(key, new VdmPropertyDataMappingWithDefault<T>(variable, kept));
  return true;
}

template <VdmPropertyValue T>
bool VdmProperties::mapProperty(const OdString& key, std::function<T()> getter,
                                std::function<void(T)> setter) {
  if (T present{}; getProperty(key, present)) setter(present);
  mapTo(key, new VdmPropertyDataMappingGetterSetter<T>(std::move(getter), std::move(setter)));
  return true;
}

template <VdmPropertyValue T>
bool VdmProperties::mapProperty(const OdString& key, std::function<T()> getter,
                                std::function<void(T)> setter,
                                const std::type_identity_t<T>& defaultValue) {
  if (T present{}; getProperty(key, present)) setter(present);
  mapTo(key, new VdmPropertyDataMappingGetterSetterWithDefault<T>(std::move(getter),
                                                                  std::move(setter), defaultValue));
  return true;
}

// The types may hold commas.
#define VDM_INSTANTIATE_BAG_VALUE(...)                                                     \
  template VDM_DB_EXPORT bool VdmProperties::setProperty<__VA_ARGS__>(const OdString&,     \
                                                                      const __VA_ARGS__&); \
  template VDM_DB_EXPORT bool VdmProperties::getProperty<__VA_ARGS__>(const OdString&,     \
                                                                      __VA_ARGS__&) const;
#define VDM_INSTANTIATE_BAG_MAPPING(...)                                                \
  template VDM_DB_EXPORT bool VdmProperties::mapProperty<__VA_ARGS__>(const OdString&,  \
                                                                      __VA_ARGS__*);    \
  template VDM_DB_EXPORT bool VdmProperties::mapProperty<__VA_ARGS__>(                  \
      const OdString&, __VA_ARGS__*, const std::type_identity_t<__VA_ARGS__>&);         \
  template VDM_DB_EXPORT bool VdmProperties::mapProperty<__VA_ARGS__>(                  \
      const OdString&, std::function<__VA_ARGS__()>, std::function<void(__VA_ARGS__)>); \
  template VDM_DB_EXPORT bool VdmProperties::mapProperty<__VA_ARGS__>(                  \
      const OdString&, std::function<__VA_ARGS__()>, std::function<void(__VA_ARGS__)>,  \
      const std::type_identity_t<__VA_ARGS__>&);
