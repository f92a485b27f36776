// The check of a whole drawing.
//
// The idea: first list every object that is alive, then walk that list once for each law, so that a
// later phase sees the drawing as the earlier ones left it. References are learned by filing each
// object into a filer that keeps ids alone, so objects of unknown classes are checked as well.
//
// The order matters: dangling references go first, because owners are looked for through what
// remains; owners follow, because a lost object gets its new one before the lists of references are
// compared; objects check themselves last, with sound owners around them. The list is not extended
// by what the check itself makes, so every phase ends. Each object is filed once and opened once a
// phase; whether an owner is erased is remembered for all objects below it, which keeps deep
// ownership linear.
#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/audit_info.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/database_impl.h"
#include "platform/db/default_content.h"
#include "platform/db/dictionary.h"
#include "platform/db/dim_style_table.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"
#include "platform/db/locked_layers.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/owner_listing.h"
#include "platform/db/regapp_table.h"
#include "platform/db/symbol_table.h"
#include "platform/db/text_style_table.h"
#include "platform/filer/id_filer.h"
#include "platform/filer/memory_filer.h"

namespace {

/// Stored references hold handles below 2^62; a seed near that leaves no room.
constexpr OdUInt64 kFirstUnusable = OdUInt64{1} << 61U;
/// In place of the seed in the file: the next save writes the seed.
constexpr OdUInt64 kSeedToBeWritten = ~OdUInt64{0};

OdString nameOf(OdDbObjectId id) {
  const OdRxClass* objectClass = id.objectClass();
  return (objectClass == nullptr ? OdString(L"object") : objectClass->name()) + L"(" +
         id.getHandle().ascii() + L")";
}

/// What a finding is called, the rule that was broken, and what mending puts in its place.
struct Rule {
  const wchar_t* code;
  const wchar_t* rule;
  const wchar_t* remedy;
};

constexpr Rule kNoObjects{L"no-objects", L"a drawing", L"the content of a new drawing"};
constexpr Rule kRootMissing{L"root-missing", L"in the drawing", L"a new one"};
constexpr Rule kRootWrong{L"root-wrong", L"of its class", L""};
constexpr Rule kSeed{L"handle-seed", L"above every handle", L"the next free one"};
constexpr Rule kUnreadable{L"record-unreadable", L"readable", L""};
constexpr Rule kDangling{L"dangling-reference", L"to an object", L"null"};
constexpr Rule kDanglingReactor{L"dangling-reactor", L"an object", L"no reactor"};
constexpr Rule kOwnerCycle{L"owner-cycle", L"above it", L"a new owner"};
constexpr Rule kOwnerOfLister{L"owner-missing", L"the object that lists it", L"that object"};
constexpr Rule kOwnerMissing{L"owner-missing", L"an object", L"a new owner"};
constexpr Rule kWrongOwner{L"owner-wrong", L"the object that lists it", L"that object"};
constexpr Rule kUnlisted{L"owner-lists-not", L"listed", L"a new entry"};
constexpr Rule kSecondOwner{L"owner-twice", L"of its owner", L"no entry"};
constexpr Rule kShownUnlisted{L"block-reference-unlisted", L"in the block's list", L"a new entry"};
constexpr Rule kListedStranger{L"block-reference-stranger", L"a reference to the block",
                               L"no entry"};

/// The objects that every drawing has. Drawings of older programs have none of those for styles,
/// and are sound; a drawing that has some of them has lost the others.
struct RootRow {
  OdUInt64 handle;
  const wchar_t* name;
  OdRxClass* (*itsClass)();
  bool isForStyles = false;
};
constexpr RootRow kRoots[] = {
#define OD_DB_ROOT(Name, handle, Class, text) {handle, L##text, &Class::desc},
#define OD_DB_STYLE_ROOT(Name, handle, Class, text) {handle, L##text, &Class::desc, true},
#include "platform/db/root_object_rows.inc"
};

/// One check. The phases run in the order of the functions; what they find is mended at once when
/// that was asked for. The laws:
///
/// 1. A record that cannot be read is reported and left as it is: recovery is another operation.
/// 2. Ownership and hard pointers that name nothing become null; containers drop such entries.
///    Soft pointers may name missing objects, except reactors, which are removed.
/// 3. An object without an owner gets one, with all that it owns: an entity the block
///    "audit_<handle of the owner>", any other the dictionary "audit_lost" of the named objects,
///    under its handle. Objects below an erased owner are erased in effect and not looked at.
/// 4. An object that its dictionary, table or block does not list is listed again, in a dictionary
///    as "audit_<handle>", and so does a record whose name is taken meanwhile.
/// 5. What an object owns names it as its owner; where two list one object the recorded owner keeps
///    it.
/// 6. A block lists exactly the references that show it.
/// 7. The objects that every drawing has are there, as in a new drawing. Mending adds the styles of
///    an older drawing.
/// 8. No object is an owner of itself, over however many owners: one of the cycle is treated as
///    lost.
/// 9. The next handle that the file names is above every handle, and leaves room for more.
class Audit {
 public:
  Audit(OdDbDatabase* database, OdDbAuditInfo* info) : m_database(database), m_info(info) {}

  void run() {
    checkRoots();
    collect();
    checkSeed();
    for (const OdDbObjectId id : m_cycles) mendCycle(id);
    for (const OdDbObjectId id : m_ids) checkReferences(id);
    for (const OdDbObjectId id : m_ids) checkOwner(id);
    for (const auto& [id, lister] : m_furtherOwners) mendSecondOwner(id, lister);
    for (const OdDbObjectId id : m_ids) checkBlockReferences(id);
    for (const OdDbObjectId id : m_ids) askObject(id);
  }

 private:
  // Law 7.
  void checkRoots() {
    bool isMissing = false;
    bool isWrong = false;
    if (m_database->approxNumObjects() == 0) {
      if (found(kNoObjects, 0, L"drawing", L"a file without objects")) {
        oddbMakeDefaultContent(m_database);
      }
      return;
    }
    const bool hasStyles =
        std::any_of(std::begin(kRoots), std::end(kRoots),
                    [this](const RootRow& row) { return row.isForStyles && isThere(row); });
    for (const RootRow& row : kRoots) {
      if (row.isForStyles && !hasStyles) {
        isMissing = isMissing || m_info->fixErrors();
        continue;
      }
      const OdDbObjectId id = m_database->getOdDbObjectId(OdDbHandle(row.handle));
      const OdString name = OdString(row.name) + L"(" + OdDbHandle(row.handle).ascii() + L")";
      if (id.isNull() || id.isErased()) {
        isMissing = found(kRootMissing, row.handle, name, L"it") || isMissing;
      } else if (id.objectClass() != nullptr && !id.objectClass()->isDerivedFrom(row.itsClass())) {
        found(kRootWrong, row.handle, name, L"class " + id.objectClass()->name());
        isWrong = true;
      }
      isWrong = isWrong || (!id.isNull() && id.openObject().isNull());
    }
    // Content is made around what is there; that must be what it pretends to be.
    if (isMissing && !isWrong) oddbMakeDefaultContent(m_database);
  }

  bool isThere(const RootRow& row) const {
    const OdDbObjectId id = m_database->getOdDbObjectId(OdDbHandle(row.handle));
    return !id.isNull() && !id.isErased();
  }

  enum class Walk { kOpen, kAlive, kErased };
  using Walks = std::unordered_map<OdDbObjectId, Walk>;

  void collect() {
    Walks known;
    m_database->forEachId([this, &known](OdDbObjectId id) {
      if (id.isValid() && !isBelowErased(id, known)) m_ids.push_back(id);
      return true;
    });
  }

  // Whether the object or one of its owners is erased; an owner that is absent is not. Every owner
  // is looked at once for all objects. A walk that meets itself found a cycle.
  bool isBelowErased(OdDbObjectId id, Walks& known) {
    std::vector<OdDbObjectId> path;
    Walk end = Walk::kAlive;
    for (; id.isValid(); id = id.ownerId()) {
      if (id.isErased()) {
        end = Walk::kErased;
        break;
      }
      const auto [state, isNew] = known.try_emplace(id, Walk::kOpen);
      if (!isNew) {
        if (state->second == Walk::kOpen) m_cycles.push_back(id);
        if (state->second == Walk::kErased) end = Walk::kErased;
        break;
      }
      path.push_back(id);
    }
    for (const OdDbObjectId passed : path) known[passed] = end;
    return end == Walk::kErased;
  }

  // Law 8.
  void mendCycle(OdDbObjectId id) {
    const OdDbObjectId owner = id.ownerId();
    if (found(kOwnerCycle, id, L"owner " + owner.getHandle().ascii())) giveHome(id, owner);
  }

  // Counts a finding; true when it is to be mended.
  bool found(const Rule& rule, OdUInt64 handle, const OdString& name, const OdString& value) {
    m_info->printFinding({rule.code, handle, name, value, rule.rule, rule.remedy});
    const bool mends = m_info->fixErrors() && *rule.remedy != L'\0';
    if (mends) m_info->errorsFixed();
    return mends;
  }
  bool found(const Rule& rule, OdDbObjectId id, const OdString& value) {
    return found(rule, id.getHandle(), nameOf(id), value);
  }

  // Law 9. The drawing in memory goes on above every handle, whatever the file says.
  void checkSeed() {
    OdDbDatabaseImpl& impl = m_database->impl();
    OdUInt64 greatest = 0;
    for (const OdDbObjectId id : m_ids) greatest = std::max<OdUInt64>(greatest, id.getHandle());
    const bool isStored = impl.store && impl.savedSeed != kSeedToBeWritten;
    const OdUInt64 seed = isStored ? impl.savedSeed : impl.seed;
    // Objects that are not saved yet say nothing about the seed in the file.
    const OdUInt64 inUse = isStored ? impl.store->maxHandle() : greatest;
    if (inUse < seed && seed < kFirstUnusable) return;
    if (found(kSeed, 0, L"next handle", OdDbHandle(seed).ascii())) {
      impl.seed = std::max<OdUInt64>(greatest + 1, OdDbRootHandles::kFirstFree);
      impl.savedSeed = kSeedToBeWritten;
      ++impl.changes;
    }
  }

  // Law 1, 2; notes who owns what for law 5.
  void checkReferences(OdDbObjectId id) {
    const OdDbObjectPtr object = id.openObject();
    if (object.isNull()) {
      const OdString fault = m_database->impl().faultOf(id.getHandle());
      found(kUnreadable, id,
            fault.isEmpty() ? OdString(L"its record") : L"its record (" + fault + L")");
      return;
    }
    m_filer.clear();
    object->dwgOutFields(&m_filer);
    bool dangling = false;
    for (const OdDbFiledId& filed : m_filer.ids()) {
      if (OdDb::isOwnership(filed.type) && filed.id.isValid()) noteLister(filed.id, id);
      if (filed.type == OdDb::kSoftPointerRef || filed.id.isValid()) continue;
      dangling = found(kDangling, id, L"reference to " + filed.id.getHandle().ascii()) || dangling;
    }
    checkReactors(object);
    if (dangling) clearDangling(id);
  }

  void noteLister(OdDbObjectId id, OdDbObjectId lister) {
    const auto [first, isFirst] = m_owners.try_emplace(id, lister);
    if (!isFirst && first->second != lister) m_furtherOwners.emplace_back(id, lister);
  }

  void checkReactors(const OdDbObjectPtr& object) {
    for (const OdDbObjectId& reactor : object->getPersistentReactors()) {
      if (reactor.isValid()) continue;
      if (found(kDanglingReactor, object->objectId(), L"reactor " + reactor.getHandle().ascii())) {
        const OdDbOpenUpgrade upgrade(object);
        object->removePersistentReactor(reactor);
      }
    }
  }

  static void clearDangling(OdDbObjectId id) {
    readBack(id, [](void*, OdDbObjectId filed, OdDb::ReferenceType type) {
      const bool keeps = type == OdDb::kSoftPointerRef || filed.isValid();
      return keeps ? filed : OdDbObjectId::kNull;
    });
  }

  static void dropFrom(OdDbObjectId lister, OdDbObjectId id) {
    const auto drop = [](void* dropped, OdDbObjectId filed, OdDb::ReferenceType type) {
      const bool drops = OdDb::isOwnership(type) && filed == *static_cast<OdDbObjectId*>(dropped);
      return drops ? OdDbObjectId::kNull : filed;
    };
    readBack(lister, drop, &id);
  }

  // Files the object and reads it back with other ids.
  static void readBack(OdDbObjectId id, OdDbMemoryFiler::IdTranslator translator,
                       void* context = nullptr) {
    const OdDbObjectPtr object = id.safeOpenObject(OdDb::kForWrite);
    OdDbFilerBuffer buffer;
    OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, buffer, object->database());
    object->dwgOutFields(&filer);
    filer.setIdTranslator(translator, context);
    filer.startReading(0, 0);
    object->assertWriteEnabled();
    const OdResult result = object->dwgInFields(&filer);
    if (result != eOk) throw OdError(result, L"mending " + nameOf(id));
  }

  // Laws 3 to 5.
  void checkOwner(OdDbObjectId id) {
    if (id.isErased() || isRoot(id)) return;
    const OdDbObjectId owner = id.ownerId();
    const auto lister = m_owners.find(id);
    const bool listedElsewhere = lister != m_owners.end() && lister->second != owner;
    if (!owner.isValid()) {
      mendLostOwner(id, owner, listedElsewhere ? lister->second : OdDbObjectId());
    } else if (!isListed(id, owner)) {
      mendUnlisted(id, owner, listedElsewhere ? lister->second : OdDbObjectId());
    } else if (listedElsewhere) {
      mendSecondOwner(id, lister->second);
    }
  }

  void mendSecondOwner(OdDbObjectId id, OdDbObjectId lister) {
    if (id.ownerId() == lister || id.isErased()) return;
    if (found(kSecondOwner, id, L"entry of " + nameOf(lister))) {
      dropFrom(lister, id);
    }
  }

  [[nodiscard]] static bool isRoot(OdDbObjectId id) {
    return id.getHandle() < OdDbRootHandles::kFirstFree;
  }

  void mendLostOwner(OdDbObjectId id, OdDbObjectId owner, OdDbObjectId lister) {
    const OdString value =
        owner.isNull() ? OdString(L"no owner") : L"owner " + owner.getHandle().ascii();
    if (!lister.isNull()) {
      if (found(kOwnerOfLister, id, value)) setOwner(id, lister);
    } else if (found(kOwnerMissing, id, value)) {
      giveHome(id, owner);
    }
  }

  void giveHome(OdDbObjectId id, OdDbObjectId owner) {
    const bool isEntity = id.objectClass()->isDerivedFrom(OdDbEntity::desc());
    const OdDbObjectId home = isEntity ? blockForLost(owner) : dictionaryForLost();
    setOwner(id, home);
    const OdDbObjectPtr homeObject = home.safeOpenObject();
    oddbListWithOwner(id.safeOpenObject(OdDb::kForWrite), homeObject, id.getHandle().ascii());
  }

  OdDbObjectId blockForLost(OdDbObjectId owner) {
    const OdString name = L"audit_" + owner.getHandle().ascii();
    const OdDbBlockTablePtr table =
        m_database->getBlockTableId().safeOpenAs<OdDbBlockTable>(OdDb::kForWrite);
    const OdDbObjectId present = table->getAt(name);
    if (!present.isNull()) return present;
    const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
    block->setName(name);
    return table->add(block);
  }

  OdDbObjectId dictionaryForLost() {
    const OdDbDictionaryPtr root =
        m_database->getNamedObjectsDictionaryId().safeOpenAs<OdDbDictionary>(OdDb::kForWrite);
    const OdDbObjectId present = root->getAt(L"audit_lost");
    return present.isNull() ? root->setAt(L"audit_lost", OdDbDictionary::createObject()) : present;
  }

  void mendUnlisted(OdDbObjectId id, OdDbObjectId owner, OdDbObjectId lister) {
    if (!lister.isNull()) {
      if (found(kWrongOwner, id, L"owner " + nameOf(owner))) {
        setOwner(id, lister);
      }
    } else if (found(kUnlisted, id, L"its place in " + nameOf(owner)) && !listAgain(id, owner)) {
      giveHome(id, owner);
    }
  }

  // False for an owner that cannot list the object: a table of records of another class, a block
  // that would contain itself. A record whose name the table cannot take gets another one.
  static bool listAgain(OdDbObjectId id, OdDbObjectId owner) {
    const OdDbObjectPtr ownerObject = owner.safeOpenObject();
    const OdDbObjectPtr object = id.safeOpenObject(OdDb::kForWrite);
    const OdString freeName = L"audit_" + id.getHandle().ascii();
    const OdDbSymbolTableRecordPtr record = OdDbSymbolTableRecord::cast(object);
    if (!record.isNull() && (!odDbIsValidRecordName(record->getName()) ||
                             !oddbEntryAt(ownerObject, record->getName()).isNull())) {
      record->setName(freeName);
    }
    try {
      oddbListWithOwner(object, ownerObject, freeName);
      return true;
    } catch (const OdError& error) {
      if (error.code() != eWrongObjectType && error.code() != eCircularReference) throw;
      return false;
    }
  }

  static void setOwner(OdDbObjectId id, OdDbObjectId owner) {
    id.safeOpenObject(OdDb::kForWrite)->setOwnerId(owner);
  }

  // Owners of other classes may know what they own by other means: they are taken at their word.
  [[nodiscard]] bool isListed(OdDbObjectId id, OdDbObjectId owner) const {
    const OdDbObjectPtr object = owner.openObject();
    if (object.isNull() || object->extensionDictionary() == id) return true;
    if (OdDbDictionaryPtr dictionary = OdDbDictionary::cast(object); !dictionary.isNull()) {
      return dictionary->has(id);
    }
    if (OdDbSymbolTablePtr table = OdDbSymbolTable::cast(object); !table.isNull()) {
      return table->has(id);
    }
    const bool isEntity = id.objectClass()->isDerivedFrom(OdDbEntity::desc());
    if (!isEntity || !object->isKindOf(OdDbBlockTableRecord::desc())) return true;
    const auto lister = m_owners.find(id);
    return lister != m_owners.end() && (lister->second == owner || isSecondLister(id, owner));
  }

  // Only one of several listers is noted; the recorded owner may be another one of them.
  [[nodiscard]] static bool isSecondLister(OdDbObjectId id, OdDbObjectId owner) {
    const OdDbBlockTableRecordPtr block = owner.openAs<OdDbBlockTableRecord>();
    return !block.isNull() && block->entityIds().contains(id);
  }

  // Law 6.
  void checkBlockReferences(OdDbObjectId id) {
    if (id.isErased() || id.objectClass() == nullptr) return;
    if (id.objectClass()->isDerivedFrom(OdDbEntity::desc())) {
      const OdDbEntityPtr entity = id.openAs<OdDbEntity>();
      if (!entity.isNull()) checkIsListed(id, entity->insertedBlock());
    } else if (id.objectClass()->isDerivedFrom(OdDbBlockTableRecord::desc())) {
      const OdDbBlockTableRecordPtr block = id.openAs<OdDbBlockTableRecord>();
      if (!block.isNull()) checkListed(block);
    }
  }

  void checkIsListed(OdDbObjectId reference, OdDbObjectId blockId) {
    const OdDbBlockTableRecordPtr block = blockId.openAs<OdDbBlockTableRecord>();
    if (block.isNull()) return;
    const auto [known, isNew] = m_references.try_emplace(blockId);
    if (isNew) known->second = block->getBlockReferenceIds();
    const OdDbObjectIdArray& listed = known->second;
    const auto byHandle = [](const OdDbObjectId& a, const OdDbObjectId& b) {
      return a.getHandle() < b.getHandle();
    };
    const bool present = std::binary_search(listed.begin(), listed.end(), reference, byHandle);
    if (!present && found(kShownUnlisted, blockId, L"reference " + reference.getHandle().ascii())) {
      const OdDbOpenUpgrade upgrade(block);
      block->noteBlockReference(reference, /*shows=*/true);
    }
  }

  void checkListed(const OdDbBlockTableRecordPtr& block) {
    for (const OdDbObjectId& reference : block->getBlockReferenceIds()) {
      const OdDbEntityPtr entity = reference.openAs<OdDbEntity>();
      if (!entity.isNull() && entity->insertedBlock() == block->objectId()) continue;
      if (found(kListedStranger, block->objectId(),
                L"listed reference " + reference.getHandle().ascii())) {
        const OdDbOpenUpgrade upgrade(block);
        block->noteBlockReference(reference, /*shows=*/false);
      }
    }
  }

  void askObject(OdDbObjectId id) {
    const OdDbObjectPtr object =
        id.openObject(m_info->fixErrors() ? OdDb::kForWrite : OdDb::kForRead);
    if (!object.isNull()) object->audit(m_info);
  }

  OdDbDatabase* m_database;
  OdDbAuditInfo* m_info;
  std::vector<OdDbObjectId> m_ids;
  std::vector<OdDbObjectId> m_cycles;  // one object of each cycle of owners
  OdDbIdFiler m_filer;
  std::unordered_map<OdDbObjectId, OdDbObjectId> m_owners;  // the first object that owns it ...
  std::vector<std::pair<OdDbObjectId, OdDbObjectId>> m_furtherOwners;  // ... and all others
  std::unordered_map<OdDbObjectId, OdDbObjectIdArray> m_references;    // by block, rising handles
};

}  // namespace

void OdDbDatabase::audit(OdDbAuditInfo* info) {
  if (info == nullptr) throw OdError(eInvalidInput, L"audit needs an audit info");
  if (info->fixErrors() && isReadOnly()) throw OdError(eReadOnlyDatabase, getFilename());
  const OdDbLockedLayerAccess access(info->fixErrors() ? this : nullptr);
  Audit(this, info).run();
}
