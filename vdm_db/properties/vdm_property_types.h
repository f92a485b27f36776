// The value types of properties, their numbers and their containers.
#pragma once

#include <map>
#include <tuple>
#include <type_traits>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/handle.h"
#include "platform/base/shared_ptr.h"
#include "platform/base/string.h"
#include "platform/base/types.h"
#include "vdm_db/properties/db_typed_id.h"

class VdmPropertyData;
using VdmPropertyDataPtr = OdSharedPtr<VdmPropertyData>;

// Filed as one byte: never renumbered.
enum class VdmPropertyType : OdInt32 {
  kProperty = 1,  // a nested value: element of an array or value of a map only
  kString = 2,
  kLong = 3,
  kDouble = 4,
  kBool = 5,
  kInt8 = 6,
  kHandle = 7,
  kTypedId = 8,
  kArray = 9,
  kMap = 10,
  kBlob = 11,
};

using VdmBlob = std::vector<char>;

// The plain types by rising number, from kString to kTypedId; they are also the keys of maps.
using VdmPlainTypes =
    std::tuple<OdString, OdLong, double, bool, signed char, OdDbHandle, OdDbTypedId>;
// The elements of arrays and the values of maps.
using VdmElementTypes = std::tuple<VdmPropertyDataPtr, OdString, OdLong, double, bool, signed char,
                                   OdDbHandle, OdDbTypedId, VdmBlob>;

// The number of an element type; kMap for all others, which nothing is an element of.
template <class T>
constexpr VdmPropertyType vdmElementType() {
  if constexpr (std::is_same_v<T, VdmPropertyDataPtr>) return VdmPropertyType::kProperty;
  if constexpr (std::is_same_v<T, OdString>) return VdmPropertyType::kString;
  if constexpr (std::is_same_v<T, OdLong>) return VdmPropertyType::kLong;
  if constexpr (std::is_same_v<T, double>) return VdmPropertyType::kDouble;
  if constexpr (std::is_same_v<T, bool>) return VdmPropertyType::kBool;
  if constexpr (std::is_same_v<T, signed char>) return VdmPropertyType::kInt8;
  if constexpr (std::is_same_v<T, OdDbHandle>) return VdmPropertyType::kHandle;
  if constexpr (std::is_same_v<T, OdDbTypedId>) return VdmPropertyType::kTypedId;
  if constexpr (std::is_same_v<T, VdmBlob>) return VdmPropertyType::kBlob;
  return VdmPropertyType::kMap;
}
template <class T>
concept VdmElementType = vdmElementType<T>()
!= VdmPropertyType::kMap;
// Single values of at most eight bytes.
template <class T>
concept VdmPlainType = VdmElementType<T> && vdmElementType<T>()
>= VdmPropertyType::kString&& vdmElementType<T>() <= VdmPropertyType::kTypedId;

// Arrays of values: elements that are plain bits are handled as memory.
template <VdmElementType E>
using VdmArray =
    OdArray<E, std::conditional_t<std::is_trivially_copyable_v<E> && !std::is_same_v<E, OdDbHandle>,
                                  OdMemoryAllocator<E>, OdObjectsAllocator<E>>>;

using VdmPropertyArray = VdmArray<VdmPropertyDataPtr>;
using VdmStringArray = VdmArray<OdString>;
using VdmLongArray = VdmArray<OdLong>;
using VdmDoubleArray = VdmArray<double>;
using VdmBoolArray = VdmArray<bool>;
using VdmTypedIdArray = VdmArray<OdDbTypedId>;

// Number of a value type (Id), its element, key and value numbers (kSubType, kSubType2, or 0), and
// one number of all three that no other value type has. Defined for value types only.
template <class T>
struct VdmPropertyTypeInfo;

template <VdmPropertyType type, VdmPropertyType subType = VdmPropertyType{},
          VdmPropertyType subType2 = VdmPropertyType{}>
struct VdmPropertyTypeNumbers {
  static constexpr VdmPropertyType Id = type;
  static constexpr VdmPropertyType kSubType = subType;
  static constexpr VdmPropertyType kSubType2 = subType2;
  static constexpr OdUInt32 kSignature = static_cast<OdUInt32>(type) |
                                         static_cast<OdUInt32>(subType) << 8 |
                                         static_cast<OdUInt32>(subType2) << 16;
};

template <VdmElementType T>
struct VdmPropertyTypeInfo<T> : VdmPropertyTypeNumbers<vdmElementType<T>()> {};
template <VdmElementType E, class A>
requires std::is_same_v<OdArray<E, A>, VdmArray<E>>
struct VdmPropertyTypeInfo<OdArray<E, A>>
    : VdmPropertyTypeNumbers<VdmPropertyType::kArray, vdmElementType<E>()> {
};
template <VdmPlainType K, VdmElementType V>
struct VdmPropertyTypeInfo<std::map<K, V>>
    : VdmPropertyTypeNumbers<VdmPropertyType::kMap, vdmElementType<K>(), vdmElementType<V>()> {};

// Values that a bag can keep without an object of their own.
template <class T>
concept VdmSlotValue = VdmPlainType<T> || VdmPropertyTypeInfo<T>::Id == VdmPropertyType::kArray;

// What a property may hold by itself: all of the above but a nested value.
template <class T>
concept VdmPropertyValue = requires {
  VdmPropertyTypeInfo<T>::Id;
}
&&!std::is_same_v<T, VdmPropertyDataPtr>;
