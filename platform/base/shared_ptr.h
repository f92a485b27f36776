// Shared pointer of one thread, for values that are not OdRxObjects.
#pragma once

#include <concepts>
#include <cstddef>
#include <utility>

#include "platform/base/types.h"

/// Shares the ownership of one value: a pointer to the value and one to a separately allocated
/// 32-bit count, which is not atomic. A pointer and its copies belong to one thread at a time.
/// A value is deleted as the class that the last pointer names: a base class that values are held
/// by needs a virtual destructor. The class may be incomplete where a pointer is only declared.
template <class T>
class OdSharedPtr {
 public:
  constexpr OdSharedPtr() noexcept = default;
  constexpr OdSharedPtr(std::nullptr_t) noexcept {}

  /// Takes over a value made with `new`. When the count cannot be allocated, the value is deleted.
  OdSharedPtr(T* object) : m_object(object) {
    if (!object) return;
    try {
      m_count = new OdInt32(1);
    } catch (...) {
      delete object;
      throw;
    }
  }

  OdSharedPtr(const OdSharedPtr& other) noexcept
      : m_object(other.m_object), m_count(other.m_count) {
    addReference();
  }
  OdSharedPtr(OdSharedPtr&& other) noexcept
      : m_object(std::exchange(other.m_object, nullptr)),
        m_count(std::exchange(other.m_count, nullptr)) {}

  template <class U>
  requires std::convertible_to<U*, T*> OdSharedPtr(const OdSharedPtr<U>& other)
  noexcept : m_object(other.m_object), m_count(other.m_count) { addReference(); }
  template <class U>
  requires std::convertible_to<U*, T*> OdSharedPtr(OdSharedPtr<U>&& other)
  noexcept
      : m_object(std::exchange(other.m_object, nullptr)),
        m_count(std::exchange(other.m_count, nullptr)) {}

  ~OdSharedPtr() { dropReference(); }

  /// The argument is taken by value, so a value that owns this pointer may be assigned from it.
  OdSharedPtr& operator=(OdSharedPtr other) noexcept {
    swap(other);
    return *this;
  }

  [[nodiscard]] T* get() const noexcept { return m_object; }
  T* operator->() const noexcept { return m_object; }
  T& operator*() const noexcept { return *m_object; }
  [[nodiscard]] bool isNull() const noexcept { return !m_object; }
  explicit operator bool() const noexcept { return m_object != nullptr; }
  /// Number of pointers that share the value; 0 for a null pointer.
  [[nodiscard]] OdInt32 refCount() const noexcept { return m_count ? *m_count : 0; }

  void swap(OdSharedPtr& other) noexcept {
    std::swap(m_object, other.m_object);
    std::swap(m_count, other.m_count);
  }

  template <class U>
  bool operator==(const OdSharedPtr<U>& other) const noexcept {
    return m_object == other.get();
  }
  bool operator==(std::nullptr_t) const noexcept { return !m_object; }

 private:
  template <class U>
  friend class OdSharedPtr;

  void addReference() noexcept {
    if (m_count) ++*m_count;
  }
  void dropReference() noexcept {
    if (m_count && --*m_count == 0) destroy(m_object, m_count);
  }
  /// Out of line: it is rare, and code around a pointer stays small.
  [[gnu::noinline]] static void destroy(T* object, OdInt32* count) noexcept {
    delete count;
    delete object;
  }

  T* m_object = nullptr;
  OdInt32* m_count = nullptr;
};
