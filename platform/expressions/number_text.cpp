// Numbers as text.
#include "platform/expressions/number_text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace OdExpression {

OdString numberText(double value) {
  if (std::isnan(value)) return "nan";
  // 12 digits, sign, point and an exponent of up to three digits need 19 characters.
  std::array<char, 32> buffer{};
  constexpr int kDigits = 12;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::general, kDigits);
  return OdString(buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data()));
}

}  // namespace OdExpression
