// Numbers in the texts of table cells.
#include "vdm_db/configurations/vdm_cell_number.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace {

bool isHexDigit(char ch) {
  const char lower = static_cast<char>(ch | 0x20);
  return (ch >= '0' && ch <= '9') || (lower >= 'a' && lower <= 'f');
}

// The library's conversion takes a sign of its own, which may not begin here, and words ("inf",
// "nan") in hexadecimal, too.
bool readWhole(std::string_view digits, std::chars_format format, double& value) {
  if (digits.empty() || digits[0] == '-') return false;
  const bool isHex = format == std::chars_format::hex;
  if (isHex && !isHexDigit(digits[0]) && digits[0] != '.') return false;
  const char* const end = digits.data() + digits.size();
  double number = 0;
  const auto [stop, error] = std::from_chars(digits.data(), end, number, format);
  if (error != std::errc() || stop != end) return false;
  value = number;
  return true;
}

bool isBlank(wchar_t ch) { return ch <= L' ' || ch > L'~'; }  // all white space, and some more

}  // namespace

OdString vdmTrimmedCell(const OdString& text) {
  if (text.isEmpty()) return text;
  if (!isBlank(text.getAt(0)) && !isBlank(text.getAt(text.getLength() - 1))) return text;
  OdString trimmed(text);
  return trimmed.trimLeft().trimRight();
}

bool vdmParseCellNumber(const OdString& text, double& value) {
  const OdString trimmed = vdmTrimmedCell(text);
  if (!trimmed.isNarrow()) return false;  // no digit is outside ASCII
  std::string_view digits = trimmed.utf8();
  const bool isNegative = digits.starts_with('-');
  if (isNegative || digits.starts_with('+')) digits.remove_prefix(1);
  const bool isHex = digits.starts_with("0x") || digits.starts_with("0X");
  if (isHex) digits.remove_prefix(2);
  double magnitude = 0;
  if (!readWhole(digits, isHex ? std::chars_format::hex : std::chars_format::general, magnitude)) {
    return false;
  }
  value = isNegative ? -magnitude : magnitude;
  return true;
}
