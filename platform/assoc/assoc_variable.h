// OdDbAssocVariable: a named value, or an expression over other variables.
#pragma once

#include <vector>

#include "platform/assoc/assoc_action.h"
#include "platform/assoc/eval_variant.h"
#include "platform/db/filing_macros.h"

class OdDbAssocNetwork;
struct OdDbAssocDefinition;
class OdDbAssocVariable;
using OdDbAssocVariablePtr = OdSmartPtr<OdDbAssocVariable>;

/// A value with a name, and mostly with an expression that gives it. The expression may use the
/// other variables of the network; the variable owns one value dependency for each of them, in
/// order of mention, and is out of date when one of them changes. Lengths are in the insertion
/// units of the block that has the network, angles in radians.
///
/// Persistent reactors of a variable hear `modified` when its value, name or expression changes; an
/// equal value sends nothing. The value dependencies on a variable are among its persistent
/// reactors, though the variable stores no list of them.
class OdDbAssocVariable : public OdDbAssocAction {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbAssocVariable)

  ~OdDbAssocVariable() override;

  [[nodiscard]] const OdString& name() const;
  /// Empty for a variable whose value was set as such.
  [[nodiscard]] OdString expression() const;
  [[nodiscard]] const OdString& evaluatorId() const;
  /// A copy of the value; null for a variable that has none yet.
  [[nodiscard]] OdDbEvalVariantPtr value() const;
  /// The value where it is a number, else 0.
  [[nodiscard]] double numericValue() const;
  /// The name is empty or begins with `*`: no expression can use the variable.
  [[nodiscard]] bool isAnonymous() const;
  [[nodiscard]] static bool isAnonymous(const OdString& name) {
    return name.isEmpty() || name[0] == L'*';
  }

  /// Renames the variable. Refused, with nothing changed: eInvalidKey for a name that no expression
  /// could use (an anonymous one is taken), eDuplicateKey for one of the network's other variables.
  /// With `updateReferencingExpressions` the expressions that use the variable follow; without it
  /// they are unresolved until the name is there again.
  OdResult setName(const OdString& name, bool updateReferencingExpressions,
                   OdString* errorMessage = nullptr, bool silentMode = false);
  /// Sets the expression, computes the value and marks what depends on it. An empty text leaves the
  /// value as it is. Refused, with nothing changed and `errorMessage` set: eInvalidInput for a text
  /// that does not compile, with the column, or whose dimension no longer suits a dependent;
  /// eCircularReference for one that would make the variable depend on itself, naming the cycle
  /// (`a -> b -> c -> a`). Dependencies follow the text and cycles are refused whatever the two
  /// flags say.
  OdResult setExpression(const OdString& expression, const OdString& evaluatorId = OdString::kEmpty,
                         bool checkForCyclicalDependencies = true,
                         bool updateDependenciesOnOtherVariables = true,
                         OdString* errorMessage = nullptr, bool silentMode = false);
  /// Sets the value as such and drops an expression without names. Refused, with nothing changed:
  /// eInvalidInput for null, for a number that is not finite, for a variable that others define,
  /// and for a text where other expressions use the variable.
  OdResult setValue(const OdDbEvalVariant* value);

  [[nodiscard]] bool hasPersistentReactor(const OdDbObjectId& reactor) const override;
  [[nodiscard]] OdDbObjectIdArray getPersistentReactors() const override;

  void audit(OdDbAuditInfo* info) override;
  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  friend class OdDbAssocAction;
  friend class OdDbAssocGraph;
  friend class OdDbAssocNetwork;

  void takeFreeName(const OdDbAssocNetwork& network);
  [[nodiscard]] OdResult checkNewName(const OdString& name, OdString& error) const;
  void takeExpression(const OdString& text, OdDbAssocDefinition&& definition);
  std::vector<OdDbIdRecord*> syncDependencies(const std::vector<OdUInt32>& inputs);
  OdResult defineAlone(const OdString& text, OdDbAssocDefinition& definition,
                       OdString& error) const;
  void renameInReaders(const OdString& oldName, const OdString& newName, bool follow);
  void dropDependency(const OdDbObjectId& dependency);
  /// Where the number is: in the graph while there is one.
  [[nodiscard]] double& number();
  [[nodiscard]] const double& number() const;

  OdDb::DwgDataType m_type = OdDb::kDwgNull;
  OdString m_name;
  OdString m_expression;
  OdString m_evaluatorId;
  OdString m_text;        ///< the value of the type kDwgText
  double m_number = 0.0;  ///< the value of the other types, while there is no graph

  OD_DB_DECLARE_FILING()
};
