// The tolerance that geometric comparisons take.
#pragma once

/// Two absolute tolerances: a length in drawing units for points, and a length for vectors and the
/// direction part of matrices. The defaults (1e-10 each) are about a thousandth of the confusion
/// distance of the solid modeller, so that values that went through it and came back compare equal.
class OdGeTol {
 public:
  constexpr OdGeTol() = default;
  constexpr explicit OdGeTol(double both) : m_equalPoint(both), m_equalVector(both) {}
  constexpr OdGeTol(double equalPoint, double equalVector)
      : m_equalPoint(equalPoint), m_equalVector(equalVector) {}

  [[nodiscard]] constexpr double equalPoint() const { return m_equalPoint; }
  [[nodiscard]] constexpr double equalVector() const { return m_equalVector; }

  /// The tolerance that every function takes when none is given.
  static const OdGeTol kDefault;

 private:
  double m_equalPoint = 1e-10;
  double m_equalVector = 1e-10;
};

inline constexpr OdGeTol OdGeTol::kDefault{};
