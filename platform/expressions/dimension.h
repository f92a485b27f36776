// The dimension of a value: what a number measures.
#pragma once

#include <array>
#include <optional>

#include "platform/base/export.h"
#include "platform/base/string.h"

namespace OdExpression {

/// What a value measures. A plain value of eight bytes.
///
///   plain     a number without a unit; in a sum, a comparison or an argument it takes the
///             dimension that its place needs, counted in base units
///   ratio     a pure number that came out of quantities: a quotient of lengths, a sine, a truth
///             value; it takes no other dimension
///   angle     radians. As a factor of a quantity of another dimension it counts as a ratio
///   quantity  a product of powers of length, mass, time, temperature, current, amount of substance
///             and luminous intensity. Powers are multiples of 1/12 up to 10, so that square and
///             cube roots of quantities are quantities
///
/// Base units: the drawing's unit of length; kilogram, second, kelvin, ampere, mole, candela.
class OD_API Dimension {
 public:
  enum class Kind : OdUInt8 { kPlain, kRatio, kAngle, kQuantity };
  enum Base { kLength, kMass, kTime, kTemperature, kCurrent, kAmount, kIntensity, kBaseCount };

  /// A plain number.
  constexpr Dimension() noexcept = default;
  [[nodiscard]] static constexpr Dimension plain() noexcept { return {}; }
  [[nodiscard]] static constexpr Dimension ratio() noexcept { return Dimension(Kind::kRatio); }
  [[nodiscard]] static constexpr Dimension angle() noexcept { return Dimension(Kind::kAngle); }
  /// A power of length: 1 length, 2 area, 3 volume. The power lies between -10 and 10; the power 0
  /// is a plain number.
  [[nodiscard]] static constexpr Dimension length(int power = 1) noexcept {
    return base(kLength, power);
  }
  [[nodiscard]] static constexpr Dimension base(Base base, int power = 1) noexcept {
    if (power == 0) return {};
    Dimension dimension(Kind::kQuantity);
    dimension.m_twelfths[base] = static_cast<OdInt8>(power * kParts);
    return dimension;
  }

  [[nodiscard]] constexpr Kind kind() const noexcept { return m_kind; }
  /// Plain number or ratio.
  [[nodiscard]] constexpr bool isNumber() const noexcept {
    return m_kind == Kind::kPlain || m_kind == Kind::kRatio;
  }
  /// The power of one base; 0 for plain numbers, ratios and angles.
  [[nodiscard]] constexpr double power(Base base) const noexcept {
    return static_cast<double>(m_twelfths[base]) / kParts;
  }

  /// Nothing when a power would leave its range.
  [[nodiscard]] std::optional<Dimension> times(const Dimension& other) const;
  [[nodiscard]] std::optional<Dimension> over(const Dimension& other) const;
  /// Nothing when a power would leave its range or is no multiple of 1/12.
  [[nodiscard]] std::optional<Dimension> raised(double exponent) const;
  /// What a sum of both measures; nothing when there is none.
  [[nodiscard]] std::optional<Dimension> unified(const Dimension& other) const;

  /// In words: "plain number", "ratio", "angle", "length", "area", "density",
  /// "length^0.5 mass time^-1".
  [[nodiscard]] OdString text() const;

  friend constexpr bool operator==(const Dimension&, const Dimension&) noexcept = default;

 private:
  static constexpr int kParts = 12;

  constexpr explicit Dimension(Kind kind) noexcept : m_kind(kind) {}
  [[nodiscard]] std::optional<Dimension> combined(const Dimension& other, int sign) const;

  std::array<OdInt8, kBaseCount> m_twelfths{};
  Kind m_kind = Kind::kPlain;
};

}  // namespace OdExpression
