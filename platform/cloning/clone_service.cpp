// The clone service on OdDbCloner.
#include "platform/cloning/clone_service.h"

#include "platform/base/error.h"
#include "platform/cloning/cloner.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/block_table_record.h"
#include "platform/db/clone_service.h"
#include "platform/db/drawing_settings.h"
#include "platform/db/host_app_services.h"

namespace {

void copySettings(const OdDbDatabase* from, OdDbDatabase* to) {
  for (const OdDbSettingRow& row : OdDbDrawingSettings::rows()) {
    if (row.kind == OdDbSettingRow::Kind::kHandle) continue;  // of an object of the other drawing
    const OdString name(row.name);
    to->setSysVar(name, from->getSysVar(name));
  }
}

class ClonerService final : public OdDbCloneService {
 public:
  OdDbObjectPtr cloneObject(const OdDbObject* source, OdDbIdMapping& mapping, OdDbObject* owner,
                            bool isPrimary, OdDbDwgFiler::FilerType type) const override {
    return OdDbCloner::cloneObject(source, mapping, owner, isPrimary, type);
  }

  OdDbObjectPtr defaultHook(const OdDbObject* source, OdDbIdMapping& mapping, OdDbObject* owner,
                            bool isPrimary, OdDbDwgFiler::FilerType type) const override {
    return OdDbCloner::defaultHook(source, mapping, owner, isPrimary, type);
  }

  void listWithOwner(OdDbObject* clone, const OdDbIdPair& pair, OdDbObject* owner,
                     OdDbIdMapping& mapping) const override {
    OdDbCloner::listWithOwner(clone, pair, owner, mapping);
  }

  OdResult deepCloneObjects(OdDbDatabase* database, const OdDbObjectIdArray& ids,
                            const OdDbObjectId& owner, OdDbIdMapping& mapping,
                            bool deferXlation) const override {
    mapping.setOrigDb(database);
    mapping.setDestDb(database);
    return OdDbCloner(mapping, OdDbDwgFiler::kDeepCloneFiler).run(ids, owner, deferXlation);
  }

  OdResult wblockCloneObjects(OdDbDatabase* source, const OdDbObjectIdArray& ids,
                              const OdDbObjectId& owner, OdDbIdMapping& mapping,
                              OdDb::DuplicateRecordCloning drc, bool deferXlation) const override {
    mapping.setOrigDb(source);
    if (!owner.isNull()) mapping.setDestDb(owner.originalDatabase());
    mapping.setDuplicateRecordCloning(drc);
    return OdDbCloner(mapping, OdDbDwgFiler::kWblockCloneFiler).run(ids, owner, deferXlation);
  }

  OdDbDatabasePtr wblock(OdDbDatabase* source, const OdDbObjectId& blockId) const override {
    const OdDbBlockTableRecordPtr block = blockId.openAs<OdDbBlockTableRecord>();
    if (block.isNull() || blockId.originalDatabase() != source) {
      throw OdError(eWrongObjectType,
                    L"object " + blockId.getHandle().ascii() + L" is no block of this drawing");
    }
    const OdDbDatabasePtr drawing = source->appServices()->createDatabase();
    copySettings(source, drawing);
    if (block->blockInsertUnits() != OdDb::kUnitsUndefined) {
      drawing->setINSUNITS(block->blockInsertUnits());
    }
    writeContents(block, drawing);
    drawing->clearUndo();
    return drawing;
  }

 private:
  static void writeContents(const OdDbBlockTableRecord* block, const OdDbDatabase* drawing) {
    const OdDbBlockTableRecordPtr modelSpace =
        drawing->getModelSpaceId().safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcWblock);
    const OdResult result =
        OdDbCloner::cloneContents(block, modelSpace, *mapping, OdDb::kDrcIgnore);
    if (result != eOk) {
      throw OdError(result, L"writing block " + block->getName() + L" to a new drawing");
    }
  }
};

constinit ClonerService g_service;

}  // namespace

void oddbInstallCloneService() { OdDbCloneService::install(&g_service); }

void oddbRemoveCloneService() { OdDbCloneService::install(nullptr); }
