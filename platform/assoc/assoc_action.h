// OdDbAssocAction: something of a network that is evaluated when what it depends on changes.
#pragma once

#include "platform/assoc/assoc_status.h"
#include "platform/db/db_object.h"
#include "platform/db/filing_macros.h"

class OdDbAssocAction;
class OdDbAssocGraph;
using OdDbAssocActionPtr = OdSmartPtr<OdDbAssocAction>;

/// Hears of each action that an evaluation has dealt with.
class OdDbAssocEvaluationCallback {
 public:
  virtual ~OdDbAssocEvaluationCallback() = default;
  /// After the evaluation of one action, with its new status.
  virtual void actionEvaluated(const OdDbObjectId& /*action*/, OdDbAssocStatus /*status*/) {}
};

/// An action of a network, which owns it; it owns its dependencies. Hosts derive actions and
/// override subEvaluate(). An object belongs to the thread of its database.
class OdDbAssocAction : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbAssocAction)

  ~OdDbAssocAction() override;

  [[nodiscard]] virtual OdDbAssocStatus status() const;
  /// For the action itself; actions that depend on it do not change.
  OdResult setStatus(OdDbAssocStatus status);
  /// The network that owns the action; null when it is in none.
  [[nodiscard]] OdDbObjectId owningNetwork() const;
  /// The object, mostly a block, whose network the action is in; null without a network.
  [[nodiscard]] OdDbObjectId objectThatOwnsNetworkInstance() const;

  /// Evaluates the action if it is out of date, and before it what it depends on. A failure is a
  /// status and no result. Needs write access.
  virtual OdResult evaluate(OdDbAssocEvaluationCallback* callback);

  /// Appends the dependencies that read, that write, or both, in their order. Erased ones are left
  /// out.
  OdResult getDependencies(bool readDependencies, bool writeDependencies,
                           OdDbObjectIdArray& ids) const;
  /// Lists a dependency of the same database with the action: eWrongObjectType, eDuplicateKey.
  OdResult addDependency(const OdDbObjectId& dependency, bool setThisActionAsOwner = true);
  /// Takes one off the list; eKeyNotFound.
  OdResult removeDependency(const OdDbObjectId& dependency, bool alsoErase = true);
  OdResult removeAllDependencies(bool alsoErase = true);

  void appendToOwner(OdDbIdPair& pair, OdDbObject* owner, OdDbIdMapping& mapping) override;
  OdDbObjectPtr subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                             bool isPrimary) const override;
  OdDbObjectPtr subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                               bool isPrimary) const override;
  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  void subExistenceChanged() override;
  void subIdSwapped() override;
  void audit(OdDbAuditInfo* info) override;
  [[nodiscard]] bool hasStateOutsideFile() const override { return m_graph != nullptr; }

 protected:
  /// What evaluation does for an action that is no variable. The action is open for write.
  virtual OdResult subEvaluate(OdDbAssocEvaluationCallback* callback);
  /// The graph of the owning network, up to date; null for an action that is in none.
  [[nodiscard]] OdDbAssocGraph* graph() const;

 private:
  friend class OdDbAssocDependency;
  friend class OdDbAssocGraph;
  friend class OdDbAssocNetwork;
  friend class OdDbAssocVariable;

  /// Says to the graph, if there is one, that what it knows of this action is old.
  void noteChanged();
  void runAlone(OdDbAssocEvaluationCallback* callback);
  void cloneDefinitions(OdDbIdMapping& mapping, OdDbObject* owner, bool toOtherDatabase) const;

  // In an order that leaves no padding: there are many actions.
  OdUInt32 m_node = 0;                ///< place in the graph while there is one
  OdDbAssocGraph* m_graph = nullptr;  ///< of the owning network, which owns it
  OdDbObjectIdArray m_dependencies;
  OdDbAssocStatus m_status = kAssocUpToDate;  ///< what is stored; see OdDbAssocGraph

  OD_DB_DECLARE_FILING()
};
