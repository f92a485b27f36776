// Values by their type: access, encoding, and the container that owns its value.
#pragma once

// Begins where vdm_property_data.h ends; include that one.
#include <cstring>
#include <utility>

#include "vdm_db/properties/vdm_property_data.h"

// The stored form of one value type after its type bytes. Defined for the value types and nested
// values in the module.
template <class T>
struct VDM_DB_EXPORT VdmPropertyEncoding {
  static void write(OdDbDwgFiler* filer, const T& value, int config);
  // Leaves the value alone when the filer raises an error.
  static void read(OdDbDwgFiler* filer, T& value, int config);
  // Of arrays and maps: reads the type byte and those of the elements; false when they are not
  // those of T, which is reported as an assertion.
  static bool readTypes(OdDbDwgFiler* filer);
};

// Abstract access to a value of type T, its filing and its assignment.
template <class T>
class VdmPropertyConcreteData : public VdmPropertyData {
  static_assert(VdmPropertyValue<T>, "not a type of property values; arrays are VdmArray<E>");
  using Encoding = VdmPropertyEncoding<T>;
  static constexpr VdmPropertyType kType = VdmPropertyTypeInfo<T>::Id;

 public:
  // For writing; a mapping through a getter refreshes its cached copy first.
  virtual T& value() = 0;
  [[nodiscard]] virtual const T& value() const = 0;

  void writeValue(OdDbDwgFiler* filer, int config) const override {
    Encoding::write(filer, std::as_const(*this).value(), config);
  }
  bool readValue(OdDbDwgFiler* filer, int config) override {
    Encoding::read(filer, value(), config);
    return true;
  }
  // A map that is read in place is not passed on by updateMapped; every other value is.
  bool readFromDwg(OdDbDwgFiler* filer, int config) override {
    if constexpr (kType != VdmPropertyType::kArray && kType != VdmPropertyType::kMap) {
      return VdmPropertyData::readFromDwg(filer, config);
    } else {
      if (!Encoding::readTypes(filer)) return false;
      const bool read = readValue(filer, config);
      if constexpr (kType == VdmPropertyType::kArray) updateMapped();
      return read;
    }
  }
  bool assign(const VdmPropertyDataPtr& other) override {
    const VdmPropertyConcreteData* source = vdmPropertyCast<T>(std::as_const(other).get());
    if (source == nullptr) return false;
    value() = source->value();
    updateMapped();
    return true;
  }

 protected:
  VdmPropertyConcreteData() noexcept
      : VdmPropertyData(VdmPropertyTypeInfo<T>::Id, VdmPropertyTypeInfo<T>::kSignature) {}
  VdmPropertyConcreteData(const VdmPropertyConcreteData&) noexcept = default;
};

// Owns its value.
template <class T>
class VdmPropertyDataContainer final : public VdmPropertyConcreteData<T> {
 public:
  VdmPropertyDataContainer() : m_value() {}
  explicit VdmPropertyDataContainer(const T& value) : m_value(value) {}
  explicit VdmPropertyDataContainer(T&& value) : m_value(std::move(value)) {}

  T& value() override { return m_value; }
  [[nodiscard]] const T& value() const override { return m_value; }

 private:
  T m_value;
};

// Geometry that is kept as an array of its doubles.
template <class T>
concept VdmGeometryValue = std::is_same_v<T, OdGePoint3d> || std::is_same_v<T, OdGeMatrix3d>;

template <VdmGeometryValue T>
VdmDoubleArray vdmDoublesOf(const T& value) {
  VdmDoubleArray doubles;
  doubles.resize(sizeof(T) / sizeof(double));
  std::memcpy(doubles.asArrayPtr(), &value, sizeof(T));
  return doubles;
}

template <class T>
VdmPropertyDataPtr VdmPropertyData::create(const T& value) {
  if constexpr (VdmGeometryValue<T>) {
    return create(vdmDoublesOf(value));
  } else {
    return VdmPropertyDataPtr(new VdmPropertyDataContainer<T>(value));
  }
}

template <class T>
bool VdmPropertyData::get(T& value) const {
  if constexpr (VdmGeometryValue<T>) {
    VdmDoubleArray doubles;
    if (!get(doubles) || doubles.size() * sizeof(double) != sizeof(T)) return false;
    std::memcpy(static_cast<void*>(&value), std::as_const(doubles).asArrayPtr(), sizeof(T));
    return true;
  } else {
    const VdmPropertyConcreteData<T>* concrete = vdmPropertyCast<T>(this);
    if (concrete == nullptr) return false;
    value = concrete->value();
    return true;
  }
}

template <class T>
bool VdmPropertyData::set(const T& value) {
  if constexpr (VdmGeometryValue<T>) {
    return set(vdmDoublesOf(value));
  } else {
    VdmPropertyConcreteData<T>* concrete = vdmPropertyCast<T>(this);
    if (concrete == nullptr) return false;
    concrete->value() = value;
    updateMapped();
    return true;
  }
}
