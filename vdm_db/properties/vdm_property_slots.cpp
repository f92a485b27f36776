// Memory and values of the slots of a property bag.
#include "vdm_db/properties/vdm_property_slots.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include "platform/base/raise.h"
#include "vdm_db/properties/vdm_property_mapping.h"

static_assert(sizeof(OdString) == sizeof(OdUInt64) && sizeof(OdDbObjectId) == sizeof(OdUInt64));

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
  auto* block =
      static_cast<OdUInt8*>(std::malloc(tagBytes(capacity) + capacity * sizeof(OdUInt64)));
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
  // A value that goes may reach back to the bag: it finds no slot any more.
  const OdUInt32 size = std::exchange(m_size, 0);
  for (OdUInt32 slot = 0; slot < size; ++slot) dropValue(slot);
}

void VdmPropertySlots::dropValue(OdUInt32 slot) noexcept {
  const OdUInt8 dropped = std::exchange(tag(slot), kNull);
  if (dropped == kBoxed)
    delete reinterpret_cast<VdmPropertyDataPtr*>(word(slot));
  else if (dropped == static_cast<OdUInt8>(VdmPropertyType::kString))
    text(slot).~OdString();
}

// ---- Values

template <VdmPlainType T>
void VdmPropertySlots::set(OdUInt32 slot, const T& value) {
  if (isMappedPlain(slot))
    *reinterpret_cast<T*>(word(slot)) = value;
  else
    put(slot, value);
}

template <VdmPlainType T>
void VdmPropertySlots::put(OdUInt32 slot, const T& value) {
  constexpr auto kTag = static_cast<OdUInt8>(vdmElementType<T>());
  if constexpr (std::is_same_v<T, OdString>) {
    const OdString copy(value);  // may be the text that goes
    dropValue(slot);
    ::new (static_cast<void*>(&word(slot))) OdString(copy);
    tag(slot) = kTag;
  } else if constexpr (std::is_same_v<T, OdDbTypedId>) {
    const OdDbTypedId copy(value);
    dropValue(slot);
    word(slot) = reinterpret_cast<OdUInt64>(copy.id.stub());
    tag(slot) = static_cast<OdUInt8>(kTag | (copy.type & 3) << kReferenceShift);
  } else {
    const T copy(value);
    dropValue(slot);
    word(slot) = 0;
    std::memcpy(&word(slot), &copy, sizeof copy);
    tag(slot) = kTag;
  }
}

template <VdmPlainType T>
void VdmPropertySlots::putMapped(OdUInt32 slot, T* variable) {
  dropValue(slot);
  word(slot) = reinterpret_cast<OdUInt64>(variable);
  tag(slot) = static_cast<OdUInt8>(vdmElementType<T>()) | kMapped;
}

void VdmPropertySlots::putBoxed(OdUInt32 slot, const VdmPropertyDataPtr& value) {
  auto* fresh = new VdmPropertyDataPtr(value);
  dropValue(slot);
  word(slot) = reinterpret_cast<OdUInt64>(fresh);
  tag(slot) = kBoxed;
}

template <VdmPlainType T>
VdmPropertyDataPtr VdmPropertySlots::makeObject(OdUInt32 slot) const {
  if (isMappedPlain(slot))
    return VdmPropertyDataPtr(new VdmPropertyDataMapping<T>(reinterpret_cast<T*>(word(slot))));
  return VdmPropertyDataPtr(new VdmPropertyDataContainer<T>(get<T>(slot)));
}

const VdmPropertyDataPtr& VdmPropertySlots::box(OdUInt32 slot) {
  static const VdmPropertyDataPtr kNullPointer;
  if (isNull(slot)) return kNullPointer;
  if (!isBoxed(slot))
    putBoxed(slot,
             vdmVisitPlainType(plainType(slot), [&]<class T>() { return makeObject<T>(slot); }));
  return boxed(slot);
}

#define VDM_INSTANTIATE_SLOT(T)                               \
  template void VdmPropertySlots::set<T>(OdUInt32, const T&); \
  template void VdmPropertySlots::put<T>(OdUInt32, const T&); \
  template void VdmPropertySlots::putMapped<T>(OdUInt32, T*);
VDM_INSTANTIATE_SLOT(OdString)
VDM_INSTANTIATE_SLOT(OdLong)
VDM_INSTANTIATE_SLOT(double)
VDM_INSTANTIATE_SLOT(bool)
VDM_INSTANTIATE_SLOT(signed char)
VDM_INSTANTIATE_SLOT(OdDbHandle)
VDM_INSTANTIATE_SLOT(OdDbTypedId)
#undef VDM_INSTANTIATE_SLOT
