// What one old subentity is in a new body.
#pragma once

#include <vector>

#include "host/naming/reference_grade.h"

namespace vdm_host {

/// A grade and what it leads to. Several images with the grade split only; none with ambiguous and
/// lost.
struct SubentMatch {
  ReferenceGrade grade = ReferenceGrade::kLost;
  std::vector<OdUInt32> images;
};

}  // namespace vdm_host
