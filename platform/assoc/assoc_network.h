// OdDbAssocNetwork: the actions of one block, and their evaluation.
#pragma once

#include <memory>

#include "platform/assoc/assoc_action.h"
#include "platform/db/filing_macros.h"

class OdDbAssocNetwork;
enum class OdDbAssocScope : int;
using OdDbAssocNetworkPtr = OdSmartPtr<OdDbAssocNetwork>;

/// A list of actions, owned by the network, which is itself owned by the extension dictionary of an
/// object, mostly a block. Variables of one network have different names, without regard to case;
/// expressions see the variables of their own network.
///
/// Beside the filed objects a network keeps a graph of its actions in memory. It is made when
/// something first asks for it, and keeps the actions in memory from then on.
class OdDbAssocNetwork : public OdDbAssocAction {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbAssocNetwork)

  OdDbAssocNetwork();
  ~OdDbAssocNetwork() override;

  /// The network of an object. Without `createIfDoesNotExist`, or for an object that cannot have
  /// one, null when there is none. A new network is evaluated with the others of its drawing unless
  /// `addToTopLevelNetwork` is false: evaluateTopLevel() leaves it alone then. An object may have
  /// several, under different keys.
  static OdDbObjectId getInstanceFromObject(const OdDbObjectId& owningObject,
                                            bool createIfDoesNotExist,
                                            bool addToTopLevelNetwork = true,
                                            const OdString& dictionaryKey = OdString::kEmpty);

  [[nodiscard]] bool isTopLevel() const;
  /// Evaluates the top-level networks of a drawing one after the other, in the order in which they
  /// were made; those below erased objects are left out. Looks at every id, and opens networks
  /// only. The first result that is not eOk; the other networks are evaluated nevertheless.
  static OdResult evaluateTopLevel(const OdDbDatabase* database,
                                   OdDbAssocEvaluationCallback* callback = nullptr);

  /// kAssocUpToDate when no action waits for evaluation, otherwise kAssocChangedDirectly.
  [[nodiscard]] OdDbAssocStatus status() const override;
  /// Evaluates every action that is out of date, once, after what it depends on.
  OdResult evaluate(OdDbAssocEvaluationCallback* callback) override;
  /// The same for what depends on one action, and for the action itself.
  OdResult evaluateFrom(const OdDbObjectId& action, OdDbAssocEvaluationCallback* callback);
  /// evaluate() of the variables and of actions that read one; other actions keep waiting.
  OdResult evaluateValues(OdDbAssocEvaluationCallback* callback);
  /// evaluateFrom() of variables alone; a class that derives from theirs does not count as one.
  OdResult evaluateVariablesFrom(const OdDbObjectId& variable,
                                 OdDbAssocEvaluationCallback* callback);

  /// The actions in the order in which they were added, erased ones left out.
  [[nodiscard]] OdDbObjectIdArray getActions() const;
  /// Lists an action of the same database: eWrongObjectType; eDuplicateKey when it is listed, or a
  /// variable of its name is.
  OdResult addAction(const OdDbObjectId& action, bool setThisNetworkAsOwner = true);
  /// Takes an action off the list; eKeyNotFound. What depends on it is unresolved then.
  OdResult removeAction(const OdDbObjectId& action, bool alsoErase = true);
  /// The variable of a name, without regard to case; null when there is none. Constant time.
  [[nodiscard]] OdDbObjectId variableNamed(const OdString& name) const;

  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  void audit(OdDbAuditInfo* info) override;
  [[nodiscard]] bool hasStateOutsideFile() const override;
  [[nodiscard]] std::size_t approximateSize() const override;

  /// The graph, up to date with the objects; for this folder.
  [[nodiscard]] OdDbAssocGraph& actionGraph() const;

 private:
  friend class OdDbAssocAction;
  friend class OdDbAssocGraph;

  /// Says to the graph, if there is one, that the list of actions changed.
  void noteListChanged();
  OdResult evaluateFrom(const OdDbObjectId& action, OdDbAssocEvaluationCallback* callback,
                        OdDbAssocScope scope);
  void changeListed(const OdDbObjectId& action, OdUInt32 place, bool listed);
  void exchangeValues(OdDbDwgFiler* filer);

  OdDbObjectIdArray m_actions;  ///< erased ones stay, so that unerasing brings them back
  OdDb::UnitsValue m_lengthUnit = OdDb::kUnitsUndefined;  ///< in which the values were computed
  bool m_isTopLevel = true;
  mutable std::unique_ptr<OdDbAssocGraph> m_actionGraph;

  OD_DB_DECLARE_FILING()
};
