// Names of a table in sorted order.
#include "vdm_db/configurations/vdm_name_order.h"

#include <algorithm>
#include <numeric>

VdmNameOrder::VdmNameOrder(const Names& names) : m_order(names.size()) {
  std::iota(m_order.begin(), m_order.end(), 0U);
  std::stable_sort(m_order.begin(), m_order.end(),
                   [&names](OdUInt32 a, OdUInt32 b) { return odStrICmp(names[a], names[b]) < 0; });
}

std::vector<OdUInt32>::const_iterator VdmNameOrder::lowerBound(const Names& names,
                                                               const OdString& name) const {
  return std::lower_bound(
      m_order.begin(), m_order.end(), name,
      [&names](OdUInt32 at, const OdString& sought) { return odStrICmp(names[at], sought) < 0; });
}

std::optional<OdUInt32> VdmNameOrder::find(const Names& names, const OdString& name) const {
  const auto place = lowerBound(names, name);
  if (place == m_order.end() || odStrICmp(names[*place], name) != 0) return std::nullopt;
  return *place;
}

void VdmNameOrder::inserted(const Names& names, OdUInt32 position) {
  for (OdUInt32& at : m_order) at += at >= position ? 1U : 0U;
  const auto place = std::lower_bound(m_order.begin(), m_order.end(), position,
                                      [&names](OdUInt32 at, OdUInt32 added) {
                                        const int order = odStrICmp(names[at], names[added]);
                                        return order != 0 ? order < 0 : at < added;
                                      });
  m_order.insert(place, position);
}

void VdmNameOrder::removed(OdUInt32 position) {
  std::erase(m_order, position);
  for (OdUInt32& at : m_order) at -= at > position ? 1U : 0U;
}
