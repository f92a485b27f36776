// Blocks: making, copying, swapping, and how references show them.
#include "vdm_db/drawing_utils/vdm_block_utils.h"

#include <cmath>

#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/db/locked_layers.h"
#include "platform/db/selection_filter.h"
#include "platform/db/units.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_assoc_action_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/drawing_utils/vdm_parameter_copy_mode.h"
#include "vdm_db/drawing_utils/vdm_string_utils.h"

namespace {

constexpr double kScaleTolerance = 1e-10;  // a change of a double counts beyond this
constexpr int kMaxOwnerDepth = 100000;     // owners above each other form a cycle beyond this

// Without erased ones.
OdDbObjectIdArray liveEntities(const OdDbBlockTableRecord* block) {
  OdDbObjectIdArray ids;
  for (const OdDbObjectIteratorPtr it = block->newIterator(); !it->done(); it->step()) {
    ids.append(it->objectId());
  }
  return ids;
}

OdDbObjectIdArray entitiesToClone(const OdDbBlockTableRecord* source,
                                  const OdDbSelectionFilter* filter) {
  OdDbObjectIdArray ids;
  for (const OdDbObjectIteratorPtr it = source->newIterator(); !it->done(); it->step()) {
    if (vdmu::isIdOf<OdDbViewRepBlockReference>(it->objectId())) continue;
    if (filter != nullptr) {
      const OdDbEntityPtr entity = it->entity();
      if (entity.isNull() || !filter->accepts(entity)) continue;
    }
    ids.append(it->objectId());
  }
  return ids;
}

OdDb::UnitsValue unitsOf(const OdDbBlockTableRecord* block) {
  return block->isModelSpace() ? block->database()->getINSUNITS() : block->blockInsertUnits();
}

void enterBlocks(OdDbIdMapping& mapping, const OdDbObjectId& source, const OdDbObjectId& target) {
  mapping.assign(OdDbIdPair(source, target, /*cloned=*/true));
}

// The phases that both forms of cloneBlock share.
OdResult cloneContents(const OdDbBlockTableRecord* source, OdDbBlockTableRecord* target,
                       bool deferXlation, OdDbIdMapping& mapping,
                       const OdDbSelectionFilter* filter) {
  const OdDbObjectIdArray ids = entitiesToClone(source, filter);
  target->setBlockInsertUnits(unitsOf(source));
  const OdResult result =
      source->database()->deepCloneObjects(ids, target->objectId(), mapping, deferXlation);
  if (result == eOk) enterBlocks(mapping, source->objectId(), target->objectId());
  return result;
}

bool hasZero(const OdGeScale3d& scale) {
  const auto isZero = [](double factor) { return std::abs(factor) <= kScaleTolerance; };
  return isZero(scale.sx) || isZero(scale.sy) || isZero(scale.sz);
}

/// A reference and the block that it shows, both open for read.
struct OpenedReference {
  OdDbBlockReferencePtr reference;
  OdDbBlockTableRecordPtr block;

  explicit OpenedReference(const OdDbObjectId& id) : reference(id.openAs<OdDbBlockReference>()) {
    if (reference.isNull()) return;
    block = reference->blockTableRecord().openAs<OdDbBlockTableRecord>();
  }
  [[nodiscard]] bool isOpen() const { return !reference.isNull() && !block.isNull(); }
  // From the units of the block to those of the drawing.
  [[nodiscard]] double unitFactor() const {
    return oddbGetUnitsConversion(block->blockInsertUnits(), reference->database()->getINSUNITS());
  }
};

}  // namespace

namespace vdmu {

// ---- Anonymous blocks

OdDbObjectId createEmptyAnonymousBlock(OdDbDatabase* database) {
  if (database == nullptr) return OdDbObjectId::kNull;
  const OdDbBlockTablePtr table =
      database->getBlockTableId().openAs<OdDbBlockTable>(OdDb::kForWrite);
  if (table.isNull()) return OdDbObjectId::kNull;
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
  block->setName(kVdmAnonymousBlockPrefix);
  block->setBlockInsertUnits(database->getINSUNITS());
  return table->add(block);
}

bool canBeMCADAnonymousBlock(const OdDbBlockTableRecord* block) {
  return block != nullptr && startsWith(block->getName(), kVdmAnonymousBlockPrefix);
}

// ---- Cloning

OdResult cloneBlock(OdDbObjectId source, OdDbObjectId target, bool deferXlation,
                    OdSmartPtr<OdDbIdMapping>& mapping, OdDbSelectionFilter* filter) {
  const OdDbBlockTableRecordPtr from = source.safeOpenAs<OdDbBlockTableRecord>();
  const OdDbBlockTableRecordPtr to = target.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
  if (mapping.isNull()) mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  OdDbTransaction transaction(to->database());
  const OdResult result = cloneContents(from, to, deferXlation, *mapping, filter);
  return result == eOk ? transaction.commit() : result;
}

OdDbObjectId cloneBlock(OdDbObjectId source, bool deferXlation,
                        OdSmartPtr<OdDbIdMapping>& mapping) {
  if (source.isNull()) return OdDbObjectId::kNull;
  const OdDbBlockTableRecordPtr from = source.safeOpenAs<OdDbBlockTableRecord>();
  OdDbTransaction transaction(from->database());
  const OdDbObjectId block = createEmptyAnonymousBlock(from->database());
  if (block.isNull()) return OdDbObjectId::kNull;
  if (mapping.isNull()) mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  {
    const VdmParameterCopyModeElevate mode(from->database());
    const OdDbBlockTableRecordPtr to = block.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    to->setOrigin(from->origin());
    to->setComments(from->comments());
    const OdResult result = cloneAssocActions(from->database(), getAssocActions(source), block,
                                              *mapping, /*deferXlation=*/true);
    if (result != eOk || cloneContents(from, to, deferXlation, *mapping, nullptr) != eOk) {
      return OdDbObjectId::kNull;
    }
  }
  transaction.commit();
  return block;
}

OdDbObjectId wblockBlock(OdDbObjectId source, OdDbDatabase* database, bool deferXlation,
                         OdSmartPtr<OdDbIdMapping> mapping, OdDbObjectId target) {
  OdDbDatabase* destination = target.isNull() ? database : target.database();
  if (source.isNull() || destination == nullptr) return OdDbObjectId::kNull;
  const OdDbBlockTableRecordPtr from = source.safeOpenAs<OdDbBlockTableRecord>();
  OdDbTransaction transaction(destination);
  OdDbObjectId block = target;
  if (block.isNull()) {
    block = createEmptyAnonymousBlock(destination);
    if (block.isNull()) return OdDbObjectId::kNull;
    const OdDbBlockTableRecordPtr created = block.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    created->setBlockInsertUnits(unitsOf(from));
    created->setOrigin(from->origin());
  }
  if (mapping.isNull()) mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  const OdResult result = from->database()->wblockCloneObjects(
      entitiesToClone(from, nullptr), block, *mapping, OdDb::kDrcIgnore, deferXlation);
  if (result != eOk) return OdDbObjectId::kNull;
  enterBlocks(*mapping, source, block);
  transaction.commit();
  return block;
}

OdDbObjectId findClone(const OdDbIdMapping& mapping, OdDbObjectId id) {
  OdDbIdPair pair(id);
  return mapping.compute(pair) ? pair.value() : OdDbObjectId::kNull;
}

// Entities change owners and keep their ids, so that references to them stay valid. Both moves are
// one transaction: the second can fail when the first has succeeded, as when a block would come to
// contain itself, and then the drawing is as before. The lists are taken before the first move,
// which adds to the second block. The cost is linear in the number of entities.
OdResult swapBlocksContent(const OdDbObjectId& a, const OdDbObjectId& b) {
  const OdDbBlockTableRecordPtr first = a.openAs<OdDbBlockTableRecord>(OdDb::kForWrite);
  const OdDbBlockTableRecordPtr second = b.openAs<OdDbBlockTableRecord>(OdDb::kForWrite);
  if (first.isNull() || second.isNull()) return eWrongObjectType;
  if (a == b) return eOk;
  const OdDbObjectIdArray ofFirst = liveEntities(first);
  const OdDbObjectIdArray ofSecond = liveEntities(second);
  OdDbTransaction transaction(first->database());
  try {
    OdResult result = second->assumeOwnershipOf(ofFirst);
    if (result == eOk) result = first->assumeOwnershipOf(ofSecond);
    return result == eOk ? transaction.commit() : result;
  } catch (const OdError& error) {  // such as a block that would contain itself
    return error.code();
  }
}

// ---- Owners and references

OdDbObjectId getOwner(OdDbObjectId id) { return id.ownerId(); }

OdDbObjectId getOwningBlock(OdDbObjectId id) {
  for (int depth = 0; depth < kMaxOwnerDepth && isIdOf<OdDbObject>(id); ++depth) {
    if (isIdOf<OdDbBlockTableRecord>(id)) return id;
    id = id.ownerId();
  }
  return OdDbObjectId::kNull;
}

OdDbObjectIdArray getBlockReferenceIds(const OdDbBlockTableRecord* block, bool directOnly,
                                       bool forceValidity) {
  return block == nullptr ? OdDbObjectIdArray()
                          : block->getBlockReferenceIds(directOnly, forceValidity);
}

// ---- Effective scale

OdResult getEffectiveBlockRefScale(OdDbObjectId reference, OdGeScale3d& scale) {
  const OpenedReference opened(reference);
  if (!opened.isOpen()) return eWrongObjectType;
  if (opened.block->blockInsertUnits() == OdDb::kUnitsUndefined) return eInvalidInput;
  const OdGeScale3d effective =
      opened.reference->scaleFactors() * OdGeScale3d(1.0 / opened.unitFactor());
  if (hasZero(effective)) return eInvalidInput;
  scale = effective;
  return eOk;
}

OdResult setEffectiveBlockRefScale(OdDbObjectId reference, const OdGeScale3d& scale) {
  const OpenedReference opened(reference);
  if (!opened.isOpen()) return eWrongObjectType;
  const OdGeScale3d factors = scale * OdGeScale3d(opened.unitFactor());
  if (hasZero(factors)) return eInvalidInput;
  if (oddbIsOnLockedLayer(opened.reference)) return eOnLockedLayer;
  const VdmOpenUpgrade upgrade(opened.reference);
  opened.reference->setScaleFactors(factors);
  return eOk;
}

}  // namespace vdmu
