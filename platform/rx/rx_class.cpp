// Run-time classes and their protocol extensions.
#include "platform/rx/rx_class.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/base/error.h"
#include "platform/rx/class_registry.h"
#include "platform/rx/rx_macros.h"

namespace {
OdRxClass* g_classClass = nullptr;
}  // namespace

OdRxClass* OdRxClass::desc() noexcept { return g_classClass; }
OdRxClass* OdRxClass::isA() const { return g_classClass; }
void OdRxClass::rxInit() {
  odrxRegister(g_classClass, {.name = L"OdRxClass", .parent = OdRxObject::desc()});
}
void OdRxClass::rxUninit() { odrxUnregister(g_classClass, L"OdRxClass"); }

OdSmartPtr<OdRxClass> OdRxClass::cast(const OdRxObject* object) {
  const auto* rxClass = dynamic_cast<const OdRxClass*>(object);
  return OdSmartPtr<OdRxClass>(rxClass);
}

OdRxClass::OdRxClass(const Row& row) : m_row(row) {
  if (row.parent) m_line = row.parent->m_line;
  m_line.push_back(this);
}

OdRxClass::~OdRxClass() = default;

OdString OdRxClass::appNameFor(int dwgVersion) const {
  OdString text = m_row.appName;
  if (m_row.appNameChange) m_row.appNameChange(this, text, dwgVersion);
  return text;
}

OdRxObjectPtr OdRxClass::create() const {
  return m_row.constructor ? m_row.constructor() : OdRxObjectPtr();
}

// ---- Protocol extensions

OdRxObjectPtr OdRxClass::addX(const OdRxClass* protocol, OdRxObject* extension) {
  if (!protocol || !extension) {
    throw OdError(eInvalidInput, L"null protocol or extension for class " + name());
  }
  if (!extension->isKindOf(protocol)) {
    const OdRxClass* own = extension->isA();
    throw OdError(eWrongObjectType, L"extension of class " + (own ? own->name() : OdString(L"?")) +
                                        L" for protocol " + protocol->name());
  }
  OdRxObjectPtr object(extension);
  const std::unique_lock lock(OdRxClassRegistry::instance().mutex());
  for (Extension& each : m_extensions) {
    if (each.protocol == protocol) {
      each.object.swap(object);
      return object;
    }
  }
  m_extensions.push_back({protocol, std::move(object)});
  m_extensionCount.fetch_add(1, std::memory_order_release);
  return OdRxObjectPtr();
}

OdRxObjectPtr OdRxClass::delX(const OdRxClass* protocol) {
  const std::unique_lock lock(OdRxClassRegistry::instance().mutex());
  const auto found = std::find_if(m_extensions.begin(), m_extensions.end(),
                                  [&](const Extension& each) { return each.protocol == protocol; });
  if (found == m_extensions.end()) return OdRxObjectPtr();
  OdRxObjectPtr object = std::move(found->object);
  m_extensions.erase(found);
  m_extensionCount.fetch_sub(1, std::memory_order_release);
  return object;
}

OdRxObjectPtr OdRxClass::getXLocal(const OdRxClass* protocol) const {
  if (m_extensionCount.load(std::memory_order_acquire) == 0) return OdRxObjectPtr();
  const std::shared_lock lock(OdRxClassRegistry::instance().mutex());
  for (const Extension& each : m_extensions) {
    if (each.protocol == protocol) return each.object;
  }
  return OdRxObjectPtr();
}

OdRxObjectPtr OdRxClass::getX(const OdRxClass* protocol) const {
  for (const OdRxClass* each = this; each; each = each->myParent()) {
    if (OdRxObjectPtr found = each->getXLocal(protocol); !found.isNull()) return found;
  }
  return OdRxObjectPtr();
}
