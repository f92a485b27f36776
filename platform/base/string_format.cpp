// Formatted text with wide printf semantics, free of the locale.
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <locale.h>

#include "platform/base/error.h"
#include "platform/base/non_copyable.h"
#include "platform/base/string.h"
#include "platform/base/utf8.h"

namespace {

enum class Length { kInt, kChar, kShort, kLong, kLongLong, kMax, kSize, kPtrDiff, kLongDouble };

// One conversion: flags, width and precision (-1 when there is none), length and letter.
struct Conversion {
  std::string flags;
  int width = -1;
  int precision = -1;
  Length length = Length::kInt;
  char letter = '\0';
};

// The thread's locale is "C" for the numbers of one call, whatever the program has set.
class NeutralLocale : OdNonCopyable {
 public:
  NeutralLocale() : m_previous(uselocale(neutral())) {}
  ~NeutralLocale() { uselocale(m_previous); }

 private:
  static locale_t neutral() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
  }
  locale_t m_previous;
};

// Reads a format from left to right and takes the arguments as they are asked for.
class Formatter : OdNonCopyable {
 public:
  Formatter(const wchar_t* formatText, std::va_list arguments)
      : m_format(formatText), m_at(formatText) {
    va_copy(m_arguments, arguments);
  }
  ~Formatter() { va_end(m_arguments); }

  std::wstring run() {
    while (*m_at) {
      if (*m_at != L'%') {
        m_result.push_back(*m_at++);
      } else if (*++m_at == L'%') {
        m_result.push_back(*m_at++);
      } else {
        convert(parse());
      }
    }
    return std::move(m_result);
  }

 private:
  Conversion parse() {
    Conversion conversion;
    while (*m_at && std::wstring_view(L"-+ #0").find(*m_at) != std::wstring_view::npos) {
      conversion.flags.push_back(static_cast<char>(*m_at++));
    }
    conversion.width = parseNumber();
    if (conversion.width < -1) {
      conversion.flags.push_back('-');
      conversion.width = -conversion.width;
    }
    if (*m_at == L'.') {
      ++m_at;
      const int precision = parseNumber();
      conversion.precision = precision == -1 && m_at[-1] == L'.' ? 0 : precision;
      if (conversion.precision < -1) conversion.precision = -1;
    }
    conversion.length = parseLength();
    if (*m_at < 0x21 || *m_at > 0x7E) refuse();
    conversion.letter = static_cast<char>(*m_at++);
    return conversion;
  }

  // A number or an argument for `*`; -1 when neither follows.
  int parseNumber() {
    constexpr int kMaxNumber = 1 << 20;
    if (*m_at == L'*') {
      ++m_at;
      const int value = va_arg(m_arguments, int);
      if (value > kMaxNumber || value < -kMaxNumber) refuse();
      // The argument -1 and a missing number differ only for a width of one, which pads nothing.
      return value;
    }
    if (*m_at < L'0' || *m_at > L'9') return -1;
    int value = 0;
    while (*m_at >= L'0' && *m_at <= L'9') {
      value = value * 10 + static_cast<int>(*m_at++ - L'0');
      if (value > kMaxNumber) refuse();
    }
    return value;
  }

  Length parseLength() {
    const wchar_t first = *m_at;
    const auto doubled = [&] { return m_at[1] == first; };
    const auto take = [&](int count, Length length) {
      m_at += count;
      return length;
    };
    switch (first) {
      case L'h':
        return doubled() ? take(2, Length::kChar) : take(1, Length::kShort);
      case L'l':
        return doubled() ? take(2, Length::kLongLong) : take(1, Length::kLong);
      case L'j':
        return take(1, Length::kMax);
      case L'z':
        return take(1, Length::kSize);
      case L't':
        return take(1, Length::kPtrDiff);
      case L'L':
        return take(1, Length::kLongDouble);
      default:
        return Length::kInt;
    }
  }

  void convert(const Conversion& conversion) {
    switch (conversion.letter) {
      case 'd':
      case 'i':
        return putNumber(conversion, "jd", signedArgument(conversion.length));
      case 'u':
        return putNumber(conversion, "ju", unsignedArgument(conversion.length));
      case 'x':
        return putNumber(conversion, "jx", unsignedArgument(conversion.length));
      case 'X':
        return putNumber(conversion, "jX", unsignedArgument(conversion.length));
      case 'o':
        return putNumber(conversion, "jo", unsignedArgument(conversion.length));
      case 'p':
        return putNumber(conversion, "p", va_arg(m_arguments, void*));
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G':
      case 'a':
      case 'A':
        return putDouble(conversion);
      case 'c':
        return putText(conversion, std::wstring(1, characterArgument()));
      case 's':
        return putText(conversion, textArgument(conversion));
      default:
        refuse();
    }
  }

  std::intmax_t signedArgument(Length length) {
    switch (length) {
      case Length::kChar:
        return static_cast<signed char>(va_arg(m_arguments, int));
      case Length::kShort:
        return static_cast<short>(va_arg(m_arguments, int));
      case Length::kLong:
        return va_arg(m_arguments, long);
      case Length::kLongLong:
        return va_arg(m_arguments, long long);
      case Length::kMax:
        return va_arg(m_arguments, std::intmax_t);
      case Length::kSize:
      case Length::kPtrDiff:
        return va_arg(m_arguments, std::ptrdiff_t);
      default:
        return va_arg(m_arguments, int);
    }
  }

  std::uintmax_t unsignedArgument(Length length) {
    switch (length) {
      case Length::kChar:
        return static_cast<unsigned char>(va_arg(m_arguments, unsigned));
      case Length::kShort:
        return static_cast<unsigned short>(va_arg(m_arguments, unsigned));
      case Length::kLong:
        return va_arg(m_arguments, unsigned long);
      case Length::kLongLong:
        return va_arg(m_arguments, unsigned long long);
      case Length::kMax:
        return va_arg(m_arguments, std::uintmax_t);
      case Length::kSize:
      case Length::kPtrDiff:
        return va_arg(m_arguments, std::size_t);
      default:
        return va_arg(m_arguments, unsigned);
    }
  }

  // Wide with and without `l`: both are passed as a 32-bit integer.
  wchar_t characterArgument() { return static_cast<wchar_t>(va_arg(m_arguments, int)); }

  std::wstring textArgument(const Conversion& conversion) {
    std::wstring text;
    if (conversion.length == Length::kLong) {
      const wchar_t* wide = va_arg(m_arguments, const wchar_t*);
      text = wide ? wide : L"(null)";
    } else if (conversion.length == Length::kInt || conversion.length == Length::kShort) {
      const char* utf8 = va_arg(m_arguments, const char*);
      text = utf8 ? odUtf8ToWide(utf8) : L"(null)";
    } else {
      refuse();
    }
    if (conversion.precision >= 0) {
      text.resize(
          std::min<std::size_t>(text.size(), static_cast<std::size_t>(conversion.precision)));
    }
    return text;
  }

  void putText(const Conversion& conversion, const std::wstring& text) {
    const auto width = static_cast<std::size_t>(std::max(conversion.width, 0));
    const std::wstring padding(width > text.size() ? width - text.size() : 0, L' ');
    const bool left = conversion.flags.find('-') != std::string::npos;
    m_result += left ? text + padding : padding + text;
  }

  void putDouble(const Conversion& conversion) {
    const NeutralLocale neutral;
    const std::string letter(1, conversion.letter);
    if (conversion.length == Length::kLongDouble) {
      putNumber(conversion, "L" + letter, va_arg(m_arguments, long double));
    } else {
      putNumber(conversion, letter, va_arg(m_arguments, double));
    }
  }

  // Numbers are what the narrow printf makes of them: ASCII throughout.
  template <class Number>
  void putNumber(const Conversion& conversion, const std::string& letters, Number number) {
    std::string narrowFormat = "%" + conversion.flags;
    if (conversion.width >= 0) narrowFormat += std::to_string(conversion.width);
    if (conversion.precision >= 0) narrowFormat += "." + std::to_string(conversion.precision);
    narrowFormat += letters;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::snprintf(nullptr, 0, narrowFormat.c_str(), number);
    std::vector<char> text(static_cast<std::size_t>(std::max(length, 0)) + 1);
    std::snprintf(text.data(), text.size(), narrowFormat.c_str(), number);
#pragma GCC diagnostic pop
    m_result.append(text.begin(), text.end() - 1);
  }

  [[noreturn]] void refuse() const {
    throw OdError(eInvalidInput, OdString("format \"") + m_format + L"\", conversion " +
                                     OdString(m_at - m_format > 0 ? m_at - 1 : m_at));
  }

  const wchar_t* m_format;
  const wchar_t* m_at;
  std::va_list m_arguments;
  std::wstring m_result;
};

}  // namespace

OdString& OdString::formatV(const wchar_t* formatText, std::va_list arguments) {
  if (!formatText) {
    empty();
    return *this;
  }
  // The arguments may point into this string, which changes only afterwards.
  return *this = OdString(Formatter(formatText, arguments).run());
}

OdString& OdString::format(const wchar_t* formatText, ...) {
  std::va_list arguments;
  va_start(arguments, formatText);
  try {
    formatV(formatText, arguments);
  } catch (...) {
    va_end(arguments);
    throw;
  }
  va_end(arguments);
  return *this;
}
