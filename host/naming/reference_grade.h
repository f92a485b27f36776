// How a persistent reference was found again.
#pragma once

#include "platform/base/string.h"
#include "platform/base/types.h"

namespace vdm_host {

/// Numbers are stored. Grades rank by how much was decided: the higher, the less is certain.
enum class ReferenceGrade : OdUInt8 {
  kExact = 0,        ///< the subentity itself; at most its number or the place of the body changed
  kByLineage = 1,    ///< what the modeller says has become of it, one subentity
  kSplit = 2,        ///< one of the several parts that it became
  kMerged = 3,       ///< it and others became one subentity
  kBySignature = 4,  ///< no history: the one subentity that looks and lies like it
  kAmbiguous = 5,    ///< several look alike: none is taken
  kLost = 6,         ///< nothing is left of it
};
inline constexpr OdUInt8 kReferenceGradeCount = 7;

/// "exact", "by lineage", "split", "merged", "by signature", "ambiguous", "lost".
[[nodiscard]] OdString gradeName(ReferenceGrade grade);

/// Whether a reference of this grade leads to a subentity.
[[nodiscard]] constexpr bool isResolved(ReferenceGrade grade) {
  return grade < ReferenceGrade::kAmbiguous;
}

}  // namespace vdm_host
