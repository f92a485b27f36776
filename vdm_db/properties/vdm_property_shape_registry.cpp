// Making and finding of shared shapes.
//
// Shapes are the nodes of a graph, steps its edges: from a shape, adding or removing a key leads to
// one other shape. Nodes, edges and keys are only ever added, up to fixed limits, and stay in place
// (deques do not move their elements). The hash tables have a fixed number of buckets, at least
// twice their limit, so that each probe ends at a free bucket. Makers hold the lock and fill a
// bucket by a releasing store once the entry is complete; readers load buckets with acquire and
// need no lock: a reader sees an entry whole or not at all, and one that it misses is found under
// the lock. Taking a known step costs one comparison with the step taken last, else one probe.
#include "vdm_db/properties/vdm_property_shape_registry.h"

#include <algorithm>
#include <functional>
#include <string_view>

namespace {

std::size_t textHash(std::string_view utf8) { return std::hash<std::string_view>()(utf8); }

std::size_t stepHash(const VdmPropertyShape* from, const OdString& key, bool isRemoval) {
  const auto place = reinterpret_cast<std::uintptr_t>(from) + (isRemoval ? 1 : 0);
  return vdmBufferHash(key) ^ (place * 0xD1B54A32D192ED03u >> 32);
}

// Visits the buckets from a hash on until `visit` is done or a bucket is free; gives the free one.
template <class Buckets, class Visit>
std::size_t probe(const Buckets& buckets, std::size_t hash, Visit visit) {
  const std::size_t mask = buckets.size() - 1;
  for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
    const auto* entry = buckets[at].load(std::memory_order_acquire);
    if (entry == nullptr || visit(*entry)) return at;
  }
}

}  // namespace

VdmPropertyShapeRegistry& VdmPropertyShapeRegistry::instance() {
  static VdmPropertyShapeRegistry registry;
  return registry;
}

const OdString* VdmPropertyShapeRegistry::findKey(const OdString& key) const {
  const std::size_t at = probe(m_keyBuckets, textHash(key.utf8()),
                               [&](const OdString& known) { return known == key; });
  return m_keyBuckets[at].load(std::memory_order_acquire);
}

const VdmPropertyShape::Step* VdmPropertyShapeRegistry::findStep(const VdmPropertyShape* from,
                                                                 const OdString& key,
                                                                 bool isRemoval) const {
  const std::size_t at =
      probe(m_stepBuckets, stepHash(from, key, isRemoval), [&](const Step& step) {
        return step.from == from && step.isRemoval == isRemoval && step.key.sharesBuffer(key);
      });
  return m_stepBuckets[at].load(std::memory_order_acquire);
}

const VdmPropertyShape::Step* VdmPropertyShapeRegistry::stepByAdding(const VdmPropertyShape* from,
                                                                     const OdString& key) {
  std::atomic<const Step*>& last = from == nullptr ? m_firstStep : from->m_lastStep;
  if (const Step* step = last.load(std::memory_order_acquire); step && step->key == key) {
    return step;
  }
  const Step* step = findStep(from, key, /*isRemoval=*/false);
  if (step == nullptr) {
    const OdString* interned = findKey(key);
    if (interned != nullptr) step = findStep(from, *interned, /*isRemoval=*/false);
  }
  if (step == nullptr) {
    const std::lock_guard lock(m_mutex);
    std::vector<OdString> keys = from == nullptr ? std::vector<OdString>() : from->m_keys;
    const auto place = std::lower_bound(keys.begin(), keys.end(), key);
    const auto slot = static_cast<OdUInt32>(place - keys.begin());
    keys.insert(place, key);
    step = makeStep({from, key, /*isRemoval=*/false, shapeOf(std::move(keys)), slot});
  }
  if (step != nullptr) last.store(step, std::memory_order_release);
  return step;
}

OdUInt32 VdmPropertyShapeRegistry::expectedSize(const VdmPropertyShape* from) const noexcept {
  OdUInt32 size = from == nullptr ? 0 : from->size();
  const Step* step = likelyStep(from);
  for (; step != nullptr && size < VdmPropertyShape::kMaxSharedKeys; ++size) {
    step = likelyStep(step->to);
  }
  return size;
}

const VdmPropertyShape::Step* VdmPropertyShapeRegistry::stepByRemoving(const VdmPropertyShape* from,
                                                                       OdUInt32 slot) {
  const OdString& key = from->m_keys[slot];
  if (const Step* step = findStep(from, key, /*isRemoval=*/true)) return step;
  const std::lock_guard lock(m_mutex);
  std::vector<OdString> keys = from->m_keys;
  keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(slot));
  return makeStep({from, key, /*isRemoval=*/true, shapeOf(std::move(keys)), slot});
}

// ---- Under the lock

const OdString& VdmPropertyShapeRegistry::intern(const OdString& key) {
  const std::size_t hash = textHash(key.utf8());
  const std::size_t at =
      probe(m_keyBuckets, hash, [&](const OdString& known) { return known == key; });
  if (const OdString* known = m_keyBuckets[at].load(std::memory_order_acquire)) return *known;
  const OdString& added = m_keys.emplace_back(key);
  m_keyBuckets[at].store(&added, std::memory_order_release);
  return added;
}

// Null when there is no room for a further shape.
const VdmPropertyShape* VdmPropertyShapeRegistry::shapeOf(std::vector<OdString> sortedKeys) {
  std::size_t hash = sortedKeys.size();
  for (const OdString& key : sortedKeys) hash = hash * 31 + textHash(key.utf8());
  const auto [first, last] = m_shapesByContent.equal_range(hash);
  for (auto known = first; known != last; ++known) {
    if (known->second->m_keys == sortedKeys) return known->second;
  }

  if (sortedKeys.size() > VdmPropertyShape::kMaxSharedKeys ||
      m_shapes.size() >= VdmPropertyShape::kMaxShapes) {
    return nullptr;
  }
  for (OdString& key : sortedKeys) key = intern(key);
  const VdmPropertyShape& added = m_shapes.emplace_back(std::move(sortedKeys));
  m_shapesByContent.emplace(hash, &added);
  return &added;
}

const VdmPropertyShape::Step* VdmPropertyShapeRegistry::makeStep(const Step& step) {
  if (step.to == nullptr) return nullptr;
  Step made = step;
  made.key = intern(step.key);
  const std::size_t hash = stepHash(made.from, made.key, made.isRemoval);
  const std::size_t at = probe(m_stepBuckets, hash, [&](const Step& known) {
    return known.from == made.from && known.isRemoval == made.isRemoval &&
           known.key.sharesBuffer(made.key);
  });
  if (const Step* known = m_stepBuckets[at].load(std::memory_order_acquire)) return known;
  if (m_steps.size() >= kMaxSteps) return nullptr;
  const Step& added = m_steps.emplace_back(made);
  m_stepBuckets[at].store(&added, std::memory_order_release);
  return &added;
}
