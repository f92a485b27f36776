// The values of one property bag: eight bytes and a tag for each.
#pragma once

#include <cstddef>
#include <new>

#include "platform/base/types.h"
#include "vdm_db/properties/vdm_property_data.h"
#include "vdm_db/properties/vdm_property_types.h"
#include "vdm_db/vdm_db_export.h"

// A growing row of slots in one block of memory: the tags, then the slots, so that both parts of
// one of the first slots lie in one cache line. A slot is
//
//   null     nothing
//   boxed    a pointer to a VdmPropertyDataPtr: any value, and every value that somebody outside
//            the bag holds a pointer to
//   plain    the value itself, of a plain type
//   mapped   a pointer to a variable of a plain type, which is the value
//
// box() turns a plain or mapped slot into a boxed one with a value object that behaves the same.
// An index is below size(); the typed operations need a slot of that type.
class VDM_DB_EXPORT VdmPropertySlots {
 public:
  VdmPropertySlots() noexcept = default;
  VdmPropertySlots(VdmPropertySlots&& other) noexcept { swap(other); }
  VdmPropertySlots(const VdmPropertySlots&) = delete;
  VdmPropertySlots& operator=(const VdmPropertySlots&) = delete;
  ~VdmPropertySlots();
  void swap(VdmPropertySlots& other) noexcept;

  OdUInt32 size() const noexcept { return m_size; }
  OdUInt32 capacity() const noexcept { return m_capacity; }
  // Makes room for this many slots in all. Raises OdError(eOutOfMemory), nothing being changed.
  void reserve(OdUInt32 capacity);
  // A null slot before the one at `slot`, for which reserve() has made room.
  void insert(OdUInt32 slot) noexcept;
  // The slots behind it move down, or the last one takes its place.
  void eraseShifting(OdUInt32 slot) noexcept;
  void eraseFilling(OdUInt32 slot) noexcept;
  // Drops all values and keeps the memory.
  void clear() noexcept;

  // ---- What a slot holds

  bool isNull(OdUInt32 slot) const noexcept { return tag(slot) == kNull; }
  bool isBoxed(OdUInt32 slot) const noexcept { return tag(slot) == kBoxed; }
  // Of a slot that is neither null nor boxed.
  bool isMappedPlain(OdUInt32 slot) const noexcept { return (tag(slot) & kMapped) != 0; }
  VdmPropertyType plainType(OdUInt32 slot) const noexcept {
    return static_cast<VdmPropertyType>(tag(slot) & kTypeMask);
  }
  template <VdmPlainType T>
  bool holds(OdUInt32 slot) const noexcept {
    return (tag(slot) & kTypeMask) == static_cast<OdUInt8>(vdmElementType<T>());
  }
  template <VdmPlainType T>
  T get(OdUInt32 slot) const;
  const VdmPropertyDataPtr& boxed(OdUInt32 slot) const noexcept {
    return *reinterpret_cast<const VdmPropertyDataPtr*>(word(slot));
  }

  // ---- Changing a slot

  // Into the value that is there: the slot keeps being plain or mapped.
  template <VdmPlainType T>
  void set(OdUInt32 slot, const T& value);
  // In place of whatever was there.
  template <VdmPlainType T>
  void put(OdUInt32 slot, const T& value);
  template <VdmPlainType T>
  void putMapped(OdUInt32 slot, T* variable);
  void putBoxed(OdUInt32 slot, const VdmPropertyDataPtr& value);
  // The slot's value as an object of its own, shared with the slot; null for a null slot.
  const VdmPropertyDataPtr& box(OdUInt32 slot);

 private:
  static constexpr OdUInt8 kNull = 0;
  static constexpr OdUInt8 kBoxed = 1;
  static constexpr OdUInt8 kTypeMask = 0x0F;  // else VdmPropertyType of a plain type
  static constexpr int kReferenceShift = 4;   // reference type of a plain typed id
  static constexpr OdUInt8 kMapped = 0x40;

  // Bytes of the tags, filled up to whole words.
  static constexpr std::size_t tagBytes(OdUInt32 capacity) noexcept {
    return (std::size_t{capacity} + 7) / 8 * 8;
  }
  OdUInt8& tag(OdUInt32 slot) const noexcept { return m_tags[slot]; }
  OdUInt64* words() const noexcept {
    return reinterpret_cast<OdUInt64*>(m_tags + tagBytes(m_capacity));
  }
  OdUInt64& word(OdUInt32 slot) const noexcept { return words()[slot]; }
  // An OdString is one pointer, and its words may be moved as memory.
  OdString& text(OdUInt32 slot) const noexcept {
    return *std::launder(reinterpret_cast<OdString*>(&word(slot)));
  }
  void dropValue(OdUInt32 slot) noexcept;
  template <VdmPlainType T>
  VdmPropertyDataPtr makeObject(OdUInt32 slot) const;

  OdUInt8* m_tags = nullptr;  // the block
  OdUInt32 m_size = 0;
  OdUInt32 m_capacity = 0;
};

// Calls visit.operator()<T>() for the plain type of a number.
template <class Visit>
auto vdmVisitPlainType(VdmPropertyType type, Visit visit) {
  switch (type) {
    case VdmPropertyType::kString:
      return visit.template operator()<OdString>();
    case VdmPropertyType::kLong:
      return visit.template operator()<OdLong>();
    case VdmPropertyType::kDouble:
      return visit.template operator()<double>();
    case VdmPropertyType::kBool:
      return visit.template operator()<bool>();
    case VdmPropertyType::kInt8:
      return visit.template operator()<signed char>();
    case VdmPropertyType::kHandle:
      return visit.template operator()<OdDbHandle>();
    default:
      return visit.template operator()<OdDbTypedId>();
  }
}

template <VdmPlainType T>
T VdmPropertySlots::get(OdUInt32 slot) const {
  if (isMappedPlain(slot)) return *reinterpret_cast<const T*>(word(slot));
  if constexpr (std::is_same_v<T, OdString>) {
    return text(slot);
  } else if constexpr (std::is_same_v<T, OdDbTypedId>) {
    return OdDbTypedId(OdDbObjectId(reinterpret_cast<OdDbStub*>(word(slot))),
                       static_cast<OdDb::ReferenceType>(tag(slot) >> kReferenceShift));
  } else {
    T value;
    std::memcpy(static_cast<void*>(&value), &word(slot), sizeof value);
    return value;
  }
}
