// Where the faces of a body were born.
#include "host/naming/face_births.h"

#include <algorithm>

#include "platform/base/sort_unique.h"

namespace vdm_host {

bool meet(std::span<const FaceBirth> a, std::span<const FaceBirth> b) {
  return std::ranges::find_first_of(a, b) != a.end();
}

void addBirths(BirthSet& set, std::span<const FaceBirth> births) {
  set.insert(set.end(), births.begin(), births.end());
  odSortUnique(set);
}

FaceBirths::FaceBirths(std::vector<Entry> entries, OdUInt32 numFaces) {
  if (!std::ranges::is_sorted(entries)) std::ranges::sort(entries);
  const auto repeated = std::ranges::unique(entries);
  entries.erase(repeated.begin(), repeated.end());
  m_first.reserve(std::size_t{numFaces} + 1);
  m_births.reserve(entries.size());
  auto next = entries.begin();
  while (next != entries.end() && next->face == 0) ++next;
  for (OdUInt32 face = 1; face <= numFaces; ++face) {
    m_first.push_back(static_cast<OdUInt32>(m_births.size()));
    for (; next != entries.end() && next->face == face; ++next) m_births.push_back(next->birth);
  }
  m_first.push_back(static_cast<OdUInt32>(m_births.size()));
}

std::span<const FaceBirth> FaceBirths::of(OdUInt32 face) const {
  if (face == 0 || face > numFaces()) return {};
  return std::span(m_births).subspan(m_first[face - 1], m_first[face] - m_first[face - 1]);
}

std::unordered_set<OdUInt32> FaceBirths::makers() const {
  std::unordered_set<OdUInt32> makers;
  for (const FaceBirth& birth : m_births) makers.insert(birth.maker);
  return makers;
}

}  // namespace vdm_host
