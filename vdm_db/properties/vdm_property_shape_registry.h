// All shared shapes, their keys, and the steps between them.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <unordered_map>

#include "platform/base/string.h"
#include "vdm_db/properties/vdm_property_shape.h"

// Address of a string's characters: the same for strings that share a buffer, 0 for empty ones.
inline std::uintptr_t vdmBufferAddress(const OdString& text) {
  if (text.isEmpty()) return 0;
  return text.isNarrow() ? reinterpret_cast<std::uintptr_t>(text.utf8().data())
                         : reinterpret_cast<std::uintptr_t>(text.c_str());
}
// Fibonacci hashing: the upper half of the product is well mixed.
inline std::size_t vdmBufferHash(const OdString& text) {
  return (vdmBufferAddress(text) >> 3) * 0x9E3779B97F4A7C15u >> 32;
}

// Tables that are read without a lock: a bucket is filled once, under the lock, and never changed.
// Bags must not outlive the module that this registry is part of.
class VdmPropertyShapeRegistry {
 public:
  using Step = VdmPropertyShape::Step;

  static VdmPropertyShapeRegistry& instance();

  // The key of a shared shape with this text; null when there is none.
  const OdString* findKey(const OdString& key) const;

  // Known steps, made when they are new; null beyond the limits.
  const Step* stepByAdding(const VdmPropertyShape* from, const OdString& key);
  // See VdmPropertyShape.
  const Step* likelyStep(const VdmPropertyShape* from) const noexcept {
    return (from == nullptr ? m_firstStep : from->m_lastStep).load(std::memory_order_acquire);
  }
  OdUInt32 expectedSize(const VdmPropertyShape* from) const noexcept;
  const Step* stepByRemoving(const VdmPropertyShape* from, OdUInt32 slot);

 private:
  // Twice what can be in them: each shape brings one key at most.
  static constexpr std::size_t kKeyBuckets = std::size_t{2} * VdmPropertyShape::kMaxShapes;
  static constexpr std::size_t kMaxSteps = std::size_t{4} * VdmPropertyShape::kMaxShapes;
  static constexpr std::size_t kStepBuckets = 2 * kMaxSteps;
  template <class T, std::size_t n>
  using Buckets = std::array<std::atomic<const T*>, n>;

  VdmPropertyShapeRegistry() = default;

  const Step* findStep(const VdmPropertyShape* from, const OdString& key, bool isRemoval) const;
  // The rest under the lock.
  const OdString& intern(const OdString& key);
  const VdmPropertyShape* shapeOf(std::vector<OdString> sortedKeys);
  const Step* makeStep(const Step& step);

  Buckets<OdString, kKeyBuckets> m_keyBuckets{};
  Buckets<Step, kStepBuckets> m_stepBuckets{};
  std::atomic<const Step*> m_firstStep{nullptr};  // last taken from the empty shape

  std::mutex m_mutex;
  std::deque<OdString> m_keys;
  std::deque<Step> m_steps;
  std::deque<VdmPropertyShape> m_shapes;
  std::unordered_multimap<std::size_t, const VdmPropertyShape*> m_shapesByContent;
};
