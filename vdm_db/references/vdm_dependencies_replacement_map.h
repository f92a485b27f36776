// VdmDependenciesReplacementMap: the journal of one remapping run.
#pragma once

#include <unordered_map>
#include <unordered_set>

#include "platform/base/array.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"

/// Which dependency was replaced by which others, and what else happened to the drawing while
/// geometry was computed anew. A plain value that belongs to one run. Arrays come in the order of
/// handles, so that the same run gives the same results.
class VDM_DB_EXPORT VdmDependenciesReplacementMap {
 public:
  using IdSet = std::unordered_set<OdDbObjectId, vdmu::OdDbObjectIdHash>;

  struct TransformedData {
    OdGeMatrix3d transform;
    bool isMarked = false;  ///< the flag of addTransformedObject
  };

  // ---- What it lists, in no order

  [[nodiscard]] std::size_t numReplaced() const { return m_replacements.size(); }
  [[nodiscard]] std::size_t numTransformed() const { return m_transformed.size(); }
  /// visit(id) of each replaced dependency.
  template <class Visit>
  void forEachReplaced(const Visit& visit) const {
    for (const auto& [id, replacements] : m_replacements) visit(id);
  }
  /// visit(id, data) of each moved object.
  template <class Visit>
  void forEachTransformed(const Visit& visit) const {
    for (const auto& [id, data] : m_transformed) visit(id, data);
  }
  [[nodiscard]] const IdSet& clones() const { return m_clones; }

  // ---- Replacements

  /// False, with the first set kept, when `id` has an entry.
  bool append(const OdDbObjectId& id, const IdSet& replacements);
  /// In the entry of `id`, `others` take the place of `member`. False, and nothing changes, without
  /// the entry or the member.
  bool update(const OdDbObjectId& id, const OdDbObjectId& member, const IdSet& others);
  [[nodiscard]] bool contains(const OdDbObjectId& id) const { return find(id) != nullptr; }
  /// `out` becomes the set of the entry, empty without one. The entry's own set may be passed.
  bool contains(const OdDbObjectId& id, IdSet& out) const;
  /// The set of the entry; null without one. Valid until the map changes.
  [[nodiscard]] const IdSet* find(const OdDbObjectId& id) const;
  /// The set of the entry; empty without one.
  [[nodiscard]] IdSet getReplacements(const OdDbObjectId& id) const;
  /// All replaced ids.
  [[nodiscard]] OdDbObjectIdArray getAll() const;
  /// The final replacements of the id: a replacement that is itself replaced gives its own, each
  /// once. False, with `out` empty, for an id that is not replaced; `out` may be null.
  bool findReplacedWith(const OdDbObjectId& id, OdDbObjectIdArray* out) const;
  [[nodiscard]] OdDbObjectIdArray getReplacedWith(const OdDbObjectId& id) const;
  void remove(const OdDbObjectId& id) { m_replacements.erase(id); }
  [[nodiscard]] bool isEmptyReplacementDeps() const { return m_replacements.empty(); }

  // ---- Cloned objects

  void appendClone(const OdDbObjectId& id) { m_clones.insert(id); }
  [[nodiscard]] bool containsClone(const OdDbObjectId& id) const { return m_clones.count(id) != 0; }

  // ---- Modified entities

  [[nodiscard]] OdDbObjectIdArray modifiedEnts() const;
  void appendModifiedEnt(const OdDbObjectId& id) { m_modifiedEnts.insert(id); }
  void cleanModifiedEnt() { m_modifiedEnts.clear(); }

  // ---- Moved objects

  /// Null when absent; valid until the map changes.
  [[nodiscard]] const TransformedData* findTransformedObject(const OdDbObjectId& id) const;
  [[nodiscard]] bool hasTransformedObjects() const { return !m_transformed.empty(); }
  /// False, with the first entry kept, when the object has one.
  bool addTransformedObject(const OdDbObjectId& id, const OdGeMatrix3d& transform, bool marked);

  // ---- Instances and blocks

  /// An instance that is to be erased, and its block reference; the last call counts.
  void instanceToBeErased(OdDbObjectId instance, OdDbObjectId blockReference);
  /// Null when absent.
  [[nodiscard]] OdDbObjectId findBRForErasedInstance(OdDbObjectId instance) const;
  /// A block and what it was before its drawing was loaded again; the last call counts.
  void appendBtrReloadingPair(const OdDbObjectId& block, const OdDbObjectId& before);
  /// Null when absent.
  [[nodiscard]] OdDbObjectId findBtrBeforeReloading(const OdDbObjectId& block) const;

  // ---- Entities to draw again

  void addEntsToRegen(const OdDbObjectId& id) { m_entsToRegen.insert(id); }
  [[nodiscard]] const IdSet& entsToRegen() const { return m_entsToRegen; }
  void clearEntsToRedraw() { m_entsToRegen.clear(); }

  /// Nothing was recorded.
  [[nodiscard]] bool isEmpty() const;
  void clear() { *this = VdmDependenciesReplacementMap(); }

 private:
  template <class T>
  using IdMap = std::unordered_map<OdDbObjectId, T, vdmu::OdDbObjectIdHash>;

  IdSet m_clones;
  IdMap<IdSet> m_replacements;
  IdSet m_modifiedEnts;
  IdMap<TransformedData> m_transformed;
  IdMap<OdDbObjectId> m_erasedInstances;
  IdMap<OdDbObjectId> m_reloadedBlocks;
  IdSet m_entsToRegen;
};
