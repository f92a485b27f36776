// VdmTakenNames: names in use, and the next free number for a base.
#include "vdm_db/constraints/vdm_taken_names.h"

#include <iterator>

#include "platform/base/case_compare.h"

namespace vdmu {

namespace {

/// Longer numbers have no place in the runs; they are found by counting.
constexpr int kMaxDigits = 9;

}  // namespace

VdmTakenNames::VdmTakenNames(const std::set<OdString>& names) {
  for (const OdString& name : names) insert(name);
}

// A number as it is formatted: without zeros before it.
std::optional<std::pair<OdString, int>> VdmTakenNames::split(const OdString& name) {
  const int length = name.getLength();
  int first = length;
  int number = 0;
  for (int factor = 1; first > 0 && name[first - 1] >= L'0' && name[first - 1] <= L'9';
       factor *= 10) {
    if (length - first == kMaxDigits) return std::nullopt;
    number += factor * (name[--first] - L'0');
  }
  const int digits = length - first;
  if (digits == 0 || first == 0 || name[first - 1] != L'_') return std::nullopt;
  if (digits > 1 && name[first] == L'0') return std::nullopt;
  return std::make_pair(name.left(first - 1), number);
}

void VdmTakenNames::addTo(Runs& runs, int number) {
  auto next = runs.upper_bound(number);
  int last = number;
  if (next != runs.end() && next->first == number + 1) {
    last = next->second;
    next = runs.erase(next);
  }
  if (next != runs.begin() && std::prev(next)->second == number - 1) {
    std::prev(next)->second = last;
  } else {
    runs.emplace_hint(next, number, last);
  }
}

void VdmTakenNames::removeFrom(Runs& runs, int number) {
  const auto run = std::prev(runs.upper_bound(number));
  const auto [first, last] = *run;
  if (first == number) {
    runs.erase(run);
  } else {
    run->second = number - 1;
  }
  if (last > number) runs.emplace(number + 1, last);
}

bool VdmTakenNames::insert(const OdString& name) {
  const OdString upper = odToUpper(name);
  if (!m_names.insert(upper).second) return false;
  if (const auto parts = split(upper)) addTo(m_runs[parts->first], parts->second);
  return true;
}

void VdmTakenNames::erase(const OdString& name) {
  const OdString upper = odToUpper(name);
  if (m_names.erase(upper) == 0) return;
  if (const auto parts = split(upper)) removeFrom(m_runs[parts->first], parts->second);
}

OdString VdmTakenNames::takeNumbered(const OdString& base, int start) {
  const Runs& runs = m_runs[odToUpper(base)];
  const auto next = runs.upper_bound(start);
  int number = start;
  if (next != runs.begin() && std::prev(next)->second >= start)
    number = std::prev(next)->second + 1;
  for (;; ++number) {
    const OdString name = OdString().format(L"%ls_%d", base.c_str(), number);
    if (insert(name)) return name;
  }
}

}  // namespace vdmu
