// Registration and lookup of overrules.
#include "platform/rx/overrule.h"

#include <algorithm>
#include <atomic>
#include <mutex>

#include "platform/rx/class_registry.h"

OD_RX_DEFINE_ABSTRACT(OdRxOverrule, OdRxObject, L"OdRxOverrule")

namespace {
std::atomic<bool> g_isOverruling{true};
}  // namespace

// Access to the overrule lists, which are members of the classes.
class OdRxOverruleTable {
 public:
  static bool add(OdRxClass* rxClass, OdRxOverrule* overrule, bool addAtLast) {
    const std::unique_lock lock(OdRxClassRegistry::instance().mutex());
    auto& list = rxClass->m_overrules;
    if (std::find(list.begin(), list.end(), overrule) != list.end()) return false;
    list.insert(addAtLast ? list.end() : list.begin(), overrule);
    rxClass->m_overruleCount.fetch_add(1, std::memory_order_release);
    return true;
  }
  static bool remove(OdRxClass* rxClass, const OdRxOverrule* overrule) {
    const std::unique_lock lock(OdRxClassRegistry::instance().mutex());
    if (std::erase(rxClass->m_overrules, overrule) == 0) return false;
    rxClass->m_overruleCount.fetch_sub(1, std::memory_order_release);
    return true;
  }
  // A copy of the list, for isApplicable may change it.
  static std::vector<OdRxOverrule*> list(const OdRxClass* rxClass) {
    if (rxClass->m_overruleCount.load(std::memory_order_acquire) == 0) return {};
    const std::shared_lock lock(OdRxClassRegistry::instance().mutex());
    return rxClass->m_overrules;
  }
};

bool OdRxOverrule::addOverrule(OdRxClass* overruledClass, OdRxOverrule* overrule, bool addAtLast) {
  if (!overruledClass || !overrule ||
      !OdRxOverruleTable::add(overruledClass, overrule, addAtLast)) {
    return false;
  }
  overrule->addRef();
  return true;
}

bool OdRxOverrule::removeOverrule(OdRxClass* overruledClass, OdRxOverrule* overrule) {
  if (!overruledClass || !overrule || !OdRxOverruleTable::remove(overruledClass, overrule)) {
    return false;
  }
  overrule->release();
  return true;
}

void OdRxOverrule::setIsOverruling(bool overruling) noexcept { g_isOverruling = overruling; }

bool OdRxOverrule::isOverruling() noexcept {
  return g_isOverruling.load(std::memory_order_relaxed);
}

OdRxOverrule* odrxFindOverrule(const OdRxObject* subject, const OdRxClass* kind,
                               const OdRxOverrule* after) {
  if (!subject || !OdRxOverrule::isOverruling()) return nullptr;
  bool reached = after == nullptr;
  for (const OdRxClass* each = subject->isA(); each; each = each->myParent()) {
    for (OdRxOverrule* overrule : OdRxOverruleTable::list(each)) {
      if (reached && overrule->isKindOf(kind) && overrule->isApplicable(subject)) return overrule;
      if (overrule == after) reached = true;
    }
  }
  return nullptr;
}
