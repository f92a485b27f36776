// A range of a parameter.
#pragma once

#include <limits>

/// A closed range of doubles. A new interval is unbounded on both sides.
class OdGeInterval {
 public:
  constexpr OdGeInterval() = default;
  constexpr OdGeInterval(double lower, double upper) : m_lower(lower), m_upper(upper) {}

  constexpr double lowerBound() const { return m_lower; }
  constexpr double upperBound() const { return m_upper; }
  /// The length; negative for an empty interval and infinite for an unbounded one.
  constexpr double length() const { return m_upper - m_lower; }
  constexpr bool isEmpty() const { return m_lower > m_upper; }
  constexpr bool isBounded() const { return m_lower > -kInfinity && m_upper < kInfinity; }
  constexpr bool contains(double value, double tol = 0.0) const {
    return value >= m_lower - tol && value <= m_upper + tol;
  }
  constexpr double clamp(double value) const {
    return value < m_lower ? m_lower : value > m_upper ? m_upper : value;
  }
  friend constexpr bool operator==(const OdGeInterval&, const OdGeInterval&) = default;

 private:
  static constexpr double kInfinity = std::numeric_limits<double>::infinity();

  double m_lower = -kInfinity;
  double m_upper = kInfinity;
};
