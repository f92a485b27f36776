// The values of one property bag: eight bytes and a tag for each.
#pragma once

#include <cstddef>
#include <new>
#include <string_view>

#include "platform/base/non_copyable.h"
#include "platform/base/types.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_property_data.h"
#include "vdm_db/properties/vdm_property_types.h"

// Values that a slot can hold as bytes.
template <class T>
concept VdmPackedValue = std::is_same_v<T, OdString> || std::is_same_v<T, VdmArray<double>> ||
    std::is_same_v<T, VdmArray<OdLong>>;

// A growing row of slots. All of it lies in one block of memory, so that the tag and the word of
// one of the first slots share a cache line:
//
//   tags     one byte for each of m_capacity slots, filled up to whole words; m_size are in use
//   words    eight bytes for each of m_capacity slots
//   packed   bytes of values that were not asked for yet
//
// The tag says what the word holds:
//
//   state    tag                            word
//   null     0                              0, or left over
//   boxed    1                              pointer to a VdmPropertyDataPtr that the slot owns
//   direct   the value's type               a plain value, or the one pointer that a text is
//            kArray + the elements' type    the one pointer that an array is
//            typed id + reference type      the id; the reference type is shifted by
//                                           kReferenceShift in the tag
//   mapped   as direct, + kMapped           pointer to the variable that is the value
//   packed   as direct, + kPacked           lower half: where the value begins among the packed
//                                           bytes, upper half: their number
//
// Always true:
//
//  1. m_size <= m_capacity. An index is below m_size; a typed operation needs a slot of that type.
//  2. A value that code outside the bag holds a pointer to is in a boxed slot. box() turns a direct
//     or mapped slot into a boxed one whose object behaves the same; no operation unboxes.
//  3. Only texts and arrays of integers and doubles are packed. All reading but unpacked() makes
//     them direct first, also in const operations: a bag belongs to one thread at a time. Most of
//     what a drawing holds is never looked at, and packed bytes need no allocation of their own.
//  4. Packed bytes are written in rising places while the slots are filled for the first time. They
//     are not moved, so the block can grow at its end; reserve() unpacks before it leaves the
//     block. The place of a value that was unpacked stays unused until clear() or the end of the
//     bag.
//  5. Texts and arrays consist of one pointer without a reference to their own address, so that
//     slots move as memory. A value whose end runs code of others has left its slot before it ends:
//     such code may reach back to the bag.
//
// Costs: access is one load of the tag and one of the word. insert() and eraseShifting() move the
// slots after the place, eraseFilling() moves one; reserve() copies all; swap() exchanges pointers.
class VDM_DB_EXPORT VdmPropertySlots : OdNonCopyable {
 public:
  VdmPropertySlots() noexcept = default;
  VdmPropertySlots(VdmPropertySlots&& other) noexcept { swap(other); }
  ~VdmPropertySlots();
  void swap(VdmPropertySlots& other) noexcept;

  [[nodiscard]] OdUInt32 size() const noexcept { return m_size; }
  [[nodiscard]] OdUInt32 capacity() const noexcept { return m_capacity; }
  // Makes room for this many slots in all. Raises OdError(eOutOfMemory), nothing being changed.
  void reserve(OdUInt32 capacity);
  // A null slot before the one at `slot`; reserve() has made room for it.
  void insert(OdUInt32 slot) noexcept;
  // Drops the value and the slot. The slots after it move down, or the last one takes its place.
  void eraseShifting(OdUInt32 slot) noexcept;
  void eraseFilling(OdUInt32 slot) noexcept;
  // Drops all values and keeps the memory.
  void clear() noexcept;

  // ---- What a slot holds

  [[nodiscard]] bool isNull(OdUInt32 slot) const noexcept { return tag(slot) == kNull; }
  [[nodiscard]] bool isBoxed(OdUInt32 slot) const noexcept { return tag(slot) == kBoxed; }
  // Of a slot that is neither null nor boxed.
  [[nodiscard]] bool isMappedVariable(OdUInt32 slot) const noexcept {
    return (tag(slot) & kMapped) != 0;
  }
  // Calls visit.operator()<T>() for the value's type, likewise.
  template <class Visit>
  auto visitType(OdUInt32 slot, Visit visit) const;
  template <VdmSlotValue T>
  [[nodiscard]] bool holds(OdUInt32 slot) const noexcept {
    return (tag(slot) & (kArray | kTypeMask)) == kTagOf<T>;
  }
  // Texts and arrays by reference, valid until the slots or the variable change.
  template <VdmSlotValue T>
  using Value = std::conditional_t<std::is_same_v<T, OdString> || !VdmPlainType<T>, const T&, T>;
  template <VdmSlotValue T>
  Value<T> get(OdUInt32 slot) const;
  // Whether the slot is packed, and the value of its bytes while it stays packed.
  [[nodiscard]] bool isPacked(OdUInt32 slot) const noexcept {
    return (tag(slot) & kPacked) != 0 && !holds<OdDbTypedId>(slot);
  }
  template <VdmPackedValue T>
  [[nodiscard]] T unpacked(OdUInt32 slot) const;
  [[nodiscard]] const VdmPropertyDataPtr& boxed(OdUInt32 slot) const noexcept {
    return *reinterpret_cast<const VdmPropertyDataPtr*>(word(slot));
  }

  // ---- Changing a slot

  // Into the value that is there: the slot keeps being direct or mapped.
  template <VdmSlotValue T>
  void set(OdUInt32 slot, T value);
  // In place of any value that was there.
  template <VdmSlotValue T>
  void put(OdUInt32 slot, T value);
  template <VdmSlotValue T>
  void putMapped(OdUInt32 slot, T* variable);
  // Into a null slot, after the `used` bytes that were packed since the slots were empty.
  template <VdmPackedValue T>
  void putPacked(OdUInt32 slot, std::string_view bytes, OdUInt32 used);
  void putBoxed(OdUInt32 slot, const VdmPropertyDataPtr& value);
  // The slot's value as an object of its own, shared with the slot; null for a null slot.
  const VdmPropertyDataPtr& box(OdUInt32 slot);

 private:
  static constexpr OdUInt8 kNull = 0;
  static constexpr OdUInt8 kBoxed = 1;
  static constexpr OdUInt8 kTypeMask = 0x0F;  // else VdmPropertyType of the value or the elements
  static constexpr int kReferenceShift = 4;   // reference type of a plain typed id
  static constexpr OdUInt8 kPacked = 0x10;    // of a text or an array
  static constexpr OdUInt8 kMapped = 0x40;
  static constexpr OdUInt8 kArray = 0x80;
  template <VdmSlotValue T>
  static constexpr OdUInt8 kTagOf = static_cast<OdUInt8>(
      VdmPlainType<T> ? static_cast<OdUInt8>(VdmPropertyTypeInfo<T>::Id)
                      : kArray | static_cast<OdUInt8>(VdmPropertyTypeInfo<T>::kSubType));

  // Bytes of the tags, filled up to whole words.
  static constexpr std::size_t tagBytes(OdUInt32 capacity) noexcept {
    return (std::size_t{capacity} + 7) / 8 * 8;
  }
  [[nodiscard]] OdUInt8& tag(OdUInt32 slot) const noexcept { return m_tags[slot]; }
  [[nodiscard]] OdUInt64* words() const noexcept {
    return reinterpret_cast<OdUInt64*>(m_tags + tagBytes(m_capacity));
  }
  [[nodiscard]] OdUInt64& word(OdUInt32 slot) const noexcept { return words()[slot]; }
  // Texts and arrays are one pointer, and their words may be moved as memory.
  template <class T>
  [[nodiscard]] T& object(OdUInt32 slot) const noexcept {
    static_assert(sizeof(T) == sizeof(OdUInt64));
    return *std::launder(reinterpret_cast<T*>(&word(slot)));
  }
  void dropValue(OdUInt32 slot) noexcept;
  // Bytes of the tags and the slots.
  static std::size_t slotBytes(OdUInt32 capacity) noexcept {
    return tagBytes(capacity) + capacity * sizeof(OdUInt64);
  }
  [[nodiscard]] char* packedBytes() const noexcept {
    return reinterpret_cast<char*>(words() + m_capacity);
  }
  // The word of a packed slot: where its bytes begin in the lower half, their number in the upper.
  void unpack(OdUInt32 slot) const;
  template <VdmSlotValue T>
  [[nodiscard]] VdmPropertyDataPtr makeObject(OdUInt32 slot) const;

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

// The same for the type of an array's elements.
constexpr bool vdmIsElementType(VdmPropertyType type) {
  return (type >= VdmPropertyType::kProperty && type <= VdmPropertyType::kTypedId) ||
         type == VdmPropertyType::kBlob;
}
template <class Visit>
auto vdmVisitElementType(VdmPropertyType type, Visit visit) {
  if (type == VdmPropertyType::kProperty) return visit.template operator()<VdmPropertyDataPtr>();
  if (type == VdmPropertyType::kBlob) return visit.template operator()<VdmBlob>();
  return vdmVisitPlainType(type, visit);
}

template <class Visit>
auto VdmPropertySlots::visitType(OdUInt32 slot, Visit visit) const {
  const auto type = static_cast<VdmPropertyType>(tag(slot) & kTypeMask);
  if ((tag(slot) & kArray) == 0) return vdmVisitPlainType(type, visit);
  return vdmVisitElementType(type,
                             [&]<class E>() { return visit.template operator()<VdmArray<E>>(); });
}

template <VdmSlotValue T>
VdmPropertySlots::Value<T> VdmPropertySlots::get(OdUInt32 slot) const {
  if (isMappedVariable(slot)) return *reinterpret_cast<const T*>(word(slot));
  if constexpr (std::is_same_v<T, OdDbTypedId>) {
    return OdDbTypedId(OdDbObjectId(reinterpret_cast<OdDbIdRecord*>(word(slot))),
                       static_cast<OdDb::ReferenceType>(tag(slot) >> kReferenceShift));
  } else if constexpr (std::is_reference_v<Value<T>>) {
    if ((tag(slot) & kPacked) != 0) [[unlikely]]
      unpack(slot);
    return object<T>(slot);
  } else {
    T value;
    std::memcpy(static_cast<void*>(&value), &word(slot), sizeof value);
    return value;
  }
}
