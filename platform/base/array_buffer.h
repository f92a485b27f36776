// The counted buffer below OdArray, and the two policies for its elements.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "platform/base/raise.h"
#include "platform/base/types.h"

/// Elements are bits: they are copied and moved as memory and never destroyed. New ones are zero.
template <class T>
struct OdMemoryAllocator {
  static constexpr bool kBitwise = true;
};

/// Elements are objects: their constructors and destructors run. Types for which that makes no
/// difference are handled as memory all the same.
template <class T>
struct OdObjectsAllocator {
  static constexpr bool kBitwise = false;
};

/// Functions over a buffer that is named by the pointer to its first element; a null pointer is a
/// buffer of no elements. The header lies before the elements.
template <class T, class A>
struct OdArrayBuffer {
  struct Header {
    std::atomic<OdInt32> references;
    OdUInt32 capacity;
    OdUInt32 size;
    OdUInt32 reserved;
  };

  static Header* header(T* data) noexcept { return reinterpret_cast<Header*>(data) - 1; }
  static const Header* header(const T* data) noexcept {
    return reinterpret_cast<const Header*>(data) - 1;
  }
  static OdUInt32 size(const T* data) noexcept { return data ? header(data)->size : 0; }
  static OdUInt32 capacity(const T* data) noexcept { return data ? header(data)->capacity : 0; }
  static bool isShared(const T* data) noexcept {
    return data && header(data)->references.load(std::memory_order_acquire) > 1;
  }
  static void addReference(T* data) noexcept {
    if (data) header(data)->references.fetch_add(1, std::memory_order_relaxed);
  }
  static void dropReference(T* data) noexcept {
    if (data && header(data)->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      destroyBuffer(data);
    }
  }

  static OdUInt32 countPlus(OdUInt32 count, OdUInt64 more) {
    if (more > std::numeric_limits<OdUInt32>::max() - count) odRaise(eOutOfMemory);
    return static_cast<OdUInt32>(count + more);
  }
  static OdUInt32 grownCapacity(OdUInt32 capacity, OdUInt32 needed) noexcept {
    constexpr OdUInt32 kSmallest = sizeof(T) >= 32 ? 2 : 4;
    const OdUInt64 grown = OdUInt64{capacity} + capacity / 2;
    const OdUInt64 wanted = std::max<OdUInt64>({grown, needed, kSmallest});
    return static_cast<OdUInt32>(std::min<OdUInt64>(wanted, std::numeric_limits<OdUInt32>::max()));
  }

  /// A new buffer with copies of the first `count` elements; null for a capacity of 0.
  static T* copy(const T* data, OdUInt32 count, OdUInt32 capacity) {
    if (capacity == 0) return nullptr;
    T* fresh = allocate(nullptr, capacity);
    if (count == 0) return fresh;
    Guard guard{fresh};
    copyInto(fresh, data, count);
    header(fresh)->size = count;
    guard.data = nullptr;
    return fresh;
  }

  /// An unshared buffer made larger; it replaces the old one, which stays intact after an error.
  static T* regrow(T* data, OdUInt32 capacity) {
    if (!data) return allocate(nullptr, capacity);
    if constexpr (kTrivial) {
      return allocate(data, capacity);
    } else {
      T* fresh = allocate(nullptr, capacity);
      Guard guard{fresh};
      const OdUInt32 count = size(data);
      if constexpr (std::is_nothrow_move_constructible_v<T> || !std::is_copy_constructible_v<T>) {
        std::uninitialized_move_n(data, count, fresh);
      } else {
        std::uninitialized_copy_n(data, count, fresh);
      }
      header(fresh)->size = count;
      guard.data = nullptr;
      dropReference(data);
      return fresh;
    }
  }

  /// The functions below need an unshared buffer with enough room.
  static void constructDefault(T* data, OdUInt32 from, OdUInt32 to) {
    std::uninitialized_value_construct(data + from, data + to);
    header(data)->size = to;
  }
  static void constructCopies(T* data, OdUInt32 from, OdUInt32 to, const T& value) {
    std::uninitialized_fill(data + from, data + to, value);
    header(data)->size = to;
  }
  static void constructFrom(T* data, const T* values, OdUInt32 count) {
    copyInto(data + size(data), values, count);
    header(data)->size += count;
  }
  template <class... Arguments>
  static T& constructOne(T* data, OdUInt32 index, Arguments&&... arguments) {
    T* element = ::new (static_cast<void*>(data + index)) T(std::forward<Arguments>(arguments)...);
    header(data)->size = index + 1;
    return *element;
  }
  static void destroyFrom(T* data, OdUInt32 count) noexcept {
    if (!data) return;
    const OdUInt32 end = header(data)->size;
    header(data)->size = count;
    if constexpr (!kTrivial) std::destroy(data + count, data + end);
  }

 private:
  static_assert(!A::kBitwise || std::is_trivially_copyable_v<T>,
                "OdMemoryAllocator copies elements as memory");
  static_assert(alignof(T) <= sizeof(Header), "the header keeps the alignment of the elements");
  static constexpr bool kTrivial = A::kBitwise || std::is_trivially_copyable_v<T>;

  /// Frees a buffer whose elements could not be made.
  struct Guard {
    T* data;
    ~Guard() {
      if (data) std::free(header(data));
    }
  };

  /// Out of line: it is rare, and code around an array stays small.
  [[gnu::noinline]] static void destroyBuffer(T* data) noexcept {
    destroyFrom(data, 0);
    std::free(header(data));
  }
  static T* allocate(T* old, OdUInt32 capacity) {
    constexpr std::size_t kMaxCount =
        (static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) - sizeof(Header)) /
        sizeof(T);
    void* block = nullptr;
    if (capacity <= kMaxCount) {
      block = std::realloc(old ? header(old) : nullptr, sizeof(Header) + capacity * sizeof(T));
    }
    if (!block) odRaise(eOutOfMemory);
    if (!old) ::new (block) Header{1, capacity, 0, 0};
    auto* head = static_cast<Header*>(block);
    head->capacity = capacity;
    return reinterpret_cast<T*>(head + 1);
  }
  static void copyInto(T* to, const T* from, OdUInt32 count) {
    if constexpr (kTrivial) {
      std::memcpy(static_cast<void*>(to), from, count * sizeof(T));
    } else {
      std::uninitialized_copy_n(from, count, to);
    }
  }
};
