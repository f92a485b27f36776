// BoxIndex: boxes with numbers, asked for those that meet a box.
#include "host/modeling/box_index.h"

#include <algorithm>

#include "host/modeling/residues.h"

namespace vdm_host {

void BoxIndex::add(const OdGeExtents3d& box, std::size_t number) {
  if (!box.isValidExtents()) return;
  m_rows.emplace(box.minPoint().x, Row(box, number));
  m_longest = std::max(m_longest, box.diagonal().x);
}

template <class Visit>
void BoxIndex::visit(const OdGeExtents3d& box, const Visit& visit) const {
  if (!box.isValidExtents()) return;
  const double margin = OdGeTol::kDefault.equalPoint();
  const double to = box.maxPoint().x + margin;
  for (auto it = m_rows.lower_bound(box.minPoint().x - m_longest - margin);
       it != m_rows.end() && it->first <= to; ++it) {
    if (overlap(it->second.first, box) && !visit(it->second.second)) return;
  }
}

std::vector<std::size_t> BoxIndex::meeting(const OdGeExtents3d& box) const {
  std::vector<std::size_t> numbers;
  visit(box, [&](std::size_t number) {
    numbers.push_back(number);
    return true;
  });
  std::ranges::sort(numbers);
  return numbers;
}

bool BoxIndex::meets(const OdGeExtents3d& box) const {
  bool found = false;
  visit(box, [&found](std::size_t) {
    found = true;
    return false;
  });
  return found;
}

}  // namespace vdm_host
