// VdmNameOrder: names of a table in sorted order, for finding them and their duplicates.
#pragma once

#include <optional>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/base/types.h"

/// The positions 0 to n - 1 of a list of names, sorted by odStrICmp; equal names by position. The
/// list itself stays with its owner, who passes the same list to every call. Finding takes
/// O(log n) comparisons, adding and removing a name O(n) moves of numbers.
class VdmNameOrder {
 public:
  using Names = OdArray<OdString>;

  VdmNameOrder() = default;
  explicit VdmNameOrder(const Names& names);

  /// The first position of an equal name; nothing without one.
  [[nodiscard]] std::optional<OdUInt32> find(const Names& names, const OdString& name) const;
  /// The name was inserted into the list at this position, or removed from it.
  void inserted(const Names& names, OdUInt32 position);
  void removed(OdUInt32 position);

  /// Calls `visit` with each run of equal names, as a span of their rising positions, in the order
  /// of the names.
  template <class Visit>
  void forEachGroup(const Names& names, const Visit& visit) const;

 private:
  [[nodiscard]] std::vector<OdUInt32>::const_iterator lowerBound(const Names& names,
                                                                 const OdString& name) const;
  std::vector<OdUInt32> m_order;
};

// ---- Definitions

#include <span>

#include "platform/base/case_compare.h"

template <class Visit>
void VdmNameOrder::forEachGroup(const Names& names, const Visit& visit) const {
  for (std::size_t first = 0; first < m_order.size();) {
    std::size_t end = first + 1;
    while (end < m_order.size() && odStrICmp(names[m_order[first]], names[m_order[end]]) == 0)
      ++end;
    visit(std::span<const OdUInt32>(m_order).subspan(first, end - first));
    first = end;
  }
}
