// Example: opens a drawing, changes a solid in steps, takes steps back and brings them again.
//
//   undo_story DRAWING HANDLE      HANDLE: a solid of the drawing, in hexadecimal
//
// Shows the usual frame of a host: start the runtime, open a drawing, work in transactions, save.
#include <cstdio>
#include <filesystem>
#include <string>

#include "examples/run_example.h"
#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/storage/sqlite_record_store.h"
#include "vdm_db/properties/vdm_properties.h"

namespace {

void require(OdResult result, const char* what) {
  if (result != eOk) throw OdError(result, what);
}

/// The solid under a handle; raises when the handle names nothing or something else.
OdDb3dSolidPtr openSolid(const OdDbObjectId& id, OdDb::OpenMode mode) {
  return id.safeOpenAs<OdDb3dSolid>(mode);
}

void show(const OdDbObjectId& id, const char* moment) {
  const OdDb3dSolidPtr solid = openSolid(id, OdDb::kForRead);
  VdmProperties properties;
  properties.readFromDbObject(solid);
  OdString material(L"(none)");
  OdLong revision = 0;
  properties.getProperty(L"material", material);
  properties.getProperty(L"revision", revision);
  OdModelerMassProperties mass;
  solid->getMassProp(mass);
  std::printf("%-34s material %-10s revision %2d, %3u faces, %9.1f mm3\n", moment,
              static_cast<const char*>(material), revision, solid->body()->numFaces(), mass.volume);
}

/// One step of the user: everything inside of it is undone at once.
void setProperties(OdDbDatabase* drawing, const OdDbObjectId& id, const wchar_t* material,
                   OdLong revision) {
  drawing->startUndoRecord();
  const OdDb3dSolidPtr solid = openSolid(id, OdDb::kForWrite);
  VdmProperties properties;
  properties.readFromDbObject(solid);
  properties.setProperty(L"material", OdString(material));
  properties.setProperty(L"revision", revision);
  properties.writeToDbObject(solid);
}

/// Drills through the middle of the solid, from top to bottom.
void drill(OdDbDatabase* drawing, const OdDbObjectId& id, double radius) {
  drawing->startUndoRecord();
  const OdDb3dSolidPtr solid = openSolid(id, OdDb::kForWrite);
  OdGeExtents3d box;
  require(solid->getGeomExtents(box), "extents");
  const OdGePoint3d low = box.minPoint();
  const OdGePoint3d high = box.maxPoint();
  const OdDb3dSolidPtr tool = OdDb3dSolid::createObject();
  require(tool->createCylinder(radius, high.z - low.z).code, "cylinder");
  require(tool->transformBy(
              OdGeMatrix3d::translation({(low.x + high.x) / 2.0, (low.y + high.y) / 2.0, low.z})),
          "moving the tool");
  require(solid->booleanOper(OdModelerBooleanKind::kSubtract, *tool).code, "drilling");
}

void tellStory(OdDbDatabase* drawing, const OdDbObjectId& id) {
  show(id, "as it was");
  setProperties(drawing, id, L"S355J2", 1);
  show(id, "step 1: properties set");
  drill(drawing, id, 12.0);
  show(id, "step 2: a hole drilled");
  {
    const OdDbTransaction transaction(drawing);
    setProperties(drawing, id, L"wood", 99);
    show(id, "in a transaction: a bad idea");
  }
  show(id, "the transaction left uncommitted");
  require(drawing->undo(), "undo");
  show(id, "undo: the hole is gone");
  require(drawing->undo(), "undo");
  show(id, "undo: the properties, too");
  require(drawing->redo(), "redo");
  require(drawing->redo(), "redo");
  show(id, "redo, redo: both are back");
}

void run(const char* path, const char* handle) {
  OdDbHostAppServices services(createSqliteStoreFactory());
  OdStatus status;
  const OdDbDatabasePtr drawing = services.readFile(OdString(path), status);
  if (!status.ok()) throw OdError(status.code, status.text);
  const OdDbObjectId id = drawing->getOdDbObjectId(OdDbHandle(handle));
  tellStory(drawing, id);
  status = drawing->save();
  if (!status.ok()) throw OdError(status.code, status.text);
  std::printf("saved %s\n", path);
}

/// The module is in the lib folder beside the folder of this program.
OdString modulePath() {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  return OdString((program.parent_path().parent_path() / "lib" / "vdm_db.tx").string());
}

}  // namespace

int main(int argc, char** argv) {
  constexpr const char* kNames[] = {"DRAWING", "HANDLE"};
  return runExample(argc, argv, kNames, [](std::span<char*> arguments) {
    oddbInitialize();
    odModelerInitialize();
    odInstallOcctModeler();
    const OdString module = modulePath();
    odrxDynamicLinker()->loadModule(module);
    run(arguments[0], arguments[1]);
    odrxDynamicLinker()->unloadModule(module);
    odSetModeler(nullptr);
    odModelerUninitialize();
    oddbUninitialize();
  });
}
