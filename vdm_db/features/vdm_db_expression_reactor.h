// VdmDbExpressionReactor: a property of a feature that an expression gives.
#pragma once

#include <tuple>

#include "platform/assoc/eval_variant.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"

class OdDbAssocVariable;

/// State: the bag keys "var", "value", "strType", "expr", "prop" and "react", and "deleteOnErase"
/// where somebody has set it.
class VDM_DB_EXPORT VdmDbExpressionReactorImpl : public VdmDbFeatureReactorImpl {
 public:
  VdmDbExpressionReactorImpl();

  OdDbObjectId variable;
  double value = 0.0;
  bool isString = false;
  OdString expression;  ///< as last seen
  OdString property;
  bool reacts = false;

  // What was seen last; in memory only.
  OdDbEvalVariantPtr lastValue;
  OdString lastExpression;

  /// Takes the reactor off the variable, which ends with it unless a configuration gives it a text.
  OdResult subErase(VdmDbFeatureReactor* reactor) override;
  [[nodiscard]] OdDbObjectIdArray getVariables(const VdmDbFeatureReactor* reactor) override;
};

/// Gives a property of a feature by an expression, through a variable of its own in the network of
/// the feature's block. It is a persistent reactor of that variable; when the value or the
/// expression changes, the feature is called with onPropertyModified(), if the reactor reacts. The
/// value is kept in any case.
class VDM_DB_EXPORT VdmDbExpressionReactor
    : public VdmDbFeatureReactorOf<VdmDbExpressionReactorImpl> {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbExpressionReactor)

  /// The property of the feature that the expression gives.
  void setPropertyName(const OdString& property);
  [[nodiscard]] OdString propertyName() const;
  /// What the property is at first; a change is a difference from it.
  void setInitialValue(double value);
  /// The property is a text.
  void setStringType(bool isString);
  /// The last value seen.
  [[nodiscard]] double value() const;

  /// Sets the expression of the variable. A missing variable is made in the block's network, with
  /// an anonymous name; it remains when it refuses the expression. Returns the result of
  /// OdDbAssocVariable::setExpression, which leaves the expression as it was where it refuses one;
  /// 417 for a feature that is in no block.
  OdResult setExpression(const OdString& text, bool reacts, OdString* errorMessage = nullptr);
  /// Empty without a variable.
  [[nodiscard]] OdString expression() const;
  /// Value and expression as the last change brought them, since the drawing was opened; null and
  /// empty before. The value belongs to the reactor.
  [[nodiscard]] std::tuple<const OdDbEvalVariant*, OdString> getLastState() const;
  [[nodiscard]] OdDbObjectId assocVariable() const;
  /// Whether the reactor ends with an anonymous variable of its own that is erased; no at first.
  void setDeleteOnErase(bool deletes);
  /// The variable has the name, or its expression uses it; whatever the case.
  [[nodiscard]] bool findVariable(const OdString& name) const;
  /// 417 without a variable; otherwise the result of OdDbAssocVariable::setName. Expressions that
  /// use it follow.
  OdResult renameVariable(const OdString& name);

  void modified(const OdDbObject* object) override;
  /// The end of an anonymous variable is that of the reactor, if "deleteOnErase" says so, and then
  /// of the feature if it cannot be without.
  void erased(const OdDbObject* object, bool erasing) override;

 private:
  OdDbObjectId makeVariable();
  bool takeState(const OdDbAssocVariable& variable);
};
using VdmDbExpressionReactorPtr = OdSmartPtr<VdmDbExpressionReactor>;
