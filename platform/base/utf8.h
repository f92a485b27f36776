// Coding between UTF-8 and wide characters, with undecodable bytes kept.
#pragma once

#include <string>
#include <string_view>

#include "platform/base/export.h"

/// The first of the 128 characters that stand for a byte which does not decode: byte b, from 0x80
/// up, is the character U+DC00 + b. They encode as that byte again.
inline constexpr wchar_t kOdUndecodedBase = 0xDC00;
inline constexpr wchar_t kOdReplacementCharacter = 0xFFFD;

/// True for what may stand in a string: Unicode characters, and the bytes that did not decode.
constexpr bool odIsStringCharacter(wchar_t ch) noexcept {
  return (ch >= 0 && ch < 0xD800) || (ch >= 0xDC80 && ch <= 0xDCFF) ||
         (ch >= 0xE000 && ch <= 0x10FFFF);
}

OD_API std::wstring odUtf8ToWide(std::string_view utf8);
/// Values that are no string characters become U+FFFD.
OD_API std::string odWideToUtf8(std::wstring_view text);
/// UTF-8 without the undecoded bytes, which become U+FFFD: for receivers that check their input.
OD_API std::string odWideToValidUtf8(std::wstring_view text);
