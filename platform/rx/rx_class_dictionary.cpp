// OdRxClassDictionary and the public functions of registration, all upon the one registry.
#include "platform/base/error.h"
#include "platform/rx/class_registry.h"
#include "platform/rx/rx_class.h"
#include "platform/rx/rx_macros.h"

// ---- Registration

OdRxClass* newOdRxClass(const OdString& name, OdRxClass* parent,
                        OdPseudoConstructorType constructor, int dwgVer, int maintVer,
                        unsigned proxyFlags, const OdString& dxfName, const OdString& appName,
                        AppNameChangeFuncPtr appNameChange) {
  return OdRxClassRegistry::instance().add(
      {name, parent, constructor, dwgVer, maintVer, proxyFlags, dxfName, appName, appNameChange});
}

void deleteOdRxClass(OdRxClass* rxClass) { OdRxClassRegistry::instance().remove(rxClass); }

void odrxSetClassHolder(OdRxClass* rxClass, OdRxClass** holder) {
  OdRxClassRegistry::instance().setHolder(rxClass, holder);
}

void odrxRegister(OdRxClass*& holder, const OdRxClass::Row& row) {
  if (holder) throw OdError(eClassAlreadyRegistered, row.name);
  holder = OdRxClassRegistry::instance().add(row);
  odrxSetClassHolder(holder, &holder);
}

void odrxUnregister(OdRxClass*& holder, const wchar_t* name) {
  if (!holder) throw OdError(eClassNotRegistered, name);
  deleteOdRxClass(holder);
}

// ---- Looking up

OdRxClass* OdRxClassDictionary::getAt(const OdString& name) const {
  return OdRxClassRegistry::instance().byName(name);
}

OdRxClass* OdRxClassDictionary::classByDxfName(const OdString& dxfName) const {
  return OdRxClassRegistry::instance().byDxfName(dxfName);
}

OdUInt32 OdRxClassDictionary::numEntries() const { return static_cast<OdUInt32>(classes().size()); }

std::vector<OdRxClass*> OdRxClassDictionary::classes() const {
  return OdRxClassRegistry::instance().classes();
}

OdRxClassDictionary* odrxClassDictionary() {
  static OdRxClassDictionary dictionary;
  return &dictionary;
}

OdUInt64 odrxClassGeneration() noexcept { return OdRxClassRegistry::instance().generation(); }

OdRxObjectPtr odrxCreateObject(const OdString& className) {
  const OdRxClass* rxClass = OdRxClassRegistry::instance().byName(className);
  if (!rxClass) throw OdError(eClassNotRegistered, className);
  return rxClass->create();
}
