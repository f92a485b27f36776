// OdDbObject: base of everything that a drawing database files.
#pragma once

#include <memory>
#include <type_traits>

#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/db/db_enums.h"
#include "platform/filer/dwg_filer.h"
#include "platform/filer/dxf_filer.h"
#include "platform/filer/object_id.h"
#include "platform/filer/res_buf.h"
#include "platform/gi/drawable.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"

class OdDbAuditInfo;
class OdDbDatabase;
class OdDbIdMapping;
class OdDbIdPair;
class OdDbObject;
class OdDbObjectReactor;
using OdDbObjectPtr = OdSmartPtr<OdDbObject>;

/// Base of all filed classes. An object outside a database belongs to its smart pointers; one in a
/// database belongs to the database, and a smart pointer to it is an open: the pointer remembers
/// its mode, and the last pointer closes the object. Several opens may nest.
///
/// State is changed only after assertWriteEnabled(), which saves the old state for undo and tells
/// reactors. Reactors hear `modified` when the last write open closes, in order of attachment, and
/// `erased` at once. Objects of one database belong to one thread at a time.
class OdDbObject : public OdGiDrawable {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbObject)
  using OdSelfCounted = void;  // the object counts its own opens

  OdDbObject();
  ~OdDbObject() override;
  OdDbObject(const OdDbObject&) = delete;
  OdDbObject& operator=(const OdDbObject&) = delete;

  // Opens, counted by smart pointers.
  void addRef() final { ++m_refs; }
  void release() final {
    if (--m_refs == 0 && (m_idRecord == nullptr || m_upgrades > 0)) lastReferenceGone();
  }
  [[nodiscard]] OdInt32 numRefs() const final { return m_refs; }
  void addRefTagged(unsigned tag) final;
  void releaseTagged(unsigned tag) final;

  // Identity. Null or zero outside a database.
  [[nodiscard]] OdDbObjectId objectId() const { return OdDbObjectId(m_idRecord); }
  [[nodiscard]] OdDbObjectId id() const { return objectId(); }
  [[nodiscard]] OdDbHandle getDbHandle() const { return objectId().getHandle(); }
  [[nodiscard]] OdDbObjectId ownerId() const;
  /// Records undo. Outside a database the owner is remembered until the object is added.
  void setOwnerId(const OdDbObjectId& owner);
  [[nodiscard]] OdDbDatabase* database() const;

  // Open state.
  [[nodiscard]] bool isDBRO() const { return m_idRecord != nullptr; }
  [[nodiscard]] bool isReadEnabled() const {
    return m_idRecord == nullptr || m_refs > 0 || (m_bits & kBitInternalWrite) != 0;
  }
  [[nodiscard]] bool isWriteEnabled() const;
  [[nodiscard]] bool isNotifyEnabled() const;
  [[nodiscard]] bool isModified() const { return (m_bits & kBitModified) != 0; }
  [[nodiscard]] bool isErased() const;
  /// Added to the database since it was opened or last saved.
  [[nodiscard]] bool isNewObject() const;
  /// An undo, redo or transaction abort of the database is running.
  [[nodiscard]] bool isUndoing() const;
  /// Raises eNotOpenForRead (61).
  void assertReadEnabled() const {
    if (!isReadEnabled()) [[unlikely]]
      raiseNotOpenForRead();
  }
  /// Raises eNotOpenForWrite, eWasOpenForNotify, eReadOnlyDatabase. With `autoUndo` the first call
  /// within a recording span saves the whole state; without it the caller files a partial step
  /// through undoFiler(). With `recordModified` reactors hear of the change at close.
  void assertWriteEnabled(bool autoUndo = true, bool recordModified = true);
  /// Makes a read or notify open a write open until the matching downgradeOpen() or until the
  /// object closes; pairs nest. Raises as assertWriteEnabled.
  void upgradeOpen();
  /// Ends what upgradeOpen() began; without one, ends the write opens of the object. Reactors are
  /// told when that was the last.
  void downgradeOpen();
  /// Tells reactors now what has changed since the write open began, and goes on with it.
  void xmitPropagateModify();
  /// Filer of the partial undo record that beginPartialUndo() has started for this object; without
  /// one of a new record for the object's own class. The caller writes the fields that
  /// applyPartialUndo() will read. Null when nothing records, and when the span has the whole
  /// state.
  [[nodiscard]] OdDbDwgFiler* undoFiler();
  /// Starts a partial undo record of this object for `cls` and returns its filer, null when nothing
  /// records. The record ends with the next record or with the span.
  OdDbDwgFiler* beginPartialUndo(OdRxClass* cls);
  /// Stops this object's own undo records while true (the caller restores it).
  void disableUndoRecording(bool disable);

  // Erasing.
  OdResult erase(bool erasing = true);

  /// Exchanges ids, and with them handles and owners, with another object of this database; what
  /// refers to one finds the other then. Each takes along what it owns. With the flags the
  /// extended data or the extension dictionary stay with the ids. Open for write; the other one can
  /// be opened for write. Raises eNoDatabase, eWrongDatabase, eWrongObjectType for block references
  /// and symbol table records, eInvalidInput for the objects that every drawing has.
  void swapIdWith(const OdDbObjectId& otherId, bool swapExtendedData = false,
                  bool swapExtDictionary = false);
  /// False for classes whose objects others list by what they are: their ids cannot be exchanged.
  [[nodiscard]] virtual bool isIdSwappable() const { return true; }

  // Extended data: one chain per registered application, each led by its 1001 record.
  /// Chain of one application, or of all with an empty name; null when there is none. A copy.
  [[nodiscard]] OdResBufPtr xData(const OdString& appName = OdString::kEmpty) const;
  /// Replaces the data of every application that `chain` names; a lone 1001 record removes that
  /// application's data. An application that is not registered raises eKeyNotFound naming it.
  void setXData(const OdResBuf* chain);
  [[nodiscard]] bool hasXData() const;

  // Extension dictionary.
  [[nodiscard]] OdDbObjectId extensionDictionary() const;
  /// Creates it when absent. Needs a database and write access.
  OdDbObjectId createExtensionDictionary();
  /// Erases it when it is there and empty. True if it did.
  bool releaseExtensionDictionary();

  // Reactors.
  /// Keeps the id with the object and files it; a second add of the same id does nothing.
  void addPersistentReactor(const OdDbObjectId& reactor);
  void removePersistentReactor(const OdDbObjectId& reactor);
  /// A class that knows some of its reactors by other means than this list overrides both.
  [[nodiscard]] virtual bool hasPersistentReactor(const OdDbObjectId& reactor) const;
  [[nodiscard]] virtual OdDbObjectIdArray getPersistentReactors() const;
  /// Transient; the caller owns the reactor and removes it before it dies.
  void addReactor(OdDbObjectReactor* reactor);
  void removeReactor(OdDbObjectReactor* reactor);

  // Filing. Overrides call the base first. Base fields: reactors, extension dictionary, extended
  // data; the owner only in undo and page filers (a file keeps it beside the record).
  virtual OdResult dwgInFields(OdDbDwgFiler* filer);
  virtual void dwgOutFields(OdDbDwgFiler* filer) const;
  virtual OdResult dxfInFields(OdDbDxfFiler* filer);
  virtual void dxfOutFields(OdDbDxfFiler* filer) const;
  /// Takes over the state of an object of the same class through a copy filer.
  void copyFrom(const OdRxObject* source) override;

  /// Reads back one partial step; the base refuses a class that is not its own.
  virtual void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls);

  // Hooks of the object's own life.
  virtual OdResult subErase(bool erasing);
  /// The exchange of swapIdWith().
  virtual void subSwapIdWith(const OdDbObjectId& otherId, bool swapExtendedData,
                             bool swapExtDictionary);
  /// Called for both objects after an exchange of ids, and after its undo and redo.
  virtual void subIdSwapped();
  /// Called when the last write open closes and something changed, before reactors hear of it.
  virtual void subClose();
  /// Called when the object was erased or unerased, and when undo takes its creation back or redo
  /// brings it again, before reactors hear of it.
  virtual void subExistenceChanged();

  // Cloning. deepClone and wblockClone apply the hooks and enter the pair in the mapping.
  OdDbObjectPtr deepClone(OdDbIdMapping& mapping, OdDbObject* owner, bool isPrimary = true) const;
  OdDbObjectPtr wblockClone(OdDbIdMapping& mapping, OdDbObject* owner, bool isPrimary = true) const;
  virtual OdDbObjectPtr subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                     bool isPrimary) const;
  virtual OdDbObjectPtr subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                       bool isPrimary) const;
  /// Called for a clone when its owner is to learn of it; containers override what they need.
  virtual void appendToOwner(OdDbIdPair& pair, OdDbObject* owner, OdDbIdMapping& mapping);

  /// The object holds ids of the object that it is a copy of: they wait for translation, and what
  /// they name is not yet what the object is to refer to. True for clones until their operation
  /// translates them, and for what setOdDbObjectIdsInFlux() has marked. Not filed.
  [[nodiscard]] bool isOdDbObjectIdsInFlux() const { return (m_bits & kBitIdsInFlux) != 0; }
  /// For an operation that copies an object by its own means; it ends when ids are translated, or
  /// when the object leaves memory.
  void setOdDbObjectIdsInFlux() { m_bits |= kBitIdsInFlux; }

  virtual void audit(OdDbAuditInfo* info);

  // What this object hears as a persistent reactor of another one. It is open for notify.
  virtual void erased(const OdDbObject* object, bool erasing);
  virtual void modified(const OdDbObject* object);
  virtual void modifiedGraphics(const OdDbObject* object);
  virtual void openedForModify(const OdDbObject* object);
  virtual void modifiedXData(const OdDbObject* object);
  virtual void modifyUndone(const OdDbObject* object);
  virtual void copied(const OdDbObject* object, const OdDbObject* clone);
  virtual void unappended(const OdDbObject* object);
  virtual void reappended(const OdDbObject* object);
  virtual void goodbye(const OdDbObject* object);

  /// The object has state that its record in a file does not hold, and that others count on as long
  /// as the drawing is open. It is not dropped from memory then.
  [[nodiscard]] virtual bool hasStateOutsideFile() const { return false; }
  /// A memory estimate in bytes, for the residency budget.
  [[nodiscard]] virtual std::size_t approximateSize() const;

 protected:
  /// For a subErase() that refuses nothing and yet has an error to report: what erase() does after
  /// it, at once.
  void completeErase(bool erasing);
  /// Marks that graphics changed, so that reactors hear modifiedGraphics at close.
  void noteGraphicsModified();

  /// The value of a member, for a getter: the object must be open for read.
  template <class T>
  [[nodiscard]] const T& read(const T& member) const {
    assertReadEnabled();
    return member;
  }
  /// Sets a member, for a setter whose value is checked. Nothing happens, and the object need not
  /// be open for write, when the member has the value; true when it was changed.
  template <class T>
  bool assign(T& member, const std::type_identity_t<T>& value) {
    if (member == value) return false;
    assertWriteEnabled();
    member = value;
    return true;
  }

 private:
  friend class OdDbDatabase;
  friend class OdDbDatabaseImpl;
  friend class OdDbObjectId;
  friend class OdDbUndoLog;
  friend class OdDbReactorCalls;
  friend class OdDbCloner;
  friend class OdDbInternalRead;
  friend class OdDbInternalWrite;

  enum Bits : OdUInt16 {
    kBitModified = 1u << 0,  ///< something was changed since the write open began
    kBitGraphicsModified = 1u << 1,
    kBitXDataModified = 1u << 2,
    kBitDowngraded = 1u << 3,  ///< its write opens were ended by downgradeOpen
    kBitUndoDisabled = 1u << 4,
    kBitOpenedForModifySent = 1u << 5,
    kBitClosing = 1u << 6,
    kBitInternalWrite = 1u << 7,  ///< the runtime itself fills the object
    kBitProxy = 1u << 8,
    kBitIdsInFlux = 1u << 9,
  };
  struct Extra;  // what few objects have: reactors, extension dictionary, extended data

  Extra& extra();
  [[nodiscard]] bool isWritable() const;
  void writeClosed();
  void writeOpened() { m_bits &= static_cast<OdUInt16>(~kBitDowngraded); }
  /// Counts an open in that mode, which the caller has checked.
  static OdDbObjectPtr opened(OdDbObject* object, OdDb::OpenMode mode);
  void writeOpensChanged();
  void tellOpenedForModify();
  void lastReferenceGone();
  [[noreturn]] void raiseNotOpenForRead() const;
  OdResult readExtra(OdDbDwgFiler* filer);
  void writeExtra(OdDbDwgFiler* filer) const;

  OdDbIdRecord* m_idRecord = nullptr;
  std::unique_ptr<Extra> m_extra;
  OdInt32 m_refs = 0;
  OdUInt16 m_writeRefs = 0;
  OdUInt16 m_notifyRefs = 0;
  OdUInt16 m_upgrades = 0;
  OdUInt16 m_bits = 0;
};

/// Transient observer of objects. Does nothing by default.
class OdDbObjectReactor {
 public:
  virtual ~OdDbObjectReactor() = default;
  virtual void erased(const OdDbObject*, bool /*erasing*/) {}
  virtual void modified(const OdDbObject*) {}
  virtual void modifiedGraphics(const OdDbObject*) {}
  virtual void openedForModify(const OdDbObject*) {}
  virtual void modifiedXData(const OdDbObject*) {}
  virtual void modifyUndone(const OdDbObject*) {}
  virtual void copied(const OdDbObject*, const OdDbObject* /*clone*/) {}
  virtual void unappended(const OdDbObject*) {}
  virtual void reappended(const OdDbObject*) {}
  virtual void goodbye(const OdDbObject*) {}
};

template <class T>
OdSmartPtr<T> OdDbObjectId::openAs(OdDb::OpenMode mode, bool openErased) const {
  return T::cast(openObject(mode, openErased));
}

template <class T>
OdSmartPtr<T> OdDbObjectId::safeOpenAs(OdDb::OpenMode mode, bool openErased) const {
  return safeOpenObject(mode, openErased);  // the conversion raises for another class
}
