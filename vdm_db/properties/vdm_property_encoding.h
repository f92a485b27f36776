// Encodings of the value types, for the sources that instantiate them.
#pragma once

#include <algorithm>
#include <utility>

#include "platform/base/error.h"
#include "platform/base/non_copyable.h"
#include "platform/filer/dwg_filer.h"
#include "vdm_db/properties/vdm_property_data.h"
#include "vdm_db/properties/vdm_property_type_rows.h"

// One level of values within values; raises OdError with the code beyond the limit.
class VdmNestingGuard : OdNonCopyable {
 public:
  explicit VdmNestingGuard(OdResult codeBeyondLimit);
  ~VdmNestingGuard();
};

// Reports a type of the stream that is not the expected one; `line` names the place.
void vdmReportWrongType(const char* expectation, int line);

// True for an id that a file is not to keep: config asks for it and the object is erased.
bool vdmIsLeftOut(const OdDbDwgFiler* filer, const OdDbObjectId& id, int config);

// The form of one element, without a type byte except for nested values.
//
//   type          primitive                                                 least bytes
//   1 nested      the value's own type byte and form; byte 0 for null       1
//   2 OdString    wrString                                                  1
//   3 OdLong      wrInt32                                                   1
//   4 double      wrDouble                                                  8
//   5 bool        wrBool                                                    1
//   6 signed char wrInt8                                                    1
//   7 OdDbHandle  wrDbHandle                                                1
//   8 OdDbTypedId wrInt8 reference type, then the id by its typed primitive 1
//   11 VdmBlob    wrInt32 size, the bytes by wrBytes unless there are none  1
//
// The least bytes bound what any filer needs for an element; counts are checked against them.
template <class T>
struct VdmElementEncoding {
  static constexpr OdUInt32 kMinBytes = std::is_same_v<T, double> ? 8 : 1;
  static void write(OdDbDwgFiler* filer, const T& value, int config);
  static T read(OdDbDwgFiler* filer, int config);
};

#define VDM_SIMPLE_ELEMENT(T, primitive)                                               \
  template <>                                                                          \
  inline void VdmElementEncoding<T>::write(OdDbDwgFiler* filer, const T& value, int) { \
    filer->wr##primitive(value);                                                       \
  }                                                                                    \
  template <>                                                                          \
  inline T VdmElementEncoding<T>::read(OdDbDwgFiler* filer, int) {                     \
    return filer->rd##primitive();                                                     \
  }
VDM_SIMPLE_ELEMENT(OdString, String)
VDM_SIMPLE_ELEMENT(OdLong, Int32)
VDM_SIMPLE_ELEMENT(double, Double)
VDM_SIMPLE_ELEMENT(bool, Bool)
VDM_SIMPLE_ELEMENT(signed char, Int8)
VDM_SIMPLE_ELEMENT(OdDbHandle, DbHandle)
#undef VDM_SIMPLE_ELEMENT

template <>
void VdmElementEncoding<OdDbTypedId>::write(OdDbDwgFiler* filer, const OdDbTypedId& value,
                                            int config);
template <>
OdDbTypedId VdmElementEncoding<OdDbTypedId>::read(OdDbDwgFiler* filer, int config);
template <>
void VdmElementEncoding<VdmBlob>::write(OdDbDwgFiler* filer, const VdmBlob& value, int config);
template <>
VdmBlob VdmElementEncoding<VdmBlob>::read(OdDbDwgFiler* filer, int config);
template <>
void VdmElementEncoding<VdmPropertyDataPtr>::write(OdDbDwgFiler* filer,
                                                   const VdmPropertyDataPtr& value, int config);
template <>
VdmPropertyDataPtr VdmElementEncoding<VdmPropertyDataPtr>::read(OdDbDwgFiler* filer, int config);

// ---- A value is an element, an array or a map

template <class T>
struct VdmValueEncoding {
  static void write(OdDbDwgFiler* filer, const T& value, int config) {
    VdmElementEncoding<T>::write(filer, value, config);
  }
  static void read(OdDbDwgFiler* filer, T& value, int config) {
    value = VdmElementEncoding<T>::read(filer, config);
  }
};

// Element type, count, elements; read from the count on.
template <class E, class A>
struct VdmValueEncoding<OdArray<E, A>> {
  using Array = OdArray<E, A>;

  static void write(OdDbDwgFiler* filer, const Array& value, int config) {
    filer->wrInt8(static_cast<OdInt8>(vdmElementType<E>()));
    filer->wrInt32(static_cast<OdInt32>(value.size() - countLeftOut(filer, value, config)));
    for (const E& element : value) {
      if (!isLeftOut(filer, element, config)) VdmElementEncoding<E>::write(filer, element, config);
    }
  }
  static void read(OdDbDwgFiler* filer, Array& value, int config) {
    readElements(filer, value, filer->rdCount(VdmElementEncoding<E>::kMinBytes), config);
  }
  // The elements that follow a count that was checked.
  static void readElements(OdDbDwgFiler* filer, Array& value, OdUInt32 count, int config) {
    Array fresh;
    fresh.reserve(std::min(count, kMaxReserve));
    for (OdUInt32 i = 0; i < count; ++i) fresh.append(VdmElementEncoding<E>::read(filer, config));
    value = std::move(fresh);
  }
  static bool readTypes(OdDbDwgFiler* filer) {
    const OdInt8 type = filer->rdInt8();
    const OdInt8 subType = filer->rdInt8();
    if (type == static_cast<OdInt8>(VdmPropertyType::kArray) &&
        subType == static_cast<OdInt8>(vdmElementType<E>())) {
      return true;
    }
    vdmReportWrongType("type == this->type() && subType == VdmPropertyTypeInfo<T>::Id", 1481);
    return false;
  }

 private:
  // A count that the filer cannot check reserves no more than this.
  static constexpr OdUInt32 kMaxReserve = 1u << 16;

  static bool isLeftOut(OdDbDwgFiler* filer, const E& element, int config) {
    if constexpr (std::is_same_v<E, OdDbTypedId>) {
      return vdmIsLeftOut(filer, element.id, config);
    } else {
      return false;
    }
  }
  static OdUInt32 countLeftOut(OdDbDwgFiler* filer, const Array& value, int config) {
    if constexpr (!std::is_same_v<E, OdDbTypedId>) return 0;
    return static_cast<OdUInt32>(std::count_if(
        value.begin(), value.end(), [&](const E& e) { return isLeftOut(filer, e, config); }));
  }
};

// Key type, value type, count, then key and value of each entry in the map's order; read from the
// count on. Of equal keys in a stream the first one stays.
template <class K, class V>
struct VdmValueEncoding<std::map<K, V>> {
  using Map = std::map<K, V>;

  static void write(OdDbDwgFiler* filer, const Map& value, int config) {
    filer->wrInt8(static_cast<OdInt8>(vdmElementType<K>()));
    filer->wrInt8(static_cast<OdInt8>(vdmElementType<V>()));
    filer->wrInt32(static_cast<OdInt32>(value.size()));
    for (const auto& [key, mapped] : value) {
      VdmElementEncoding<K>::write(filer, key, config);
      VdmElementEncoding<V>::write(filer, mapped, config);
    }
  }
  static void read(OdDbDwgFiler* filer, Map& value, int config) {
    OdUInt32 count =
        filer->rdCount(VdmElementEncoding<K>::kMinBytes + VdmElementEncoding<V>::kMinBytes);
    Map fresh;
    for (; count > 0; --count) {
      K key = VdmElementEncoding<K>::read(filer, config);
      V mapped = VdmElementEncoding<V>::read(filer, config);
      fresh.emplace_hint(fresh.end(), std::move(key), std::move(mapped));
    }
    value = std::move(fresh);
  }
  static bool readTypes(OdDbDwgFiler* filer) {
    const OdInt8 type = filer->rdInt8();
    const OdInt8 keyType = filer->rdInt8();
    const OdInt8 valueType = filer->rdInt8();
    if (type == static_cast<OdInt8>(VdmPropertyType::kMap) &&
        keyType == static_cast<OdInt8>(vdmElementType<K>()) &&
        valueType == static_cast<OdInt8>(vdmElementType<V>())) {
      return true;
    }
    vdmReportWrongType(
        "type == this->type() && keyType == VdmPropertyTypeInfo<Key>::Id && "
        "valueType == VdmPropertyTypeInfo<Value>::Id",
        1537);
    return false;
  }
};

template <class T>
void VdmPropertyEncoding<T>::write(OdDbDwgFiler* filer, const T& value, int config) {
  VdmValueEncoding<T>::write(filer, value, config);
}
template <class T>
void VdmPropertyEncoding<T>::read(OdDbDwgFiler* filer, T& value, int config) {
  VdmValueEncoding<T>::read(filer, value, config);
}
template <class T>
bool VdmPropertyEncoding<T>::readTypes(OdDbDwgFiler* filer) {
  if constexpr (VdmElementType<T>) {
    return filer->rdInt8() == static_cast<OdInt8>(vdmElementType<T>());
  } else {
    return VdmValueEncoding<T>::readTypes(filer);
  }
}

// In each other source that uses the encodings which vdm_property_encoding.cpp makes: a copy made
// there would take the narrower visibility of its type argument and hide the exported one.
#define VDM_DECLARE_ENCODING(T) extern template struct VdmPropertyEncoding<T>;
#define VDM_DECLARE_ENCODINGS VDM_SINGLE_AND_ARRAY_TYPE_ROWS(VDM_DECLARE_ENCODING)

// ---- Making empty containers by their numbers

// A map container of key type K; null when no value type has the number.
template <VdmPlainType K>
VdmPropertyData* vdmMakeMap(OdInt8 valueType);

// Calls make.operator()<T>() for the type of the list that has the number; null when none has.
template <class Make>
VdmPropertyData* vdmMakeByNumber(OdInt8 number, Make make) {
  return [&]<class... T>(std::tuple<T...>*) {
    VdmPropertyData* made = nullptr;
    const auto take = [&made, &make]<class One>() {
      made = make.template operator()<One>();
      return true;
    };
    (void)((static_cast<OdInt8>(vdmElementType<T>()) == number && take.template operator()<T>()) ||
           ...);
    return made;
  }(static_cast<VdmElementTypes*>(nullptr));
}

// In one source for each key type.
#define VDM_INSTANTIATE_MAP(V, K) template struct VDM_DB_EXPORT VdmPropertyEncoding<std::map<K, V>>;
#define VDM_INSTANTIATE_MAPS(K)                                           \
  VDM_ELEMENT_TYPE_ROWS(VDM_INSTANTIATE_MAP, K)                           \
  template <>                                                             \
  VdmPropertyData* vdmMakeMap<K>(OdInt8 valueType) {                      \
    return vdmMakeByNumber(valueType, []<class V>() -> VdmPropertyData* { \
      return new VdmPropertyDataContainer<std::map<K, V>>;                \
    });                                                                   \
  }
