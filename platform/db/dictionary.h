// OdDbDictionary: named objects, owned by the dictionary.
#pragma once

#include "platform/db/db_object.h"
#include "platform/db/named_ids.h"

class OdDbDictionary;
using OdDbDictionaryPtr = OdSmartPtr<OdDbDictionary>;

/// Walks the entries of a dictionary in the order of their folded names. Keeps the dictionary open
/// for read; entries may be added and removed during the walk.
class OdDbDictionaryIterator : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDictionaryIterator)

  [[nodiscard]] virtual bool done() const = 0;
  /// Moves on; false when the walk is done.
  virtual bool next() = 0;
  /// Moves to the entry of an id; false, and stays, when there is none.
  virtual bool setPosition(const OdDbObjectId& id) = 0;
  /// Name and id of the present entry; empty and null when the walk is done.
  [[nodiscard]] virtual OdString name() const = 0;
  [[nodiscard]] virtual OdDbObjectId objectId() const = 0;
  /// The present object, opened; null when it cannot be.
  [[nodiscard]] OdDbObjectPtr getObject(OdDb::OpenMode mode = OdDb::kForRead) const;
  [[nodiscard]] OdDbObjectPtr object() const { return getObject(OdDb::kForRead); }
};
using OdDbDictionaryIteratorPtr = OdSmartPtr<OdDbDictionaryIterator>;

/// Objects by name. Names compare without regard to case by Unicode folding, keep the spelling
/// they were given, and are not empty. The dictionary owns its elements; an element that is erased
/// is not found any more, and unerasing it brings its entry back. Changes of entries are undone
/// entry by entry, whatever the size.
class OdDbDictionary : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDictionary)

  // Queries. Entries of erased objects are as if absent.
  /// Null when there is no entry; `status` then gets eKeyNotFound.
  [[nodiscard]] OdDbObjectId getAt(const OdString& name, OdResult* status = nullptr) const;
  /// The element, opened; null when there is no entry or it cannot be opened.
  [[nodiscard]] OdDbObjectPtr getAt(const OdString& name, OdDb::OpenMode mode) const;
  [[nodiscard]] bool has(const OdString& name) const { return !getAt(name).isNull(); }
  [[nodiscard]] bool has(const OdDbObjectId& id) const;
  /// Empty when the id is not an element.
  [[nodiscard]] OdString nameAt(const OdDbObjectId& id) const;
  /// Counts the entries: linear. isEmpty() stops at the first one.
  [[nodiscard]] OdUInt32 numEntries() const;
  [[nodiscard]] bool isEmpty() const;
  [[nodiscard]] OdDbDictionaryIteratorPtr newIterator() const;
  /// Elements are owned hard: they are cloned and kept with the dictionary. False at first.
  [[nodiscard]] bool isTreatElementsAsHard() const;
  /// What becomes of an entry whose name a clone's destination has already.
  [[nodiscard]] OdDb::DuplicateRecordCloning mergeStyle() const;

  // Edits; the dictionary is open for write.
  /// Sets the entry of the name and returns the object's id. An object that is in no database is
  /// added to the dictionary's own, with the dictionary as owner; one of the same database comes
  /// under this owner. Another object that stood under the name is erased. Raises eInvalidKey for
  /// an empty name, eNullPointer, eNoDatabase when the dictionary is in none, eWrongDatabase, and
  /// eDuplicateKey when the object is an element under another name.
  OdDbObjectId setAt(const OdString& name, OdDbObject* object);
  OdDbObjectId setAt(const OdString& name, const OdDbObjectId& id);
  /// Takes the entry out; the object stays as it is. Returns its id, erased or not; null when
  /// there is no entry.
  OdDbObjectId remove(const OdString& name);
  /// The same; false when the id has no entry.
  bool remove(const OdDbObjectId& id);
  /// Renames an entry. False, and nothing changes, when there is no `oldName`, or another entry has
  /// `newName`, or that is empty.
  bool setName(const OdString& oldName, const OdString& newName);
  void setTreatElementsAsHard(bool hard);
  void setMergeStyle(OdDb::DuplicateRecordCloning style);

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;
  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  OdResult subErase(bool erasing) override;
  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  class Iterator;

  [[nodiscard]] OdDb::ReferenceType elementReference() const {
    return m_hard ? OdDb::kHardOwnershipRef : OdDb::kSoftOwnershipRef;
  }
  void checkNew(const OdString& name, const OdDbObject* object) const;
  void putEntry(const OdString& name, const OdDbObjectId& id);
  void eraseReplaced(const OdDbObjectId& id);
  void changeFlags(bool hard, OdDb::DuplicateRecordCloning style);

  OdDbNamedIds m_entries;
  OdDb::DuplicateRecordCloning m_mergeStyle = OdDb::kDrcIgnore;
  bool m_hard = false;
};
