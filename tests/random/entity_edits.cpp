// Random edits of entities, blocks and layers.
#include <utility>

#include "platform/db/block_table.h"
#include "platform/db/layer_table.h"
#include "platform/entities/block_reference.h"
#include "platform/entities/line.h"
#include "tests/random/edit_context.h"

namespace {

template <class T>
OdSmartPtr<T> writable(OdDbObjectId id) {
  return id.safeOpenAs<T>(OdDb::kForWrite);
}

OdGePoint3d point(const EditContext& context) {
  RandomSource& random = context.random();
  const double x = random.coordinate();
  const double y = random.coordinate();
  return {x, y, random.coordinate()};
}

bool append(const EditContext& context, OdDbEntity* entity) {
  const OdDbObjectId block = context.pick(OdDbBlockTableRecord::desc());
  writable<OdDbBlockTableRecord>(block)->appendOdDbEntity(entity);
  return true;
}

bool addLine(const EditContext& context) {
  const OdDbLinePtr line = OdDbLine::createObject();
  line->setStartPoint(point(context));
  line->setEndPoint(point(context));
  return append(context, line);
}

bool moveLine(const EditContext& context) {
  const OdDbObjectId id = context.pick(OdDbLine::desc());
  if (id.isNull()) return false;
  const OdDbLinePtr line = writable<OdDbLine>(id);
  if (context.random().chance(30)) {
    return line->transformBy(OdGeMatrix3d::translation(OdGeVector3d(1, 2, 3))) == eOk;
  }
  context.random().chance(50) ? line->setStartPoint(point(context))
                              : line->setEndPoint(point(context));
  return true;
}

bool changeEntity(const EditContext& context) {
  const OdDbObjectId id = context.pick(OdDbEntity::desc());
  if (id.isNull()) return false;
  const OdDbEntityPtr entity = writable<OdDbEntity>(id);
  switch (context.random().below(3)) {
    case 0:
      entity->setLayer(context.pick(OdDbLayerTableRecord::desc()));
      break;
    case 1:
      entity->setColorIndex(static_cast<OdUInt16>(context.random().below(257)));
      break;
    default:
      entity->setVisibility(context.random().chance(50) ? OdDb::kVisible : OdDb::kInvisible);
  }
  return true;
}

bool addBlock(const EditContext& context) {
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
  block->setName(context.name());
  block->setOrigin(point(context));
  writable<OdDbBlockTable>(context.database()->getBlockTableId())->add(block);
  return true;
}

bool changeBlock(const EditContext& context) {
  const OdDbObjectId id = context.pickAdded(OdDbBlockTableRecord::desc());
  if (id.isNull()) return false;
  const OdDbBlockTableRecordPtr block = writable<OdDbBlockTableRecord>(id);
  switch (context.random().below(3)) {
    case 0:
      block->setName(context.name());
      break;
    case 1:
      block->setComments(context.text());
      break;
    default:
      block->setOrigin(point(context));
  }
  return true;
}

bool moveEntity(const EditContext& context) {
  const OdDbObjectId entity = context.pick(OdDbEntity::desc());
  if (entity.isNull()) return false;
  const OdDbObjectId target = context.pick(OdDbBlockTableRecord::desc());
  const OdResult result = writable<OdDbBlockTableRecord>(target)->assumeOwnershipOf({entity});
  return result == eOk || result == eCircularReference;
}

bool addReference(const EditContext& context) {
  const OdDbObjectId shown = context.pickAdded(OdDbBlockTableRecord::desc());
  if (shown.isNull()) return false;
  const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
  reference->setBlockTableRecord(shown);
  reference->setPosition(point(context));
  return append(context, reference);
}

bool changeReference(const EditContext& context) {
  const OdDbObjectId id = context.pick(OdDbBlockReference::desc());
  if (id.isNull()) return false;
  const OdDbBlockReferencePtr reference = writable<OdDbBlockReference>(id);
  switch (context.random().below(3)) {
    case 0:
      if (const OdDbObjectId shown = context.pickAdded(OdDbBlockTableRecord::desc())) {
        reference->setBlockTableRecord(shown);
      }
      break;
    case 1:
      reference->setRotation(context.random().coordinate() / 300.0);
      break;
    default:
      reference->setPosition(point(context));
  }
  return true;
}

bool addLayer(const EditContext& context) {
  const OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(context.name());
  writable<OdDbLayerTable>(context.database()->getLayerTableId())->add(layer);
  return true;
}

bool changeLayer(const EditContext& context) {
  const OdDbObjectId id = context.pick(OdDbLayerTableRecord::desc());
  const OdDbLayerTableRecordPtr layer = writable<OdDbLayerTableRecord>(id);
  switch (context.random().below(3)) {
    case 0:
      layer->setIsFrozen(!layer->isFrozen());
      break;
    case 1:
      layer->setColor(OdCmColor::fromIndex(static_cast<OdUInt16>(1 + context.random().below(255))));
      break;
    default:
      layer->setName(context.name());
  }
  return true;
}

constexpr EditRow kRows[] = {
    {"add line", 12, addLine},          {"move line", 6, moveLine},
    {"change entity", 5, changeEntity}, {"add block", 4, addBlock},
    {"change block", 3, changeBlock},   {"move entity", 3, moveEntity},
    {"add reference", 5, addReference}, {"change reference", 4, changeReference},
    {"add layer", 3, addLayer},         {"change layer", 3, changeLayer},
};

}  // namespace

std::span<const EditRow> entityEdits() { return kRows; }
