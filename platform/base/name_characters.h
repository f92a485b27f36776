// Which characters may form a name.
#pragma once

#include "platform/base/export.h"

/// A letter of any script, or `_`: what a name may begin with (Unicode's XID_Start).
[[nodiscard]] OD_API bool odIsNameStart(wchar_t ch) noexcept;
/// A letter, mark or digit of any script, or `_`: what may follow (Unicode's XID_Continue without
/// the middle dot).
[[nodiscard]] OD_API bool odIsNamePart(wchar_t ch) noexcept;
/// White space of any script, line ends included (Unicode's White_Space).
[[nodiscard]] OD_API bool odIsSpace(wchar_t ch) noexcept;
