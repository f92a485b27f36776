// Operations on parameters: set, add, remove, rename.
#include <algorithm>
#include <functional>

#include "host/cli/cli_error.h"
#include "host/cli/model_lookup.h"
#include "host/cli/operation.h"
#include "host/cli/parameter_changes.h"
#include "host/cli/text_output.h"
#include "host/parameters/parameter_edit.h"
#include "host/parameters/parameter_query.h"
#include "platform/assoc/assoc_variable.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"

namespace cli {

namespace {

using Kind = ParameterKind;
using Assignments = std::vector<vdm_host::ParameterAssignment>;

// ---- Limits

bool givesLimits(const Arguments& arguments) {
  constexpr const char* kNames[] = {"min", "max", "step", "choices", "no-limits"};
  return std::ranges::any_of(kNames, [&](const char* name) { return arguments.has(name); });
}

double limitNumber(const std::string& what, const std::string& text,
                   const OdDbAssocVariable& variable) {
  double value = 0;
  OdExpression::Dimension dimension;
  OdString error;
  const OdDb::UnitsValue unit = VdmAssocVariableExt::cast(&variable)->getBlockUnits();
  if (vdm_host::readConstant(OdString(text), unit, value, dimension, error)) return value;
  throw CliError(what + " is " + quote(text) + ": " + str(error), kWrongUsage);
}

/// The limits that the parameter has, with those that are given in their place.
vdm_host::ParameterLimits limitsWith(const OdDbAssocVariable& variable,
                                     const Arguments& arguments) {
  vdm_host::ParameterLimits limits;
  if (!arguments.has("no-limits")) limits = vdm_host::limitsOf(variable);
  const auto take = [&](const char* name, std::optional<double>& number) {
    if (arguments.has(name)) number = limitNumber(name, arguments.text(name), variable);
  };
  take("min", limits.min);
  take("max", limits.max);
  take("step", limits.step);
  if (!arguments.has("choices")) return limits;
  limits.choices.clear();
  for (const std::string& choice : arguments.texts("choices")) {
    limits.choices.push_back(limitNumber("choices", choice, variable));
  }
  return limits;
}

OdStatus applyLimits(const OdDbObjectId& block, const Assignments& all,
                     const Arguments& arguments) {
  if (!givesLimits(arguments)) return {};
  for (const vdm_host::ParameterAssignment& one : all) {
    const OdDbObjectId id = vdm_host::findParameter(block, one.name);
    if (id.isNull()) return {eKeyNotFound, L"there is no parameter " + one.name};
    const auto limits = limitsWith(*id.safeOpenAs<OdDbAssocVariable>(), arguments);
    if (OdStatus status = vdm_host::limitParameter(block, one.name, limits); !status.ok()) {
      return status;
    }
  }
  return {};
}

// ---- Operations

Assignments assignmentsOf(const Arguments& arguments, bool mayBeNames) {
  Assignments all;
  for (const std::string& text : arguments.texts("assignments")) {
    all.push_back(vdm_host::parseAssignment(OdString(text)));
    const bool isName = text.find('=') == std::string::npos;
    if (isName && mayBeNames) continue;
    if (isName || all.back().name.isEmpty() || all.back().expression.isEmpty()) {
      throw CliError(quote(text) + " is no assignment, write name=expression", kWrongUsage);
    }
  }
  return all;
}

std::string namesOf(const Assignments& all) {
  std::string names;
  for (const auto& one : all) names += (names.empty() ? "" : ", ") + quote(one.name.utf8());
  return names;
}

StepResult setParameters(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId block = findBlock(editing.drawing, arguments.text("block"));
  const Assignments all = assignmentsOf(arguments, givesLimits(arguments));
  Assignments values = all;
  std::erase_if(values, [](const auto& one) { return one.expression.isEmpty(); });
  return changeParameters(editing, block, "param set", "set " + namesOf(all), [&] {
    // The new limits are for the new values.
    OdStatus status = applyLimits(block, all, arguments);
    return status.ok() ? vdm_host::setParameters(block, values) : status;
  });
}

StepResult addParameters(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId block = findBlock(editing.drawing, arguments.text("block"));
  const Assignments all = assignmentsOf(arguments, /*mayBeNames=*/false);
  StepResult step = changeParameters(editing, block, "param add", "added " + namesOf(all), [&] {
    OdStatus status = vdm_host::addParameters(block, all);
    if (status.ok()) status = applyLimits(block, all, arguments);
    return status.ok() ? vdm_host::computeParameters(block) : status;
  });
  for (const auto& one : all) {
    const OdDbObjectId id = vdm_host::findParameter(block, one.name);
    const auto info = vdm_host::describeParameter(id, vdm_host::ParameterDetail::kValue);
    step.notes.push_back(str(info.name + L" = " + valueText(info)));
    step.values.emplace_back(str(info.name), handleOf(id));
  }
  return step;
}

StepResult removeParameters(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId block = findBlock(editing.drawing, arguments.text("block"));
  std::vector<OdString> names;
  std::string shown;
  for (const std::string& name : arguments.texts("names")) {
    names.emplace_back(name);
    shown += (shown.empty() ? "" : ", ") + quote(name);
  }
  return changeParameters(editing, block, "param remove", "removed " + shown,
                          [&] { return vdm_host::removeParameters(block, names); });
}

StepResult renameParameter(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId block = findBlock(editing.drawing, arguments.text("block"));
  const std::string name = arguments.text("name");
  const std::string to = arguments.text("to");
  return changeParameters(
      editing, block, "param rename", "renamed " + quote(name) + " to " + quote(to),
      [&] { return vdm_host::renameParameter(block, OdString(name), OdString(to)); });
}

constexpr Parameter kMinParameter = {"min", Kind::kText, false, false, "least value"};
constexpr Parameter kMaxParameter = {"max", Kind::kText, false, false, "greatest value"};
constexpr Parameter kStepParameter = {"step", Kind::kText, false, false,
                                      "values are so far apart, from the least one or 0"};
constexpr Parameter kChoicesParameter = {"choices", Kind::kTexts, false, false,
                                         "the only values that it may have"};
constexpr Parameter kSetParameters[] = {
    {"assignments", Kind::kTexts, true, true,
     "name=expression, one or more; a name alone with limits"},
    kMinParameter,
    kMaxParameter,
    kStepParameter,
    kChoicesParameter,
    {"no-limits", Kind::kFlag, false, false, "take away the limits that there are"},
    kBlockParameter,
};
constexpr Parameter kAddParameters[] = {
    {"assignments", Kind::kTexts, true, true, "name=expression, one or more"},
    kMinParameter,
    kMaxParameter,
    kStepParameter,
    kChoicesParameter,
    kBlockParameter,
};
constexpr Parameter kRemoveParameters[] = {
    {"names", Kind::kTexts, true, true, "parameters that nothing else uses"},
    kBlockParameter,
};
constexpr Parameter kRenameParameters[] = {
    {"name", Kind::kText, true, true, "the parameter"},
    {"to", Kind::kText, true, true, "its new name"},
    kBlockParameter,
};

constexpr Operation kOperations[] = {
    {"param set", "Set parameters, all or none, with one update of all that depends on them",
     "vdm param set plate.vdm 'width=120 mm' 'height=width / 2'", kSetParameters, setParameters},
    {"param add", "Add parameters, which may use each other",
     "vdm param add plate.vdm 'd=9 mm' 'bore=d + 6 mm' --min '5 mm'", kAddParameters,
     addParameters},
    {"param remove", "Remove parameters that nothing else uses", "vdm param remove plate.vdm bore",
     kRemoveParameters, removeParameters},
    {"param rename", "Rename a parameter in all expressions, table columns and features",
     "vdm param rename plate.vdm d diameter --dry-run", kRenameParameters, renameParameter},
};

}  // namespace

std::span<const Operation> paramOperations() { return kOperations; }

}  // namespace cli
