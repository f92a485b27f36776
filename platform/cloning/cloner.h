// OdDbCloner: the phases that deep clone and wblock clone share.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "platform/base/result.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/db_object.h"
#include "platform/db/locked_layers.h"

class OdDbBlockTableRecord;
struct OdDbCloneState;

/// Runs one clone operation over a mapping. The laws:
///
/// 1. An object with a pair in the mapping is not cloned again; an erased object is not cloned.
/// 2. A clone is of the source's class and gets its state through a filer of type 6 (deep clone) or
///    9 (wblock clone); extension dictionary, extended data and persistent reactors come along.
/// 3. What an object owns, by the ids that it files as ownership, is cloned after it with the clone
///    as owner. Chains of any length are walked: by recursion down to kMaxNesting levels, so that a
///    hook finds the clones of what its object owns, and deeper ones from a work list.
/// 4. Wblock: hard pointers are followed. What they name is cloned into the counterpart of its
///    owner: the target for the contents of the source block, the same root for what roots own,
///    dictionaries of the same name, made where missing, for their entries.
/// 5. A record of a table or an entry of a dictionary whose name the destination has already goes
///    by the mapping's duplicate-record rule. Ignore: the destination's is used. Replace: the
///    destination's object takes over the state and keeps its id, or gives way to the clone where
///    the classes differ. Mangle: the clone is renamed to "$0$<name>", counting up, and to
///    "<block>$0$<name>" for an external reference. Without a rule a deep clone mangles, a
///    wblock clone goes by the dictionary's merge style and ignores in tables. Anonymous blocks
///    always get a new number; layer "0" and the fixed line types are always the destination's.
/// 6. At the end each id that a clone holds is translated to its pair's value. Without a pair
///    ownership becomes null, for nothing has two owners; within one database pointers stay as they
///    are, reactors included, since what they name is there; to another database pointers become
///    null and reactors are dropped. Ids that a hook has set to objects of the clone already stay.
///    In extended data 1005 handles go the way of soft pointers.
/// 7. When the ids are translated, the reactors of each source hear `copied`. A clone has then its
///    own references; a persistent reactor that has no place at it takes itself off.
/// 8. The operation runs in a transaction of the destination. A failure aborts it, and the mapping
///    loses the pairs that the operation made.
class OdDbCloner {
 public:
  /// Levels of ownership that are cloned by recursion, at less than 2 kB of stack each.
  static constexpr int kMaxNesting = 200;

  /// `mapping` has its databases set.
  OdDbCloner(OdDbIdMapping& mapping, OdDbDwgFiler::FilerType type);

  /// Clones `ids` into `owner` and, unless deferred, translates all clones that wait for it. With a
  /// null owner each goes to its own owner, or in another database to that owner's counterpart.
  OdResult run(const OdDbObjectIdArray& ids, const OdDbObjectId& owner, bool deferXlation);

  /// One object through its hook: what OdDbObject::deepClone and wblockClone do. Null when law 1
  /// or a name of law 5 says that there is nothing to clone. The clone's ids wait for translation.
  /// A failure raises; outside run() it is for the caller's transaction to take back.
  static OdDbObjectPtr cloneObject(const OdDbObject* source, OdDbIdMapping& mapping,
                                   OdDbObject* owner, bool isPrimary, OdDbDwgFiler::FilerType type);
  /// The body of the default hooks.
  static OdDbObjectPtr defaultHook(const OdDbObject* source, OdDbIdMapping& mapping,
                                   OdDbObject* owner, bool isPrimary, OdDbDwgFiler::FilerType type);
  /// The body of the default OdDbObject::appendToOwner.
  static void listWithOwner(OdDbObject* clone, const OdDbIdPair& pair, OdDbObject* owner,
                            OdDbIdMapping& mapping);
  /// Ends deferred operations and direct clones: owned and followed objects that wait are cloned,
  /// then the ids of all clones that wait are translated.
  static void translateIds(OdDbIdMapping& mapping, OdDbDwgFiler::FilerType type);

  /// For each source that is a key, the value takes over its state and is its clone: an object of
  /// the same class and of the destination, which keeps its id and its owner.
  static void setTakeovers(OdDbIdMapping& mapping,
                           std::unordered_map<OdDbObjectId, OdDbObjectId> clones);

  /// The ids of the object are translated.
  static void endFlux(OdDbObject* object);

  /// Clones what one block holds into a block of another drawing: entities that are not erased, and
  /// the contents of the extension dictionary. Sets the origin of `to`.
  static OdResult cloneContents(const OdDbBlockTableRecord* from, OdDbBlockTableRecord* to,
                                OdDbIdMapping& mapping, OdDb::DuplicateRecordCloning drc);

 private:
  class Nesting;

  static OdDbCloneState& stateOf(OdDbIdMapping& mapping);
  [[nodiscard]] bool toOtherDatabase() const;
  /// The pair's value, or the target of an owner of primary objects; null without either.
  [[nodiscard]] OdDbObjectId counterpart(OdDbObjectId id) const;
  void enterPair(const OdDbIdPair& pair);

  // Phases (deep_clone.cpp).
  [[nodiscard]] OdResult check(const OdDbObjectIdArray& ids, const OdDbObjectId& owner) const;
  void runPhases(const OdDbObjectIdArray& ids, const OdDbObjectId& owner, bool deferXlation);
  void seedRoots();
  void clonePrimaries(const OdDbObjectIdArray& ids, const OdDbObjectId& owner);
  void finishOwned();
  void finishFollowed();
  void translateAll();
  void announceCopies();
  void rollBack(std::size_t numUntranslated, std::size_t numUnannounced);

  // One clone.
  OdDbObjectPtr makeClone(const OdDbObject* source, OdDbObject* owner, bool isPrimary);
  void fileSource(const OdDbObject* source);
  OdDbObjectPtr readClone(const OdDbObject* source, OdDbObjectId replaced);
  void adaptProxy(const OdDbObject* source, OdDbObject* clone) const;
  void cloneOwned(OdDbObjectId source, OdDbObject* cloneOwner);
  static void eraseOwnedOf(OdDbObject* object);

  // Following and naming (clone_follow.cpp).
  void follow(OdDbObjectId id);
  [[nodiscard]] std::vector<OdDbObjectId> unmappedOwners(OdDbObjectId id) const;
  [[nodiscard]] bool mayReceive(OdDbObjectId cloneOwner) const;
  bool cloneInto(OdDbObjectId source, OdDbObjectId cloneOwner, bool onlyOnTheWay);
  void matchDictionary(const OdDbObject* source, OdDbObject* cloneOwner);
  bool settleName(const OdDbObject* source, OdDbObject* owner);
  OdString freeName(const OdDbObject* source, const OdDbObject* owner, const OdString& name) const;

  // Translation (clone_translation.cpp).
  void translate(OdDbObject* clone);
  void translateXData(OdDbObject* clone);
  static OdDbObjectId translateId(void* self, OdDbObjectId id, OdDb::ReferenceType type);
  [[nodiscard]] OdDbObjectId translated(OdDbObjectId id, OdDb::ReferenceType type) const;

  OdDbIdMapping& m_mapping;
  OdDbCloneState& m_state;
  const OdDbDwgFiler::FilerType m_type;
  const OdDbLockedLayerAccess m_access;  // clones may come onto locked layers
  OdDbObjectId m_translating;            // the clone whose ids are being translated
};
