// Edits of parameters.
#include "host/parameters/parameter_edit.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <unordered_map>

#include "host/parameters/configurations.h"
#include "host/parameters/parameter_query.h"
#include "host/parameters/unit_text.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/variable_dimension.h"
#include "platform/base/error.h"
#include "platform/base/sort_unique.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_variable_evaluation.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

namespace vdm_host {
namespace {

OdStatus refuse(const OdString& name, const OdString& why, OdResult code = eInvalidInput) {
  return {code, L"parameter " + name + L": " + why};
}

OdStatus refuseMissing(const OdDbObjectId& block, const OdString& name) {
  OdString known;
  const std::vector<ParameterInfo> parameters = listParameters(block, ParameterDetail::kValue);
  constexpr std::size_t kMostShown = 8;
  for (std::size_t i = 0; i < std::min(parameters.size(), kMostShown); ++i) {
    known += (i == 0 ? L"" : L", ") + parameters[i].name;
  }
  if (parameters.size() > kMostShown) known += L", ...";
  return refuse(name,
                known.isEmpty() ? OdString(L"it is not there, there are no parameters")
                                : L"it is not there, there are " + known,
                eKeyNotFound);
}

/// A configuration follows values, and takes a variable with an expression for one that something
/// else drives.
bool becomesValue(const OdDbAssocVariable& variable, const OdString& text, double& value) {
  if (!VdmConfigurationFeature::isLinked(&variable, /*nonKeyOnly=*/true)) return false;
  OdString error;
  OdExpression::Dimension dimension;
  const OdDb::UnitsValue unit = VdmAssocVariableExt::cast(&variable)->getBlockUnits();
  return readConstant(text, unit, value, dimension, error);
}

/// A plain number for a parameter that measures something is in the unit in which it is shown.
OdString withUnit(const OdDbAssocVariable& variable, const OdString& text) {
  const OdExpression::Dimension measured = oddbDimensionOf(variable);
  const OdDb::UnitsValue lengthUnit = VdmAssocVariableExt::cast(&variable)->getBlockUnits();
  const OdString unit = shownValue(0.0, measured, lengthUnit).unit;
  double value = 0;
  OdExpression::Dimension dimension;
  OdString error;
  const bool isPlain = readConstant(text, lengthUnit, value, dimension, error) &&
                       dimension == OdExpression::Dimension::plain();
  if (unit.isEmpty() || !isPlain) return text;
  const bool isNumber = std::ranges::all_of(
      std::string(text.utf8()), [](char ch) { return (ch >= '0' && ch <= '9') || ch == '.'; });
  return (isNumber ? text : L"(" + text + L")") + L" " + unit;
}

OdStatus assign(const OdDbObjectId& id, const OdString& name, const OdString& text) {
  const auto variable = id.safeOpenAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (VdmConfigurationFeature::isStringType(variable.get())) {
    const OdResult result =
        VdmConfigurationFeature::setStringValue(variable.get(), text, /*select=*/true);
    return result == eOk ? OdStatus() : refuse(name, L"it does not take the text " + text, result);
  }
  if (text.isEmpty()) return refuse(name, OdString(L"the expression is empty"));
  double value = 0;
  if (becomesValue(*variable, text, value)) {
    const OdResult result = variable->setValue(OdDbEvalVariant::init(value));
    if (result == eOk) return {};
  }
  OdString error;
  const OdResult result =
      variable->setExpression(withUnit(*variable, text), OdString::kEmpty,
                              /*checkForCyclicalDependencies=*/true,
                              /*updateDependenciesOnOtherVariables=*/true, &error);
  return result == eOk ? OdStatus() : refuse(name, text + L": " + error, result);
}

/// What one assignment needs may come from another one: those that fail are tried again as long as
/// others succeed. Each round but the last one settles one at least.
OdStatus assignAll(const OdDbObjectId& block, std::vector<ParameterAssignment> waiting) {
  OdStatus failure;
  while (!waiting.empty()) {
    const std::size_t before = waiting.size();
    failure = {};
    std::erase_if(waiting, [&](const ParameterAssignment& next) {
      const OdStatus status = assign(findParameter(block, next.name), next.name, next.expression);
      if (!status.ok() && failure.ok()) failure = status;
      return status.ok();
    });
    if (waiting.size() == before) return failure;
  }
  return {};
}

// ---- Several values of one table

/// Gives a linked parameter again what the assignment gave it, past the configuration. False when
/// it still has that.
bool holdValue(const OdDbObjectId& id, const ParameterAssignment& given, OdStatus& status) {
  constexpr double kSame = 1e-10;  // as tables compare
  const auto variable = id.safeOpenAs<OdDbAssocVariable>();
  const auto link = VdmDbConfigVarReactor::of(variable.get(), OdDb::kForWrite);
  double value = 0;
  if (link->isStringType()) {
    if (link->stringValue() == given.expression) return false;
    static_cast<void>(link->setVariableValue(given.expression));
  } else if (becomesValue(*variable, given.expression, value)) {
    if (std::abs(vdmu::getValueAsDouble(variable.get()) - value) <= kSame) return false;
    static_cast<void>(link->setVariableValue(value));
  } else {
    if (!variable->expression().isEmpty()) return false;
    status = assign(id, given.name, given.expression);
  }
  return true;
}

/// The row that has all present values becomes the selected one; none where there is no such row.
void selectFittingRow(const OdDbObjectId& id) {
  const ConfigurationState state = configurationState(id);
  const std::vector<std::size_t> nearest = nearestRows(state);
  const bool fits = !nearest.empty() && state.rows[nearest.front()].numDifferences == 0;
  const auto feature = id.safeOpenAs<VdmConfigurationFeature>(OdDb::kForWrite);
  const OdString name = fits ? state.rows[nearest.front()].name : feature->freeConfiguration();
  feature->setSelectedConfiguration(name);
  const auto key = feature->keyVariable().openAs<OdDbAssocVariable>();
  if (key.isNull()) return;
  static_cast<void>(VdmConfigurationFeature::setStringValue(key.get(), name, /*select=*/false));
}

/// A configuration that finds a row for one value writes the other values of the row. Those that
/// the same edit gives must hold all the same.
OdStatus holdValues(const OdDbObjectId& block,
                    const std::vector<ParameterAssignment>& assignments) {
  OdStatus status;
  std::vector<OdDbObjectId> tables;
  for (const ParameterAssignment& given : assignments) {
    const OdDbObjectId id = findParameter(block, given.name);
    const auto variable = id.safeOpenAs<OdDbAssocVariable>();
    if (!VdmConfigurationFeature::isLinked(variable.get(), /*nonKeyOnly=*/true)) continue;
    const auto table = VdmConfigurationFeature::getFeature(variable.get(), OdDb::kForRead);
    if (table.isNull() || !holdValue(id, given, status)) continue;
    if (!status.ok()) return status;
    tables.push_back(table->objectId());
  }
  odSortUnique(tables);
  for (const OdDbObjectId& table : tables) selectFittingRow(table);
  return status;
}

OdStatus requireOnce(const std::vector<ParameterAssignment>& assignments) {
  for (std::size_t i = 0; i < assignments.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      if (!assignments[i].name.iEquals(assignments[k].name)) continue;
      return refuse(assignments[i].name, L"both " + assignments[k].expression + L" and " +
                                             assignments[i].expression + L" are given");
    }
  }
  return {};
}

}  // namespace

ParameterAssignment parseAssignment(const OdString& text) {
  const int equals = text.find(L'=');
  ParameterAssignment assignment{equals < 0 ? text : text.left(equals),
                                 equals < 0 ? OdString() : text.mid(equals + 1)};
  assignment.name.trimLeft().trimRight();
  assignment.expression.trimLeft().trimRight();
  return assignment;
}

OdStatus computeParameters(const OdDbObjectId& block) {
  vdmu::evaluateVariables(block);
  for (const ParameterInfo& parameter : listParameters(block, ParameterDetail::kValue)) {
    if (!parameter.fault.isEmpty()) {
      return refuse(parameter.name, parameter.expression + L" " + parameter.fault);
    }
    if (parameter.isText) continue;
    const auto broken = brokenLimit(parameter.limits, parameter.value);
    if (!broken) continue;
    const auto variable = parameter.variable.safeOpenAs<OdDbAssocVariable>();
    const ShownValue bound = shownValue(broken->nearest, parameter.dimension,
                                        VdmAssocVariableExt::cast(variable.get())->getBlockUnits());
    OdString text = valueText(parameter) + L" is " + broken->what;
    text += OdString().format(L" %.6g", bound.number);
    if (!bound.unit.isEmpty()) text += L" " + bound.unit;
    return refuse(parameter.name, text);
  }
  return {};
}

OdStatus setParameters(const OdDbObjectId& block,
                       const std::vector<ParameterAssignment>& assignments) {
  OdStatus status = requireOnce(assignments);
  for (const ParameterAssignment& next : assignments) {
    if (status.ok() && findParameter(block, next.name).isNull()) {
      status = refuseMissing(block, next.name);
    }
  }
  if (status.ok()) status = assignAll(block, assignments);
  if (status.ok() && assignments.size() > 1) status = holdValues(block, assignments);
  return status.ok() ? computeParameters(block) : status;
}

OdStatus addParameters(const OdDbObjectId& block,
                       const std::vector<ParameterAssignment>& assignments) {
  if (OdStatus status = requireOnce(assignments); !status.ok()) return status;
  for (const ParameterAssignment& next : assignments) {
    if (vdmu::isAnonymous(next.name)) return refuse(next.name, OdString(L"that is no name"));
    const OdDbObjectId id = vdmu::addVariable(block);
    const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
    if (variable.isNull()) return refuse(next.name, OdString(L"its block takes no parameters"));
    OdString error;
    const OdResult result =
        variable->setName(next.name, /*updateReferencingExpressions=*/false, &error);
    if (result != eOk) return refuse(next.name, error, result);
  }
  const OdStatus status = assignAll(block, assignments);
  return status.ok() ? computeParameters(block) : status;
}

OdStatus removeParameters(const OdDbObjectId& block, const std::vector<OdString>& names) {
  OdDbObjectIdArray variables;
  for (const OdString& name : names) {
    variables.append(findParameter(block, name));
    if (variables.last().isNull()) return refuseMissing(block, name);
  }
  for (const OdDbObjectId& id : variables) {
    const OdString name = id.safeOpenAs<OdDbAssocVariable>()->name();
    OdString users;
    for (const ParameterLink& link : dependentsOf(id)) {
      if (link.depth > 1 || variables.contains(link.object)) continue;
      if (!users.isEmpty()) users += L", ";
      users += link.property.isEmpty() ? link.name : link.name + L"." + link.property;
    }
    if (!users.isEmpty()) return refuse(name, users + L" would be without it");
  }
  for (const OdDbObjectId& id : variables) vdmu::removeVariable(id);
  return computeParameters(block);
}

OdStatus renameParameter(const OdDbObjectId& block, const OdString& name, const OdString& newName) {
  const OdDbObjectId id = findParameter(block, name);
  if (id.isNull()) return refuseMissing(block, name);
  OdString error;
  const OdResult result = id.safeOpenAs<OdDbAssocVariable>(OdDb::kForWrite)
                              ->setName(newName, /*updateReferencingExpressions=*/true, &error);
  return result == eOk ? OdStatus() : refuse(name, error, result);
}

OdStatus limitParameter(const OdDbObjectId& block, const OdString& name,
                        const ParameterLimits& limits) {
  const OdDbObjectId id = findParameter(block, name);
  if (id.isNull()) return refuseMissing(block, name);
  if (const OdString fault = faultOf(limits); !fault.isEmpty()) return refuse(name, fault);
  setLimits(*id.safeOpenAs<OdDbAssocVariable>(OdDb::kForWrite), limits);
  return {};
}

// ---- What moved

ParameterSnapshot::ParameterSnapshot(const OdDbObjectId& block)
    : m_block(block), m_before(statesOf(block)) {}

ParameterSnapshot::States ParameterSnapshot::statesOf(const OdDbObjectId& block) {
  States states;
  for (const ParameterInfo& parameter : listParameters(block, ParameterDetail::kValue)) {
    states.emplace_back(parameter.variable,
                        State{parameter.name, parameter.expression, valueText(parameter)});
  }
  return states;
}

std::vector<OdString> ParameterSnapshot::changes() const {
  std::unordered_map<OdDbObjectId, const State*> before;
  for (const auto& [id, state] : m_before) before[id] = &state;
  std::vector<OdString> lines;
  for (const auto& [id, now] : statesOf(m_block)) {
    const auto known = before.find(id);
    if (known == before.end()) continue;
    const State& was = *known->second;
    if (was.name != now.name) lines.push_back(was.name + L" is called " + now.name);
    if (was.value != now.value) lines.push_back(now.name + L": " + was.value + L" -> " + now.value);
    const bool isFormula = !was.expression.isEmpty() && !now.expression.isEmpty();
    if (isFormula && was.expression != now.expression && was.value == now.value) {
      lines.push_back(now.name + L" = " + was.expression + L" -> " + now.expression);
    }
  }
  return lines;
}

}  // namespace vdm_host
