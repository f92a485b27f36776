// A check of the binary shape form before its reader sees it.
#pragma once

#include <string_view>

#include "platform/base/status.h"

namespace od_occt {

/// The shape reader trusts every index and count. This check follows the same form and refuses
/// counts beyond the bytes, indices of missing items, parts of a kind that the whole cannot have,
/// numbers that are not finite, splines whose knots do not fit their poles, and bytes left over.
/// eCorruptData with the position of the fault. Whether the parts fit together in space is for
/// Body::check().
OdStatus checkShapeForm(std::string_view bytes);

}  // namespace od_occt
