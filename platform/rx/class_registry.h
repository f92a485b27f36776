// The registry of run-time classes; private to platform/rx.
#pragma once

#include <atomic>
#include <memory>
#include <shared_mutex>
#include <unordered_map>
#include <vector>

#include "platform/rx/rx_class.h"

/// Owns all classes. The lock covers the tables here and the extension and overrule lists of the
/// classes; code of others (constructors, destructors, callbacks) never runs under it.
class OdRxClassRegistry {
 public:
  static OdRxClassRegistry& instance();

  OdRxClass* add(const OdRxClass::Row& row);
  void remove(OdRxClass* rxClass);
  void setHolder(OdRxClass* rxClass, OdRxClass** holder);

  OdRxClass* byName(const OdString& name) const;
  OdRxClass* byDxfName(const OdString& dxfName) const;
  std::vector<OdRxClass*> classes() const;
  OdUInt64 generation() const noexcept { return m_generation.load(std::memory_order_acquire); }
  std::shared_mutex& mutex() const noexcept { return m_mutex; }

 private:
  void check(const OdRxClass* rxClass) const;
  void dropDxfName(const OdRxClass* rxClass);
  void dropAsProtocol(const OdRxClass* rxClass, std::vector<OdRxObjectPtr>& dropped);

  mutable std::shared_mutex m_mutex;
  std::vector<OdRxClass*> m_order;
  std::unordered_map<OdString, OdRxClass*> m_byName;
  std::unordered_map<OdString, OdRxClass*> m_byDxfName;
  std::atomic<OdUInt64> m_generation{0};
};
