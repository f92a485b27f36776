// VdmDbConfigVarReactor: the link of a column of configurations to a variable.
#pragma once

#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"

class OdDbAssocVariable;

/// State: the bag keys "VarId", "VarName", "DeleteVarOnErase", "Value", "String", "IsString",
/// "IsKeyVar", "IsEnabled", and "Name", the column.
class VDM_DB_EXPORT VdmDbConfigVarReactorImpl : public VdmDbFeatureReactorImpl {
 public:
  VdmDbConfigVarReactorImpl();

  OdDbObjectId variable;
  OdString variableName;         ///< when last seen
  bool deletesVariable = false;  ///< the variable was made for the link and ends with it
  double value = 0.0;            ///< number when last seen
  OdString text;                 ///< text when last seen, of a column of texts
  bool isString = false;
  bool isKey = false;
  bool isEnabled = true;
  OdString column;

  /// The reactor itself changes its variable; what it hears meanwhile is no news. Not stored.
  bool isWriting = false;

  /// Detaches the link from its variable, which is erased where the link made it and nothing else
  /// uses it.
  OdResult subErase(VdmDbFeatureReactor* reactor) override;
  [[nodiscard]] OdDbObjectIdArray getVariables(const VdmDbFeatureReactor* reactor) override;
  [[nodiscard]] OdDbObjectIdArray getDependentVariables(
      const VdmDbFeatureReactor* reactor) override;
};

/// Links one column of a configuration table to one variable. The carrier of the
/// VdmConfigurationFeature owns it, and it is a persistent reactor of the variable. It writes
/// values of the chosen row to the variable and calls onPropertyModified() of the feature when
/// somebody else changes the variable.
///
/// 1. A variable that gets an expression is driven by something else: its link is not enabled until
///    the expression is removed, which writing a value does. A new link is enabled whatever the
///    variable has, so that its value takes part when a table is loaded.
/// 2. A variable has no texts. The link of a column of texts keeps the text itself, and the number
///    of its variable changes between 0 and 1 with every write, so that whatever depends on the
///    variable becomes out of date.
/// 3. A link whose variable does not have it among its persistent reactors, as after a copy of the
///    feature without the variable, has no variable.
class VDM_DB_EXPORT VdmDbConfigVarReactor
    : public VdmDbFeatureReactorOf<VdmDbConfigVarReactorImpl> {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbConfigVarReactor)

  /// Links to the variable of that name in the block. 417 when there is none, 5 when `owner` is not
  /// the carrier that owns this object.
  OdResult attachToVariable(OdDbObjectId block, OdDbObject* owner, const OdString& name);
  /// The same with the variable's id.
  OdResult attachToVariable(const OdDbObjectId& variable, bool isKey, bool isString);
  /// Links to a new variable of the block, whose name is the given one or "<name>_<number>".
  OdResult attachToNewVariable(OdDbObjectId block, OdDbObject* owner, const OdString& name,
                               bool isKey, bool isString);

  /// The linked variable; null without one.
  [[nodiscard]] OdDbObjectId variable() const;
  /// Name of the variable when last seen.
  [[nodiscard]] OdString variableName() const;
  /// Name of the column.
  [[nodiscard]] OdString name() const;
  void setName(const OdString& column);
  [[nodiscard]] bool isKey() const;
  [[nodiscard]] bool isStringType() const;
  [[nodiscard]] bool isEnabled() const;
  /// Law 1: enabling removes the variable's expression, and disabling gives it one, the last value.
  void setIsEnabled(bool enabled);

  /// Text, of a column of texts, and number of the variable now. 417 without a variable.
  OdResult getVariableValue(OdString& text, double& number) const;
  /// Law 2. 5 for a column of numbers, 417 without a variable.
  OdResult setVariableValue(const OdString& text);
  /// The result of the variable, which refuses a number that is not finite; 417 without a variable.
  OdResult setVariableValue(double number);
  /// The text that was last seen or written.
  [[nodiscard]] OdString stringValue() const;

  /// The name of the variable, which becomes the one that was last seen; that one without a
  /// variable.
  [[nodiscard]] OdString takeVariableName();

  /// The link among the persistent reactors of a variable, the first one; null without one.
  [[nodiscard]] static OdSmartPtr<VdmDbConfigVarReactor> of(const OdDbAssocVariable* variable,
                                                            OdDb::OpenMode mode = OdDb::kForRead);

  /// The variable was erased: the link is removed from its feature and erased.
  void erased(const OdDbObject* object, bool erasing) override;
  void modified(const OdDbObject* object) override;
  /// False without a variable.
  bool doAudit() override;
  /// The feature takes the link out of its list.
  OdResult subErase(bool erasing) override;

 private:
  class Writing;

  [[nodiscard]] OdSmartPtr<OdDbAssocVariable> openVariable(OdDb::OpenMode mode) const;
  void attach(OdDbAssocVariable& variable, bool isKey, bool isString, bool deletesVariable);
  void leaveFeature();
  /// Whether the value is another one than was last seen; it is noted.
  bool takeChange(const OdDbAssocVariable& variable);

  bool m_isEnding = false;
};
using VdmDbConfigVarReactorPtr = OdSmartPtr<VdmDbConfigVarReactor>;
