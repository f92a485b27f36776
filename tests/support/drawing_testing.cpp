// Small verbs for tests that make, read and compare drawings.
#include "tests/support/drawing_testing.h"

#include "platform/filer/memory_filer.h"
#include "platform/storage/sqlite_record_store.h"
#include "tests/support/dump_drawing.h"

OdDbObjectId DrawingVerbs::addBlock(OdDbDatabase* drawing, const OdString& name) {
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::createObject();
  block->setName(name);
  return edit<OdDbBlockTable>(drawing->getBlockTableId())->add(block);
}

OdDbObjectId DrawingVerbs::addLayer(OdDbDatabase* drawing, const OdString& name, OdUInt16 color) {
  const OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(name);
  layer->setColor(OdCmColor::fromIndex(color));
  return edit<OdDbLayerTable>(drawing->getLayerTableId())->add(layer);
}

OdDbObjectId DrawingVerbs::addTo(OdDbObjectId block, OdDbEntity* entity) {
  return edit<OdDbBlockTableRecord>(block)->appendOdDbEntity(entity);
}

OdDbObjectId DrawingVerbs::addLine(OdDbObjectId block, const OdGePoint3d& from,
                                   const OdGePoint3d& to) {
  const OdDbLinePtr line = OdDbLine::createObject();
  line->setStartPoint(from);
  line->setEndPoint(to);
  return addTo(block, line);
}

OdDbObjectId DrawingVerbs::addReference(OdDbObjectId owner, OdDbObjectId block) {
  const OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
  reference->setBlockTableRecord(block);
  return addTo(owner, reference);
}

OdDbObjectId DrawingVerbs::addReference(OdDbObjectId owner, OdDbObjectId block,
                                        const OdGeMatrix3d& transform) {
  const OdDbObjectId id = addReference(owner, block);
  EXPECT_EQ(edit<OdDbBlockReference>(id)->setBlockTransform(transform), eOk);
  return id;
}

OdDbDatabasePtr DrawingVerbs::read(OdDbHostAppServices& host, const OdString& path,
                                   const OdDbReadOptions& options) {
  OdStatus status;
  OdDbDatabasePtr drawing = host.readFile(path, status, options);
  EXPECT_TRUE(succeeded(status));
  return drawing;
}

void DrawingVerbs::saveAs(const OdDbDatabasePtr& drawing, const OdString& path) {
  ASSERT_TRUE(succeeded(drawing->saveAs(path)));
}

static std::string filedState(const OdDbObject& object) {
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, buffer);
  object.dwgOutFields(&filer);
  std::string state(buffer.bytes.begin(), buffer.bytes.end());
  for (const OdString& text : buffer.strings) state += "|" + std::string(text.utf8());
  return state;
}

std::string DrawingVerbs::stateOf(OdDbObjectId id) {
  return filedState(*id.safeOpenObject(OdDb::kForRead, /*openErased=*/true));
}

std::map<OdUInt64, std::string> DrawingVerbs::statesOf(const OdDbDatabase& drawing) {
  std::map<OdUInt64, std::string> states;
  drawing.forEachId([&](OdDbObjectId id) {
    const OdDbObjectPtr object = id.openObject();
    if (!object.isNull()) states[id.getHandle()] = filedState(*object);
    return true;
  });
  return states;
}

void DrawingVerbs::expectUndoable(OdDbDatabase& drawing, const std::function<std::string()>& state,
                                  const std::function<void()>& edit) {
  const std::string before = state();
  drawing.startUndoRecord();
  edit();
  const std::string after = state();
  EXPECT_NE(before, after);
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(drawing.undo(), eOk);
    EXPECT_EQ(firstDifference(before, state()), "");
    ASSERT_EQ(drawing.redo(), eOk);
    EXPECT_EQ(firstDifference(after, state()), "");
  }
}

FilingHost::FilingHost() : OdDbHostAppServices(createSqliteStoreFactory()) {}
