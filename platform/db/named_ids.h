// OdDbNamedIds: the entries of dictionaries and symbol tables, ids by name.
#pragma once

#include <memory>
#include <unordered_map>

#include "platform/base/non_copyable.h"
#include "platform/base/string.h"
#include "platform/db/chunked_order.h"
#include "platform/filer/dwg_filer.h"
#include "platform/filer/object_id.h"

/// One entry: the name as it was given, and the id.
struct OdDbNamedId {
  OdString name;
  OdDbObjectId id;
};

/// Ids by names that are compared without regard to case (Unicode folding), in the order of the
/// folded names. Entries of erased objects stay, so that unerasing brings them back; the owner
/// skips them where it must. The table from ids to names is made when a large list is first asked
/// for an id, and follows every change from then on. Knows nothing of opening, undo recording or
/// owners.
class OdDbNamedIds : OdNonCopyable {
 public:
  struct ByName {
    static int compare(const OdDbNamedId& item, const OdString& name) {
      return item.name.iCompare(name);
    }
    static int compare(const OdDbNamedId& item, const OdDbNamedId& other) {
      return item.name.iCompare(other.name);
    }
  };
  using Entries = OdDbChunkedOrder<OdDbNamedId, ByName>;
  using Cursor = Entries::Cursor;

  OdDbNamedIds() = default;

  /// Null when the name has no entry; entries of erased objects count.
  [[nodiscard]] const OdDbNamedId* find(const OdString& name) const { return m_entries.find(name); }
  /// The first entry, in order, that holds the id; null when there is none.
  [[nodiscard]] const OdDbNamedId* findId(const OdDbObjectId& id) const;
  /// Sets the entry of the name, spelling included; a null id removes it. An id stands under one
  /// name: the caller takes the old entry out first.
  void put(const OdString& name, const OdDbObjectId& id);
  void clear();

  [[nodiscard]] const Entries& entries() const { return m_entries; }
  /// Number of entries whose objects are not erased.
  [[nodiscard]] OdUInt32 numLive() const;
  [[nodiscard]] bool hasLive() const;

  /// Files the entries in order: a count (int32), then for each its name (string) and its id by
  /// the primitive of `type`. For erased objects see oddbIsFiled().
  void dwgOut(OdDbDwgFiler* filer, OdDb::ReferenceType type) const;
  /// Replaces the entries. eCorruptData for a name that is empty or comes twice. Entries whose id
  /// reads as null are dropped.
  OdResult dwgIn(OdDbDwgFiler* filer, OdDb::ReferenceType type);

  /// Files what put(name, ...) is about to overwrite, for a partial undo step: name (string) and id
  /// (soft pointer, null where there is no entry).
  void outStep(OdDbDwgFiler* filer, const OdString& name) const;
  /// Reads such a step without applying it.
  static OdDbNamedId inStep(OdDbDwgFiler* filer);

  [[nodiscard]] std::size_t memoryUsed() const { return m_entries.memoryUsed(); }

 private:
  void buildById() const;

  Entries m_entries;
  // Name by id, made when it is first asked for in a sequence that is not short.
  mutable std::unique_ptr<std::unordered_map<OdDbObjectId, OdString>> m_byId;
};

/// Position in the entries that survives changes: after one it finds its place again by name.
/// Entries of erased objects are skipped unless they are asked for.
class OdDbNamedIdsWalker {
 public:
  OdDbNamedIdsWalker(const OdDbNamedIds& ids, bool skipErased)
      : m_ids(&ids), m_skipErased(skipErased) {
    start(true);
  }

  void start(bool atBeginning);
  [[nodiscard]] bool done() const { return m_done; }
  void step(bool forward);
  /// False, and nothing changes, when the id has no entry.
  bool seek(const OdDbObjectId& id);
  [[nodiscard]] const OdString& name() const { return m_current.name; }
  [[nodiscard]] const OdDbObjectId& id() const { return m_current.id; }

 private:
  [[nodiscard]] bool isSkipped(const OdDbNamedId& entry) const {
    return m_skipErased && entry.id.isErased();
  }
  void take(OdDbNamedIds::Cursor at, bool forward);

  const OdDbNamedIds* m_ids;
  OdDbNamedIds::Cursor m_at;
  OdDbNamedId m_current;
  OdUInt32 m_generation = 0;
  bool m_skipErased;
  bool m_done = true;
};
