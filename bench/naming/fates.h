// The fates of a part's faces over a whole edit.
#pragma once

#include <vector>

#include "bench/naming/stage.h"

namespace naming_bench {

/// For each face of the body before the edit, the faces of the body after it: through all changes,
/// and those that reopened features made again. Empty when a change has no history.
[[nodiscard]] std::vector<std::vector<OdUInt32>> faceImages(const EditTrace& edit);

}  // namespace naming_bench
