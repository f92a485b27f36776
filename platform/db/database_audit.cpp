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
#include "platform/db/dictionary.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/owner_listing.h"
#include "platform/db/symbol_table.h"
#include "platform/filer/id_filer.h"
#include "platform/filer/memory_filer.h"

namespace {

OdString nameOf(OdDbObjectId id) {
  const OdRxClass* objectClass = id.objectClass();
  return (objectClass == nullptr ? OdString(L"object") : objectClass->name()) + L"(" +
         id.getHandle().ascii() + L")";
}

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
class Audit {
 public:
  Audit(OdDbDatabase* database, OdDbAuditInfo* info) : m_database(database), m_info(info) {}

  void run() {
    collect();
    checkSeed();
    for (const OdDbObjectId id : m_ids) checkReferences(id);
    for (const OdDbObjectId id : m_ids) checkOwner(id);
    for (const auto& [id, lister] : m_furtherOwners) mendSecondOwner(id, lister);
    for (const OdDbObjectId id : m_ids) checkBlockReferences(id);
    for (const OdDbObjectId id : m_ids) askObject(id);
  }

 private:
  void collect() {
    std::unordered_map<OdDbObjectId, bool> known;
    m_database->forEachId([this, &known](OdDbObjectId id) {
      if (id.isValid() && !isBelowErased(id, known)) m_ids.push_back(id);
      return true;
    });
  }

  // Whether the object or one of its owners is erased; an owner that is absent is not. Every owner
  // is looked at once for all objects.
  static bool isBelowErased(OdDbObjectId id, std::unordered_map<OdDbObjectId, bool>& known) {
    std::vector<OdDbObjectId> path;
    bool erased = false;
    for (; id.isValid(); id = id.ownerId()) {
      if (id.isErased()) {
        erased = true;
        break;
      }
      const auto [state, isNew] = known.try_emplace(id, false);
      if (!isNew) {
        erased = state->second;
        break;
      }
      path.push_back(id);
    }
    for (const OdDbObjectId passed : path) known[passed] = erased;
    return erased;
  }

  // Counts a finding; true when it is to be mended.
  bool found(const OdString& name, const OdString& value, const wchar_t* rule,
             const wchar_t* remedy) {
    m_info->printError(name, value, rule, remedy);
    if (m_info->fixErrors()) m_info->errorsFixed();
    return m_info->fixErrors();
  }
  bool found(OdDbObjectId id, const OdString& value, const wchar_t* rule, const wchar_t* remedy) {
    return found(nameOf(id), value, rule, remedy);
  }

  void checkSeed() {
    OdUInt64 greatest = 0;
    for (const OdDbObjectId id : m_ids) greatest = std::max<OdUInt64>(greatest, id.getHandle());
    const OdDbHandle seed = m_database->handseed();
    if (greatest < seed) return;
    if (found(L"next handle", seed.ascii(), L"above every handle", L"the next free one")) {
      m_database->impl().seed = greatest + 1;
    }
  }

  // Law 1, 2; notes who owns what for law 5.
  void checkReferences(OdDbObjectId id) {
    const OdDbObjectPtr object = id.openObject();
    if (object.isNull()) {
      m_info->printError(nameOf(id), L"its record", L"readable", L"nothing");
      return;
    }
    m_filer.clear();
    object->dwgOutFields(&m_filer);
    bool dangling = false;
    for (const OdDbFiledId& filed : m_filer.ids()) {
      if (OdDb::isOwnership(filed.type) && filed.id.isValid()) noteLister(filed.id, id);
      if (filed.type == OdDb::kSoftPointerRef || filed.id.isValid()) continue;
      dangling =
          found(id, L"reference to " + filed.id.getHandle().ascii(), L"to an object", L"null") ||
          dangling;
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
      if (found(object->objectId(), L"reactor " + reactor.getHandle().ascii(), L"an object",
                L"no reactor")) {
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
    if (found(id, L"entry of " + nameOf(lister), L"of its owner", L"no entry")) {
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
      if (found(id, value, L"the object that lists it", L"that object")) setOwner(id, lister);
    } else if (found(id, value, L"an object", L"a new owner")) {
      const bool isEntity = id.objectClass()->isDerivedFrom(OdDbEntity::desc());
      const OdDbObjectId home = isEntity ? blockForLost(owner) : dictionaryForLost();
      setOwner(id, home);
      const OdDbObjectPtr homeObject = home.safeOpenObject();
      oddbListWithOwner(id.safeOpenObject(OdDb::kForWrite), homeObject, id.getHandle().ascii());
    }
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
      if (found(id, L"owner " + nameOf(owner), L"the object that lists it", L"that object")) {
        setOwner(id, lister);
      }
    } else if (found(id, L"its place in " + nameOf(owner), L"listed", L"a new entry")) {
      const OdDbObjectPtr ownerObject = owner.safeOpenObject();
      const OdDbObjectPtr object = id.safeOpenObject(OdDb::kForWrite);
      const OdString freeName = L"audit_" + id.getHandle().ascii();
      const OdDbSymbolTableRecordPtr record = OdDbSymbolTableRecord::cast(object);
      if (!record.isNull() && !oddbEntryAt(ownerObject, record->getName()).isNull()) {
        record->setName(freeName);
      }
      oddbListWithOwner(object, ownerObject, freeName);
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
    if (!present && found(blockId, L"reference " + reference.getHandle().ascii(),
                          L"in the block's list", L"a new entry")) {
      const OdDbOpenUpgrade upgrade(block);
      block->noteBlockReference(reference, /*shows=*/true);
    }
  }

  void checkListed(const OdDbBlockTableRecordPtr& block) {
    for (const OdDbObjectId& reference : block->getBlockReferenceIds()) {
      const OdDbEntityPtr entity = reference.openAs<OdDbEntity>();
      if (!entity.isNull() && entity->insertedBlock() == block->objectId()) continue;
      if (found(block->objectId(), L"listed reference " + reference.getHandle().ascii(),
                L"a reference to the block", L"no entry")) {
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
  OdDbIdFiler m_filer;
  std::unordered_map<OdDbObjectId, OdDbObjectId> m_owners;  // the first object that owns it ...
  std::vector<std::pair<OdDbObjectId, OdDbObjectId>> m_furtherOwners;  // ... and all others
  std::unordered_map<OdDbObjectId, OdDbObjectIdArray> m_references;    // by block, rising handles
};

}  // namespace

void OdDbDatabase::audit(OdDbAuditInfo* info) {
  if (info == nullptr) throw OdError(eInvalidInput, L"audit needs an audit info");
  if (info->fixErrors() && isReadOnly()) throw OdError(eReadOnlyDatabase, getFilename());
  Audit(this, info).run();
}
