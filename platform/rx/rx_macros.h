// Macros that give a class its run-time class members.
#pragma once

#include <type_traits>

#include "platform/base/raise.h"
#include "platform/rx/rx_class.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"

/// Used by the macros: the description variables of a class are filled and cleared here.
OD_API void odrxRegister(OdRxClass*& holder, const OdRxClass::Row& row);
OD_API void odrxUnregister(OdRxClass*& holder, const wchar_t* name);
/// queryX of one class: the object or its class's extension, with an added reference, or null.
OD_API OdRxObject* odrxQuery(const OdRxObject* object, const OdRxClass* objectClass,
                             const OdRxClass* protocol);

// In the class definition, first of all. Declares desc(), isA(), queryX(), cast(), createObject()
// (defined for instantiable classes only), rxInit(), rxUninit(), and ends in `public:`.
// cast() gives null for null and for objects of another class. From a raw pointer it holds a plain
// reference; from a smart pointer one of the same tag, so that an object stays open as it was.
#define OD_RX_DECLARE_MEMBERS(ClassName)                               \
 public:                                                               \
  static OdRxClass* desc() noexcept;                                   \
  OdRxClass* isA() const override;                                     \
  OdRxObject* queryX(const OdRxClass* protocol) const override;        \
  static OdSmartPtr<ClassName> cast(const OdRxObject* object);         \
  template <class Other>                                               \
  static OdSmartPtr<ClassName> cast(const OdSmartPtr<Other>& object) { \
    return odrxCast<ClassName>(object);                                \
  }                                                                    \
  static OdSmartPtr<ClassName> createObject();                         \
  static OdRxObjectPtr pseudoConstructor();                            \
  static void rxInit();                                                \
  static void rxInit(AppNameChangeFuncPtr appNameChange);              \
  static void rxUninit();                                              \
                                                                       \
 private:                                                              \
  static OdRxClass* g_pDesc;                                           \
                                                                       \
 public:

// In one source file: the members that all classes share. `Constructor` is a pseudo-constructor or
// null; the remaining columns are those of newOdRxClass.
#define OD_RX_DEFINE_COMMON(ClassName, Parent, Name, Constructor, DwgVer, MaintVer, Flags,      \
                            DxfName, AppText)                                                   \
  OdRxClass* ClassName::g_pDesc = nullptr;                                                      \
  OdRxClass* ClassName::desc() noexcept { return g_pDesc; }                                     \
  OdRxClass* ClassName::isA() const { return g_pDesc; }                                         \
  OdRxObject* ClassName::queryX(const OdRxClass* protocol) const {                              \
    OdRxObject* found = odrxQuery(this, g_pDesc, protocol);                                     \
    return found ? found : Parent::queryX(protocol);                                            \
  }                                                                                             \
  OdSmartPtr<ClassName> ClassName::cast(const OdRxObject* object) {                             \
    return odrxCast<ClassName>(object);                                                         \
  }                                                                                             \
  void ClassName::rxInit() { rxInit(nullptr); }                                                 \
  void ClassName::rxInit(AppNameChangeFuncPtr appNameChange) {                                  \
    odrxRegister(g_pDesc, {Name, Parent::desc(), Constructor, DwgVer, MaintVer, Flags, DxfName, \
                           AppText, appNameChange});                                            \
  }                                                                                             \
  void ClassName::rxUninit() { odrxUnregister(g_pDesc, Name); }

// A class that is never created by name.
#define OD_RX_DEFINE_ABSTRACT(ClassName, Parent, Name) \
  OD_RX_DEFINE_COMMON(ClassName, Parent, Name, nullptr, 0, 0, 0, OdString(), OdString())

// An instantiable class whose objects are not filed under a DXF name.
#define OD_RX_DEFINE(ClassName, Parent, Name)                                                      \
  OD_RX_DEFINE_COMMON(ClassName, Parent, Name, &ClassName::pseudoConstructor, 0, 0, 0, OdString(), \
                      OdString())                                                                  \
  OD_RX_DEFINE_CREATION(ClassName)

// An instantiable class of database objects.
#define OD_RX_DEFINE_DB(ClassName, Parent, Name, DwgVer, MaintVer, Flags, DxfName, AppText)     \
  OD_RX_DEFINE_COMMON(ClassName, Parent, Name, &ClassName::pseudoConstructor, DwgVer, MaintVer, \
                      Flags, DxfName, AppText)                                                  \
  OD_RX_DEFINE_CREATION(ClassName)

#define OD_RX_DEFINE_CREATION(ClassName)                                            \
  OdSmartPtr<ClassName> ClassName::createObject() { return odrxMake<ClassName>(); } \
  OdRxObjectPtr ClassName::pseudoConstructor() { return ClassName::createObject(); }

/// The object as a T with a plain reference; null for null and for objects of another class.
template <class T>
OdSmartPtr<T> odrxCast(const OdRxObject* object) {
  OdRxObject* found = object && T::desc() ? object->queryX(T::desc()) : nullptr;
  return OdSmartPtr<T>(static_cast<T*>(found), kOdRxObjAttach);
}

/// The same with a reference of the pointer's tag.
template <class T, class Other>
OdSmartPtr<T> odrxCast(const OdSmartPtr<Other>& object) {
  OdSmartPtr<T> plain = odrxCast<T>(static_cast<const OdRxObject*>(object.get()));
  if (plain.isNull() || object.tag() == kOdRxRead) return plain;
  static_cast<OdRxObject*>(plain.get())->addRefTagged(object.tag());
  return OdSmartPtr<T>::attachTagged(plain.get(), object.tag());
}
