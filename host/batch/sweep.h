// Sweeps: values that a parameter is to take one after the other, and products of them.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/base/status.h"

namespace batch {

/// The values of one parameter, as users would type them.
struct Sweep {
  std::string parameter;
  std::vector<std::string> values;
};

/// One point of a product of sweeps: a value for each parameter.
using SweepPoint = std::vector<std::pair<std::string, std::string>>;

inline constexpr std::size_t kMostPoints = 100'000;

/// "d=6..12:0.5" (from, to, step; the end is left out where the steps miss it; step 1 by default),
/// "d=6 mm..12 mm:0.5 mm" (a unit after any of the three is that of all), "d=6,8,10" (expressions).
/// The values of a range are computed from their numbers, so that no rounding adds up.
/// eInvalidInput with a text for what reads as neither, and for more than kMostPoints values.
[[nodiscard]] OdStatus parseSweep(std::string_view text, Sweep& sweep);

/// All combinations; the values of the last sweep change fastest. No sweeps have one point, which
/// is empty. eInvalidInput for two sweeps of one parameter and for more than kMostPoints points.
[[nodiscard]] OdStatus multiplySweeps(const std::vector<Sweep>& sweeps,
                                      std::vector<SweepPoint>& points);

}  // namespace batch
