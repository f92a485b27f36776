// Limits of parameters.
#include "host/parameters/parameter_limits.h"

#include <algorithm>
#include <cmath>

#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/properties/vdm_property_types.h"

namespace vdm_host {
namespace {

constexpr double kSameShare = 1e-9;
constexpr const wchar_t* kChoices = L"limit_choices";

struct NumberRow {
  const wchar_t* key;
  std::optional<double> ParameterLimits::*number;
};
constexpr NumberRow kNumbers[] = {
    {L"limit_min", &ParameterLimits::min},
    {L"limit_max", &ParameterLimits::max},
    {L"limit_step", &ParameterLimits::step},
};

bool isSame(double a, double b) {
  return std::abs(a - b) <= kSameShare * std::max({1.0, std::abs(a), std::abs(b)});
}

double nearestStep(double value, double origin, double step) {
  return origin + std::round((value - origin) / step) * step;
}

}  // namespace

std::optional<BrokenLimit> brokenLimit(const ParameterLimits& limits, double value) {
  if (limits.min && value < *limits.min && !isSame(value, *limits.min)) {
    return BrokenLimit{L"below the least value", *limits.min};
  }
  if (limits.max && value > *limits.max && !isSame(value, *limits.max)) {
    return BrokenLimit{L"above the greatest value", *limits.max};
  }
  if (limits.step) {
    const double nearest = nearestStep(value, limits.min.value_or(0.0), *limits.step);
    if (!isSame(value, nearest)) return BrokenLimit{L"between two steps, the nearest is", nearest};
  }
  if (limits.choices.empty()) return {};
  const double nearest = *std::ranges::min_element(
      limits.choices, {}, [value](double choice) { return std::abs(choice - value); });
  if (isSame(value, nearest)) return {};
  return BrokenLimit{L"none of the choices, the nearest is", nearest};
}

OdString faultOf(const ParameterLimits& limits) {
  if (limits.min && limits.max && *limits.min > *limits.max) {
    return OdString().format(L"the least value %g is above the greatest value %g", *limits.min,
                             *limits.max);
  }
  if (limits.step && !(*limits.step > 0)) {
    return OdString().format(L"the step is %g, it must be above 0", *limits.step);
  }
  return {};
}

ParameterLimits limitsOf(const OdDbAssocVariable& variable) {
  ParameterLimits limits;
  VdmProperties bag;
  if (!bag.readFromDbObject(&variable)) return limits;
  for (const NumberRow& row : kNumbers) {
    double number = 0;
    if (bag.getProperty(OdString(row.key), number)) limits.*row.number = number;
  }
  VdmDoubleArray choices;
  if (bag.getProperty(OdString(kChoices), choices)) {
    limits.choices.assign(choices.begin(), choices.end());
  }
  return limits;
}

void setLimits(OdDbAssocVariable& variable, const ParameterLimits& limits) {
  VdmProperties bag;
  bag.readFromDbObject(&variable);
  for (const NumberRow& row : kNumbers) {
    bag.removeProperty(OdString(row.key));
    if (limits.*row.number) bag.setProperty(OdString(row.key), *(limits.*row.number));
  }
  bag.removeProperty(OdString(kChoices));
  if (!limits.choices.empty()) {
    VdmDoubleArray choices;
    for (const double choice : limits.choices) choices.append(choice);
    bag.setProperty(OdString(kChoices), choices);
  }
  bag.writeToDbObject(&variable);
}

}  // namespace vdm_host
