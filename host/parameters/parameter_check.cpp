// What could be wrong with the parameters of a block.
#include <map>

#include "host/parameters/parameter_query.h"

namespace vdm_host {
namespace {

using Kind = ParameterFinding::Kind;

OdString number(double value) { return OdString().format(L"%.12g", value); }

void checkOne(const ParameterInfo& parameter, std::vector<ParameterFinding>& findings) {
  if (!parameter.fault.isEmpty()) {
    findings.push_back(
        {Kind::kUnresolved, parameter.name, parameter.expression + L": " + parameter.fault});
  }
  if (parameter.isText) return;
  if (const auto broken = brokenLimit(parameter.limits, parameter.value)) {
    findings.push_back(
        {Kind::kOutOfRange, parameter.name,
         number(parameter.value) + L" is " + broken->what + L" " + number(broken->nearest)});
  }
  if (parameter.users.isEmpty()) {
    findings.push_back({Kind::kUnused, parameter.name, OdString(L"nothing uses it")});
  } else if (parameter.shown.unit.isEmpty()) {
    findings.push_back({Kind::kUnitless, parameter.name, valueText(parameter) + L" has no unit"});
  }
}

/// Two parameters with the same expression: one may be meant to follow the other.
void checkTwins(const std::vector<ParameterInfo>& parameters,
                std::vector<ParameterFinding>& findings) {
  std::map<OdString, OdString> firstOf;  // name by expression
  for (const ParameterInfo& parameter : parameters) {
    if (parameter.isText) continue;
    const OdString text =
        parameter.expression.isEmpty() ? valueText(parameter) : parameter.expression;
    const auto [first, isNew] = firstOf.try_emplace(text, parameter.name);
    if (isNew) continue;
    findings.push_back(
        {Kind::kDuplicate, parameter.name, text + L" is what " + first->second + L" is, too"});
  }
}

}  // namespace

const char* kindName(Kind kind) {
  constexpr const char* kNames[] = {"unresolved", "out of range", "unused", "unitless",
                                    "duplicate"};
  return kNames[static_cast<std::size_t>(kind)];
}

std::vector<ParameterFinding> checkParameters(const OdDbObjectId& block) {
  std::vector<ParameterFinding> findings;
  const std::vector<ParameterInfo> parameters = listParameters(block);
  for (const ParameterInfo& parameter : parameters) checkOne(parameter, findings);
  checkTwins(parameters, findings);
  return findings;
}

}  // namespace vdm_host
