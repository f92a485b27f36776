// What parameters a block has, and how they hang together.
#include "host/parameters/parameter_query.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/variable_dimension.h"
#include "platform/db/database.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/constraints/vdm_db_variable_reactor.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/features/vdm_db_expression_reactor.h"
#include "vdm_db/features/vdm_db_property_reactor.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_variable_values.h"
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context.h"

namespace vdm_host {
namespace {

OdDbObjectIdArray variablesOf(const OdDbObjectId& block) {
  OdDbObjectIdArray variables;
  const auto network =
      OdDbAssocNetwork::getInstanceFromObject(block, /*createIfDoesNotExist=*/false)
          .openAs<OdDbAssocNetwork>();
  if (network.isNull()) return variables;
  for (const OdDbObjectId& id : network->getActions()) {
    if (vdmu::isIdOf<OdDbAssocVariable>(id)) variables.append(id);
  }
  return variables;
}

// ---- What reads a variable

/// The property of a feature that a reactor of a variable gives; empty for other kinds of reactor.
OdString propertyOf(const OdDbObject& reactor, const OdDbObjectId& variable) {
  if (const auto expression = VdmDbExpressionReactor::cast(&reactor); !expression.isNull()) {
    return expression->propertyName();
  }
  if (const auto column = VdmDbConfigVarReactor::cast(&reactor); !column.isNull()) {
    return column->name();
  }
  const auto bound = VdmDbPropertyReactor::cast(&reactor);
  if (bound.isNull()) return {};
  for (const OdString& name : bound->getProperties()) {
    if (bound->getPropertyVariable(name) == variable) return name;
  }
  return {};
}

/// Calls back for each variable and feature that reads the variable itself.
template <class Call>
void forEachReader(const OdDbAssocVariable& variable, const Call& call) {
  for (const OdDbObjectId& id : variable.getPersistentReactors()) {
    if (id.isErased()) continue;
    const OdDbObjectId owner = id.ownerId();
    if (vdmu::isIdOf<OdDbAssocValueDependency>(id)) {
      const auto reader = owner.openAs<OdDbAssocVariable>();
      if (!reader.isNull()) call(ParameterLink{1, owner, reader->name(), OdString()});
      continue;
    }
    const OdDbObjectPtr reactor = id.openObject();
    if (reactor.isNull()) continue;
    if (reactor->isKindOf(VdmDbFeatureReactor::desc())) {
      const VdmFeaturePtr feature = VdmFeature::open(owner);
      if (feature.isNull()) continue;
      call(ParameterLink{1, owner, feature->name(), propertyOf(*reactor, variable.objectId())});
    } else if (reactor->isKindOf(VdmDbVariableReactor::desc())) {
      call(ParameterLink{1, id, OdString(L"constraints"), OdString()});
    } else if (reactor->isKindOf(VdmDbSheetMetalContext::desc())) {
      call(ParameterLink{1, id, OdString(L"sheet metal"), OdString(L"Thickness")});
    }
  }
}

/// Calls back for each variable that the expression of the variable itself mentions.
template <class Call>
void forEachDefinition(const OdDbAssocVariable& variable, const Call& call) {
  OdDbObjectIdArray dependencies;
  if (variable.getDependencies(/*readDependencies=*/true, /*writeDependencies=*/true,
                               dependencies) != eOk) {
    return;
  }
  for (const OdDbObjectId& id : dependencies) {
    const auto dependency = id.openAs<OdDbAssocValueDependency>();
    if (dependency.isNull()) continue;
    const auto used = dependency->dependentOnObject().openAs<OdDbAssocVariable>();
    if (!used.isNull()) call(ParameterLink{1, used->objectId(), used->name(), OdString()});
  }
}

/// Depth first from a variable, each variable once; the stack is a list, since chains may be long.
/// A variable without a name is the expression of a feature; it is passed through.
template <class Neighbours>
std::vector<ParameterLink> walkFrom(const OdDbObjectId& start, const Neighbours& neighbours) {
  std::vector<ParameterLink> found;
  std::unordered_set<OdDbObjectId> seen;
  std::vector<ParameterLink> stack{{0, start, OdString(), OdString()}};
  while (!stack.empty()) {
    ParameterLink link = std::move(stack.back());
    stack.pop_back();
    const auto variable = link.object.openAs<OdDbAssocVariable>();
    const bool isPassed = link.depth > 0 && !variable.isNull() && variable->isAnonymous();
    const int depth = isPassed ? link.depth : link.depth + 1;
    if (!variable.isNull() && !seen.insert(link.object).second) continue;
    if (link.depth > 0 && !isPassed) found.push_back(std::move(link));
    if (variable.isNull()) continue;
    const std::size_t bottom = stack.size();
    neighbours(*variable, [&stack, depth](ParameterLink next) {
      next.depth = depth;
      stack.push_back(std::move(next));
    });
    std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(bottom), stack.end());
  }
  return found;
}

OdStringArray usersOf(const OdDbAssocVariable& variable) {
  OdStringArray users;
  const auto note = [&users](const ParameterLink& link) {
    const OdString text = link.property.isEmpty() ? link.name : link.name + L"." + link.property;
    if (!users.contains(text)) users.append(text);
  };
  forEachReader(variable, [&note](const ParameterLink& link) {
    const auto reader = link.object.openAs<OdDbAssocVariable>();
    if (reader.isNull() || !reader->isAnonymous()) return note(link);
    forEachReader(*reader, note);
  });
  return users;
}

OdString faultOf(const OdDbAssocVariable& variable) {
  switch (variable.status()) {
    case kAssocFailedToEvaluate:
      return OdString(L"cannot be evaluated");
    case kAssocUnresolved:
    case kAssocErased:
      return OdString(L"uses a name that is not there");
    default:
      return {};
  }
}

OdDb::UnitsValue unitsOf(const OdDbAssocVariable& variable) {
  return VdmAssocVariableExt::cast(&variable)->getBlockUnits();
}

}  // namespace

// ---- Lists

OdDbObjectId findParameter(const OdDbObjectId& block, const OdString& name) {
  const auto network =
      OdDbAssocNetwork::getInstanceFromObject(block, /*createIfDoesNotExist=*/false)
          .openAs<OdDbAssocNetwork>();
  return network.isNull() || OdDbAssocVariable::isAnonymous(name) ? OdDbObjectId::kNull
                                                                  : network->variableNamed(name);
}

ParameterInfo describeParameter(const OdDbObjectId& id, ParameterDetail detail) {
  const auto variable = id.safeOpenAs<OdDbAssocVariable>();
  ParameterInfo info;
  info.variable = id;
  info.name = variable->name();
  info.expression = variable->expression();
  info.isText = VdmConfigurationFeature::evaluateStringValue(id, info.text) == eOk;
  info.value = variable->numericValue();
  info.dimension = oddbDimensionOf(*variable);
  info.shown = shownValue(info.value, info.dimension, unitsOf(*variable));
  if (info.shown.unit.isEmpty() && !info.isText) {
    info.shown.unit = VdmAssocVariableExt::cast(variable.get())->unitsAsString();
  }
  info.fault = faultOf(*variable);
  info.limits = limitsOf(*variable);
  if (detail == ParameterDetail::kValue) return info;
  info.isExposed = VdmAssocVariableExt::calculateExposedStatus(variable.get());
  info.users = usersOf(*variable);
  return info;
}

std::vector<ParameterInfo> listParameters(const OdDbObjectId& block, ParameterDetail detail) {
  std::vector<ParameterInfo> parameters;
  for (const OdDbObjectId& id : variablesOf(block)) {
    if (!id.safeOpenAs<OdDbAssocVariable>()->isAnonymous()) {
      parameters.push_back(describeParameter(id, detail));
    }
  }
  return parameters;
}

OdString valueText(const ParameterInfo& parameter) {
  OdString text =
      parameter.isText ? parameter.text : OdString().format(L"%.6g", parameter.shown.number);
  if (!parameter.isText && !parameter.shown.unit.isEmpty()) text += L" " + parameter.shown.unit;
  return parameter.fault.isEmpty() ? text : text + L" (" + parameter.fault + L")";
}

std::vector<ParameterLink> definitionsOf(const OdDbObjectId& variable) {
  return walkFrom(
      variable, [](const OdDbAssocVariable& at, const auto& call) { forEachDefinition(at, call); });
}

std::vector<ParameterLink> dependentsOf(const OdDbObjectId& variable) {
  return walkFrom(variable,
                  [](const OdDbAssocVariable& at, const auto& call) { forEachReader(at, call); });
}

}  // namespace vdm_host
