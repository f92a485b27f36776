// A check of the binary shape form before its reader sees it.
#pragma once

#include <string_view>

#include "platform/base/status.h"

namespace od_occt {

/// The shape reader believes every index and count that it meets. This check follows the same form
/// and refuses what would lead the reader astray: counts beyond the bytes, indices of things that
/// are not there, parts of a kind that the whole cannot have, numbers that are not finite, splines
/// whose knots do not fit their poles, bytes left over. eCorruptData with the position of the
/// fault. It says nothing about whether the parts fit together in space: see Body::check().
OdStatus checkShapeForm(std::string_view bytes);

}  // namespace od_occt
