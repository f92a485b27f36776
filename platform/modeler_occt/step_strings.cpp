// The quoted texts of a STEP file as text, whatever their writer's encoding.
#include "platform/modeler_occt/step_strings.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>

namespace od_occt {
namespace {

// Quoted texts with an @ of their own get a key, too, so no text of a file looks like one.
constexpr std::wstring_view kKeyStart = L"@@text";
constexpr std::wstring_view kKeyEnd = L"@@";

bool isHigh(char c) { return static_cast<unsigned char>(c) >= 0x80; }

std::wstring escapedByte(unsigned char byte) {
  wchar_t text[8];
  std::swprintf(text, std::size(text), L"\\x%02X", static_cast<unsigned>(byte));
  return text;
}

std::wstring withEscapedBytes(std::string_view bytes) {
  std::wstring result;
  for (const char c : bytes) {
    result += isHigh(c) ? escapedByte(static_cast<unsigned char>(c)) : std::wstring(1, c);
  }
  return result;
}

std::optional<char32_t> hexNumber(std::wstring_view digits) {
  char32_t value = 0;
  for (const wchar_t c : digits) {
    const bool isDigit = c >= L'0' && c <= L'9';
    const bool isLetter = (c >= L'A' && c <= L'F') || (c >= L'a' && c <= L'f');
    if (!isDigit && !isLetter) return std::nullopt;
    value = value * 16 + static_cast<char32_t>(isDigit ? c - L'0' : (c | 0x20) - L'a' + 10);
  }
  return value;
}

bool isCharacter(char32_t value) {
  return value < 0x110000 && (value < 0xD800 || value >= 0xE000) && value != 0;
}

// ---- The escapes of one text.

class Unescaper {
 public:
  explicit Unescaper(std::wstring_view text) : m_text(text) {}

  std::wstring run() {
    while (!m_text.empty()) {
      if (take(L"''")) {
        m_result += L'\'';
      } else if (take(L"\\\\")) {
        m_result += L'\\';
      } else if (m_text.front() != L'\\' || !directive()) {
        plain(m_text.front());
        m_text.remove_prefix(1);
      }
    }
    return std::move(m_result);
  }
  [[nodiscard]] bool isSound() const { return m_isSound; }

 private:
  bool take(std::wstring_view mark) {
    if (!m_text.starts_with(mark)) return false;
    m_text.remove_prefix(mark.size());
    return true;
  }

  // Lines that a writer broke inside of a text are joined, as all control characters are dropped.
  void plain(wchar_t c) {
    if (c == L'\t') c = L' ';
    if (c >= 0x20 && c != 0x7F) m_result += c;
  }

  // A backslash that begins no directive stays: paths are often written so.
  bool directive() {
    if (take(L"\\X2\\")) return characters(4);
    if (take(L"\\X4\\")) return characters(8);
    if (take(L"\\X0\\")) return true;  // closes nothing
    if (take(L"\\N\\") || take(L"\\F\\")) {
      m_result += L'\n';
      return true;
    }
    return byteDirective() || pageDirective() || shiftDirective();
  }

  bool byteDirective() {
    if (!m_text.starts_with(L"\\X\\") || m_text.size() < 5) return false;
    const auto value = hexNumber(m_text.substr(3, 2));
    if (!value) return false;
    if (*value != 0) m_result += static_cast<wchar_t>(*value);
    m_text.remove_prefix(5);
    return true;
  }

  bool pageDirective() {
    if (m_text.size() < 4 || !m_text.starts_with(L"\\P") || m_text[3] != L'\\') return false;
    if (m_text[2] < L'A' || m_text[2] > L'I') return false;
    m_page = static_cast<int>(m_text[2] - L'A') + 1;
    m_text.remove_prefix(4);
    return true;
  }

  // The character with the high bit, in the page of ISO 8859 that is in force.
  bool shiftDirective() {
    if (m_text.size() < 4 || !m_text.starts_with(L"\\S\\")) return false;
    const wchar_t c = m_text[3];
    if (c < 0x20 || c > 0x7E) return false;
    const char byte = static_cast<char>(static_cast<unsigned char>(c) | 0x80U);
    OdString character;
    const OdTextDecoder decoder{OdString("ISO-8859-" + std::to_string(m_page))};
    if (decoder.decode({&byte, 1}, character)) {
      m_result += character.toWide();
    } else {
      m_result += escapedByte(static_cast<unsigned char>(byte));
      m_isSound = false;
    }
    m_text.remove_prefix(4);
    return true;
  }

  // Groups of digits up to \X0\; four digits are units of UTF-16. What is no character stays as it
  // was written, and the text is not sound.
  bool characters(std::size_t digits) {
    char32_t lead = 0;
    while (!take(L"\\X0\\")) {
      const auto value =
          m_text.size() < digits ? std::nullopt : hexNumber(m_text.substr(0, digits));
      if (!value) {
        m_isSound = false;
        return true;
      }
      m_text.remove_prefix(digits);
      if (digits == 4 && *value >= 0xD800 && *value < 0xDC00 && lead == 0) {
        lead = *value;
        continue;
      }
      character(lead == 0 ? *value : joined(lead, *value));
      lead = 0;
    }
    if (lead != 0) character(lead);
    return true;
  }

  static char32_t joined(char32_t lead, char32_t trail) {
    if (trail < 0xDC00 || trail >= 0xE000) return lead;
    return 0x10000 + ((lead - 0xD800) << 10) + (trail - 0xDC00);
  }

  void character(char32_t value) {
    if (isCharacter(value)) {
      m_result += static_cast<wchar_t>(value);
      return;
    }
    wchar_t text[24];
    std::swprintf(text, std::size(text), L"\\x%04X", static_cast<unsigned>(value));
    m_result += text;
    m_isSound = false;
  }

  std::wstring_view m_text;
  std::wstring m_result;
  int m_page = 1;
  bool m_isSound = true;
};

}  // namespace

StepStrings::StepStrings(const StepText& file, const OdString& encoding) : m_file(file) {
  std::vector<std::string_view> foreign;
  for (const StepLiteral& literal : file.literals()) {
    const std::string_view bytes = file.text().substr(literal.at, literal.length);
    if (std::ranges::any_of(bytes, isHigh)) foreign.push_back(bytes);
  }
  const OdString used = encoding.isEmpty() ? odDetectEncoding(foreign) : encoding;
  if (used != L"UTF-8") m_foreignEncoding = foreign.empty() ? OdString() : used;
  m_decoder = std::make_unique<OdTextDecoder>(used);
  for (const StepLiteral& literal : file.literals()) {
    m_texts.push_back(decoded(file.text().substr(literal.at, literal.length)));
  }
}

StepStrings::Decoded StepStrings::decoded(std::string_view literal) const {
  OdString text;
  bool isSound = true;
  std::wstring wide;
  if (std::ranges::none_of(literal, isHigh)) {
    wide.assign(literal.begin(), literal.end());
  } else if (m_decoder->decode(literal, text)) {
    wide = text.toWide();
  } else {
    wide = withEscapedBytes(literal);
    isSound = false;
  }
  Unescaper unescaper(wide);
  OdString result(unescaper.run());
  return {std::move(result), isSound && unescaper.isSound()};
}

OdStringArray StepStrings::unreadable() const {
  constexpr std::size_t kMostLines = 10;
  constexpr int kShown = 80;
  OdStringArray lines;
  std::size_t count = 0;
  for (std::size_t i = 0; i < m_texts.size(); ++i) {
    if (m_texts[i].isSound || ++count > kMostLines) continue;
    OdString line;
    line.format(L"the text '%ls' in #%llu is not readable%ls%ls",
                m_texts[i].text.left(kShown).c_str(),
                static_cast<unsigned long long>(m_file.literals()[i].instance),
                m_foreignEncoding.isEmpty() ? L"" : L" as ", m_foreignEncoding.c_str());
    lines.append(line);
  }
  if (count > kMostLines) {
    OdString line;
    line.format(L"%u more texts are not readable", static_cast<unsigned>(count - kMostLines));
    lines.append(line);
  }
  return lines;
}

OdString StepStrings::decode(std::string_view literal) const { return decoded(literal).text; }

OdString StepStrings::decodeArgument(std::string_view argument) const {
  const auto literal = StepText::literal(argument);
  return literal ? decode(*literal) : OdString();
}

// ---- Keys.

std::vector<StepEdit> StepStrings::keys() const {
  std::vector<StepEdit> edits;
  edits.reserve(m_file.literals().size());
  for (const StepLiteral& literal : m_file.literals()) {
    edits.push_back({literal.at, literal.length, "@@text" + std::to_string(edits.size()) + "@@"});
  }
  return edits;
}

OdString StepStrings::restored(const OdString& text) const {
  if (text.find(L"@@text") < 0) return text;
  const std::wstring wide = text.toWide();
  std::wstring result;
  std::size_t at = 0;
  while (at < wide.size()) {
    const std::size_t start = wide.find(kKeyStart, at);
    if (start == std::wstring::npos) break;
    const std::size_t digits = start + kKeyStart.size();
    const std::size_t end = wide.find(kKeyEnd, digits);
    if (end == std::wstring::npos) break;
    const std::string number(wide.begin() + static_cast<std::ptrdiff_t>(digits),
                             wide.begin() + static_cast<std::ptrdiff_t>(end));
    std::size_t index = m_texts.size();
    std::from_chars(number.data(), number.data() + number.size(), index);
    const bool isKey = !number.empty() && index < m_texts.size();
    result.append(wide, at, start - at);
    result += isKey ? m_texts[index].text.toWide() : std::wstring(kKeyStart);
    at = isKey ? end + kKeyEnd.size() : digits;
  }
  return OdString(result + wide.substr(std::min(at, wide.size())));
}

}  // namespace od_occt
