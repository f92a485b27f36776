// When two numbers count as different.
#pragma once

/// A change of a number counts beyond this.
inline constexpr double kVdmSameValue = 1e-10;

/// False when one of the two is NaN.
[[nodiscard]] constexpr bool vdmDiffers(double a, double b) {
  return a - b > kVdmSameValue || a - b < -kVdmSameValue;
}
