// Registration and release of run-time classes.
#include "platform/rx/class_registry.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/base/error.h"
#include "platform/rx/overrule.h"

OdRxClassRegistry& OdRxClassRegistry::instance() {
  // Never destroyed: modules may release their classes while the program ends.
  static OdRxClassRegistry* registry = new OdRxClassRegistry;
  return *registry;
}

OdRxClass* OdRxClassRegistry::add(const OdRxClass::Row& row) {
  if (row.name.isEmpty()) throw OdError(eInvalidInput, L"a class without a name");
  struct Registered final : OdRxObjectImpl<OdRxClass> {
    explicit Registered(const OdRxClass::Row& classRow) : OdRxObjectImpl<OdRxClass>(classRow) {}
  };
  OdSmartPtr<OdRxClass> made(new Registered(row), kOdRxObjAttach);

  const std::unique_lock lock(m_mutex);
  if (m_byName.contains(row.name)) throw OdError(eClassAlreadyRegistered, row.name);
  if (!row.dxfName.isEmpty()) m_byDxfName.try_emplace(row.dxfName, made.get());
  m_byName.emplace(row.name, made.get());
  m_order.push_back(made.get());
  if (row.parent) ++row.parent->m_childCount;
  m_generation.fetch_add(1, std::memory_order_acq_rel);
  return made.detach();
}

void OdRxClassRegistry::check(const OdRxClass* rxClass) const {
  if (!rxClass || std::find(m_order.begin(), m_order.end(), rxClass) == m_order.end()) {
    throw OdError(eClassNotRegistered);
  }
  if (rxClass->m_childCount == 0) return;
  const auto child = std::find_if(m_order.begin(), m_order.end(), [&](const OdRxClass* other) {
    return other->myParent() == rxClass;
  });
  throw OdError(eInvalidInput,
                L"class " + rxClass->name() + L" is released before its child " + (*child)->name());
}

void OdRxClassRegistry::dropDxfName(const OdRxClass* rxClass) {
  const auto entry = m_byDxfName.find(rxClass->dxfName());
  if (entry == m_byDxfName.end() || entry->second != rxClass) return;
  const auto next = std::find_if(m_order.begin(), m_order.end(), [&](const OdRxClass* other) {
    return other->dxfName() == rxClass->dxfName();
  });
  if (next == m_order.end()) {
    m_byDxfName.erase(entry);
  } else {
    entry->second = *next;
  }
}

void OdRxClassRegistry::dropAsProtocol(const OdRxClass* rxClass,
                                       std::vector<OdRxObjectPtr>& dropped) {
  for (OdRxClass* other : m_order) {
    for (auto& extension : other->m_extensions) {
      if (extension.protocol == rxClass) dropped.push_back(std::move(extension.object));
    }
    other->m_extensionCount -= static_cast<OdUInt32>(std::erase_if(
        other->m_extensions, [&](const auto& each) { return each.protocol == rxClass; }));
  }
}

void OdRxClassRegistry::remove(OdRxClass* rxClass) {
  // Extensions and overrules are released after the lock, since that runs code of others.
  std::vector<OdRxObjectPtr> extensions;
  std::vector<OdRxOverrule*> overrules;
  {
    const std::unique_lock lock(m_mutex);
    check(rxClass);
    std::erase(m_order, rxClass);
    m_byName.erase(rxClass->name());
    if (!rxClass->dxfName().isEmpty()) dropDxfName(rxClass);
    if (rxClass->myParent()) --rxClass->myParent()->m_childCount;
    dropAsProtocol(rxClass, extensions);
    for (auto& extension : rxClass->m_extensions) extensions.push_back(std::move(extension.object));
    rxClass->m_extensions.clear();
    rxClass->m_extensionCount = 0;
    overrules = std::exchange(rxClass->m_overrules, {});
    rxClass->m_overruleCount = 0;
    if (rxClass->m_holder) *rxClass->m_holder = nullptr;
    m_generation.fetch_add(1, std::memory_order_acq_rel);
  }
  for (OdRxOverrule* overrule : overrules) overrule->release();
  rxClass->release();
}

void OdRxClassRegistry::setHolder(OdRxClass* rxClass, OdRxClass** holder) {
  const std::unique_lock lock(m_mutex);
  rxClass->m_holder = holder;
}

OdRxClass* OdRxClassRegistry::byName(const OdString& name) const {
  const std::shared_lock lock(m_mutex);
  const auto found = m_byName.find(name);
  return found == m_byName.end() ? nullptr : found->second;
}

OdRxClass* OdRxClassRegistry::byDxfName(const OdString& dxfName) const {
  const std::shared_lock lock(m_mutex);
  const auto found = m_byDxfName.find(dxfName);
  return found == m_byDxfName.end() ? nullptr : found->second;
}

std::vector<OdRxClass*> OdRxClassRegistry::classes() const {
  const std::shared_lock lock(m_mutex);
  return m_order;
}
