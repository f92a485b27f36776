// VdmPropertyData: one typed value of a property bag.
#pragma once

#include <type_traits>

#include "platform/base/shared_ptr.h"
#include "platform/base/types.h"
#include "platform/filer/dwg_filer.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_property_types.h"

template <class T>
class VdmPropertyConcreteData;

// One value, held by VdmPropertyDataPtr: a container that owns its data, or a mapping onto a
// variable of an object (vdm_property_mapping.h), which must not outlive that object. The type is
// fixed for life; there is no conversion between types, except that `int` and OdLong are one type.
// A value and its pointers belong to one thread at a time.
//
// get, set and assign answer a mismatch with false and change nothing.
class VDM_DB_EXPORT VdmPropertyData {
 public:
  using Type = VdmPropertyType;

  virtual ~VdmPropertyData();
  VdmPropertyData& operator=(const VdmPropertyData&) = delete;

  [[nodiscard]] Type type() const noexcept { return m_type; }

  // A container that holds a copy. Points and matrices become arrays of 3 and 16 doubles in their
  // memory order.
  template <class T>
  static VdmPropertyDataPtr create(const T& value);
  // The value, when it is of type T: id, and element types of arrays and maps.
  template <class T>
  bool get(T& value) const;
  // Stores into value() and calls updateMapped().
  template <class T>
  bool set(const T& value);

  // ---- Filing. `config` is the configuration word of the bag (VdmProperties::config).

  // The type byte, then the value.
  void writeToDwg(OdDbDwgFiler* filer, int config) const;
  // A new container from what writeToDwg wrote; null for an unknown type. Raises
  // OdError(eCorruptData) when values nest deeper than kMaxNesting.
  static VdmPropertyDataPtr createFromDwg(OdDbDwgFiler* filer, int config);
  // The same after the type byte was read.
  static VdmPropertyDataPtr createFromDwg(OdDbDwgFiler* filer, int config, OdInt8 type);

  // What follows the type byte.
  virtual void writeValue(OdDbDwgFiler* filer, int config) const = 0;
  // Reads what writeToDwg wrote into this value. False when the stream holds another type; that is
  // reported as an assertion.
  virtual bool readFromDwg(OdDbDwgFiler* filer, int config);
  // What follows the type byte and, for arrays and maps, the types of elements.
  virtual bool readValue(OdDbDwgFiler* filer, int config) = 0;

  // ---- Value semantics

  // Copies a value of the same type and calls updateMapped().
  virtual bool assign(const VdmPropertyDataPtr& other) = 0;
  // True for a mapping onto a variable.
  [[nodiscard]] virtual bool isMapped() const;
  // False when the value is what a reader would get by default.
  [[nodiscard]] virtual bool isOutOfDate() const;
  // Passes the value on to the mapped variable where it does not lie in it.
  virtual void updateMapped();
  // Sets the default; false when there is none.
  virtual bool reset();

  // Arrays of arrays and maps may nest this deep in a stream; writing deeper raises
  // OdError(eLimitExceeded).
  static constexpr int kMaxNesting = 256;

 protected:
  explicit VdmPropertyData(Type type) noexcept : m_type(type) {}
  VdmPropertyData(const VdmPropertyData& other) noexcept = default;

 private:
  template <class T>
  friend class VdmPropertyConcreteData;
  template <class T>
  friend VdmPropertyConcreteData<T>* vdmPropertyCast(VdmPropertyData* data) noexcept;
  template <class T>
  friend const VdmPropertyConcreteData<T>* vdmPropertyCast(const VdmPropertyData* data) noexcept;

  VdmPropertyData(Type type, OdUInt32 signature) noexcept : m_type(type), m_signature(signature) {}

  Type m_type;
  OdUInt32 m_signature = 0;  // of VdmPropertyConcreteData<T>; 0 for any other class
};

// The value's access by its type; null when it is of another type, or null. Does the work of a
// dynamic cast by comparing one number.
template <class T>
VdmPropertyConcreteData<T>* vdmPropertyCast(VdmPropertyData* data) noexcept {
  if (data == nullptr || data->m_signature != VdmPropertyTypeInfo<T>::kSignature) return nullptr;
  return static_cast<VdmPropertyConcreteData<T>*>(data);
}
template <class T>
const VdmPropertyConcreteData<T>* vdmPropertyCast(const VdmPropertyData* data) noexcept {
  if (data == nullptr || data->m_signature != VdmPropertyTypeInfo<T>::kSignature) return nullptr;
  return static_cast<const VdmPropertyConcreteData<T>*>(data);
}

#include "vdm_db/properties/vdm_property_concrete_data.h"
