// Tokens.
#include "platform/expressions/scanner.h"

#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

#include "platform/base/name_characters.h"

namespace OdExpression {

namespace {

struct SignRow {
  std::wstring_view sign;
  Token token;
};

// Longer signs before their beginnings.
constexpr SignRow kSigns[] = {
    {L"<=", Token::kLessEqual},
    {L">=", Token::kGreaterEqual},
    {L"==", Token::kEqual},
    {L"!=", Token::kNotEqual},
    {L"<>", Token::kNotEqual},
    {L"&&", Token::kAnd},
    {L"||", Token::kOr},
    {L"+", Token::kPlus},
    {L"-", Token::kMinus},
    {L"*", Token::kTimes},
    {L"/", Token::kDivide},
    {L"%", Token::kRemainder},
    {L"^", Token::kPower},
    {L"<", Token::kLess},
    {L">", Token::kGreater},
    {L"=", Token::kEqual},
    {L"!", Token::kExclamation},
    {L"?", Token::kQuestion},
    {L":", Token::kColon},
    {L",", Token::kComma},
    {L"(", Token::kOpen},
    {L")", Token::kClose},
    {L"'", Token::kFootMark},
    {L"\"", Token::kInchMark},
    {L"\u2032", Token::kFootMark},
    {L"\u2033", Token::kInchMark},
    {L"\u00b0", Token::kDegreeSign},
    {L"\u00b7", Token::kMiddleDot},
    {L"\u22c5", Token::kMiddleDot},
    {L"\u00b2", Token::kSquared},
    {L"\u00b3", Token::kCubed},
    {L"\u2212", Token::kMinus},
    {L"\u00d7", Token::kTimes},
    {L"\u00f7", Token::kDivide},
    {L"\u2264", Token::kLessEqual},
    {L"\u2265", Token::kGreaterEqual},
    {L"\u2260", Token::kNotEqual},
};

struct WordRow {
  std::string_view word;
  Token token;
};

constexpr WordRow kWords[] = {{"and", Token::kAnd}, {"or", Token::kOr}, {"not", Token::kNot}};

bool isDigit(wchar_t ch) noexcept { return ch >= L'0' && ch <= L'9'; }

}  // namespace

LowerCaseWord::LowerCaseWord(std::wstring_view word) noexcept {
  if (word.size() > sizeof(m_letters)) return;
  for (const wchar_t ch : word) {
    if (ch >= 0x80) {
      m_length = 0;
      return;
    }
    const bool isUpper = ch >= L'A' && ch <= L'Z';
    m_letters[m_length++] = static_cast<char>(isUpper ? ch - L'A' + L'a' : ch);
  }
}

bool Scanner::hasSpaceAfter() const noexcept {
  return m_end < m_text.size() && odIsSpace(m_text[m_end]);
}

void Scanner::advance() {
  m_begin = m_end;
  while (m_begin < m_text.size() && odIsSpace(m_text[m_begin])) ++m_begin;
  m_hasSpaceBefore = m_begin != m_end;
  m_end = m_begin;
  if (m_begin == m_text.size()) {
    m_token = Token::kEnd;
  } else if (isDigit(peek(0)) || (peek(0) == L'.' && isDigit(peek(1)))) {
    scanNumber();
  } else if (odIsNameStart(peek(0))) {
    scanName();
  } else {
    scanSign();
  }
}

void Scanner::scanNumber() {
  const auto skipDigits = [this] {
    while (isDigit(peek(0))) ++m_end;
  };
  skipDigits();
  m_isWhole = true;
  if (peek(0) == L'.') {
    m_isWhole = false;
    ++m_end;
    skipDigits();
  }
  if (peek(0) == L'e' || peek(0) == L'E') {
    const bool hasSign = peek(1) == L'+' || peek(1) == L'-';
    if (isDigit(peek(hasSign ? 2 : 1))) {
      m_isWhole = false;
      m_end += hasSign ? 2 : 1;
      skipDigits();
    }
  }
  m_token = Token::kNumber;

  // All characters are ASCII by now.
  const std::string digits(word().begin(), word().end());
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), m_number);
  if (result.ec != std::errc()) {
    refuse("a number between 5e-324 and 1.8e308");
  }
}

/// Digits and power of ten are exact as long doubles for all numbers of a usual size, so that the
/// quotient is rounded once and 25.4 mm is exactly an inch.
long double Scanner::preciseNumber() const {
  constexpr int kMostDigits = 18;
  constexpr int kMostPowers = 27;
  OdUInt64 digits = 0;
  int digitCount = 0;
  int power = 0;
  bool isAfterPoint = false;
  for (const wchar_t ch : word()) {
    if (ch == L'.') {
      isAfterPoint = true;
      continue;
    }
    if (!isDigit(ch) || (digits != 0 && ++digitCount == kMostDigits)) return m_number;
    digits = digits * 10 + static_cast<OdUInt64>(ch - L'0');
    if (isAfterPoint && ++power > kMostPowers) return m_number;
  }
  long double scale = 1.0L;
  for (int i = 0; i < power; ++i) scale *= 10.0L;
  return static_cast<long double>(digits) / scale;
}

void Scanner::scanName() {
  while (odIsNamePart(peek(0)) && m_end < m_text.size()) ++m_end;
  m_token = Token::kName;
  if (m_end - m_begin > 3) return;
  const LowerCaseWord lower(word());
  for (const WordRow& row : kWords) {
    if (row.word == lower.view()) m_token = row.token;
  }
}

void Scanner::scanSign() {
  const std::wstring_view rest = m_text.substr(m_begin);
  for (const SignRow& row : kSigns) {
    if (!rest.starts_with(row.sign)) continue;
    m_end = m_begin + row.sign.size();
    m_token = row.token;
    return;
  }
  m_end = m_begin + 1;
  m_token = Token::kUnknown;
}

OdString Scanner::shown() const {
  if (is(Token::kEnd)) return "the end";
  constexpr std::size_t kMostShown = 40;
  const std::wstring_view shown = word().substr(0, kMostShown);
  OdString text = L"'" + OdString(shown.data(), shown.size());
  if (shown.size() < word().size()) text += L"...";
  return text + L"'";
}

void Scanner::refuse(const OdString& expected, const OdString& suggestion) const {
  throw Diagnostic{Diagnostic::Kind::kSyntax, column(), shown(), expected, suggestion};
}

}  // namespace OdExpression
