// Cuts the text of an expression into tokens.
#pragma once

#include <string_view>

#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/expressions/diagnostic.h"

namespace OdExpression {

enum class Token : OdUInt8 {
  kEnd,
  kNumber,
  kName,
  kPlus,
  kMinus,
  kTimes,
  kDivide,
  kRemainder,
  kPower,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
  kEqual,
  kNotEqual,
  kAnd,
  kOr,
  kNot,  ///< the word
  kExclamation,
  kQuestion,
  kColon,
  kComma,
  kOpen,
  kClose,
  kMiddleDot,
  kFootMark,  ///< ' or its typographic form
  kInchMark,  ///< " or its typographic form
  kDegreeSign,
  kSquared,  ///< superscript 2
  kCubed,    ///< superscript 3
  kUnknown,  ///< a character that the language does not have
};

/// Tokens of one text, one at a time. Copying a scanner remembers a place. The text outlives it.
class Scanner {
 public:
  explicit Scanner(std::wstring_view text) : m_text(text) { advance(); }

  [[nodiscard]] Token token() const noexcept { return m_token; }
  [[nodiscard]] bool is(Token token) const noexcept { return m_token == token; }
  /// 1-based; of the end one past the last character.
  [[nodiscard]] int column() const noexcept { return static_cast<int>(m_begin) + 1; }
  [[nodiscard]] std::wstring_view word() const noexcept {
    return m_text.substr(m_begin, m_end - m_begin);
  }
  /// White space before the present token, or at its other side.
  [[nodiscard]] bool hasSpaceBefore() const noexcept { return m_hasSpaceBefore; }
  [[nodiscard]] bool hasSpaceAfter() const noexcept;

  /// Of a number: its value, the value for a conversion that rounds again, and whether it is
  /// written with digits alone.
  [[nodiscard]] double number() const noexcept { return m_number; }
  [[nodiscard]] long double preciseNumber() const;
  [[nodiscard]] bool isWhole() const noexcept { return m_isWhole; }

  /// Goes to the next token. A number that no double can hold raises a Diagnostic.
  void advance();

  /// The present token in quotes, shortened, or "the end".
  [[nodiscard]] OdString shown() const;
  /// Raises a Diagnostic of form at the present token.
  [[noreturn]] void refuse(const OdString& expected, const OdString& suggestion = {}) const;

 private:
  [[nodiscard]] wchar_t peek(std::size_t offset) const noexcept {
    return m_end + offset < m_text.size() ? m_text[m_end + offset] : L'\0';
  }
  void scanNumber();
  void scanName();
  void scanSign();

  std::wstring_view m_text;
  std::size_t m_begin = 0;
  std::size_t m_end = 0;
  double m_number = 0.0;
  Token m_token = Token::kEnd;
  bool m_isWhole = false;
  bool m_hasSpaceBefore = false;
};

/// The ASCII letters of a word in lower case; empty when it has other characters or more than 15.
class LowerCaseWord {
 public:
  explicit LowerCaseWord(std::wstring_view word) noexcept;
  [[nodiscard]] std::string_view view() const noexcept { return {m_letters, m_length}; }

 private:
  char m_letters[15];
  std::size_t m_length = 0;
};

}  // namespace OdExpression
