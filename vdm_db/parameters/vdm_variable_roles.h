// VdmVariableRoles: what the rooms above know about a variable.
#pragma once

#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbAssocVariable;
class OdDbObject;

/// Questions about a variable that configurations, constraints, sheet metal and features answer.
/// The module installs the functions when it registers its classes and takes them out when it
/// releases them. A function that is missing answers no.
struct VDM_DB_EXPORT VdmVariableRoles {
  /// A configuration binds a text to the variable; `text` is set then.
  bool (*hasStringValue)(const OdDbObjectId& variable, OdString& text) = nullptr;
  /// The variable is a column of texts.
  bool (*isStringTyped)(const OdDbAssocVariable* variable) = nullptr;
  /// A persistent reactor of a variable is a column of a configuration table that sets the
  /// variable: enabled, and no key.
  bool (*isDrivingColumn)(const OdDbObject* reactor) = nullptr;
  /// The dimensional constraint that the variable belongs to is a length, or an angle.
  bool (*isLinearConstraint)(const OdDbAssocVariable* variable) = nullptr;
  bool (*isAngularConstraint)(const OdDbAssocVariable* variable) = nullptr;
  /// It drives the thickness of the sheet metal of its block.
  bool (*isSheetMetalThickness)(const OdDbAssocVariable* variable) = nullptr;
  /// It switches a suppress feature of the model space.
  bool (*isSuppression)(const OdDbAssocVariable* variable) = nullptr;

  [[nodiscard]] static const VdmVariableRoles& installed();
  /// Replaces all of them.
  static void install(const VdmVariableRoles& roles);
};

/// The answer of a role; false where the role is not installed.
template <class Role, class... Arguments>
[[nodiscard]] bool vdmAskRole(Role role, Arguments&&... arguments) {
  return role != nullptr && role(arguments...);
}
