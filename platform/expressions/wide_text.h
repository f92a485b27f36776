// The characters of a text for the scanner.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "platform/base/string.h"
#include "platform/expressions/compile.h"

namespace OdExpression {

/// A copy of the characters, on the stack for short texts: the wide form that a string makes of
/// itself would stay in its buffer, and expressions are kept by the thousand.
class WideText {
 public:
  /// Raises a Diagnostic for a text beyond kMaxTextLength.
  explicit WideText(const OdString& text) : m_size(static_cast<std::size_t>(text.getLength())) {
    if (m_size > kMaxTextLength) {
      throw Diagnostic{Diagnostic::Kind::kLimit,
                       kMaxTextLength + 1,
                       "a longer text",
                       OdString().format(L"at most %d characters", kMaxTextLength),
                       {}};
    }
    wchar_t* to = m_short.data();
    if (m_size > m_short.size()) {
      m_long.resize(m_size);
      to = m_long.data();
    }
    if (text.isNarrow()) {
      std::ranges::copy(text.utf8(), to);
    } else {
      for (int i = 0; i < text.getLength(); ++i) to[i] = text.getAt(i);
    }
  }

  [[nodiscard]] std::wstring_view view() const noexcept {
    return {m_size > m_short.size() ? m_long.data() : m_short.data(), m_size};
  }

 private:
  std::size_t m_size;
  std::array<wchar_t, 128> m_short;
  std::wstring m_long;
};

}  // namespace OdExpression
