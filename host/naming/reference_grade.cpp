// How a persistent reference was found again.
#include "host/naming/reference_grade.h"

#include <array>

namespace vdm_host {

OdString gradeName(ReferenceGrade grade) {
  static constexpr std::array<const wchar_t*, kReferenceGradeCount> kNames{
      L"exact", L"by lineage", L"split", L"merged", L"by signature", L"ambiguous", L"lost"};
  const auto index = static_cast<std::size_t>(grade);
  return index < kNames.size() ? kNames[index] : L"unknown";
}

}  // namespace vdm_host
