// Coding between UTF-8 and wide characters, without loss for bytes that are not UTF-8.
//
// A lead byte decides the length of its sequence and the range of the second byte. That range alone
// refuses overlong forms, surrogates and values above U+10FFFF, so that no decoded value needs a
// check afterwards. A byte that begins no valid sequence is taken alone and becomes the character
// U+DC00 + byte; the decoder continues with the next byte. The encoder turns such characters
// back into their bytes. Valid UTF-8 never decodes to U+DC80 to U+DCFF (the surrogates are
// refused), so decoding followed by encoding gives the same bytes for every input. Both take one
// pass.
#include "platform/base/utf8.h"

#include <cstddef>

namespace {

struct LeadByte {
  int length;          // of the whole sequence in bytes; 0 for no lead byte
  char32_t bits;       // that the lead byte contributes
  unsigned char low;   // smallest and
  unsigned char high;  // largest second byte: refuses overlong forms, surrogates, > U+10FFFF
};

LeadByte classify(unsigned char byte) noexcept {
  if (byte < 0xC2) return {0, 0, 0, 0};
  if (byte < 0xE0) return {2, byte & 0x1FU, 0x80, 0xBF};
  if (byte < 0xF0) {
    const unsigned char low = byte == 0xE0 ? 0xA0 : 0x80;
    const unsigned char high = byte == 0xED ? 0x9F : 0xBF;
    return {3, byte & 0x0FU, low, high};
  }
  if (byte > 0xF4) return {0, 0, 0, 0};
  const unsigned char low = byte == 0xF0 ? 0x90 : 0x80;
  const unsigned char high = byte == 0xF4 ? 0x8F : 0xBF;
  return {4, byte & 0x07U, low, high};
}

// Decodes the sequence at the beginning of `rest`; the number of bytes taken, 0 when malformed.
std::size_t decodeSequence(std::string_view rest, wchar_t& character) noexcept {
  const LeadByte lead = classify(static_cast<unsigned char>(rest[0]));
  const auto length = static_cast<std::size_t>(lead.length);
  if (length == 0 || rest.size() < length) return 0;
  char32_t value = lead.bits;
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(rest[i]);
    const bool valid = i == 1 ? byte >= lead.low && byte <= lead.high : (byte & 0xC0) == 0x80;
    if (!valid) return 0;
    value = value << 6 | (byte & 0x3FU);
  }
  character = static_cast<wchar_t>(value);
  return length;
}

bool isUndecodedByte(wchar_t ch) noexcept { return ch >= 0xDC80 && ch <= 0xDCFF; }

void appendEncoded(std::string& utf8, wchar_t character) {
  const auto value = static_cast<char32_t>(character);
  const auto put = [&utf8](char32_t byte) { utf8.push_back(static_cast<char>(byte)); };
  if (value < 0x80) return put(value);
  if (value < 0x800) {
    put(0xC0 | value >> 6);
  } else {
    if (value < 0x10000) {
      put(0xE0 | value >> 12);
    } else {
      put(0xF0 | value >> 18);
      put(0x80 | (value >> 12 & 0x3F));
    }
    put(0x80 | (value >> 6 & 0x3F));
  }
  put(0x80 | (value & 0x3F));
}

std::string encode(std::wstring_view text, bool keepUndecoded) {
  std::string utf8;
  utf8.reserve(text.size() + text.size() / 2);
  for (const wchar_t ch : text) {
    if (isUndecodedByte(ch) && keepUndecoded) {
      utf8.push_back(static_cast<char>(ch - kOdUndecodedBase));
    } else if (odIsStringCharacter(ch) && !isUndecodedByte(ch)) {
      appendEncoded(utf8, ch);
    } else {
      appendEncoded(utf8, kOdReplacementCharacter);
    }
  }
  return utf8;
}

}  // namespace

std::wstring odUtf8ToWide(std::string_view utf8) {
  std::wstring text;
  text.reserve(utf8.size());
  std::size_t at = 0;
  while (at < utf8.size()) {
    const auto byte = static_cast<unsigned char>(utf8[at]);
    wchar_t character = byte;
    std::size_t taken = byte < 0x80 ? 1 : decodeSequence(utf8.substr(at), character);
    if (taken == 0) {
      character = static_cast<wchar_t>(kOdUndecodedBase + byte);
      taken = 1;
    }
    text.push_back(character);
    at += taken;
  }
  return text;
}

std::string odWideToUtf8(std::wstring_view text) { return encode(text, /*keepUndecoded=*/true); }

std::string odWideToValidUtf8(std::wstring_view text) {
  return encode(text, /*keepUndecoded=*/false);
}
