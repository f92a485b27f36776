// OdDbBlockTableRecord: entities, properties and undo steps. What ties a block to others is in
// block_table_record_links.cpp, the stored form in block_table_record_filing.cpp.
#include "platform/db/block_table_record.h"

#include <string>
#include <utility>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/internal_access.h"
#include "platform/db/units.h"
#include "platform/ge/finite.h"
#include "platform/gi/world_draw.h"

OD_RX_DEFINE_DB(OdDbBlockTableRecord, OdDbSymbolTableRecord, L"OdDbBlockTableRecord", 0, 0, 0,
                L"BLOCK_RECORD", OdString())
OD_RX_DEFINE_ABSTRACT(OdDbObjectIterator, OdRxObject, L"OdDbObjectIterator")

namespace {

// Below this a scan of the entities is as fast as a set.
constexpr OdUInt32 kScanLimit = 32;

// Partial undo steps; each is the inverse of an edit, and applying it files its own inverse.
enum Step : OdUInt8 {
  kCutStep = 1,        ///< soft pointer: the first entity to remove, with all after it
  kAppendStep = 2,     ///< list of entities that come to the end
  kReplaceStep = 3,    ///< list that takes the place of all entities
  kReferenceStep = 4,  ///< soft pointer: a reference; bool: it shows this block
};

void writeIds(OdDbDwgFiler* filer, const OdDbObjectIdArray& ids) {
  filer->wrInt32(static_cast<OdInt32>(ids.size()));
  for (const OdDbObjectId& id : ids) filer->wrSoftPointerId(id);
}

OdDbObjectIdArray readIds(OdDbDwgFiler* filer) {
  OdDbObjectIdArray ids;
  const OdUInt32 count = filer->rdCount();
  ids.reserve(count);
  for (OdUInt32 i = 0; i < count; ++i) ids.append(filer->rdSoftPointerId());
  return ids;
}

OdString blockText(const OdDbBlockTableRecord* block) {
  return OdString("block '") + block->getName() + "'";
}

}  // namespace

// ---- Iterator

class OdDbBlockTableRecord::Iterator : public OdDbObjectIterator {
 public:
  Iterator(OdDbObjectIdArray entities, bool atBeginning, bool skipErased)
      : m_entities(std::move(entities)) {
    begin(atBeginning, skipErased);
  }

  void start(bool atBeginning, bool skipErased) override { begin(atBeginning, skipErased); }
  [[nodiscard]] bool done() const override {
    return m_at < 0 || m_at >= static_cast<OdInt64>(m_entities.size());
  }
  void step(bool forward, bool skipErased) override {
    do {
      m_at += forward ? 1 : -1;
    } while (!done() && skipErased && objectId().isErased());
  }
  bool seek(const OdDbObjectId& id) override {
    OdUInt32 found = 0;
    if (!m_entities.find(id, found)) return false;
    m_at = found;
    return true;
  }
  [[nodiscard]] OdDbObjectId objectId() const override {
    return done() ? OdDbObjectId::kNull : m_entities[static_cast<OdUInt32>(m_at)];
  }

 private:
  void begin(bool atBeginning, bool skipErased) {
    m_at = atBeginning ? 0 : static_cast<OdInt64>(m_entities.size()) - 1;
    if (!done() && skipErased && objectId().isErased()) step(atBeginning, skipErased);
  }

  const OdDbObjectIdArray m_entities;  // as they were; shares the block's memory
  OdInt64 m_at = 0;
};

OdDbEntityPtr OdDbObjectIterator::entity(OdDb::OpenMode mode, bool openErased) const {
  return objectId().openAs<OdDbEntity>(mode, openErased);
}

OdDbObjectIteratorPtr OdDbBlockTableRecord::newIterator(bool atBeginning, bool skipErased) const {
  assertReadEnabled();
  return OdRxObjectImpl<Iterator>::createObject(m_entities, atBeginning, skipErased);
}

// ---- Entities

OdDbBlockTableRecord::OdDbBlockTableRecord() = default;
OdDbBlockTableRecord::~OdDbBlockTableRecord() = default;

OdDbObjectIdArray OdDbBlockTableRecord::entityIds() const { return read(m_entities); }

bool OdDbBlockTableRecord::isEmpty() const {
  assertReadEnabled();
  for (const OdDbObjectId& id : m_entities) {
    if (!id.isErased()) return false;
  }
  return true;
}

bool OdDbBlockTableRecord::lists(const OdDbObjectId& entity) const {
  if (m_entities.size() <= kScanLimit) return m_entities.contains(entity);
  if (!m_entitySet) {
    m_entitySet =
        std::make_unique<std::unordered_set<OdDbObjectId>>(m_entities.begin(), m_entities.end());
  }
  return m_entitySet->contains(entity);
}

OdDbObjectId OdDbBlockTableRecord::appendOdDbEntity(OdDbEntity* entity) {
  if (entity == nullptr) throw OdError(eNullPointer, OdString("entity for ") + blockText(this));
  if (database() == nullptr) throw OdError(eNoDatabase, blockText(this));
  const bool isResident = entity->database() != nullptr;
  if (isResident && (entity->ownerId() != objectId() || lists(entity->objectId()))) {
    throw OdError(eAlreadyInDatabase,
                  OdString("entity ") + entity->getDbHandle().ascii() + " for " + blockText(this));
  }
  entity->subCheckAppend(objectId());
  assertWriteEnabled(/*autoUndo=*/false);
  if (!isResident) database()->addOdDbObject(entity, objectId());
  listEntities({entity->objectId()});
  entity->subAppended();
  noteGraphicsModified();
  return entity->objectId();
}

OdDbDwgFiler* OdDbBlockTableRecord::beginStep(OdUInt8 step) {
  OdDbDwgFiler* filer = beginPartialUndo(desc());
  if (filer != nullptr) filer->wrUInt8(step);
  return filer;
}

// The step names an entity and not a place: the list may be shorter when the step is taken back,
// since a file keeps no ids of objects that are gone for good.
void OdDbBlockTableRecord::listEntities(const OdDbObjectIdArray& entities) {
  if (entities.isEmpty()) return;
  if (OdDbDwgFiler* filer = beginStep(kCutStep)) filer->wrSoftPointerId(entities.first());
  for (const OdDbObjectId& id : entities) {
    m_entities.append(id);
    if (m_entitySet) m_entitySet->insert(id);
  }
}

void OdDbBlockTableRecord::unlistFrom(const OdDbObjectId& first) {
  const OdDbObjectIdArray& present = m_entities;
  OdUInt32 count = present.size();
  while (count > 0 && present[count - 1] != first) --count;
  if (count-- == 0) {
    throw OdError(eCorruptData, OdString("entity ") + first.getHandle().ascii() +
                                    " is not in the list of " + blockText(this));
  }
  OdDbObjectIdArray removed;
  for (OdUInt32 i = count; i < present.size(); ++i) removed.append(present[i]);
  if (OdDbDwgFiler* filer = beginStep(kAppendStep)) writeIds(filer, removed);
  m_entities.resize(count);
  m_entitySet.reset();
}

void OdDbBlockTableRecord::replaceEntities(const OdDbObjectIdArray& entities) {
  if (OdDbDwgFiler* filer = beginStep(kReplaceStep)) writeIds(filer, m_entities);
  m_entities = entities;
  m_entitySet.reset();
}

void OdDbBlockTableRecord::removeEntities(const std::unordered_set<OdDbObjectId>& removed) {
  assertWriteEnabled(/*autoUndo=*/false);
  const OdDbObjectIdArray& present = m_entities;
  OdDbObjectIdArray kept;
  for (const OdDbObjectId& id : present) {
    if (!removed.contains(id)) kept.append(id);
  }
  replaceEntities(kept);
  noteGraphicsModified();
}

OdResult OdDbBlockTableRecord::checkMovable(const OdDbObjectIdArray& ids) const {
  std::unordered_set<OdDbObjectId> seen;
  for (const OdDbObjectId& id : ids) {
    if (id.database() != database()) return eWrongDatabase;
    const OdRxClass* ownerClass = id.ownerId().objectClass();
    const bool isInBlock = ownerClass != nullptr && ownerClass->isDerivedFrom(desc());
    const OdRxClass* entityClass = id.objectClass();
    const bool isEntity = entityClass != nullptr && entityClass->isDerivedFrom(OdDbEntity::desc());
    if (!isInBlock || !isEntity) return eWrongObjectType;
    if (id.isErased()) return eWasErased;
    if (!seen.insert(id).second) return eDuplicateKey;
    try {
      id.safeOpenAs<OdDbEntity>()->subCheckAppend(objectId());
    } catch (const OdError& error) {
      return error.code();
    }
  }
  return eOk;
}

// Each block that loses entities is rewritten once, in the order in which it first loses one.
void OdDbBlockTableRecord::unlistFromOwners(const OdDbObjectIdArray& ids) {
  OdDbObjectIdArray owners;
  std::unordered_set<OdDbObjectId> seen;
  for (const OdDbObjectId& id : ids) {
    if (seen.insert(id.ownerId()).second) owners.append(id.ownerId());
  }
  const std::unordered_set<OdDbObjectId> moved(ids.cbegin(), ids.cend());
  for (const OdDbObjectId& owner : std::as_const(owners)) {
    const OdDbBlockTableRecordPtr block = owner.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    block->removeEntities(moved);
  }
}

OdResult OdDbBlockTableRecord::assumeOwnershipOf(const OdDbObjectIdArray& ids) {
  const OdResult result = checkMovable(ids);
  if (result != eOk || ids.isEmpty()) return result;
  assertWriteEnabled(/*autoUndo=*/false);
  unlistFromOwners(ids);
  for (const OdDbObjectId& id : ids) {
    id.safeOpenObject(OdDb::kForWrite)->setOwnerId(objectId());
  }
  listEntities(ids);
  noteGraphicsModified();
  return eOk;
}

OdResult OdDbBlockTableRecord::takeEntities(OdDbBlockTableRecord* source) {
  if (source == nullptr || source == this) return eInvalidInput;
  const OdDbObjectIdArray present = source->entityIds();
  OdDbObjectIdArray ids;
  for (const OdDbObjectId& id : present) {
    if (!id.isErased()) ids.append(id);
  }
  return assumeOwnershipOf(ids);
}

OdResult OdDbBlockTableRecord::getGeomExtents(OdGeExtents3d& extents) const {
  assertReadEnabled();
  if (m_measuring) return eCircularReference;
  const OdDbBusyMark measuring(m_measuring);
  OdGeExtents3d sum;
  OdResult result = eOk;
  const OdDbObjectIdArray entities = m_entities;
  for (const OdDbObjectId& id : entities) {
    const OdDbEntityPtr entity = id.openAs<OdDbEntity>();
    OdGeExtents3d box;
    if (entity.isNull()) continue;
    const OdResult measured = entity->getGeomExtents(box);
    if (measured == eOk) sum.addExt(box);
    if (measured == eCircularReference) result = measured;
  }
  if (result != eOk) return result;
  if (!sum.isValidExtents()) return eNotApplicable;
  extents = sum;
  return eOk;
}

bool OdDbBlockTableRecord::subWorldDraw(OdGiWorldDraw* context) const {
  assertReadEnabled();
  if (m_drawing) return false;
  const OdDbBusyMark drawing(m_drawing);
  bool complete = true;
  const OdDbObjectIdArray entities = m_entities;
  for (const OdDbObjectId& id : entities) {
    if (context->regenAbort()) return false;
    if (id.isErased()) continue;
    const OdDbEntityPtr entity = id.openAs<OdDbEntity>();
    complete &= !entity.isNull();
    if (!entity.isNull()) context->geometry().draw(entity);
  }
  return complete;
}

// ---- Properties

OdGePoint3d OdDbBlockTableRecord::origin() const { return read(m_origin); }

void OdDbBlockTableRecord::setOrigin(const OdGePoint3d& origin) {
  if (!odgeIsFinite(origin)) {
    throw OdError(eInvalidInput, OdString("origin of ") + blockText(this) + " is not finite");
  }
  assign(m_origin, origin);
}

OdString OdDbBlockTableRecord::comments() const { return read(m_comments); }

void OdDbBlockTableRecord::setComments(const OdString& comments) { assign(m_comments, comments); }

OdDb::UnitsValue OdDbBlockTableRecord::blockInsertUnits() const { return read(m_units); }

void OdDbBlockTableRecord::setBlockInsertUnits(OdDb::UnitsValue units) {
  if (!oddbIsUnit(units)) {
    throw OdError(eInvalidInput, OdString("unit " + std::to_string(units) + " of ") +
                                     blockText(this) + ", the greatest is " +
                                     OdString(std::to_string(OdDb::kUnitsMax)));
  }
  assign(m_units, units);
}

// ---- Undo steps

void OdDbBlockTableRecord::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbSymbolTableRecord::applyPartialUndo(filer, cls);
  assertWriteEnabled(/*autoUndo=*/false);
  const OdUInt8 step = filer->rdUInt8();
  switch (step) {
    case kCutStep:
      return unlistFrom(filer->rdSoftPointerId());
    case kAppendStep:
      return listEntities(readIds(filer));
    case kReplaceStep:
      return replaceEntities(readIds(filer));
    case kReferenceStep: {
      const OdDbObjectId reference = filer->rdSoftPointerId();
      return noteBlockReference(reference, filer->rdBool());
    }
    default:
      throw OdError(eCorruptData,
                    OdString("undo step " + std::to_string(step) + " of ") + blockText(this));
  }
}

void OdDbBlockTableRecord::noteBlockReference(const OdDbObjectId& reference, bool shows) {
  if (reference.isNull() || (m_references.find(reference) != nullptr) == shows) return;
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  if (OdDbDwgFiler* filer = beginStep(kReferenceStep)) {
    filer->wrSoftPointerId(reference);
    filer->wrBool(!shows);
  }
  if (shows) {
    m_references.insert(reference);
  } else {
    m_references.erase(reference);
  }
}

std::size_t OdDbBlockTableRecord::approximateSize() const {
  return OdDbSymbolTableRecord::approximateSize() + m_entities.capacity() * sizeof(OdDbObjectId) +
         m_references.memoryUsed();
}
