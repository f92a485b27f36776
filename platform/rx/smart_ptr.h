// Reference-holding pointer to objects with run-time classes.
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

#include "platform/base/export.h"
#include "platform/rx/rx_object.h"

enum OdRxObjMod { kOdRxObjAttach = 0 };

/// Out-of-line failures, so that the pointer stays small where it is inlined.
[[noreturn]] OD_API void odrxRaiseNullPointer();
[[noreturn]] OD_API void odrxRaiseWrongClass(const OdRxObject* object, const OdRxClass* wanted);
/// Converts an open reference of a database object (write, notify) into a plain one.
OD_API void odrxMakePlain(OdRxObject* object, unsigned tag);

/// Holds one reference of an object, in one word: the address and, in its two low bits, the tag
/// that says what the reference means (OdRxReferenceTag). Copies hold references of the same tag.
///
/// 1. From a raw pointer: a plain reference is added; with kOdRxObjAttach, or attach(), the
///    caller's reference is taken over.
/// 2. From a smart pointer of a derived class: as it is. Of any other class: what queryX gives, or
///    OdError_NotThatKindOfClass when that is nothing; null stays null. T::cast() gives null
///    instead.
/// 3. Going through a null pointer with -> raises OdError(eNullPointer).
///
/// T may be incomplete where a pointer is only declared.
template <class T>
class OdSmartPtr {
 public:
  using element_type = T;

  constexpr OdSmartPtr() noexcept = default;
  constexpr OdSmartPtr(std::nullptr_t) noexcept {}
  OdSmartPtr(const T* object) { reset(object, kOdRxRead); }
  OdSmartPtr(T* object, OdRxObjMod) noexcept : m_bits(pack(object, kOdRxRead)) {}
  OdSmartPtr(const OdSmartPtr& other) : m_bits(other.m_bits) { addReference(); }
  OdSmartPtr(OdSmartPtr&& other) noexcept : m_bits(std::exchange(other.m_bits, 0)) {}

  template <class U>
  requires(!std::same_as<T, U>) OdSmartPtr(const OdSmartPtr<U>& other) { convertFrom(other); }
  template <class U>
  requires(!std::same_as<T, U> && std::convertible_to<U*, T*>) OdSmartPtr(OdSmartPtr<U>&& other)
  noexcept : m_bits(pack(other.get(), other.tag())) { other.m_bits = 0; }
  ~OdSmartPtr() { dropReference(); }

  OdSmartPtr& operator=(const OdSmartPtr& other) {
    OdSmartPtr(other).swap(*this);
    return *this;
  }
  OdSmartPtr& operator=(OdSmartPtr&& other) noexcept {
    OdSmartPtr(std::move(other)).swap(*this);
    return *this;
  }
  template <class U>
  requires(!std::same_as<T, U>) OdSmartPtr& operator=(const OdSmartPtr<U>& other) {
    OdSmartPtr(other).swap(*this);
    return *this;
  }
  OdSmartPtr& operator=(const T* object) {
    OdSmartPtr(object).swap(*this);
    return *this;
  }
  OdSmartPtr& operator=(std::nullptr_t) noexcept {
    release();
    return *this;
  }

  /// Takes over a reference of the given tag.
  static OdSmartPtr attachTagged(T* object, unsigned tag) noexcept {
    OdSmartPtr pointer;
    pointer.m_bits = pack(object, tag);
    return pointer;
  }
  /// Takes over the caller's plain reference.
  void attach(const T* object) { OdSmartPtr(const_cast<T*>(object), kOdRxObjAttach).swap(*this); }
  /// Hands the reference over to the caller as a plain one; one that keeps an object open for write
  /// or notification closes that state and leaves a plain reference instead.
  [[nodiscard]] T* detach() {
    T* object = get();
    if (object && tag() != kOdRxRead) odrxMakePlain(asRxObject(object), tag());
    m_bits = 0;
    return object;
  }
  /// Drops the reference; the pointer is null afterwards.
  void release() noexcept { OdSmartPtr().swap(*this); }
  void swap(OdSmartPtr& other) noexcept { std::swap(m_bits, other.m_bits); }

  [[nodiscard]] T* get() const noexcept { return reinterpret_cast<T*>(m_bits & ~kTagMask); }
  [[nodiscard]] unsigned tag() const noexcept { return static_cast<unsigned>(m_bits & kTagMask); }
  [[nodiscard]] bool isNull() const noexcept { return m_bits == 0; }
  operator T*() const noexcept { return get(); }
  T* operator->() const {
    if (m_bits == 0) [[unlikely]]
      odrxRaiseNullPointer();
    return get();
  }
  T& operator*() const { return *operator->(); }

 private:
  template <class U>
  friend class OdSmartPtr;
  static constexpr std::uintptr_t kTagMask = 3;

  static OdRxObject* asRxObject(const T* object) noexcept {
    return const_cast<std::remove_const_t<T>*>(object);
  }
  /// As T, so that a class that seals its counting is called without a detour.
  static std::remove_const_t<T>* mutableObject(std::uintptr_t bits) noexcept {
    return const_cast<std::remove_const_t<T>*>(reinterpret_cast<T*>(bits & ~kTagMask));
  }
  static std::uintptr_t pack(const T* object, unsigned tag) noexcept {
    return object ? reinterpret_cast<std::uintptr_t>(object) | tag : 0;
  }
  void reset(const T* object, unsigned tag) {
    m_bits = pack(object, tag);
    addReference();
  }
  void addReference() {
    if (m_bits == 0) return;
    if (tag() == kOdRxRead) {
      mutableObject(m_bits)->addRef();
    } else {
      mutableObject(m_bits)->addRefTagged(tag());
    }
  }
  void dropReference() {
    if (m_bits == 0) return;
    const std::uintptr_t bits = std::exchange(m_bits, 0);
    auto* object = mutableObject(bits);
    if ((bits & kTagMask) == kOdRxRead) {
      object->release();
    } else {
      object->releaseTagged(static_cast<unsigned>(bits & kTagMask));
    }
  }
  template <class U>
  void convertFrom(const OdSmartPtr<U>& other) {
    if (other.isNull()) return;
    if constexpr (std::convertible_to<U*, T*>) {
      reset(other.get(), other.tag());
    } else {
      OdRxObject* found = other.get()->queryX(T::desc());
      if (!found) odrxRaiseWrongClass(other.get(), T::desc());
      adoptQueried(found, other.tag());
    }
  }
  /// `found` comes from queryX with a plain reference, which becomes one of the given tag.
  void adoptQueried(OdRxObject* found, unsigned tag) {
    OdSmartPtr plain(static_cast<T*>(found), kOdRxObjAttach);
    if (tag == kOdRxRead) {
      swap(plain);
    } else {
      reset(plain.get(), tag);
    }
  }

  std::uintptr_t m_bits = 0;
};

template <class T>
struct std::hash<OdSmartPtr<T>> {
  std::size_t operator()(const OdSmartPtr<T>& pointer) const noexcept {
    return std::hash<T*>()(pointer.get());
  }
};

template <class T>
template <class... Arguments>
OdSmartPtr<T> OdRxObjectImpl<T>::createObject(Arguments&&... arguments) {
  return OdSmartPtr<T>(new OdRxObjectImpl<T>(std::forward<Arguments>(arguments)...),
                       kOdRxObjAttach);
}

template <class T>
template <class... Arguments>
OdSmartPtr<T> OdRxSingleObjectImpl<T>::createObject(Arguments&&... arguments) {
  return OdSmartPtr<T>(new OdRxSingleObjectImpl<T>(std::forward<Arguments>(arguments)...),
                       kOdRxObjAttach);
}

template <class T, class... Arguments>
OdSmartPtr<T> odrxMake(Arguments&&... arguments) {
  if constexpr (requires { typename T::OdSelfCounted; }) {
    return OdSmartPtr<T>(new T(std::forward<Arguments>(arguments)...), kOdRxObjAttach);
  } else {
    return OdRxObjectImpl<T>::createObject(std::forward<Arguments>(arguments)...);
  }
}
