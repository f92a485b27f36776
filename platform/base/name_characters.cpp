// Properties of characters, with a short way for ASCII.
#include "platform/base/name_characters.h"

#include <unicode/uchar.h>

namespace {

constexpr wchar_t kFirstBeyondAscii = 0x80;

// Unicode lets a middle dot continue a word, for one language; as a sign of products it ends one.
constexpr wchar_t kMiddleDot = 0xB7;
constexpr wchar_t kGreekAnoTeleia = 0x387;

bool isAsciiLetter(wchar_t ch) { return (ch >= L'a' && ch <= L'z') || (ch >= L'A' && ch <= L'Z'); }

bool hasProperty(wchar_t ch, UProperty property) {
  return u_hasBinaryProperty(static_cast<UChar32>(ch), property) != 0;
}

}  // namespace

bool odIsNameStart(wchar_t ch) noexcept {
  if (isAsciiLetter(ch) || ch == L'_') return true;
  return ch >= kFirstBeyondAscii && hasProperty(ch, UCHAR_XID_START);
}

bool odIsNamePart(wchar_t ch) noexcept {
  if (isAsciiLetter(ch) || ch == L'_' || (ch >= L'0' && ch <= L'9')) return true;
  if (ch < kFirstBeyondAscii || ch == kMiddleDot || ch == kGreekAnoTeleia) return false;
  return hasProperty(ch, UCHAR_XID_CONTINUE);
}

bool odIsSpace(wchar_t ch) noexcept {
  if (ch == L' ' || (ch >= L'\t' && ch <= L'\r')) return true;
  return ch >= kFirstBeyondAscii && hasProperty(ch, UCHAR_WHITE_SPACE);
}
