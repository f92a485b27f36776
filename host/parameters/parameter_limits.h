// ParameterLimits: which values a parameter may have.
#pragma once

#include <optional>
#include <vector>

#include "platform/assoc/assoc_variable.h"
#include "platform/base/string.h"

namespace vdm_host {

/// Kept in the property bag of the variable, in base units: keys "limit_min", "limit_max",
/// "limit_step" (doubles) and "limit_choices" (array of doubles).
struct ParameterLimits {
  std::optional<double> min;
  std::optional<double> max;
  std::optional<double> step;   ///< counted from `min`, or from 0
  std::vector<double> choices;  ///< the only values; empty for any

  [[nodiscard]] bool isEmpty() const { return !min && !max && !step && choices.empty(); }
};

/// The limit that a value breaks, and the nearest value that the limit allows.
struct BrokenLimit {
  const wchar_t* what;  ///< "below the least value", "no multiple of the step from"
  double nearest;
};
/// Nothing when the value breaks none. It agrees with a bound, a step or a choice within 1e-9 of
/// its size, more than rounding in expressions costs.
[[nodiscard]] std::optional<BrokenLimit> brokenLimit(const ParameterLimits& limits, double value);
/// Why no value could satisfy the limits: bounds the wrong way round, a step that is not above 0.
/// Empty when all is well.
[[nodiscard]] OdString faultOf(const ParameterLimits& limits);

[[nodiscard]] ParameterLimits limitsOf(const OdDbAssocVariable& variable);
/// The variable is open for write. Empty limits leave nothing in the bag.
void setLimits(OdDbAssocVariable& variable, const ParameterLimits& limits);

}  // namespace vdm_host
