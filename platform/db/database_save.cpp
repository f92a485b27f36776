// Writing a drawing to its file: changed records only, or everything into a fresh file.
//
// The idea of save: plan, write, and only after the commit bring the flags in memory up to date, so
// that a save that fails leaves both the file and the drawing as they were. The plan sorts what
// changed into records to write, records to remove, and erased objects that no file holds.
//
// An erased object leaves the file with all that it owns, though what it owns is not erased itself:
// the subtree is loaded before it is removed, stays in memory, and is written again by the next
// save after its owner came back. Records are written in rising handle order, so that equal
// drawings give equal files.
//
// It costs one filing for each changed object, plus the loading of what erased objects own.
#include <algorithm>
#include <filesystem>
#include <string>

#include "platform/base/error.h"
#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/host_app_services.h"
#include "platform/db/internal_access.h"
#include "platform/db/proxy_object.h"
#include "platform/filer/id_filer.h"

namespace {

constexpr const char* kSeedKey = "HANDSEED";
constexpr const char* kSettingPrefix = "VAR.";
const std::vector<OdDbStoredSetting> kNoSettings;

std::string encodeSeed(OdUInt64 seed) {
  std::string text(8, '\0');
  for (char& byte : text) {
    byte = static_cast<char>(seed & 0xff);
    seed >>= 8;
  }
  return text;
}

bool decodeSeed(const std::string& text, OdUInt64& seed) {
  if (text.size() != 8) return false;
  seed = 0;
  for (std::size_t i = 8; i-- > 0;) seed = seed << 8 | static_cast<OdUInt8>(text[i]);
  return true;
}

bool isOwnFile(const OdString& path, const OdString& filename) {
  std::error_code failure;
  return std::filesystem::equivalent(std::string(path.utf8()), std::string(filename.utf8()),
                                     failure);
}

void fileIds(OdDbObject* object, OdDbIdFiler& filer) {
  const OdDbInternalRead readable(object);
  object->dwgOutFields(&filer);
}

// The setting that a key of the file names, null for other keys and unknown settings.
const OdDbSettingRow* settingOfKey(const std::string& key) {
  const std::string prefix(kSettingPrefix);
  return key.starts_with(prefix) ? OdDbDrawingSettings::find(OdString(key.substr(prefix.size())))
                                 : nullptr;
}

}  // namespace

/// What a save is going to do, known before the file is touched.
struct OdDbDatabaseImpl::SavePlan {
  std::vector<OdDbIdRecord*> written;
  std::vector<OdDbIdRecord*> removed;
  std::vector<OdDbIdRecord*> waiting;  ///< below erased owners and not in the file
};

// Opening.

// A setting of a newer program is left alone: it stays in the file as it is.
bool OdDbDatabaseImpl::adoptSetting(const OdDbStoredSetting& item, OdString* reason) {
  if (item.key == kSeedKey) {
    if (reason != nullptr) *reason = OdString("it is no handle");
    return decodeSeed(item.value, seed);
  }
  const OdDbSettingRow* row = settingOfKey(item.key);
  return row == nullptr || settings.deserialise(row, item.value, reason) == eOk;
}

OdStatus OdDbDatabaseImpl::openStore(std::unique_ptr<OdDbRecordStore> opened) {
  for (const OdDbStoredClass& item : opened->classes()) {
    if (!classes.read(item)) {
      return {eCorruptData, OdString("class " + std::to_string(item.id) + " of ") + opened->path() +
                                " is damaged"};
    }
  }
  for (const OdDbStoredSetting& item : opened->settings()) {
    OdString reason;
    if (!adoptSetting(item, &reason)) {
      return {eCorruptData, OdString("the setting " + item.key + " of ") + opened->path() +
                                " is damaged: " + reason};
    }
  }
  savedSeed = seed;
  seed = std::max({OdUInt64{OdDbRootHandles::kFirstFree}, seed, opened->maxHandle() + 1});
  filename = opened->path();
  readOnly = opened->isReadOnly();
  allListed = false;
  store = std::move(opened);
  return {};
}

// Planning.

bool OdDbDatabaseImpl::isAlive(OdDbIdRecord* idRecord) {
  return !idRecord->has(OdDbIdRecord::kErased) && (!anyErased || !isEffectivelyErased(idRecord));
}

bool OdDbDatabaseImpl::isEffectivelyErased(OdDbIdRecord* idRecord) {
  return OdDbObjectId(idRecord).isEffectivelyErased();
}

// What an erased object owns leaves the file with it. It has to be in memory then: should the
// erasing be undone, the next save writes it again.
void OdDbDatabaseImpl::collectErasedSubtree(OdDbIdRecord* root,
                                            std::vector<OdDbIdRecord*>& removed) {
  std::vector<OdDbIdRecord*> open = {root};
  OdDbIdFiler filer(self);
  while (!open.empty()) {
    OdDbIdRecord* idRecord = open.back();
    open.pop_back();
    removed.push_back(idRecord);
    OdDbObject* object = resident(idRecord);
    if (object == nullptr) continue;
    filer.clear();
    fileIds(object, filer);
    for (const OdDbFiledId& item : filer.ids()) {
      OdDbIdRecord* child = item.id.idRecord();
      if (!OdDb::isOwnership(item.type) || child->database != self) continue;
      ensureHeader(child);
      if (child->has(OdDbIdRecord::kInFile) && child->owner == idRecord) {
        child->clear(OdDbIdRecord::kInFile);
        open.push_back(child);
      }
    }
  }
}

// What erased objects own is not in a fresh file: it has to be in memory to come back.
void OdDbDatabaseImpl::loadErasedSubtrees() {
  std::vector<OdDbIdRecord*> roots;
  if (anyErased) {
    ids.forEach([&roots](OdDbIdRecord* idRecord) {
      if (idRecord->has(OdDbIdRecord::kErased) && idRecord->has(OdDbIdRecord::kInFile)) {
        roots.push_back(idRecord);
      }
      return true;
    });
  }
  std::vector<OdDbIdRecord*> loaded;
  for (OdDbIdRecord* idRecord : roots) collectErasedSubtree(idRecord, loaded);
  for (OdDbIdRecord* idRecord : loaded) idRecord->set(OdDbIdRecord::kInFile);
}

void OdDbDatabaseImpl::planSave(SavePlan& plan) {
  std::vector<OdDbIdRecord*> changed = dirty;
  std::sort(changed.begin(), changed.end(),
            [](const OdDbIdRecord* a, const OdDbIdRecord* b) { return a->handle < b->handle; });
  for (OdDbIdRecord* idRecord : changed) {
    if (isAlive(idRecord)) {
      plan.written.push_back(idRecord);
    } else if (idRecord->has(OdDbIdRecord::kInFile)) {
      collectErasedSubtree(idRecord, plan.removed);
    } else {
      plan.waiting.push_back(idRecord);
    }
  }
}

// Writing.

OdStatus OdDbDatabaseImpl::writeObject(OdDbRecordStore& target, OdDbIdRecord* idRecord,
                                       OdDbFileWriter& writer, std::vector<OdUInt8>& record) {
  OdDbObject* object = resident(idRecord);
  if (object == nullptr) {
    return {eCorruptData, OdString("object ") + OdDbHandle(idRecord->handle).ascii() +
                              " cannot be read for saving"};
  }
  writer.clear();
  record.clear();
  OdUInt32 classId = 0;
  const OdDbInternalRead readable(object);
  try {
    if ((object->m_bits & OdDbObject::kBitProxy) != 0) {
      auto* proxy = static_cast<OdDbProxyObject*>(object);
      classId = proxy->classId();
      proxy->writeRecord(record);
    } else {
      classId = classes.entryOf(object->isA()).id;
      object->dwgOutFields(&writer);
      writer.assemble(record);
    }
  } catch (const std::exception& error) {
    return {eGeneralFailure, OdString("object ") + OdDbHandle(idRecord->handle).ascii() +
                                 " of class " + object->isA()->name() +
                                 " cannot be saved: " + OdString(error.what())};
  }
  return target.putRecord({idRecord->handle, classId,
                           idRecord->owner == nullptr ? 0 : idRecord->owner->handle, record.data(),
                           record.size()});
}

OdStatus OdDbDatabaseImpl::writeClasses(OdDbRecordStore& target, bool all) {
  for (const OdDbClassEntry& entry : classes.entries()) {
    if (entry.inFile && !all) continue;
    const OdStatus status = target.putClass({entry.id, OdDbClassTable::encode(entry)});
    if (!status.ok()) return status;
  }
  return {};
}

OdStatus OdDbDatabaseImpl::writeSettings(OdDbRecordStore& target, bool all) {
  if (all || seed != savedSeed) {
    const OdStatus status = target.putSetting({kSeedKey, encodeSeed(seed)});
    if (!status.ok()) return status;
  }
  for (const OdDbSettingRow* row : all ? settings.changed() : changedSettings) {
    const OdStatus status =
        target.putSetting({std::string(kSettingPrefix) + row->name, settings.serialise(row)});
    if (!status.ok()) return status;
  }
  // What this program does not know is carried over.
  for (const OdDbStoredSetting& item : all&& store ? store->settings() : kNoSettings) {
    const bool ours = item.key == kSeedKey || settingOfKey(item.key) != nullptr;
    if (ours) continue;
    if (const OdStatus status = target.putSetting(item); !status.ok()) return status;
  }
  return {};
}

OdStatus OdDbDatabaseImpl::writeChanges(SavePlan& plan) {
  OdDbFileWriter writer(self);
  std::vector<OdUInt8> record;
  for (OdDbIdRecord* idRecord : plan.written) {
    const OdStatus status = writeObject(*store, idRecord, writer, record);
    if (!status.ok()) return status;
  }
  for (const OdDbIdRecord* idRecord : plan.removed) {
    const OdStatus status = store->removeRecord(idRecord->handle);
    if (!status.ok()) return status;
  }
  if (const OdStatus status = writeClasses(*store, /*all=*/false); !status.ok()) {
    return status;
  }
  return writeSettings(*store, /*all=*/false);
}

// What is erased itself becomes dirty with its return; what is only below an erased owner does not.
void OdDbDatabaseImpl::keepDirty(const std::vector<OdDbIdRecord*>& idRecords) {
  for (OdDbIdRecord* idRecord : idRecords) {
    if (idRecord->has(OdDbIdRecord::kErased | OdDbIdRecord::kDirty)) continue;
    idRecord->set(OdDbIdRecord::kDirty);
    dirty.push_back(idRecord);
  }
}

OdStatus OdDbDatabaseImpl::save() {
  if (!store) return {eFileAccess, OdString("the drawing has no file")};
  if (readOnly) return {eReadOnlyDatabase, filename};
  tellDatabaseReactors([this](OdDbDatabaseReactor* reactor) { reactor->databaseToBeSaved(self); });
  SavePlan plan;
  planSave(plan);
  const auto failed = [&plan](OdStatus status) {
    for (OdDbIdRecord* idRecord : plan.removed) idRecord->set(OdDbIdRecord::kInFile);
    return status;
  };
  if (OdStatus status = store->beginSave(); !status.ok()) return failed(status);
  if (OdStatus status = writeChanges(plan); !status.ok()) {
    store->rollbackSave();
    return failed(status);
  }
  if (OdStatus status = store->commitSave(); !status.ok()) return failed(status);
  for (OdDbIdRecord* idRecord : plan.written) idRecord->set(OdDbIdRecord::kInFile);
  for (OdDbIdRecord* idRecord : dirty) idRecord->clear(OdDbIdRecord::kDirty);
  dirty.clear();
  for (OdDbIdRecord* idRecord : plan.removed) idRecord->clear(OdDbIdRecord::kInFile);
  // In memory alone from now on; should they come back, they are written as if they were new.
  keepDirty(plan.removed);
  keepDirty(plan.waiting);
  savedTo(filename);
  return {};
}

void OdDbDatabaseImpl::savedTo(const OdString& path) {
  filename = path;
  savedSeed = seed;
  savedChanges = changes;
  for (OdDbClassEntry& entry : classes.entries()) entry.inFile = true;
  changedSettings.clear();
  tellDatabaseReactors([this](OdDbDatabaseReactor* reactor) { reactor->databaseSaved(self); });
}

OdStatus OdDbDatabaseImpl::writeEverything(OdDbRecordStore& target,
                                           std::vector<OdDbIdRecord*>& written) {
  OdDbFileWriter writer(self);
  std::vector<OdUInt8> record;
  OdStatus status;
  ids.forEach([&](OdDbIdRecord* idRecord) {
    if (!idRecord->has(OdDbIdRecord::kHeaderKnown) || !isAlive(idRecord)) return true;
    if (idRecord->object == nullptr && store && idRecord->has(OdDbIdRecord::kInFile)) {
      OdDbRecordView stored;
      status = store->readRecord(idRecord->handle, stored);
      if (status.ok()) status = target.putRecord(stored);
    } else {
      status = writeObject(target, idRecord, writer, record);
    }
    written.push_back(idRecord);
    return status.ok();
  });
  if (status.ok()) status = writeClasses(target, /*all=*/true);
  if (status.ok()) status = writeSettings(target, /*all=*/true);
  return status;
}

OdStatus OdDbDatabaseImpl::saveAs(const OdString& path) {
  OdDbRecordStoreFactory* factory = services->recordStoreFactory();
  if (factory == nullptr) return {eFileAccess, OdString("the host has no drawing files")};
  tellDatabaseReactors([this](OdDbDatabaseReactor* reactor) { reactor->databaseToBeSaved(self); });
  listAll();
  loadErasedSubtrees();
  std::unique_ptr<OdDbRecordStore> target;
  OdStatus status = store && !readOnly && isOwnFile(path, filename)
                        ? store->createReplacement(target)
                        : factory->create(path, target);
  if (!status.ok()) return status;
  std::vector<OdDbIdRecord*> written;
  status = writeEverything(*target, written);
  if (!status.ok()) {
    target->rollbackSave();
    return status;
  }
  status = target->commitSave();
  if (!status.ok()) return status;
  store = std::move(target);
  for (OdDbIdRecord* idRecord : dirty) idRecord->clear(OdDbIdRecord::kDirty);
  dirty.clear();
  ids.forEach([](OdDbIdRecord* idRecord) {
    idRecord->clear(OdDbIdRecord::kInFile);
    return true;
  });
  for (OdDbIdRecord* idRecord : written) idRecord->set(OdDbIdRecord::kInFile);
  ids.forEach([this](OdDbIdRecord* idRecord) {
    const bool leftOut = idRecord->object != nullptr &&
                         !idRecord->has(OdDbIdRecord::kInFile | OdDbIdRecord::kErased);
    if (leftOut) {
      idRecord->set(OdDbIdRecord::kDirty);
      dirty.push_back(idRecord);
    }
    return true;
  });
  readOnly = false;
  allListed = true;
  savedTo(path);
  return {};
}

OdStatus OdDbDatabaseImpl::compact() {
  if (changes != savedChanges || !dirty.empty()) {
    if (OdStatus status = save(); !status.ok()) return status;
  }
  return store ? store->compact() : OdStatus{eFileAccess, OdString("the drawing has no file")};
}
