// Root of the run-time classes, and the failures of smart pointers.
#include "platform/rx/rx_object.h"

#include "platform/base/error.h"
#include "platform/rx/rx_class.h"
#include "platform/rx/rx_macros.h"

namespace {

OdRxClass* g_objectClass = nullptr;

OdString classNameOf(const OdRxClass* rxClass) {
  return rxClass ? rxClass->name() : OdString(L"an unregistered class");
}

}  // namespace

OdRxObject::~OdRxObject() = default;

OdRxClass* OdRxObject::desc() noexcept { return g_objectClass; }
OdRxClass* OdRxObject::isA() const { return g_objectClass; }
void OdRxObject::rxInit() { odrxRegister(g_objectClass, {.name = L"OdRxObject"}); }
void OdRxObject::rxUninit() { odrxUnregister(g_objectClass, L"OdRxObject"); }

OdSmartPtr<OdRxObject> OdRxObject::cast(const OdRxObject* object) { return OdRxObjectPtr(object); }

OdInt32 OdRxObject::numRefs() const { return 1; }
void OdRxObject::addRefTagged(unsigned) { addRef(); }
void OdRxObject::releaseTagged(unsigned) { release(); }

OdRxObject* OdRxObject::queryX(const OdRxClass* protocol) const {
  return odrxQuery(this, g_objectClass, protocol);
}

OdRxObject* OdRxObject::x(const OdRxClass* protocol) const {
  OdRxObject* found = queryX(protocol);
  if (!found) odrxRaiseWrongClass(this, protocol);
  return found;
}

bool OdRxObject::isKindOf(const OdRxClass* rxClass) const {
  const OdRxClass* own = isA();
  return own && own->isDerivedFrom(rxClass);
}

OdSmartPtr<OdRxObject> OdRxObject::clone() const {
  OdRxObjectPtr copy = isA() ? isA()->create() : OdRxObjectPtr();
  if (copy.isNull()) throw OdError(eNotImplementedForClass, L"clone of " + classNameOf(isA()));
  copy->copyFrom(this);
  return copy;
}

void OdRxObject::copyFrom(const OdRxObject*) {
  throw OdError(eNotImplementedForClass, L"copyFrom of " + classNameOf(isA()));
}

OdRxObject* odrxQuery(const OdRxObject* object, const OdRxClass* objectClass,
                      const OdRxClass* protocol) {
  if (!objectClass || !protocol) return nullptr;
  if (objectClass->isDerivedFrom(protocol)) {
    auto* found = const_cast<OdRxObject*>(object);
    found->addRef();
    return found;
  }
  return objectClass->getX(protocol).detach();
}

void odrxRaiseNullPointer() { odRaise(eNullPointer); }

void odrxRaiseWrongClass(const OdRxObject* object, const OdRxClass* wanted) {
  throw OdError_NotThatKindOfClass(classNameOf(object->isA()), classNameOf(wanted));
}

void odrxMakePlain(OdRxObject* object, unsigned tag) {
  object->addRef();
  object->releaseTagged(tag);
}
