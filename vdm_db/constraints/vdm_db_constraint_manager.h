// VdmDbConstraintManager: the constraints of one block, and the model objects that they reach.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/constraints/vdm_constraint.h"
#include "vdm_db/model/vdm_block_managers.h"
#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/references/vdm_extended_path.h"
#include "vdm_db/references/vdm_indexed_ids.h"
#include "vdm_db/references/vdm_path_utils.h"

class VdmConstraintManagerServices;
class VdmDbConstraintManager;
class VdmDbObject;
class VdmDbReverseIdMapping;
class VdmFeatureUpdateData;
using VdmDbConstraintManagerPtr = OdSmartPtr<VdmDbConstraintManager>;

/// Holds the 3D constraints of one block, registers the model objects (VdmDbObject) that these
/// reach, and records what a solver has to solve again. It does not solve. There are two kinds of
/// instance:
///
/// - A block's manager lies in the block's extension dictionary, in the sub-dictionary
///   "VDM_DATABASE" under the key "VDM_DATABASE". It owns its constraints and its model objects.
/// - The root manager has the same keys below the named objects dictionary. It owns no constraints;
///   its children are all managers of the drawing, and its status says that some block changed.
///
/// The children of a block's manager are the managers of the blocks that its model objects insert.
/// Others refer to managers by id.
///
/// The class covers constraints with their variables, registry, status, design intent, names of
/// model objects and audit. A parametric constraint with a name has a variable in the network of
/// the block; the manager owns a VdmDbVariableReactor that reports its changes. It does not
/// evaluate variables.
///
/// The solver sets kUpToDate when it has solved a block. From then on:
///
///   from  event                                              to
///   0, 1  data of a constraint changed, object modified      2
///   1     object finished                                    2, and 0 when no modified one is left
///   1     constraint removed                                 2
///   2     last modified object finished                      0
///   3     data changed, object modified or finished          4
///   not 4 notifyRootCM(), of the root manager                4
///
/// The set of modified objects is used in the states 1 and 2 only. Readers raise eNotOpenForRead
/// (61) unless the manager is open for read; operations that change it need it open for write,
/// except where their comment says that they upgrade it.
class VDM_DB_EXPORT VdmDbConstraintManager : public OdDbObject, public VdmModelObjectRegistry {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbConstraintManager)

  /// Not stored in files: a manager that was loaded is kNotEvaluated.
  enum ConstraintManagerStatus : OdInt32 {
    kUpToDate = 0,
    kSolvedWithChanges = 1,
    kPartlyModified = 2,
    kNotEvaluated = 3,
    kFullyModified = 4,
  };
  /// Result of checking the expression of a constraint.
  enum ExpressionStatus : OdInt32 {
    kExpressionOk = 0,
    kExpressionSyntaxError = 1,
    kExpressionUnknownName = 2,
  };

  VdmDbConstraintManager();
  ~VdmDbConstraintManager() override;

  // ---- Finding managers

  /// The manager of a block. With `create` a missing one is made, and one that is there is linked
  /// under the root manager. Null without one, and for a null id.
  static OdDbObjectId getInstance(const OdDbObjectId& blockId, bool create);
  static OdDbObjectId getRootCM(OdDbDatabase* database, bool create);
  /// Sets the status of the root manager to kFullyModified; a missing root manager is made.
  static void notifyRootCM(OdDbDatabase* database);
  /// The block that this manager belongs to; null for the root manager.
  [[nodiscard]] OdDbObjectId blockId() const;

  // ---- Child managers

  /// Write access is needed only when the id is new.
  void addChildConstraintManager(const OdDbObjectId& manager);
  [[nodiscard]] OdDbObjectIdArray getAllConstraintManagers() const;

  // ---- Constraints

  /// In rising node id.
  [[nodiscard]] OdArray<VdmConstraintPtr> constraints() const;
  [[nodiscard]] OdUInt32 constraintsCount() const {
    return static_cast<OdUInt32>(m_constraints.size());
  }
  /// Null when there is none.
  [[nodiscard]] VdmConstraintPtr getConstraintByNodeId(OdULong nodeId) const;
  /// Makes a constraint with these arguments; one with an empty path refers to nothing, or to the
  /// default geometry that it names. `name` and `flag` are handed to
  /// VdmDbConstraintManagerPE::generateConstraintName(). Null, nothing being left of it, when
  /// services.attachIndexesToArgs() refuses. Raises OdError "Failed to create dependency",
  /// likewise.
  VdmConstraintPtr addConstraint(int type, const VdmExtendedPathArray& args,
                                 VdmConstraintManagerServices& services, const OdString& name,
                                 bool flag);
  /// Nothing happens for null and for a constraint that this manager does not hold. Model objects
  /// and dependencies that no constraint or persistent id uses any more go with it.
  void removeConstraint(VdmConstraint* constraint);
  void removeConstraints(const OdArray<VdmConstraintPtr>& constraints);
  void removeAllConstraints();
  /// Appends the paths that the constraint does not have yet; these are appended to `added`, too.
  /// Raises OdError "Failed to create dependency", the constraint being as before.
  void addArguments(VdmConstraint* constraint, const VdmExtendedPathArray& paths,
                    VdmExtendedPathArray& added);
  void removeArguments(VdmConstraint* constraint, const VdmExtendedPathArray& paths);
  /// Replaces those dependencies of `object` in all constraints that `replacements` names; a
  /// replacement that `chained` names is replaced again.
  void replaceConstraintDependencies(const VdmDbObject* object,
                                     const std::map<OdDbObjectId, OdDbObjectId>& replacements,
                                     const std::map<OdDbObjectId, OdDbObjectId>& chained);

  // ---- Status

  void setStatus(ConstraintManagerStatus status);
  [[nodiscard]] ConstraintManagerStatus getStatus() const;
  [[nodiscard]] bool isUpToDate() const { return getStatus() == kUpToDate; }
  /// An object was modified, or (false) is finished: its change has been solved. The manager is
  /// upgraded for writing when it has to change.
  void notifyAboutModifications(const OdDbObjectId& object, bool modified) override;
  /// In rising handle order.
  [[nodiscard]] OdDbObjectIdArray getModifiedObjects() const;
  void setModifiedObjects(const OdDbObjectIdArray& objects);

  // ---- Variables of constraints. A parametric constraint with a name gets one when it has none.
  // ---- The results are eOk, and otherwise those of OdDbAssocVariable, with nothing changed and
  // the
  // ---- reason in `errorMessage`

  OdResult setConstraintName(VdmConstraint* constraint, const OdString& name,
                             OdString* errorMessage = nullptr);
  /// Stores the value where the constraint is parametric, and sets it as the expression, with up to
  /// 12 digits. Raises eInvalidInput for a parametric constraint and a value that is not finite.
  OdResult setConstraintValue(VdmConstraint* constraint, double value,
                              OdString* errorMessage = nullptr);
  /// Nothing happens for a constraint that can have no variable.
  OdResult setConstraintExpression(VdmConstraint* constraint, const OdString& text,
                                   OdString* errorMessage = nullptr);
  /// Whether the text can be parsed, and each name in it is that of a variable or a constraint of
  /// the block.
  [[nodiscard]] ExpressionStatus checkConstraintExpression(const OdString& text);
  /// The variables of the constraints, in rising node id. Each constraint takes note of the name
  /// that its variable has now, for the time when the variable is lost.
  [[nodiscard]] OdDbObjectIdArray variables() const;
  /// A variable has another value: its constraint takes it. True when there is one and the values
  /// differed by more than 1e-12. For the VdmDbVariableReactor.
  bool variableModified(const OdDbObjectId& variable, double value);
  /// A variable was erased: its constraint is removed. For the VdmDbVariableReactor.
  void variableErased(const OdDbObjectId& variable);
  /// The reactor of the variables, made with `create`; null without one.
  OdDbObjectId variableReactor(bool create);

  // ---- Variables that keep their values while a model is updated; not filed, and none after
  // ---- loading

  void freezeVariable(const OdDbObjectId& variable) { m_frozenVariables.insert(variable); }
  [[nodiscard]] bool isVariableFrozen(const OdDbObjectId& variable) const {
    return m_frozenVariables.contains(variable);
  }
  /// Of this manager and of all below it.
  void unfreezeVariables();

  // ---- Registry of model objects

  /// The model object of an entity; made, and registered, when there is none.
  OdDbObjectId getVdmDbObject(const OdDbObjectId& entity);
  /// Called by a model object when it comes under this manager and when it leaves it. The manager
  /// of the block that its entity inserts becomes a child, and is dropped from the children, even
  /// if another registered object inserts that block.
  void registerVdmDbObject(const VdmDbObject* object) override;
  void unregisterVdmDbObject(VdmDbObject* object) override;
  /// Takes objects that are about to be erased out of the registry, in one step.
  void dropFromRegistry(const OdDbObjectIdArray& objects);
  void setVdmDbObjects(const OdDbObjectIdArray& objects);
  [[nodiscard]] const OdDbObjectIdArray& vdmDbObjects() const { return m_vdmDbObjects.ids(); }

  // ---- Names of model objects

  /// `base` without its number, and the first number that makes it unique among the names of the
  /// registered objects, in any case: "LINE" gives "LINE_1", "LINE_2" and so on.
  [[nodiscard]] OdString generateVdmDbObjectName(const OdString& base) override;
  /// Gives names to the registered objects that have none; nothing happens without a
  /// VdmDbConstraintManagerPE.
  void generateVdmDbObjectNames() const;

  // ---- Data of the solver's module

  [[nodiscard]] VdmProperties& getProperties() { return m_properties; }
  [[nodiscard]] const VdmProperties& getProperties() const { return m_properties; }
  /// Opaque here. An empty string erases what was set, and is the answer then.
  [[nodiscard]] OdString getDesignIntentOptions() const;
  void setDesignIntentOptions(const OdString& options);
  [[nodiscard]] static OdString defaultDesignIntentString();
  /// Node ids that the solver's module keeps here; not filed.
  [[nodiscard]] OdArray<OdULong>& getTCCache() { return m_tcCache; }
  /// Empties it, and notifies the VdmDbConstraintManagerPE.
  void invalidateTCCache();

  // ---- Merging

  /// Takes over what `source`, the manager of clones in this manager's block, knows about them, and
  /// erases it; see VdmMergeContext. Both are open for write.
  ///
  /// 1. Constraints move in rising node id and get new ones here. One whose arguments cannot be
  ///    reached is dropped. Without `keepAll` arguments outside this block are mapped to the
  ///    clones, as the VdmDbConstraintManagerPE decides; without one they stay as they are.
  /// 2. A name that is taken gets the first free number from the node id on. A variable always
  ///    gets such a name; expressions that mention it follow.
  /// 3. Exploded into model space, a constraint with default geometry of nothing is disabled.
  /// 4. The status becomes that of the manager that `source` was cloned from, when that is higher;
  ///    the clones of objects that are modified there are modified here.
  /// 5. Model objects of entities of this block that constraints, features or persistent ids keep
  ///    come under this manager, with new names. The others are erased.
  ///
  /// Raises eNullPointer for a null source. Failure midway is not rolled back.
  void mergeManagers(VdmDbConstraintManager* source, OdDbIdMapping& mapping,
                     VdmDbReverseIdMapping& reverse,
                     std::unordered_set<OdDbObjectId>& mergedObjects, bool keepAll,
                     std::map<OdDbObjectId, OdDbObjectId>& replaced);

  // ---- Audit

  /// Repairs the reactors of entities, takes out erased and repeated entries, and removes invalid
  /// constraints. Raises OdError for a registered object without entity.
  void doAudit();
  /// Finds entities with the model object of another entity as a reactor.
  void audit(OdDbAuditInfo* info) override;

  // ---- Filing, undo and cloning

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  /// Both clone the manager with those model objects only whose entities are cloned, too, each by
  /// itself or with the whole block.
  OdDbObjectPtr subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                             bool isPrimary) const override;
  OdDbObjectPtr subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                               bool isPrimary) const override;
  /// The constraints follow the manager to its new id, both ways.
  void subSwapIdWith(const OdDbObjectId& otherId, bool swapExtendedData,
                     bool swapExtDictionary) override;
  void subIdSwapped() override;
  /// Its status is another one than after loading, variables are frozen, or somebody holds one of
  /// its constraints, whose edits would be lost with it.
  [[nodiscard]] bool hasStateOutsideFile() const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  /// Gives the constraint the next node id and holds it; nothing happens for null.
  void addConstraint(VdmConstraintPtr& constraint);
  /// Takes the variable of a constraint out of the network and erases it, unless others depend on
  /// it.
  void removeVariable(const OdDbObjectId& variable);
  /// A constraint is about to change, or has changed.
  void notifyConstraintModify(VdmConstraint* constraint, VdmConstraint::NotifyCode code);

 private:
  friend class VdmConstraint;
  friend class VdmConstraintManagerServices;
  friend class VdmFeatureUpdateData;  // makes managers without linking them

  using ModifiedObjects = std::set<OdDbObjectId, vdmu::ObjectIdLess>;
  enum UndoStep : OdUInt8 { kStateStep = 0, kRegistryStep = 1, kChildStep = 2 };
  struct ObjectNames;
  struct Merge;

  /// The manager of a block, made with `create`. One that was asked for with `create` and `link` is
  /// linked under the root manager.
  static OdDbObjectId getInstanceImpl(const OdDbObjectId& blockId, bool create, bool link);
  static void linkUnderRoot(const OdDbObjectId& manager);

  OdDbDwgFiler* beginStep(UndoStep step);
  void changeState(ConstraintManagerStatus status, const ModifiedObjects& added,
                   const ModifiedObjects& removed);
  void markModified(const OdDbObjectId& object);
  void markFinished(const OdDbObjectId& object);
  void markArgumentsModified(const VdmConstraint& constraint);
  void undoStateStep(OdDbDwgFiler* filer);
  VdmConstraintPtr makeConstraint(OdLong type, const OdString& name, bool flag);
  void setFirstValue(VdmConstraint* constraint, double value);
  OdDbObjectId ensureVariable(VdmConstraint* constraint);
  void attachVariable(const VdmConstraint& constraint);
  [[nodiscard]] VdmConstraint* getDimConstraint(const OdDbObjectId& variable);
  void appendChild(const OdDbObjectId& manager);
  void removeChild(const OdDbObjectId& manager);
  bool takeOut(VdmConstraint* constraint);
  void cleanUpRegistry();
  [[nodiscard]] ExtendedDep dependencyOf(const VdmExtendedPath& path);
  ObjectNames& presentNames();
  void writeState(OdDbDwgFiler* filer) const;
  void readState(OdDbDwgFiler* filer);
  void readChildren(OdDbDwgFiler* filer);
  OdResult readConstraints(OdDbDwgFiler* filer);
  void clearForRead();
  void auditRegistry();
  void auditChildren();
  static OdDbObjectPtr withOwnConstraints(OdDbObjectPtr clone);
  [[nodiscard]] OdDbObjectIdArray objectsClonedWith(OdDbIdMapping& mapping) const;

  // Filed, in this order.
  mutable VdmIndexedIds m_vdmDbObjects;  // exchanged while a constant manager is cloned
  OdDbObjectIdArray m_reservedIds;
  VdmIndexedIds m_childManagers;
  std::map<OdULong, VdmConstraintPtr> m_constraints;
  VdmProperties m_properties;
  // Filed for undo and paging.
  ConstraintManagerStatus m_status = kNotEvaluated;
  ModifiedObjects m_modifiedObjects;
  // Not filed.
  OdArray<OdULong> m_tcCache;
  std::unordered_set<OdDbObjectId, vdmu::OdDbObjectIdHash> m_frozenVariables;
  std::unique_ptr<ObjectNames> m_names;
  std::unordered_map<OdDbObjectId, OdULong, vdmu::OdDbObjectIdHash> m_variableIndex;
};
