// Long transactions: their record, check-out, check-in.
//
// Check-in must keep the ids of the originals, since anything in the drawing may refer to them. The
// copies are therefore cloned back in one clone operation in which each copy has its original as
// its clone already: the original reads the copy's state, and what the copies refer to among
// themselves becomes what they stand for, as in any clone operation. What is not named by the state
// (place in the block, reactors) stays with the original.
#include "platform/cloning/long_transaction_man.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/base/error.h"
#include "platform/base/non_copyable.h"
#include "platform/cloning/cloner.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/field_list.h"
#include "platform/db/host_app_services.h"
#include "platform/db/locked_layers.h"

// Record: the fields of OdDbObject, then
//
//   | field       | primitive                  | groups   |                              |
//   |-------------|----------------------------|----------|------------------------------|
//   | version     | uint8                      |          | 1                            |
//   | name        | string                     | 300      |                              |
//   | origin      | soft pointer               | 330      | block of the originals       |
//   | destination | soft pointer               | 331      | block of the copies          |
//   | count       | int32                      |          | pairs                        |
//   | each pair   | soft pointer, soft pointer | 332, 333 | original (null: added), copy |
//
// The groups have all originals before all copies.
OD_RX_DEFINE_DB(OdDbLongTransaction, OdDbObject, L"OdDbLongTransaction", 0, 0, 0,
                L"LONGTRANSACTION", OdString())

namespace {

constexpr OdUInt8 kVersion = 1;
/// Entry of the named objects dictionary.
constexpr const wchar_t* kCurrent = L"LONG_TRANSACTION";

std::vector<OdDbLongTransactionReactor*> g_reactors;

OdResult refuse(const OdDbDatabase* database, OdResult result, const OdString& text,
                OdString* reason) {
  if (reason != nullptr) *reason = text;
  if (database != nullptr) database->appServices()->message(text);
  return result;
}

bool isEntityOf(const OdDbObjectId& id, const OdDbObjectId& block) {
  return !id.isErased() && id.ownerId() == block && id.objectClass() != nullptr &&
         id.objectClass()->isDerivedFrom(OdDbEntity::desc());
}

void erase(const OdDbObjectId& id) {
  const OdDbObjectPtr object = id.openObject(OdDb::kForWrite);
  if (!object.isNull()) object->erase();
}

OdDbLongTransactionPtr openRunning(const OdDbObjectId& id, OdString* reason) {
  OdDbLongTransactionPtr transaction = id.openAs<OdDbLongTransaction>(OdDb::kForWrite);
  if (transaction.isNull() && reason != nullptr) *reason = L"there is no such long transaction";
  return transaction;
}

/// What an original keeps while it takes over the state of its copy.
class KeptByOriginal {
 public:
  explicit KeptByOriginal(const OdDbObjectId& id)
      : m_id(id), m_reactors(id.safeOpenAs<OdDbEntity>()->getPersistentReactors()) {}

  void putBack() const {
    const OdDbEntityPtr entity = m_id.safeOpenAs<OdDbEntity>(OdDb::kForWrite);
    for (const OdDbObjectId& reactor : m_reactors) {
      if (!reactor.isErased()) entity->addPersistentReactor(reactor);
    }
    entity->recordGraphicsModified();
  }

 private:
  OdDbObjectId m_id;
  OdDbObjectIdArray m_reactors;
};

}  // namespace

// ---- The record

OdDbLongTransaction::~OdDbLongTransaction() = default;

OdResult OdDbLongTransaction::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbObject::dwgInFields(filer);
  if (result != eOk) return result;
  if (filer->rdUInt8() != kVersion) return eUnsupportedVersion;
  m_name = filer->rdString();
  m_origin = filer->rdSoftPointerId();
  m_destination = filer->rdSoftPointerId();
  m_pairs.clear();
  for (OdUInt32 count = filer->rdCount(); count > 0; --count) {
    const OdDbObjectId original = filer->rdSoftPointerId();
    m_pairs.push_back({original, filer->rdSoftPointerId()});
  }
  return eOk;
}

void OdDbLongTransaction::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbObject::dwgOutFields(filer);
  filer->wrUInt8(kVersion);
  filer->wrString(m_name);
  filer->wrSoftPointerId(m_origin);
  filer->wrSoftPointerId(m_destination);
  filer->wrInt32(static_cast<OdInt32>(m_pairs.size()));
  for (const Pair& pair : m_pairs) {
    filer->wrSoftPointerId(pair.original);
    filer->wrSoftPointerId(pair.copy);
  }
}

/// What the group form files, as a list of fields.
struct OdDbLongTransaction::Groups {
  static OdRxClass* desc() { return OdDbLongTransaction::desc(); }
  template <class Fields, class Self>
  static void fields(Fields& fields, Self& self) {
    fields.value(300, self.name);
    fields.template pointer<OdDb::kSoftPointerRef>(330, self.origin);
    fields.template pointer<OdDb::kSoftPointerRef>(331, self.destination);
    fields.template pointers<OdDb::kSoftPointerRef>(332, self.originals);
    fields.template pointers<OdDb::kSoftPointerRef>(333, self.copies);
    fields.rule([&] { return self.originals.size() == self.copies.size(); });
  }

  OdString name;
  OdDbObjectId origin;
  OdDbObjectId destination;
  OdDbObjectIdArray originals;
  OdDbObjectIdArray copies;
};

OdResult OdDbLongTransaction::dxfInFields(OdDbDxfFiler* filer) {
  OdResult result = OdDbObject::dxfInFields(filer);
  if (result != eOk) return result;
  Groups groups;
  result = OdDbFieldFiling::dxfIn(filer, groups);
  if (result != eOk) return result;
  m_name = groups.name;
  m_origin = groups.origin;
  m_destination = groups.destination;
  m_pairs.clear();
  for (OdUInt32 i = 0; i < groups.copies.size(); ++i) {
    m_pairs.push_back({groups.originals[i], groups.copies[i]});
  }
  return eOk;
}

void OdDbLongTransaction::dxfOutFields(OdDbDxfFiler* filer) const {
  OdDbObject::dxfOutFields(filer);
  Groups groups{m_name, m_origin, m_destination, {}, {}};
  for (const Pair& pair : m_pairs) {
    groups.originals.append(pair.original);
    groups.copies.append(pair.copy);
  }
  OdDbFieldFiling::dxfOut(filer, groups);
}

const OdString& OdDbLongTransaction::name() const { return read(m_name); }

OdDbObjectId OdDbLongTransaction::originBlock() const { return read(m_origin); }

OdDbObjectId OdDbLongTransaction::destinationBlock() const { return read(m_destination); }

OdDbObjectIdArray OdDbLongTransaction::workSet() const {
  assertReadEnabled();
  OdDbObjectIdArray ids;
  for (const Pair& pair : m_pairs) {
    if (!pair.copy.isErased()) ids.append(pair.copy);
  }
  return ids;
}

OdDbObjectId OdDbLongTransaction::originalOf(const OdDbObjectId& copy) const {
  assertReadEnabled();
  for (const Pair& pair : m_pairs) {
    if (pair.copy == copy) return pair.original;
  }
  return OdDbObjectId::kNull;
}

OdResult OdDbLongTransaction::addToWorkSet(const OdDbObjectIdArray& entities) {
  for (const OdDbObjectId& id : entities) {
    if (!isEntityOf(id, m_destination)) return eWrongObjectType;
  }
  assertWriteEnabled();
  std::unordered_set<OdDbObjectId> present;
  for (const Pair& pair : m_pairs) present.insert(pair.copy);
  for (const OdDbObjectId& id : entities) {
    if (present.insert(id).second) m_pairs.push_back({OdDbObjectId::kNull, id});
  }
  return eOk;
}

bool OdDbLongTransaction::removeFromWorkSet(const OdDbObjectId& entity) {
  const auto found = std::find_if(m_pairs.begin(), m_pairs.end(), [&entity](const Pair& pair) {
    return pair.copy == entity && pair.original.isNull();
  });
  if (found == m_pairs.end()) return false;
  assertWriteEnabled();
  m_pairs.erase(found);
  return true;
}

// ---- Observers

/// The mapping is the transaction's active one while this lives.
class OdDbLongTransactionMan::Activation : OdNonCopyable {
 public:
  Activation(OdDbLongTransaction& transaction, OdDbIdMapping& mapping)
      : m_transaction(transaction) {
    transaction.m_activeIdMap = &mapping;
  }
  ~Activation() { m_transaction.m_activeIdMap = nullptr; }

 private:
  OdDbLongTransaction& m_transaction;
};

void OdDbLongTransactionMan::tell(OdDbLongTransaction& transaction,
                                  void (OdDbLongTransactionReactor::*event)(OdDbLongTransaction&)) {
  const std::vector<OdDbLongTransactionReactor*> listeners = g_reactors;
  for (OdDbLongTransactionReactor* reactor : listeners) {
    const bool isAttached =
        std::find(g_reactors.begin(), g_reactors.end(), reactor) != g_reactors.end();
    if (isAttached) (reactor->*event)(transaction);
  }
}

void OdDbLongTransactionMan::addReactor(OdDbLongTransactionReactor* reactor) {
  const bool isAttached =
      std::find(g_reactors.begin(), g_reactors.end(), reactor) != g_reactors.end();
  if (reactor != nullptr && !isAttached) g_reactors.push_back(reactor);
}

void OdDbLongTransactionMan::removeReactor(OdDbLongTransactionReactor* reactor) {
  std::erase(g_reactors, reactor);
}

// ---- Operations

OdDbObjectId OdDbLongTransactionMan::current(const OdDbDatabase* database) {
  if (database == nullptr) return OdDbObjectId::kNull;
  const OdDbDictionaryPtr root = database->getNamedObjectsDictionaryId().openAs<OdDbDictionary>();
  return root.isNull() ? OdDbObjectId::kNull : root->getAt(kCurrent);
}

OdResult OdDbLongTransactionMan::checkOut(const OdDbObjectIdArray& entities,
                                          const OdDbObjectId& destination, const OdString& name,
                                          OdDbObjectId& transaction, OdString* reason) {
  OdDbDatabase* database = destination.originalDatabase();
  if (database == nullptr) return refuse(nullptr, eNoDatabase, L"no destination", reason);
  if (database->isReadOnly()) return eReadOnlyDatabase;
  if (const auto running = current(database).openAs<OdDbLongTransaction>(); !running.isNull()) {
    return refuse(database, eInvalidOpenState,
                  L"long transaction " + name + L": " + running->name() + L" is running", reason);
  }
  if (entities.isEmpty()) return eInvalidInput;
  const OdDbObjectId origin = entities.first().ownerId();
  if (origin == destination) return eInvalidInput;
  for (const OdDbObjectId& block : {origin, destination}) {
    if (block.openAs<OdDbBlockTableRecord>().isNull()) return eWrongObjectType;
  }
  for (const OdDbObjectId& id : entities) {
    if (id.originalDatabase() != database || !isEntityOf(id, origin)) return eWrongObjectType;
  }

  OdDbTransaction step(database);
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  OdResult result =
      database->deepCloneObjects(entities, destination, *mapping, /*deferXlation=*/true);
  if (result != eOk) return result;
  const OdDbLongTransactionPtr made = OdDbLongTransaction::createObject();
  made->m_name = name;
  made->m_origin = origin;
  made->m_destination = destination;
  for (const OdDbObjectId& id : entities) {
    OdDbIdPair pair(id);
    if (mapping->compute(pair)) made->m_pairs.push_back({id, pair.value()});
  }
  const OdDbObjectId added = database->getNamedObjectsDictionaryId()
                                 .safeOpenAs<OdDbDictionary>(OdDb::kForWrite)
                                 ->setAt(kCurrent, made);
  const Activation activation(*made, *mapping);
  tell(*made, &OdDbLongTransactionReactor::checkingOut);
  result = database->deepCloneObjects({}, destination, *mapping);
  if (result != eOk) return result;
  tell(*made, &OdDbLongTransactionReactor::checkedOut);
  transaction = added;
  return step.commit();
}

OdResult OdDbLongTransactionMan::checkIn(const OdDbObjectId& id, OdString* reason) {
  const OdDbLongTransactionPtr transaction = openRunning(id, reason);
  if (transaction.isNull()) return eWrongObjectType;
  OdDbDatabase* database = transaction->database();
  if (transaction->m_origin.openAs<OdDbBlockTableRecord>().isNull()) {
    return refuse(database, eWasErased,
                  L"long transaction " + transaction->name() + L": its block was erased", reason);
  }
  const OdDbLockedLayerAccess access(database);
  OdDbTransaction step(database);
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  OdDbObjectIdArray copies;
  OdDbObjectIdArray left;  // originals whose copies are erased
  std::unordered_map<OdDbObjectId, OdDbObjectId> originals;
  std::vector<KeptByOriginal> kept;
  for (const OdDbLongTransaction::Pair& pair : transaction->m_pairs) {
    const bool hasOriginal = isEntityOf(pair.original, transaction->m_origin);
    if (pair.copy.isErased()) {
      if (hasOriginal) left.append(pair.original);
      continue;
    }
    copies.append(pair.copy);
    if (!hasOriginal) continue;
    originals.emplace(pair.copy, pair.original);
    kept.emplace_back(pair.original);
  }
  OdDbCloner::setTakeovers(*mapping, std::move(originals));
  OdResult result =
      database->deepCloneObjects(copies, transaction->m_origin, *mapping, /*deferXlation=*/true);
  if (result != eOk) return result;
  const Activation activation(*transaction, *mapping);
  tell(*transaction, &OdDbLongTransactionReactor::checkingIn);
  result = database->deepCloneObjects({}, transaction->m_origin, *mapping);
  if (result != eOk) return result;
  for (const KeptByOriginal& each : kept) each.putBack();
  for (const OdDbObjectId& original : left) erase(original);
  tell(*transaction, &OdDbLongTransactionReactor::checkedIn);
  end(*transaction);
  return step.commit();
}

OdResult OdDbLongTransactionMan::discard(const OdDbObjectId& id, OdString* reason) {
  const OdDbLongTransactionPtr transaction = openRunning(id, reason);
  if (transaction.isNull()) return eWrongObjectType;
  const OdDbLockedLayerAccess access(transaction->database());
  OdDbTransaction step(transaction->database());
  tell(*transaction, &OdDbLongTransactionReactor::discarding);
  end(*transaction);
  return step.commit();
}

void OdDbLongTransactionMan::end(OdDbLongTransaction& transaction) {
  for (const OdDbObjectId& copy : transaction.workSet()) erase(copy);
  const OdDbDictionaryPtr root =
      transaction.database()->getNamedObjectsDictionaryId().safeOpenAs<OdDbDictionary>(
          OdDb::kForWrite);
  root->remove(kCurrent);
  transaction.erase();
}
