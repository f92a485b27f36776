// Handles as hexadecimal text.
#include "platform/base/handle.h"

#include <cstddef>

#include "platform/base/error.h"
#include "platform/base/string.h"

namespace {

constexpr int kMaxDigits = 16;

template <class Char>
int digitValue(Char ch) noexcept {
  if (ch >= '0' && ch <= '9') return static_cast<int>(ch - '0');
  if (ch >= 'a' && ch <= 'f') return static_cast<int>(ch - 'a') + 10;
  if (ch >= 'A' && ch <= 'F') return static_cast<int>(ch - 'A') + 10;
  return -1;
}

template <class Char>
bool parseText(const Char* text, OdDbHandle& handle) noexcept {
  if (!text) return false;
  OdUInt64 value = 0;
  int count = 0;
  for (; text[count]; ++count) {
    const int digit = digitValue(text[count]);
    if (digit < 0 || count == kMaxDigits) return false;
    value = value << 4 | static_cast<OdUInt64>(digit);
  }
  if (count == 0) return false;
  handle = OdDbHandle(value);
  return true;
}

template <class Char>
OdDbHandle parseOrRaise(const Char* text) {
  OdDbHandle handle;
  if (!parseText(text, handle)) {
    throw OdError(eInvalidInput, OdString(L"handle \"") + OdString(text) +
                                     L"\" is not 1 to 16 hexadecimal digits");
  }
  return handle;
}

}  // namespace

OdDbHandle::OdDbHandle(const wchar_t* text) : OdDbHandle(parseOrRaise(text)) {}
OdDbHandle::OdDbHandle(const char* text) : OdDbHandle(parseOrRaise(text)) {}

bool OdDbHandle::parse(const wchar_t* text, OdDbHandle& handle) noexcept {
  return parseText(text, handle);
}
bool OdDbHandle::parse(const char* text, OdDbHandle& handle) noexcept {
  return parseText(text, handle);
}
bool OdDbHandle::parse(const OdString& text, OdDbHandle& handle) noexcept {
  // Digits are ASCII, so a text that is stored wide has something else in it.
  if (!text.isNarrow()) return false;
  const auto narrow = text.utf8();
  return narrow.find('\0') == narrow.npos && parseText(narrow.data(), handle);
}

OdString OdDbHandle::ascii() const {
  char digits[kMaxDigits];
  std::size_t first = kMaxDigits;
  OdUInt64 rest = m_value;
  do {
    digits[--first] = "0123456789ABCDEF"[rest & 0xF];
    rest >>= 4;
  } while (rest);
  return OdString(digits + first, kMaxDigits - first);
}
