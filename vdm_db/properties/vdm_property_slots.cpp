// Memory and values of the slots of a property bag; their invariants are listed in the header.
#include "vdm_db/properties/vdm_property_slots.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include "platform/base/raise.h"
#include "vdm_db/properties/vdm_property_mapping.h"
#include "vdm_db/properties/vdm_property_type_rows.h"

static_assert(sizeof(OdDbObjectId) == sizeof(OdUInt64));

// ---- Memory

VdmPropertySlots::~VdmPropertySlots() {
  clear();
  std::free(m_tags);
}

void VdmPropertySlots::swap(VdmPropertySlots& other) noexcept {
  std::swap(m_tags, other.m_tags);
  std::swap(m_size, other.m_size);
  std::swap(m_capacity, other.m_capacity);
}

void VdmPropertySlots::reserve(OdUInt32 capacity) {
  if (capacity <= m_capacity) return;
  constexpr OdUInt32 kMaxCapacity = std::numeric_limits<OdUInt32>::max() / 2;
  if (capacity > kMaxCapacity) odRaise(eLimitExceeded, "too many properties in one bag");
  for (OdUInt32 slot = 0; slot < m_size; ++slot) {
    if (isPacked(slot)) unpack(slot);
  }
  auto* block = static_cast<OdUInt8*>(std::malloc(slotBytes(capacity)));
  if (block == nullptr) odRaise(eOutOfMemory);
  if (m_size > 0) {
    std::memcpy(block, m_tags, m_size);
    std::memcpy(block + tagBytes(capacity), words(), m_size * sizeof(OdUInt64));
  }
  std::free(std::exchange(m_tags, block));
  m_capacity = capacity;
}

void VdmPropertySlots::insert(OdUInt32 slot) noexcept {
  const OdUInt32 behind = m_size - slot;
  std::memmove(words() + slot + 1, words() + slot, behind * sizeof(OdUInt64));
  std::memmove(m_tags + slot + 1, m_tags + slot, behind);
  word(slot) = 0;
  tag(slot) = kNull;
  ++m_size;
}

void VdmPropertySlots::eraseShifting(OdUInt32 slot) noexcept {
  dropValue(slot);
  --m_size;
  std::memmove(words() + slot, words() + slot + 1, (m_size - slot) * sizeof(OdUInt64));
  std::memmove(m_tags + slot, m_tags + slot + 1, m_size - slot);
}

void VdmPropertySlots::eraseFilling(OdUInt32 slot) noexcept {
  dropValue(slot);
  --m_size;
  word(slot) = word(m_size);
  tag(slot) = tag(m_size);
}

void VdmPropertySlots::clear() noexcept {
  // A value may reach back to the bag as it ends: it finds no slot any more.
  const OdUInt32 size = std::exchange(m_size, 0);
  for (OdUInt32 slot = 0; slot < size; ++slot) dropValue(slot);
}

void VdmPropertySlots::dropValue(OdUInt32 slot) noexcept {
  const OdUInt8 dropped = std::exchange(tag(slot), kNull);
  if (dropped == kBoxed) {
    delete reinterpret_cast<VdmPropertyDataPtr*>(word(slot));
  } else if (dropped == kTagOf<OdString>) {
    object<OdString>(slot).~OdString();
  } else if ((dropped & (kArray | kMapped | kPacked)) == kArray) {
    vdmVisitElementType(static_cast<VdmPropertyType>(dropped & kTypeMask), [&]<class E>() {
      // Elements may reach back to the bag as they end, too: the array leaves the slot first.
      const VdmArray<E> array(std::move(object<VdmArray<E>>(slot)));
    });
  }
}

// ---- Values

template <VdmSlotValue T>
void VdmPropertySlots::set(OdUInt32 slot, T value) {
  if (isMappedVariable(slot)) {
    *reinterpret_cast<T*>(word(slot)) = std::move(value);
  } else {
    put(slot, std::move(value));
  }
}

template <VdmSlotValue T>
void VdmPropertySlots::put(OdUInt32 slot, T value) {
  dropValue(slot);
  word(slot) = 0;
  if constexpr (std::is_same_v<T, OdDbTypedId>) {
    word(slot) = reinterpret_cast<OdUInt64>(value.id.idRecord());
    tag(slot) = static_cast<OdUInt8>(kTagOf<T> | (value.type & 3) << kReferenceShift);
    return;
  } else if constexpr (std::is_reference_v<Value<T>>) {
    ::new (static_cast<void*>(&word(slot))) T(std::move(value));
  } else {
    std::memcpy(&word(slot), &value, sizeof value);
  }
  tag(slot) = kTagOf<T>;
}

template <VdmSlotValue T>
void VdmPropertySlots::putMapped(OdUInt32 slot, T* variable) {
  dropValue(slot);
  word(slot) = reinterpret_cast<OdUInt64>(variable);
  tag(slot) = kTagOf<T> | kMapped;
}

template <VdmPackedValue T>
void VdmPropertySlots::putPacked(OdUInt32 slot, std::string_view bytes, OdUInt32 used) {
  void* block = std::realloc(m_tags, slotBytes(m_capacity) + used + bytes.size());
  if (block == nullptr) odRaise(eOutOfMemory);
  m_tags = static_cast<OdUInt8*>(block);
  std::copy(bytes.begin(), bytes.end(), packedBytes() + used);
  word(slot) = used | static_cast<OdUInt64>(bytes.size()) << 32;
  tag(slot) = kTagOf<T> | kPacked;
}

template <VdmPackedValue T>
T VdmPropertySlots::unpacked(OdUInt32 slot) const {
  const char* bytes = packedBytes() + static_cast<OdUInt32>(word(slot));
  const auto size = static_cast<std::size_t>(word(slot) >> 32);
  if constexpr (std::is_same_v<T, OdString>) {
    return OdString::fromUtf8({bytes, size});
  } else {
    T array;
    array.resize(static_cast<OdUInt32>(size / sizeof(typename T::value_type)));
    if (size > 0) std::memcpy(array.asArrayPtr(), bytes, size);
    return array;
  }
}

void VdmPropertySlots::unpack(OdUInt32 slot) const {
  const auto put = [&]<class T>(T value) {
    ::new (static_cast<void*>(&word(slot))) T(std::move(value));
    tag(slot) = kTagOf<T>;
  };
  if (holds<OdString>(slot)) {
    put(unpacked<OdString>(slot));
  } else if (holds<VdmArray<double>>(slot)) {
    put(unpacked<VdmArray<double>>(slot));
  } else {
    put(unpacked<VdmArray<OdLong>>(slot));
  }
}

void VdmPropertySlots::putBoxed(OdUInt32 slot, const VdmPropertyDataPtr& value) {
  auto* fresh = new VdmPropertyDataPtr(value);
  dropValue(slot);
  word(slot) = reinterpret_cast<OdUInt64>(fresh);
  tag(slot) = kBoxed;
}

template <VdmSlotValue T>
VdmPropertyDataPtr VdmPropertySlots::makeObject(OdUInt32 slot) const {
  if (isMappedVariable(slot)) {
    return VdmPropertyDataPtr(new VdmPropertyDataMapping<T>(reinterpret_cast<T*>(word(slot))));
  }
  return VdmPropertyDataPtr(new VdmPropertyDataContainer<T>(get<T>(slot)));
}

const VdmPropertyDataPtr& VdmPropertySlots::box(OdUInt32 slot) {
  static const VdmPropertyDataPtr kNullPointer;
  if (isNull(slot)) return kNullPointer;
  if (!isBoxed(slot)) {
    putBoxed(slot, visitType(slot, [&]<class T>() { return makeObject<T>(slot); }));
  }
  return boxed(slot);
}

// ---- Instantiations

#define VDM_INSTANTIATE_SLOT(T)                              \
  template void VdmPropertySlots::set<T>(OdUInt32, T value); \
  template void VdmPropertySlots::put<T>(OdUInt32, T value); \
  template void VdmPropertySlots::putMapped<T>(OdUInt32, T*);
#define VDM_INSTANTIATE_ARRAY_SLOT(E) VDM_INSTANTIATE_SLOT(VdmArray<E>)
VDM_PLAIN_TYPE_ROWS(VDM_INSTANTIATE_SLOT)
VDM_ELEMENT_TYPE_ROWS(VDM_INSTANTIATE_ARRAY_SLOT)
#undef VDM_INSTANTIATE_ARRAY_SLOT
#undef VDM_INSTANTIATE_SLOT

#define VDM_INSTANTIATE_PACKED(T)                                                     \
  template void VdmPropertySlots::putPacked<T>(OdUInt32, std::string_view, OdUInt32); \
  template T VdmPropertySlots::unpacked<T>(OdUInt32) const;
VDM_INSTANTIATE_PACKED(OdString)
VDM_INSTANTIATE_PACKED(VdmArray<double>)
VDM_INSTANTIATE_PACKED(VdmArray<OdLong>)
#undef VDM_INSTANTIATE_PACKED
