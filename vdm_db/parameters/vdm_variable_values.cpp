// Values of variables, and constant expressions.
#include "vdm_db/parameters/vdm_variable_values.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/assoc/expression_parser.h"
#include "vdm_db/parameters/vdm_variable_roles.h"

namespace vdmu {

namespace {

constexpr double kNoNumber = -1.0;
constexpr OdResult kNoVariable = static_cast<OdResult>(417);  // seen by callers and fixed

bool isNumber(const OdDbEvalVariant* value) {
  if (value == nullptr) return false;
  const OdDb::DwgDataType type = value->getType();
  return type == OdDb::kDwgReal || type == OdDb::kDwgInt32;
}

}  // namespace

// ---- Values

double getValueAsDouble(const OdDbEvalVariant* value) {
  return isNumber(value) ? value->getAsDouble() : kNoNumber;
}

double getValueAsDouble(const OdDbAssocVariable* variable) {
  return variable == nullptr ? kNoNumber : getValueAsDouble(variable->value().get());
}

int getValueAsInt(const OdDbEvalVariant* value) {
  constexpr double kLeast = std::numeric_limits<int>::min();
  constexpr double kGreatest = std::numeric_limits<int>::max();
  const double number = getValueAsDouble(value);
  return static_cast<int>(std::isnan(number) ? kNoNumber : std::clamp(number, kLeast, kGreatest));
}

bool isStringType(const OdDbEvalVariant* value) {
  return value != nullptr && value->getType() == OdDb::kDwgText;
}

OdString getAsString(const OdDbEvalVariant* value) {
  if (value == nullptr) return {};
  return isStringType(value) ? value->getString() : getConstExpression(value->getAsDouble());
}

OdDbEvalVariantPtr getEvalVariant(const OdDbAssocVariable* variable) {
  if (variable == nullptr) return {};
  const VdmVariableRoles& roles = VdmVariableRoles::installed();
  OdString text;
  if (vdmAskRole(roles.hasStringValue, variable->objectId(), text)) {
    return OdDbEvalVariant::init(text);
  }
  if (vdmAskRole(roles.isStringTyped, variable)) return {};
  return variable->value();
}

// ---- Constant expressions

OdString getConstExpression(double value) { return OdString().format(L"%.12g", value); }

OdResult setConstExpression(OdDbAssocVariable* variable, double value) {
  if (variable == nullptr) return kNoVariable;
  return variable->setExpression(getConstExpression(value), OdString::kEmpty,
                                 /*checkForCyclicalDependencies=*/false,
                                 /*updateDependenciesOnOtherVariables=*/true);
}

bool hasConstExpression(const OdDbAssocVariable* variable, bool checkExpression) {
  if (variable == nullptr) return false;
  OdDbObjectIdArray dependencies;
  if (variable->getDependencies(/*readDependencies=*/true, /*writeDependencies=*/true,
                                dependencies) != eOk ||
      !dependencies.isEmpty()) {
    return false;
  }
  return !checkExpression || !getConstValue(variable->expression()).isNull();
}

OdDbEvalVariantPtr getConstValue(const OdString& text) {
  OdExpression::Parser parser;
  if (parser.setExpression(text) != eOk || !parser.isConstExpression()) return {};
  return parser.evaluate();
}

}  // namespace vdmu
