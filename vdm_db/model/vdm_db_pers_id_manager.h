// VdmDbPersIdManager: the persistent references into one block.
#pragma once

#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/db/db_object.h"
#include "platform/db/subent.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"

class OdDbUserIO;
class VdmDbObjectDependency;
class VdmDbPersIdManagerImpl;
class VdmDbPersIdManagerPE;
class VdmDbReverseIdMapping;
struct VdmMergeContext;

/// Owns the dependencies on geometry of its block. When geometry is computed anew it moves, splits,
/// merges and removes them. It does not decide which subentity is still the same one: the host
/// does, by its VdmDbPersIdManagerPE. It lies under "PERSIDMANAGER" in "VDM_DATABASE" of the
/// block's extension dictionary; others find it by getInstance().
///
/// A remapping run is any number of updatePairs() and split(), then finishRemap(), and
/// finishRemap2() in a second pass. A dependency that is taken out of the list stays in the drawing
/// while a feature watches it; the feature drops its reference in its next update, which erases the
/// dependency. Unwatched ones are erased at once, except by removeLink().
///
/// Writers record for undo what they change and nothing else.
class VDM_DB_EXPORT VdmDbPersIdManager : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbPersIdManager)

  VdmDbPersIdManager();
  ~VdmDbPersIdManager() override;

  /// The manager of a block; null when there is none, unless it is to be made.
  static OdDbObjectId getInstance(OdDbObjectId block, bool create);
  /// The block that holds the manager; null when it is in none.
  [[nodiscard]] OdDbObjectId blockId() const;
  [[nodiscard]] OdDbObjectIdArray objectDependencyIds() const;

  /// One dependency per path, in order, made where there is none. Empty for no paths and without
  /// VdmDbPersIdManagerPE. Raises OdError eNotOpenForRead for a new id that is no dependency.
  OdDbObjectIdArray append(const OdDbFullSubentPathArray& paths, OdDbUserIO* userIO);
  /// Makes each dependency refer to its new path; the arrays run in parallel. Unknown ids are left
  /// out and make the result false, unless all are unknown. False without VdmDbPersIdManagerPE.
  /// Raises OdError eInvalidInput for arrays of different sizes.
  bool updatePairs(const OdDbObjectIdArray& ids, const OdDbFullSubentPathArray& paths);
  /// A subentity became several: makes a dependency for each path and enters them in `map` as what
  /// replaces `dependency`. Returns the new ids. For fewer than two paths, and for an unwatched
  /// dependency, it makes nothing and returns `dependency` itself; empty when that is no
  /// dependency.
  OdDbObjectIdArray split(OdDbObjectId dependency, const OdDbFullSubentPathArray& paths,
                          VdmDependenciesReplacementMap& map);
  /// Takes out what `map` says was replaced, makes one of dependencies that have come to mean the
  /// same subentity, and lists all with their model objects. eOk always.
  OdResult finishRemap(VdmDependenciesReplacementMap& map);
  /// The same for a second pass: it leaves dependencies alone that `map` replaces already, and
  /// where a merged one is a replacement in other entries, it exchanges it there.
  OdResult finishRemap2(VdmDependenciesReplacementMap& map);
  /// Takes out the dependencies on the path, with a tag other than 0 only those that have it. Their
  /// objects stay. True when there were any.
  bool removeLink(const OdDbFullSubentPath& path, OdLong tag);

  /// Dependencies without a reactor that opens.
  [[nodiscard]] OdDbObjectIdArray getUnusedDependencies() const;
  /// Takes the ids out of the list, and erases the unwatched ones of these objects.
  void removeDependencies(const OdDbObjectIdArray& ids);
  /// Lists a dependency that is in the database and has this owner.
  void onAppendToOwner(VdmDbObjectDependency* dependency);
  /// Lists all dependencies with the model objects of their entities.
  void attachDepsToVdmDbObjects() const;
  /// The same for some of them.
  void attachToModelObjects(const OdDbObjectIdArray& dependencies) const { attach(dependencies); }
  /// Removes unwatched dependencies, drops ids of objects that do not open, and makes model objects
  /// and dependencies agree.
  void doAudit();

  /// Takes over the dependencies of `source`, which is erased: all with `keepAll`, otherwise those
  /// that are watched, and those whose entities are clones by `reverse` or lie in this block; the
  /// others are erased. Model objects go to `mergedObjects`, the pair of managers to
  /// `replaced`. The arguments are those of the managers' common flow. Raises OdError eNullPointer
  /// for a null source.
  void mergeManagers(VdmDbPersIdManager* source, OdDbIdMapping& mapping,
                     VdmDbReverseIdMapping& reverse,
                     std::unordered_set<OdDbObjectId>& mergedObjects, bool keepAll,
                     std::map<OdDbObjectId, OdDbObjectId>& replaced);
  OdDbObjectPtr subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                             bool isPrimary) const override;
  OdDbObjectPtr subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                               bool isPrimary) const override;

  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  [[nodiscard]] VdmDbPersIdManagerImpl& implForRead() const;
  void appendIds(const OdDbObjectIdArray& ids);
  void takeOut(const OdArray<OdUInt32>& positions);
  void eraseUnwatched(const OdDbObjectIdArray& ids) const;
  static void openPathsOf(const OdDbObjectIdArray& dependencies);
  void updateAll(VdmDbPersIdManagerPE* host, const OdDbObjectIdArray& ids,
                 const OdDbFullSubentPathArray& paths);
  void relist(const OdDbObjectIdArray& ids, const OdDbObjectIdArray& entitiesBefore) const;
  /// Makes a dependency of the manager at another place.
  OdDbObjectId addClone(const VdmDbObjectDependency* source, const OdDbFullSubentPath& path);
  void ensureModelObjects(const OdDbFullSubentPathArray& paths) const;
  [[nodiscard]] OdDbObjectId constraintManagerId() const;
  [[nodiscard]] OdDbObjectId presentConstraintManager() const;
  void attach(const OdDbObjectIdArray& dependencies) const;
  static void detach(const OdDbObjectIdArray& dependencies);
  OdDbObjectIdArray cleanReplaced(const VdmDependenciesReplacementMap& map);
  void dropLostIds();
  void auditModelObjects() const;
  bool mergeEqual(VdmDependenciesReplacementMap& map, bool isSecondPass);
  void adoptClones(OdDbObject* clone, OdDbIdMapping& mapping) const;
  void takeOver(VdmDbPersIdManager& source, VdmMergeContext& context);

  std::unique_ptr<VdmDbPersIdManagerImpl> m_impl;
};
using VdmDbPersIdManagerPtr = OdSmartPtr<VdmDbPersIdManager>;

namespace vdmu {

/// The managers of all blocks of the drawing, in the order of the block table; empty for null.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getAllPersIdManagers(OdDbDatabase* database);

}  // namespace vdmu
