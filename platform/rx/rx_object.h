// Root of the run-time classes, and the templates that add a reference count to a class.
#pragma once

#include <atomic>
#include <cstddef>
#include <utility>

#include "platform/base/export.h"
#include "platform/base/types.h"

class OdRxClass;
class OdRxObject;
template <class T>
class OdSmartPtr;
using OdRxObjectPtr = OdSmartPtr<OdRxObject>;

/// What a reference means. Plain objects count all alike; database objects count open states.
enum OdRxReferenceTag : unsigned {
  kOdRxRead = 0,  // also the tag of every plain reference
  kOdRxWrite = 1,
  kOdRxNotify = 2,
};

/// Base of everything with a run-time class. The class that completes it counts its references:
/// OdRxObjectImpl, OdRxSingleObjectImpl and OdStaticRxObject below, or the class itself.
/// A new object has one reference. Not to be copied; clone() and copyFrom() are the way.
class OD_API OdRxObject {
 public:
  OdRxObject(const OdRxObject&) = delete;
  OdRxObject& operator=(const OdRxObject&) = delete;
  virtual ~OdRxObject();

  static OdRxClass* desc() noexcept;
  /// Null when the object is of another class.
  static OdSmartPtr<OdRxObject> cast(const OdRxObject* object);
  static void rxInit();
  static void rxUninit();

  virtual void addRef() = 0;
  /// Destroys the object with its last reference.
  virtual void release() = 0;
  [[nodiscard]] virtual OdInt32 numRefs() const;
  /// References that keep an open state; here they are plain references.
  virtual void addRefTagged(unsigned tag);
  virtual void releaseTagged(unsigned tag);

  /// The run-time class; null while the class is not registered.
  [[nodiscard]] virtual OdRxClass* isA() const;
  /// This object when it is of the class or below it, otherwise the protocol extension that is
  /// attached to its class for it, with an added reference; null when there is neither.
  virtual OdRxObject* queryX(const OdRxClass* protocol) const;
  /// As queryX, but raises OdError_NotThatKindOfClass where that gives null.
  OdRxObject* x(const OdRxClass* protocol) const;
  /// Whether the object's own class is `rxClass` or below it; extensions do not count.
  bool isKindOf(const OdRxClass* rxClass) const;

  /// A copy with one reference. Raises OdError(eNotImplementedForClass) unless the class can
  /// create() and copyFrom().
  [[nodiscard]] virtual OdSmartPtr<OdRxObject> clone() const;
  /// Takes over the state of another object. Raises OdError(eNotImplementedForClass) by default.
  virtual void copyFrom(const OdRxObject* source);

 protected:
  OdRxObject() noexcept = default;
};

/// Completes a class with an atomic reference count. Made by createObject(), with one reference.
template <class T>
class OdRxObjectImpl : public T {
 public:
  using T::T;
  OdRxObjectImpl() = default;

  void addRef() override { m_references.fetch_add(1, std::memory_order_relaxed); }
  void release() override {
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }
  [[nodiscard]] OdInt32 numRefs() const override {
    return m_references.load(std::memory_order_relaxed);
  }

  template <class... Arguments>
  static OdSmartPtr<T> createObject(Arguments&&... arguments);

 private:
  std::atomic<OdInt32> m_references{1};
};

/// The same without atomic operations, for objects that stay in one thread.
template <class T>
class OdRxSingleObjectImpl : public T {
 public:
  using T::T;
  OdRxSingleObjectImpl() = default;

  void addRef() override { ++m_references; }
  void release() override {
    if (--m_references == 0) delete this;
  }
  [[nodiscard]] OdInt32 numRefs() const override { return m_references; }

  template <class... Arguments>
  static OdSmartPtr<T> createObject(Arguments&&... arguments);

 private:
  OdInt32 m_references = 1;
};

/// Completes a class for objects with static or automatic lifetime: references are not counted.
template <class T>
class OdStaticRxObject : public T {
 public:
  using T::T;
  OdStaticRxObject() = default;

  void addRef() override {}
  void release() override {}
  [[nodiscard]] OdInt32 numRefs() const override { return 1; }
};

/// Creates an object of a class with one reference. A class that counts its own references says so
/// by `using OdSelfCounted = void;`; every other one is completed by OdRxObjectImpl.
template <class T, class... Arguments>
OdSmartPtr<T> odrxMake(Arguments&&... arguments);

#include "platform/rx/smart_ptr.h"
