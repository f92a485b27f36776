// The codes that drawings use within texts.
#include "platform/entities/text_codes.h"

#include <cwctype>

namespace {

struct SignRow {
  wchar_t letter;
  wchar_t sign;
};
constexpr SignRow kSigns[] = {
    {L'c', L'\u2300'}, {L'd', L'\u00B0'}, {L'p', L'\u00B1'}, {L'%', L'%'}};

// Digits at `at`, at most `most`; the number of those read.
int readDigits(const OdString& text, int at, int most, int base, int& number) {
  number = 0;
  int count = 0;
  for (; count < most && at + count < text.getLength(); ++count) {
    const wchar_t digit = text.getAt(at + count);
    const int lower = static_cast<int>(digit | 0x20) - L'a' + 10;
    const int value = digit >= L'0' && digit <= L'9' ? static_cast<int>(digit - L'0') : lower;
    if (value < 0 || value >= base) break;
    number = number * base + value;
  }
  return count;
}

bool isCharacter(int code) { return code >= 0x20 && (code < 0xD800 || code > 0xDFFF); }

/// A line under or over the text that a code switches.
void toggle(std::vector<OdDbTextRun>& runs, bool& isOn, int place) {
  if (isOn) {
    runs.back().end = place;
  } else {
    runs.push_back({place, place});
  }
  isOn = !isOn;
}

}  // namespace

bool oddbReadUnicodeCode(const OdString& text, int& at, wchar_t& character) {
  constexpr int kDigits = 4;
  int code = 0;
  if (at + 2 + kDigits > text.getLength() || text.getAt(at) != L'U' || text.getAt(at + 1) != L'+' ||
      readDigits(text, at + 2, kDigits, 16, code) != kDigits || !isCharacter(code)) {
    return false;
  }
  character = static_cast<wchar_t>(code);
  at += 2 + kDigits;
  return true;
}

OdDbPlainText oddbPlainText(const OdString& text) {
  OdDbPlainText plain;
  std::wstring characters;
  bool underlines = false;
  bool overlines = false;
  const int length = text.getLength();
  const auto place = [&] { return static_cast<int>(characters.size()); };
  // True when a code was read at the two per cent signs.
  const auto readCode = [&](int& at) {
    if (at + 2 >= length || text.getAt(at + 1) != L'%') return false;
    const wchar_t letter =
        static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(text.getAt(at + 2))));
    int code = 0;
    if (letter == L'u' || letter == L'o') {
      toggle(letter == L'u' ? plain.underlines : plain.overlines,
             letter == L'u' ? underlines : overlines, place());
      at += 3;
      return true;
    }
    for (const SignRow& row : kSigns) {
      if (row.letter != letter) continue;
      characters.push_back(row.sign);
      at += 3;
      return true;
    }
    if (readDigits(text, at + 2, 3, 10, code) != 3 || !isCharacter(code)) return false;
    characters.push_back(static_cast<wchar_t>(code));
    at += 5;
    return true;
  };
  for (int at = 0; at < length;) {
    const wchar_t character = text.getAt(at);
    if (character == L'%' && readCode(at)) continue;
    int after = at + 1;
    wchar_t coded = 0;
    if (character == L'\\' && oddbReadUnicodeCode(text, after, coded)) {
      characters.push_back(coded);
      at = after;
      continue;
    }
    characters.push_back(character);
    ++at;
  }
  if (underlines) plain.underlines.back().end = place();
  if (overlines) plain.overlines.back().end = place();
  plain.text = OdString(characters.c_str());
  return plain;
}
