// What parameters a block has, what defines them and what depends on them.
#pragma once

#include <vector>

#include "host/parameters/parameter_limits.h"
#include "host/parameters/unit_text.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"

namespace vdm_host {

/// Who uses and sees a parameter costs a look at all its reactors.
enum class ParameterDetail { kValue, kAll };

/// One named variable of a block, as a user sees it.
struct ParameterInfo {
  OdDbObjectId variable;
  OdString name;
  OdString expression;  ///< empty for a value that was set as such
  OdString text;        ///< of a parameter that is a text: a column of texts, or a key
  bool isText = false;
  double value = 0.0;  ///< base units
  OdExpression::Dimension dimension;
  ShownValue shown;  ///< a value without an expression has the unit of its measurement type
  OdString fault;    ///< why it has no proper value: "cannot be evaluated"; empty when it has
  ParameterLimits limits;
  // With ParameterDetail::kAll:
  bool isExposed = false;
  OdStringArray users;  ///< names of variables, "feature.property" of features
};

/// All named variables in the order of their making; those of expressions have no names.
[[nodiscard]] std::vector<ParameterInfo> listParameters(
    const OdDbObjectId& block, ParameterDetail detail = ParameterDetail::kAll);
/// Null when the block has no parameter of the name, whatever the case.
[[nodiscard]] OdDbObjectId findParameter(const OdDbObjectId& block, const OdString& name);
[[nodiscard]] ParameterInfo describeParameter(const OdDbObjectId& variable,
                                              ParameterDetail detail = ParameterDetail::kAll);
/// "12 mm", "Steel"; with the fault where there is one. Six digits.
[[nodiscard]] OdString valueText(const ParameterInfo& parameter);

/// One thing in a walk through what defines a parameter or depends on it.
struct ParameterLink {
  int depth = 1;        ///< 1 for direct ones
  OdDbObjectId object;  ///< a variable or the carrier of a feature
  OdString name;        ///< of the variable or feature
  OdString property;    ///< that a feature takes from it; empty for variables
};
/// The variables that the parameter's expression needs, depth first; each once.
[[nodiscard]] std::vector<ParameterLink> definitionsOf(const OdDbObjectId& variable);
/// The variables and features that depend on it, likewise. Variables of expressions are passed
/// through to the feature that has the expression.
[[nodiscard]] std::vector<ParameterLink> dependentsOf(const OdDbObjectId& variable);

/// What could be wrong with a parameter.
struct ParameterFinding {
  enum class Kind { kUnresolved, kOutOfRange, kUnused, kUnitless, kDuplicate };
  Kind kind;
  OdString name;
  OdString text;
  /// It cannot stay so. The others may be meant.
  [[nodiscard]] bool isError() const {
    return kind == Kind::kUnresolved || kind == Kind::kOutOfRange;
  }
};
/// Looks at what is stored; evaluates nothing.
[[nodiscard]] std::vector<ParameterFinding> checkParameters(const OdDbObjectId& block);
[[nodiscard]] const char* kindName(ParameterFinding::Kind kind);

}  // namespace vdm_host
