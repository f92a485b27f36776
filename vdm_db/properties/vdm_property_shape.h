// Key lists of property bags, shared by all bags that have the same keys.
#pragma once

#include <atomic>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/base/non_copyable.h"
#include "platform/base/string.h"
#include "platform/base/types.h"

class VdmPropertyShape;

// What leads from one shape to another: a key that is added or taken away.
struct VdmPropertyShapeStep {
  const VdmPropertyShape* from;
  OdString key;
  bool isRemoval;
  const VdmPropertyShape* to;
  OdUInt32 slot;  // of the key, in the shape that has it
};

// Which keys a bag has, and in which of its slots the value of each lies.
//
// 1. A shared shape is immutable, lives as long as the module, and holds at most kMaxSharedKeys
//    keys; the value of the n-th key in key order lies in slot n. Bags of the same keys have the
//    same shape, whatever way they came to them: a step, kept for good, leads from shape and key to
//    the next shape. The keys are interned, so that strings that come from a shape are found again
//    by the address of their characters.
// 2. Looking up in shared shapes and taking known steps needs no lock; making a shape takes one.
// 3. There are at most kMaxShapes shared shapes. A bag beyond these limits owns a private shape,
//    which changes with it. Its slots are in order of arrival.
// 4. A null pointer is the shape without keys.
class VdmPropertyShape : OdNonCopyable {
 public:
  static constexpr OdUInt32 kNoSlot = ~OdUInt32{0};
  static constexpr OdUInt32 kMaxSharedKeys = 64;
  static constexpr OdUInt32 kMaxShapes = 4096;

  using Step = VdmPropertyShapeStep;

  explicit VdmPropertyShape(std::vector<OdString> sortedKeys);

  [[nodiscard]] OdUInt32 size() const noexcept { return static_cast<OdUInt32>(m_keys.size()); }
  [[nodiscard]] bool isShared() const noexcept { return m_index == nullptr; }
  [[nodiscard]] const OdString& keyOfSlot(OdUInt32 slot) const noexcept { return m_keys[slot]; }
  // The slot of a key by its position in key order.
  [[nodiscard]] OdUInt32 slotAt(OdUInt32 position) const {
    return isShared() ? position : privateSlotAt(position);
  }
  // kNoSlot when the key is not there.
  [[nodiscard]] OdUInt32 find(const OdString& key) const;
  // True for a key after all others, as a reader of sorted keys mostly meets: one comparison shows
  // that the shape does not have it.
  [[nodiscard]] bool isBehindAll(const OdString& key) const {
    return isShared() && m_keys.back() < key;
  }

  // The shape with one more key, which it did not have, and the slot for its value: from a shared
  // shape the slots behind it move up by one. A private shape is changed in place.
  static const VdmPropertyShape* add(const VdmPropertyShape* shape, const OdString& key,
                                     OdUInt32& slot);
  // The shape without the key of a slot: in a shared shape the slots behind it move down by one,
  // in a private one the last slot takes its place.
  static const VdmPropertyShape* remove(const VdmPropertyShape* shape, OdUInt32 slot);
  // The step by which bags that were like this one got their next key, which this shape has not;
  // null when there is none. A bag that takes it has the shape it leads to.
  static const Step* likelyStep(const VdmPropertyShape* shape) noexcept;
  // Number of keys at the end of the steps last taken from here on: what a bag on the same way will
  // probably hold, at most kMaxSharedKeys.
  static OdUInt32 expectedSize(const VdmPropertyShape* shape) noexcept;
  // The shape for a copy of the bag; and the end of a bag's use of its shape.
  static const VdmPropertyShape* copy(const VdmPropertyShape* shape);
  static void release(const VdmPropertyShape* shape) noexcept;

 private:
  // What a private shape needs beyond its keys.
  struct PrivateIndex {
    std::unordered_map<OdString, OdUInt32> slots;
    std::vector<OdUInt32> order;  // slots in key order, when sorted
    bool isSorted = true;
  };
  friend class VdmPropertyShapeRegistry;

  struct PrivateTag {};
  VdmPropertyShape(PrivateTag, std::vector<OdString> keys);
  // A private shape has one bag, which made it and may change it; a shared one is never passed
  // here.
  static VdmPropertyShape* changeable(const VdmPropertyShape* shape) {
    return const_cast<VdmPropertyShape*>(shape);
  }
  OdUInt32 privateSlotAt(OdUInt32 position) const;
  OdUInt32 findBuffer(const OdString& key) const noexcept;
  const VdmPropertyShape* addPrivate(const OdString& key, OdUInt32& slot);
  const VdmPropertyShape* removePrivate(OdUInt32 slot);

  std::vector<OdString> m_keys;    // by slot
  std::vector<OdUInt8> m_buckets;  // shared, many keys: slot + 1 by buffer address, 0 free
  // The step that was taken last by adding a key: bags of a kind are filled one like the other.
  mutable std::atomic<const Step*> m_lastStep{nullptr};
  std::unique_ptr<PrivateIndex> m_index;
};
