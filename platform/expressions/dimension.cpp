// Algebra and words of dimensions.
#include "platform/expressions/dimension.h"

#include <algorithm>
#include <cmath>

#include "platform/expressions/number_text.h"

namespace OdExpression {

namespace {

constexpr int kLargestPower = 10;

constexpr const char* kBaseNames[] = {"length",  "mass",   "time",     "temperature",
                                      "current", "amount", "intensity"};

/// Quantities with a name of their own: whole powers of length, mass, time.
struct NamedQuantity {
  const char* name;
  int length, mass, time;
};

constexpr NamedQuantity kNamedQuantities[] = {
    {"area", 2, 0, 0},   {"volume", 3, 0, 0},        {"frequency", 0, 0, -1},
    {"speed", 1, 0, -1}, {"acceleration", 1, 0, -2}, {"density", -3, 1, 0},
    {"force", 1, 1, -2}, {"pressure", -1, 1, -2},    {"energy", 2, 1, -2},
    {"power", 2, 1, -3},
};

const char* quantityName(const Dimension& dimension) {
  for (const NamedQuantity& row : kNamedQuantities) {
    const Dimension named = *Dimension::length(row.length)
                                 .times(*Dimension::base(Dimension::kMass, row.mass)
                                             .times(Dimension::base(Dimension::kTime, row.time)));
    if (named == dimension) return row.name;
  }
  return nullptr;
}

OdString powersText(const Dimension& dimension) {
  OdString text;
  for (int base = 0; base < Dimension::kBaseCount; ++base) {
    const double power = dimension.power(static_cast<Dimension::Base>(base));
    if (power == 0.0) continue;
    if (!text.isEmpty()) text += ' ';
    text += kBaseNames[base];
    if (power != 1.0) text += OdString("^") + numberText(power);
  }
  return text;
}

}  // namespace

std::optional<Dimension> Dimension::combined(const Dimension& other, int sign) const {
  if (m_kind == Kind::kQuantity || other.m_kind == Kind::kQuantity) {
    Dimension result(Kind::kQuantity);
    for (std::size_t i = 0; i < m_twelfths.size(); ++i) {
      const int sum = m_twelfths[i] + sign * other.m_twelfths[i];
      if (std::abs(sum) > kLargestPower * kParts) return std::nullopt;
      result.m_twelfths[i] = static_cast<OdInt8>(sum);
    }
    const bool isRatio = std::ranges::all_of(result.m_twelfths, [](OdInt8 p) { return p == 0; });
    return isRatio ? ratio() : result;
  }
  if (other.m_kind == Kind::kAngle) {
    return m_kind == Kind::kAngle || sign < 0 ? ratio() : angle();
  }
  if (m_kind == Kind::kAngle) return angle();
  // A plain factor may still be a length, and the product with it.
  return m_kind == Kind::kPlain || other.m_kind == Kind::kPlain ? plain() : ratio();
}

std::optional<Dimension> Dimension::times(const Dimension& other) const {
  return combined(other, 1);
}

std::optional<Dimension> Dimension::over(const Dimension& other) const {
  return combined(other, -1);
}

std::optional<Dimension> Dimension::raised(double exponent) const {
  if (isNumber()) return *this;
  if (m_kind == Kind::kAngle) return exponent == 1.0 ? angle() : ratio();
  if (exponent == 0.0) return ratio();
  Dimension result(Kind::kQuantity);
  for (std::size_t i = 0; i < m_twelfths.size(); ++i) {
    const double power = m_twelfths[i] * exponent;
    const double nearest = std::round(power);
    // An exponent such as 1/3 is off by its own rounding.
    constexpr double kRounding = 1e-9;
    if (!(std::abs(power) <= kLargestPower * kParts) || std::abs(power - nearest) > kRounding) {
      return std::nullopt;
    }
    result.m_twelfths[i] = static_cast<OdInt8>(nearest);
  }
  return result;
}

std::optional<Dimension> Dimension::unified(const Dimension& other) const {
  if (*this == other || other.m_kind == Kind::kPlain) return *this;
  if (m_kind == Kind::kPlain) return other;
  return std::nullopt;
}

OdString Dimension::text() const {
  switch (m_kind) {
    case Kind::kPlain:
      return "plain number";
    case Kind::kRatio:
      return "ratio";
    case Kind::kAngle:
      return "angle";
    case Kind::kQuantity:
      break;
  }
  const char* name = quantityName(*this);
  return name != nullptr ? OdString(name) : powersText(*this);
}

}  // namespace OdExpression
