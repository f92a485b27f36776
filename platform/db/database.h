// OdDbDatabase: one drawing, with its objects, undo, transactions and file.
#pragma once

#include <functional>
#include <memory>

#include "platform/base/non_copyable.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/db/database_reactor.h"
#include "platform/db/db_enums.h"
#include "platform/db/record_store.h"
#include "platform/filer/object_id.h"
#include "platform/filer/res_buf.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"

class OdDbAuditInfo;
class OdDbDatabase;
class OdDbDatabaseImpl;
class OdDbHostAppServices;
class OdDbIdMapping;
class OdDbObject;
using OdDbDatabasePtr = OdSmartPtr<OdDbDatabase>;

/// Handles of the objects that every drawing has. Fixed for ever; new objects start at kFirstFree.
struct OdDbRootHandles {
#define OD_DB_ROOT(Name, handle, Class, text) static constexpr OdUInt64 k##Name = handle;
#include "platform/db/root_object_rows.inc"
  static constexpr OdUInt64 kFirstFree = 0x20;
};

/// One drawing. Created by OdDbHostAppServices; owned by its smart pointers; owns its objects. All
/// ids die with it. One thread at a time.
///
/// Undo. Changes are recorded in steps. startUndoRecord() begins a new step, undo() takes the last
/// step back, redo() brings it again; a new change clears what could be redone. Transactions nest
/// and roll back everything since their start; they do not begin steps.
class OdDbDatabase : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDatabase)

  ~OdDbDatabase() override;

  // The objects that every drawing has, such as `OdDbObjectId getBlockTableId() const`.
#define OD_DB_ROOT(Name, handle, Class, text) [[nodiscard]] OdDbObjectId get##Name##Id() const;
#include "platform/db/root_object_rows.inc"
  /// Dictionary of the drawing's materials (OdDbMaterial), an entry of the named objects
  /// dictionary. A missing one is made when asked for, otherwise null.
  OdDbObjectId getMaterialDictionaryId(bool createIfNotFound = true);
  /// The same of the visual styles (OdDbVisualStyle) and of the styles of multi-lines
  /// (OdDbMlineStyle).
  OdDbObjectId getVisualStyleDictionaryId(bool createIfNotFound = true);
  OdDbObjectId getMLStyleDictionaryId(bool createIfNotFound = true);

  // Objects.
  /// Adds an object that is in no database and returns its id. With a null handle the next free one
  /// is given; a handle in use raises eHandleInUse. The owner is stored with the object; owners
  /// that list what they own take it in by their own operations (`setAt`, `appendOdDbEntity`,
  /// `add`).
  OdDbObjectId addOdDbObject(OdDbObject* object, const OdDbObjectId& owner = OdDbObjectId::kNull,
                             const OdDbHandle& handle = OdDbHandle());
  /// Id of a handle. Without `createIfNotFound` a handle that names nothing gives null; with it an
  /// id is made that names no object yet.
  [[nodiscard]] OdDbObjectId getOdDbObjectId(const OdDbHandle& handle,
                                             bool createIfNotFound = false,
                                             OdUInt32 reserved = 0) const;
  /// The next handle to be given out.
  [[nodiscard]] OdDbHandle handseed() const;
  /// All ids in rising handle order, erased ones only when asked for. Loads nothing.
  void forEachId(const std::function<bool(OdDbObjectId)>& visit, bool withErased = false) const;
  /// Number of objects that are not erased. Loads nothing.
  [[nodiscard]] OdUInt64 approxNumObjects() const;
  /// Registers an application name; nothing happens when it is there. Returns its id.
  OdDbObjectId newRegApp(const OdString& name);

  // Drawing settings, by upper-case name; see drawing_settings.h for the table of names, kinds and
  // limits. Unknown names raise eKeyNotFound, bad values eInvalidInput. Undone and saved.
  [[nodiscard]] OdResBufPtr getSysVar(const OdString& name) const;
  void setSysVar(const OdString& name, const OdResBuf* value);
  [[nodiscard]] OdDb::UnitsValue getINSUNITS() const;
  void setINSUNITS(OdDb::UnitsValue units);
  /// Factor on the patterns of all line types.
  [[nodiscard]] double getLTSCALE() const;
  void setLTSCALE(double scale);

  // What new entities get; see OdDbEntity::setDatabaseDefaults(). Where the object of a setting is
  // erased, the fixed one is given: layer "0", line type "ByLayer", style "Standard". Setting one
  // raises eWrongDatabase or eWrongObjectType.
  [[nodiscard]] OdDbObjectId getCLAYER() const;
  void setCLAYER(const OdDbObjectId& layer);
  [[nodiscard]] OdUInt16 getCECOLOR() const;  ///< colour index
  void setCECOLOR(OdUInt16 index);
  [[nodiscard]] OdDbObjectId getCELTYPE() const;
  void setCELTYPE(const OdDbObjectId& linetype);
  [[nodiscard]] double getCELTSCALE() const;
  void setCELTSCALE(double scale);
  [[nodiscard]] OdDb::LineWeight getCELWEIGHT() const;
  void setCELWEIGHT(OdDb::LineWeight weight);
  [[nodiscard]] OdDbObjectId getTEXTSTYLE() const;
  void setTEXTSTYLE(const OdDbObjectId& style);
  [[nodiscard]] OdDbObjectId getDIMSTYLE() const;
  void setDIMSTYLE(const OdDbObjectId& style);

  // Undo.
  void startUndoRecord();
  [[nodiscard]] bool hasUndo() const;
  [[nodiscard]] bool hasRedo() const;
  /// Takes back the last step that holds changes. eNothingToUndo; eTransactionMismatch when the
  /// step began before the open transaction.
  OdResult undo();
  OdResult redo();
  /// A mark to which undoBack() returns, however many steps lie between.
  void setUndoMark();
  [[nodiscard]] bool hasUndoMark() const;
  OdResult undoBack();
  void clearUndo();
  [[nodiscard]] bool isUndoing() const;
  [[nodiscard]] bool undoRecording() const;
  /// While disabled, changes outside transactions are not recorded, and undo() keeps no redo.
  void disableUndoRecording(bool disable);
  /// Number of steps that undo() could take back one after the other.
  [[nodiscard]] OdUInt32 numUndoSteps() const;

  // Transactions. Each start has one end or abort; OdDbTransaction is the guard.
  void startTransaction();
  /// eTransactionMismatch when none is open.
  OdResult endTransaction();
  OdResult abortTransaction();
  [[nodiscard]] OdUInt32 numActiveTransactions() const;

  // Observers.
  void addReactor(OdDbDatabaseReactor* reactor) const;
  void removeReactor(OdDbDatabaseReactor* reactor) const;

  // Cloning.
  /// Clones the objects with all they own into `owner` of the same database; see OdDbIdMapping.
  OdResult deepCloneObjects(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                            OdDbIdMapping& mapping, bool deferXlation = false);
  /// Called on the source database; `owner` lies in the destination. Follows hard references too.
  OdResult wblockCloneObjects(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                              OdDbIdMapping& mapping, OdDb::DuplicateRecordCloning drc,
                              bool deferXlation = false);
  /// A new drawing that holds the contents of one block in its model space.
  OdDbDatabasePtr wblock(const OdDbObjectId& block);

  // File.
  /// The drawing's file, empty while it has none.
  [[nodiscard]] OdString getFilename() const;
  [[nodiscard]] bool isReadOnly() const;
  /// Objects were changed since the drawing was opened or saved.
  [[nodiscard]] bool isModified() const;
  /// Writes what changed, in one durable step. A drawing without a file gives eFileAccess.
  OdStatus save();
  /// Writes everything into a fresh file, which is the drawing's file from then on.
  OdStatus saveAs(const OdString& path);
  /// Rewrites the drawing's file without its free space. Unsaved changes are saved first.
  OdStatus compact();
  /// Loads every object now, checking each and the file as a whole.
  OdStatus loadAll();
  /// Drops unmodified objects that are not open until about `budgetBytes` stay resident.
  /// Returns the number dropped.
  OdUInt64 pageOut(OdUInt64 budgetBytes);
  /// Errors met while objects were loaded, since the drawing was opened: one line each.
  [[nodiscard]] const OdStringArray& loadErrors() const;

  /// Checks all objects, and mends when `info` says so.
  void audit(OdDbAuditInfo* info);

  [[nodiscard]] OdDbHostAppServices* appServices() const;
  /// Block of the host drawing that this drawing is attached to as an external reference.
  [[nodiscard]] OdDbObjectId xrefBlockId() const;

  /// Whether pictures of the drawing may be altered by overrules: the host services decide.
  [[nodiscard]] virtual bool isReadyForDisplay() const;

  /// Takes line types from a text file of definitions, see linetype_file.h.
  OdStatus loadLineTypeFile(const OdString& linetype, const OdString& path,
                            OdDb::DuplicateLinetypeLoading duplicates = OdDb::kDltNotApplicable);

  /// Opens for the runtime's own rooms.
  [[nodiscard]] OdDbDatabaseImpl& impl() const { return *m_impl; }

 protected:
  OdDbDatabase();

 private:
  friend class OdDbHostAppServices;
  std::unique_ptr<OdDbDatabaseImpl> m_impl;
};

/// Guard of a transaction: aborts in its destructor unless commit() was called.
class OdDbTransaction : OdNonCopyable {
 public:
  explicit OdDbTransaction(OdDbDatabase* database) : m_database(database) {
    m_database->startTransaction();
  }
  ~OdDbTransaction() {
    if (m_database != nullptr) m_database->abortTransaction();
  }
  OdResult commit() {
    OdDbDatabase* database = m_database;
    m_database = nullptr;
    return database->endTransaction();
  }

 private:
  OdDbDatabase* m_database;
};
