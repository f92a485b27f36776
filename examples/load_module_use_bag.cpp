// Example: loads the module, puts a property bag on a line, undoes, redoes, saves and reads back.
//
//   example_load_module_use_bag <path of vdm_db.tx> <drawing to write>
#include <cstdio>
#include <cstdlib>

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/entities/line.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/rx/rx_init.h"
#include "platform/storage/sqlite_record_store.h"
#include "vdm_db/properties/vdm_properties.h"

namespace {

void expect(bool holds, const char* what) {
  if (!holds) throw OdError(eGeneralFailure, OdString(what));
}

void check(const OdStatus& status) {
  if (!status.ok()) throw OdError(status.code, status.text);
}

OdDbObjectId addLine(OdDbDatabase* drawing) {
  const OdDbLinePtr line = OdDbLine::createObject();
  line->setEndPoint(OdGePoint3d(100, 0, 0));
  const OdDbBlockTableRecordPtr modelSpace =
      drawing->getModelSpaceId().safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
  return modelSpace->appendOdDbEntity(line);
}

void writeBag(OdDbObjectId id) {
  VdmProperties bag;
  bag.setProperty(L"Material", OdString(L"Steel 1.4301"));
  bag.setProperty(L"Mass", 12.5);
  // The pointer closes the line at the end of the statement.
  bag.writeToDbObject(id.safeOpenObject(OdDb::kForWrite).get());
}

bool hasBag(OdDbObjectId id, OdString& material) {
  VdmProperties bag;
  return bag.readFromDbObject(id.safeOpenObject().get()) && bag.getProperty(L"Material", material);
}

// A drawing with a line that carries the bag, saved under `path`. Returns the line's handle.
OdDbHandle makeDrawing(OdDbHostAppServices& services, const OdString& path) {
  const OdDbDatabasePtr drawing = services.createDatabase();
  const OdDbObjectId line = addLine(drawing.get());

  drawing->startUndoRecord();  // from here on one step
  writeBag(line);
  OdString material;
  expect(hasBag(line, material), "the bag was not written");
  expect(drawing->undo() == eOk && !hasBag(line, material), "the bag was not undone");
  expect(drawing->redo() == eOk && hasBag(line, material), "the bag was not redone");

  {
    OdDbTransaction transaction(drawing.get());  // aborts at the end of the block
    line.safeOpenObject(OdDb::kForWrite)->erase();
  }
  expect(!line.isErased(), "the transaction was not rolled back");

  check(drawing->saveAs(path));
  return line.getHandle();
}

void readDrawing(OdDbHostAppServices& services, const OdString& path, const OdDbHandle& handle) {
  OdStatus status;
  OdDbReadOptions options;
  options.mode = OdDbStoreOpenMode::kReadOnly;
  const OdDbDatabasePtr drawing = services.readFile(path, status, options);
  check(status);
  OdString material;
  expect(hasBag(drawing->getOdDbObjectId(handle), material), "the bag is not in the file");
  std::printf("object %s is made of %s\n", static_cast<const char*>(handle.ascii()),
              static_cast<const char*>(material));
}

void run(const OdString& module, const OdString& path) {
  odrxDynamicLinker()->loadModule(module);
  {
    OdDbHostAppServices services(createSqliteStoreFactory());  // outlives its drawings
    readDrawing(services, path, makeDrawing(services, path));
  }
  // No bag and no drawing with the module's objects is left.
  odrxDynamicLinker()->unloadModule(module);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s <absolute path of vdm_db.tx> <drawing to write>\n", argv[0]);
    return 2;
  }
  odrxInitialize();
  oddbInitialize();
  int result = EXIT_SUCCESS;
  try {
    run(OdString(argv[1]), OdString(argv[2]));
  } catch (const OdError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    result = EXIT_FAILURE;
  }
  oddbUninitialize();
  odrxUninitialize();
  return result;
}
