// Example: a picture of a drawing, with the parts of its model space labelled by their blocks.
//
//   draw_picture DRAWING PICTURE     the picture's name ends in .png, .svg or .glb
#include <cstdio>
#include <string>

#include "examples/run_example.h"
#include "host/rendering/render.h"
#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/entities/block_reference.h"
#include "platform/ge/extents3d.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/runtime/runtime_init.h"
#include "platform/storage/sqlite_record_store.h"

namespace {

OdDbDatabasePtr openDrawing(OdDbHostAppServices& services, const char* path) {
  OdStatus status;
  OdDbReadOptions options;
  options.mode = OdDbStoreOpenMode::kReadOnly;
  OdDbDatabasePtr drawing = services.readFile(OdString(path), status, options);
  if (!status.ok()) throw OdError(status.code, status.text);
  return drawing;
}

// The name of a reference's block at the middle of what it shows.
void addLabels(const OdDbDatabase& drawing, std::vector<rendering::RenderLabel>& labels) {
  const OdDbBlockTableRecordPtr space = drawing.getModelSpaceId().safeOpenObject();
  for (const OdDbObjectIteratorPtr at = space->newIterator(); !at->done(); at->step()) {
    const OdDbBlockReferencePtr reference = OdDbBlockReference::cast(at->entity());
    OdGeExtents3d box;
    if (reference.isNull() || reference->getGeomExtents(box) != eOk) continue;
    const OdDbBlockTableRecordPtr block = reference->blockTableRecord().safeOpenObject();
    const OdGePoint3d middle = box.minPoint() + (box.maxPoint() - box.minPoint()) / 2;
    labels.push_back({middle, std::string(block->getName().utf8()), {}});
  }
}

void draw(const char* drawingPath, const std::string& picturePath) {
  OdDbHostAppServices services(createSqliteStoreFactory());
  const OdDbDatabasePtr drawing = openDrawing(services, drawingPath);
  rendering::RenderOptions options;
  addLabels(*drawing, options.labels);
  const std::string failure = rendering::renderFile(*drawing, picturePath, options);
  if (!failure.empty()) throw OdError(OdString(failure));
}

}  // namespace

int main(int argc, char** argv) {
  constexpr const char* kNames[] = {"DRAWING", "PICTURE"};
  return runExample(argc, argv, kNames, [](std::span<char*> arguments) {
    oddbInitialize();
    odModelerInitialize();
    odInstallOcctModeler();
    draw(arguments[0], arguments[1]);
    odSetModeler(nullptr);
    odModelerUninitialize();
    oddbUninitialize();
  });
}
