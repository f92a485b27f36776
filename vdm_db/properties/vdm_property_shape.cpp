// Shapes of property bags: look-up, and the private shapes that single bags own.
//
// A shared shape finds a key by the address of its characters. Its keys are interned, so a string
// that came from a shape (as nearly all keys of a program do after their first use) has the very
// buffer of the key; few keys are compared one by one, more of them through a hash table of
// addresses that is at most half full. Only a key that is not found by address is looked up by its
// text, once, to get the interned string; when the registry does not know that text, no shared
// shape has it. The answer is the same either way, since equal texts have one interned string.
//
// A private shape hashes texts and keeps its slots in order of arrival. The order by key is sorted
// when it is first asked for, and stays valid while keys are added in rising order. Look-up costs a
// few comparisons in both; a change of a private shape costs a hash operation, and the next walk in
// key order a sort unless the order is still valid.
#include "vdm_db/properties/vdm_property_shape.h"

#include <algorithm>
#include <bit>
#include <numeric>

#include "vdm_db/properties/vdm_property_shape_registry.h"

namespace {

// Up to this many keys a scan over their addresses is the quicker way.
constexpr std::size_t kScannedKeys = 8;

// Steps through the buckets of a table of a power of two from the key's place on.
class Probe {
 public:
  Probe(const OdString& key, std::size_t tableSize)
      : m_mask(tableSize - 1), m_at(vdmBufferHash(key) & m_mask) {}
  [[nodiscard]] std::size_t at() const { return m_at; }
  void next() { m_at = (m_at + 1) & m_mask; }

 private:
  std::size_t m_mask;
  std::size_t m_at;
};

}  // namespace

VdmPropertyShape::VdmPropertyShape(std::vector<OdString> sortedKeys)
    : m_keys(std::move(sortedKeys)) {
  if (m_keys.size() <= kScannedKeys) return;
  m_buckets.resize(std::bit_ceil(m_keys.size() * 2));
  for (std::size_t slot = 0; slot < m_keys.size(); ++slot) {
    Probe probe(m_keys[slot], m_buckets.size());
    while (m_buckets[probe.at()] != 0) probe.next();
    m_buckets[probe.at()] = static_cast<OdUInt8>(slot + 1);
  }
}

OdUInt32 VdmPropertyShape::findBuffer(const OdString& key) const noexcept {
  if (m_buckets.empty()) {
    for (std::size_t slot = 0; slot < m_keys.size(); ++slot) {
      if (m_keys[slot].sharesBuffer(key)) return static_cast<OdUInt32>(slot);
    }
    return kNoSlot;
  }
  for (Probe probe(key, m_buckets.size()); m_buckets[probe.at()] != 0; probe.next()) {
    const OdUInt32 slot = m_buckets[probe.at()] - 1u;
    if (m_keys[slot].sharesBuffer(key)) return slot;
  }
  return kNoSlot;
}

OdUInt32 VdmPropertyShape::find(const OdString& key) const {
  if (!isShared()) {
    const auto found = m_index->slots.find(key);
    return found == m_index->slots.end() ? kNoSlot : found->second;
  }
  const OdUInt32 slot = findBuffer(key);
  if (slot != kNoSlot) return slot;
  // The key that bags of this kind mostly get next is known to be missing.
  const Step* usual = m_lastStep.load(std::memory_order_acquire);
  if (usual != nullptr && usual->key == key) return kNoSlot;
  const OdString* interned = VdmPropertyShapeRegistry::instance().findKey(key);
  if (interned == nullptr || interned->sharesBuffer(key)) return kNoSlot;
  return findBuffer(*interned);
}

// ---- Changing

const VdmPropertyShape* VdmPropertyShape::add(const VdmPropertyShape* shape, const OdString& key,
                                              OdUInt32& slot) {
  if (shape != nullptr && !shape->isShared()) return changeable(shape)->addPrivate(key, slot);
  if (const Step* step = VdmPropertyShapeRegistry::instance().stepByAdding(shape, key)) {
    slot = step->slot;
    return step->to;
  }
  auto owned = std::unique_ptr<VdmPropertyShape>(new VdmPropertyShape(
      PrivateTag(), shape == nullptr ? std::vector<OdString>() : shape->m_keys));
  owned->addPrivate(key, slot);
  return owned.release();
}

const VdmPropertyShape* VdmPropertyShape::remove(const VdmPropertyShape* shape, OdUInt32 slot) {
  if (!shape->isShared()) return changeable(shape)->removePrivate(slot);
  if (shape->size() == 1) return nullptr;
  if (const Step* step = VdmPropertyShapeRegistry::instance().stepByRemoving(shape, slot)) {
    return step->to;
  }
  std::vector<OdString> keys = shape->m_keys;
  keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(slot));
  return new VdmPropertyShape(PrivateTag(), std::move(keys));
}

const VdmPropertyShape::Step* VdmPropertyShape::likelyStep(const VdmPropertyShape* shape) noexcept {
  return VdmPropertyShapeRegistry::instance().likelyStep(shape);
}

OdUInt32 VdmPropertyShape::expectedSize(const VdmPropertyShape* shape) noexcept {
  if (shape != nullptr && !shape->isShared()) return shape->size();
  return VdmPropertyShapeRegistry::instance().expectedSize(shape);
}

const VdmPropertyShape* VdmPropertyShape::copy(const VdmPropertyShape* shape) {
  if (shape == nullptr || shape->isShared()) return shape;
  return new VdmPropertyShape(PrivateTag(), shape->m_keys);
}

void VdmPropertyShape::release(const VdmPropertyShape* shape) noexcept {
  if (shape != nullptr && !shape->isShared()) delete shape;
}

// ---- Private shapes

VdmPropertyShape::VdmPropertyShape(PrivateTag, std::vector<OdString> keys)
    : m_keys(std::move(keys)), m_index(std::make_unique<PrivateIndex>()) {
  m_index->slots.reserve(m_keys.size() + 1);
  for (std::size_t slot = 0; slot < m_keys.size(); ++slot) {
    m_index->slots.emplace(m_keys[slot], static_cast<OdUInt32>(slot));
  }
  m_index->isSorted = false;
}

OdUInt32 VdmPropertyShape::privateSlotAt(OdUInt32 position) const {
  if (!m_index->isSorted) {
    m_index->order.resize(m_keys.size());
    std::iota(m_index->order.begin(), m_index->order.end(), 0u);
    std::sort(m_index->order.begin(), m_index->order.end(),
              [this](OdUInt32 a, OdUInt32 b) { return m_keys[a] < m_keys[b]; });
    m_index->isSorted = true;
  }
  return m_index->order[position];
}

const VdmPropertyShape* VdmPropertyShape::addPrivate(const OdString& key, OdUInt32& slot) {
  slot = size();
  m_keys.reserve(m_keys.size() < m_keys.capacity() ? 0 : m_keys.size() + m_keys.size() / 2 + 1);
  if (m_index->isSorted) m_index->order.reserve(m_keys.capacity());
  m_index->slots.emplace(key, slot);
  // Keys that arrive in their order keep it sorted.
  m_index->isSorted = m_index->isSorted && (m_keys.empty() || m_keys[m_index->order.back()] < key);
  if (m_index->isSorted) m_index->order.push_back(slot);
  m_keys.push_back(key);
  return this;
}

const VdmPropertyShape* VdmPropertyShape::removePrivate(OdUInt32 slot) {
  if (m_keys.size() == 1) {
    delete this;
    return nullptr;
  }
  m_index->slots.erase(m_keys[slot]);
  if (slot + 1 != m_keys.size()) {
    m_keys[slot] = m_keys.back();
    m_index->slots[m_keys[slot]] = slot;
  }
  m_keys.pop_back();
  m_index->isSorted = false;
  return this;
}
