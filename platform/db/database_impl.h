// OdDbDatabaseImpl: the inside of a drawing database, for the runtime's own rooms.
#pragma once

#include <deque>
#include <memory>
#include <unordered_set>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/non_copyable.h"
#include "platform/base/string.h"
#include "platform/db/class_table.h"
#include "platform/db/database.h"
#include "platform/db/drawing_settings.h"
#include "platform/db/id_table.h"
#include "platform/db/record_store.h"
#include "platform/db/undo_log.h"
#include "platform/db/xref_registry.h"
#include "platform/filer/file_filer.h"

class OdDbHostAppServices;

/// Everything that one drawing holds. Only rooms of the runtime use it; its members are in the
/// order in which they may lean on each other.
class OdDbDatabaseImpl : OdNonCopyable {
 public:
  OdDbDatabaseImpl(OdDbDatabase* owner, OdDbHostAppServices* host);
  ~OdDbDatabaseImpl();

  static OdDbDatabaseImpl& of(const OdDbIdRecord* idRecord) { return idRecord->database->impl(); }

  // Ids and residency (object_load.cpp).
  /// Id of a handle met in a record; made when it is new. Null for handle 0.
  OdDbObjectId idOf(OdUInt64 handle) {
    return OdDbObjectId(handle == 0 ? nullptr : ids.findOrCreate(handle));
  }
  static OdDbObjectId resolveHandle(void* self, OdUInt64 handle) {
    return static_cast<OdDbDatabaseImpl*>(self)->idOf(handle);
  }
  /// Fetches class and owner of an id that was only referred to so far, from the file.
  void ensureHeader(OdDbIdRecord* idRecord) {
    if (!idRecord->has(OdDbIdRecord::kHeaderKnown | OdDbIdRecord::kAbsent)) fetchHeader(idRecord);
  }
  /// The object in memory, read from the file when need be; null when absent or damaged.
  OdDbObject* resident(OdDbIdRecord* idRecord);
  /// Reads a record into its object. Damage is noted in loadErrors and gives null.
  OdDbObject* load(OdDbIdRecord* idRecord, const OdDbRecordView& record);
  OdStatus loadAll();
  /// Makes ids for all records of the file.
  void listAll();
  OdUInt64 pageOut(OdUInt64 budgetBytes);
  /// Notes the content of an object that cannot be understood, once an object (read_faults.cpp).
  void noteContentFault(OdUInt64 handle, const OdString& line);
  /// Why the object could not be read; empty when nothing is known against it.
  [[nodiscard]] OdString faultOf(OdUInt64 handle) const;
  /// Lines of loadErrors that are about no single object.
  [[nodiscard]] OdStringArray fileFaults() const;
  /// Where handles without a record were met, finds out whether records vanished.
  void checkMissing();
  /// Ties a new object to its record in memory and counts it as created.
  OdDbObjectId append(OdDbObject* object, OdDbIdRecord* ownerRecord, OdUInt64 handle);
  /// Deletes an object whose creation was undone and cannot be redone, unless it is still open.
  static void forgetUncreated(OdDbIdRecord* idRecord);

  // Changes.
  void markDirty(OdDbIdRecord* idRecord) {
    ++changes;
    if (!idRecord->has(OdDbIdRecord::kDirty)) {
      idRecord->set(OdDbIdRecord::kDirty);
      dirty.push_back(idRecord);
    }
  }
  void setErased(OdDbIdRecord* idRecord, bool erased);
  /// The objects of the two records change places (db_object_swap.cpp). Not recorded.
  void swapObjects(OdDbIdRecord* a, OdDbIdRecord* b);

  // Saving (database_save.cpp).
  OdStatus openStore(std::unique_ptr<OdDbRecordStore> opened);
  /// Takes over a stored setting; false when it is damaged, with `reason`. Unknown ones pass.
  bool adoptSetting(const OdDbStoredSetting& item, OdString* reason = nullptr);
  OdStatus save();
  OdStatus saveAs(const OdString& path);
  OdStatus compact();
  [[nodiscard]] bool isEffectivelyErased(OdDbIdRecord* idRecord);

  // Notification (reactor_calls.cpp). A reactor that throws is reported; the others are called all
  // the same.
  template <class Call>
  void tellDatabaseReactors(Call&& call);

  void noteSettingChanged(const OdDbSettingRow* row);
  void report(const OdString& line);
  /// The end of the database: reactors hear of it, then the objects leave memory.
  void closeObjects();

  OdDbDatabase* const self;
  OdDbHostAppServices* const services;
  std::unique_ptr<OdDbRecordStore> store;
  OdString filename;
  OdDbIdTable ids;
  OdDbClassTable classes;
  OdDbDrawingSettings settings;
  std::vector<const OdDbSettingRow*> changedSettings;  ///< since the last save
  OdDbUndoLog undo;
  std::vector<OdDbIdRecord*> dirty;  ///< all with the flag kDirty, in order of first change
  std::vector<OdDbDatabaseReactor*> reactors;
  OdDbXrefRegistry xrefs;
  OdDbObjectId xrefBlock;
  OdStringArray loadErrors;
  OdUInt64 seed = OdDbRootHandles::kFirstFree;
  OdUInt64 savedSeed = 0;
  OdUInt64 changes = 0;  ///< rises with every change
  OdUInt64 savedChanges = 0;
  OdUInt32 lockedLayerAccesses = 0;  ///< OdDbLockedLayerAccess that live
  bool anyErased = false;
  bool allListed = true;  ///< every record of the file has its id in memory
  bool readOnly = false;
  bool closing = false;

 private:
  void fetchHeader(OdDbIdRecord* idRecord);
  OdDbObject* loadFromStore(OdDbIdRecord* idRecord);
  OdDbObject* instantiate(OdDbIdRecord* idRecord, const OdDbRecordView& record);
  OdDbObject* reviveProxy(OdDbIdRecord* idRecord);
  void addLoadError(OdUInt64 handle, const OdString& line);
  void noteDamage(OdDbIdRecord* idRecord, const OdString& text);
  void noteAbsent(OdDbIdRecord* idRecord);
  bool isAlive(OdDbIdRecord* idRecord);

  struct SavePlan;
  void planSave(SavePlan& plan);
  void keepDirty(const std::vector<OdDbIdRecord*>& idRecords);
  void loadErasedSubtrees();
  void collectErasedSubtree(OdDbIdRecord* idRecord, std::vector<OdDbIdRecord*>& removed);
  OdStatus writeObject(OdDbRecordStore& target, OdDbIdRecord* idRecord, OdDbFileWriter& writer,
                       std::vector<OdUInt8>& record);
  OdStatus writeChanges(SavePlan& plan);
  OdStatus writeEverything(OdDbRecordStore& target, std::vector<OdDbIdRecord*>& written);
  OdStatus writeClasses(OdDbRecordStore& target, bool all);
  OdStatus writeSettings(OdDbRecordStore& target, bool all);
  void savedTo(const OdString& path);

  std::vector<OdUInt64> m_missing;  ///< handles that were looked for in the file and not found
  std::unordered_set<OdUInt64> m_contentFaults;  ///< objects whose fault is noted
  std::vector<OdUInt64> m_loadErrorHandles;      ///< parallel to loadErrors; 0 for the file
};

template <class Call>
void OdDbDatabaseImpl::tellDatabaseReactors(Call&& call) {
  if (reactors.empty()) return;
  const std::vector<OdDbDatabaseReactor*> told = reactors;
  for (OdDbDatabaseReactor* reactor : told) {
    bool attached = false;
    for (const OdDbDatabaseReactor* present : reactors) attached = attached || present == reactor;
    if (!attached) continue;
    try {
      call(reactor);
    } catch (const std::exception& error) {
      report(OdString("database reactor failed: ") + OdString(error.what()));
    }
  }
}
