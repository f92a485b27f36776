// OdDbBlockTableRecord: a block, the container of entities.
#pragma once

#include <memory>
#include <unordered_set>

#include "platform/db/chunked_order.h"
#include "platform/db/entity.h"
#include "platform/db/filing_macros.h"
#include "platform/db/symbol_table_record.h"

class OdDbBlockTableRecord;
using OdDbBlockTableRecordPtr = OdSmartPtr<OdDbBlockTableRecord>;

/// Walks the entities of a block in their order, as they were when the walk was started.
class OdDbObjectIterator : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbObjectIterator)

  virtual void start(bool atBeginning = true, bool skipErased = true) = 0;
  [[nodiscard]] virtual bool done() const = 0;
  virtual void step(bool forward = true, bool skipErased = true) = 0;
  /// Moves to an entity; false, and stays, when it is not in the block.
  virtual bool seek(const OdDbObjectId& id) = 0;
  /// Null when the walk is done.
  [[nodiscard]] virtual OdDbObjectId objectId() const = 0;
  /// The present entity, opened; null when it cannot be.
  [[nodiscard]] OdDbEntityPtr entity(OdDb::OpenMode mode = OdDb::kForRead,
                                     bool openErased = false) const;
};
using OdDbObjectIteratorPtr = OdSmartPtr<OdDbObjectIterator>;

/// A block: named entities with an origin, placed in other blocks by block references. Model space
/// and paper space are blocks, too. A block with a path stands for an external drawing.
///
/// The block knows the references that show it (`getBlockReferenceIds`): a reference enters itself
/// when it is appended or changes its block, so that nothing has to be searched or loaded.
class OdDbBlockTableRecord : public OdDbSymbolTableRecord {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbBlockTableRecord)

  OdDbBlockTableRecord();
  ~OdDbBlockTableRecord() override;

  // Entities, in the order of appending.
  /// Appends an entity that is in no database: it comes into the block's. One that has this block
  /// as owner already is only listed. Raises eNullPointer, eNoDatabase, eAlreadyInDatabase, and
  /// eCircularReference for a reference to a block that contains this one.
  OdDbObjectId appendOdDbEntity(OdDbEntity* entity);
  [[nodiscard]] OdDbObjectIteratorPtr newIterator(bool atBeginning = true,
                                                  bool skipErased = true) const;
  /// Ids of the entities, erased ones included; shares its memory with the block.
  [[nodiscard]] OdDbObjectIdArray entityIds() const;
  [[nodiscard]] bool isEmpty() const;
  /// Moves entities of blocks of this database to the end of this one, in the given order; ids
  /// stay. eWrongObjectType when one is not an entity in a block, eWrongDatabase, eWasErased,
  /// eDuplicateKey for an id that comes twice, eCircularReference for a reference to a block that
  /// contains this one; nothing changes then.
  OdResult assumeOwnershipOf(const OdDbObjectIdArray& ids);
  /// Moves all entities of `source`, those that are erased excepted, to the end of this block.
  OdResult takeEntities(OdDbBlockTableRecord* source);
  /// Box around the entities that are not erased; eNotApplicable when there are none with extents,
  /// eCircularReference when the block contains itself.
  OdResult getGeomExtents(OdGeExtents3d& extents) const;

  // Properties.
  [[nodiscard]] OdGePoint3d origin() const;
  /// Raises eInvalidInput for a point that is not finite.
  void setOrigin(const OdGePoint3d& origin);
  [[nodiscard]] OdString comments() const;
  void setComments(const OdString& comments);
  [[nodiscard]] OdDb::UnitsValue blockInsertUnits() const;
  void setBlockInsertUnits(OdDb::UnitsValue units);
  /// Model space or a paper space.
  [[nodiscard]] bool isLayout() const;
  [[nodiscard]] bool isModelSpace() const;
  /// The name begins with an asterisk and is not that of a layout.
  [[nodiscard]] bool isAnonymous() const;

  // References to this block.
  /// References that are not erased, in rising handle order. Not only direct ones: also those of
  /// the blocks that contain them, layouts excepted. With `forceValidity` each one is opened, and
  /// those that do not show the block are left out.
  [[nodiscard]] OdDbObjectIdArray getBlockReferenceIds(bool directOnly = true,
                                                       bool forceValidity = false) const;
  /// The same, appended to `ids`.
  OdResult getBlockReferenceIds(OdDbObjectIdArray& ids, bool directOnly = true,
                                bool forceValidity = false) const;
  [[nodiscard]] bool hasBlockReferences() const;
  /// Used by block references and by audit: enters or removes one id. Recorded for undo; nothing
  /// happens when it is so already.
  void noteBlockReference(const OdDbObjectId& reference, bool shows);
  /// Whether a reference to `block`, put into this block, would make a block contain itself.
  [[nodiscard]] bool wouldContainItselfWith(const OdDbObjectId& block) const;

  // External reference.
  [[nodiscard]] bool isFromExternalReference() const;
  [[nodiscard]] bool isFromOverlayReference() const;
  [[nodiscard]] bool isUnloaded() const { return xrefStatus() == OdDb::kXrfUnloaded; }
  [[nodiscard]] OdString pathName() const;
  /// An empty path makes the block an ordinary one.
  void setPathName(const OdString& path);
  void setIsFromOverlayReference(bool overlay);
  [[nodiscard]] OdDb::XrefStatus xrefStatus() const;
  /// The state as it is stored. Not recorded for undo: it tells what is loaded, not what is drawn.
  void setXrefStatus(OdDb::XrefStatus status);
  /// The external drawing while it is loaded. One that is unloaded, missing or unreadable gives
  /// null, whatever the argument: nothing of it is in memory.
  [[nodiscard]] OdDbDatabase* xrefDatabase(bool includeUnresolved = false) const;
  /// Called by the owner of external drawings; transient, not owned.
  void setXrefDatabase(OdDbDatabase* database) { m_xrefDatabase = database; }

  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  /// Draws the entities in their order, each with its own attributes. False when the block is being
  /// drawn already, as in a block that contains itself, or an entity cannot be opened.
  bool subWorldDraw(OdGiWorldDraw* context) const override;

 private:
  template <class Self>
  struct EntityList;
  template <class Self>
  struct ReferenceList;

  class Iterator;
  struct ByHandle {
    static int compare(const OdDbObjectId& a, const OdDbObjectId& b) {
      const OdUInt64 left = a.getHandle();
      const OdUInt64 right = b.getHandle();
      return left < right ? -1 : left > right ? 1 : 0;
    }
  };

  [[nodiscard]] bool lists(const OdDbObjectId& entity) const;
  OdDbDwgFiler* beginStep(OdUInt8 step);
  void listEntities(const OdDbObjectIdArray& entities);
  void unlistFrom(const OdDbObjectId& first);
  void removeEntities(const std::unordered_set<OdDbObjectId>& removed);
  void replaceEntities(const OdDbObjectIdArray& entities);
  OdResult checkMovable(const OdDbObjectIdArray& ids) const;
  void unlistFromOwners(const OdDbObjectIdArray& ids);
  void collectReferences(OdDbObjectIdArray& ids, bool forceValidity) const;
  void adoptStatus(OdDb::XrefStatus status, bool undoing);

  OdDbObjectIdArray m_entities;
  OdDbChunkedOrder<OdDbObjectId, ByHandle> m_references;
  OdGePoint3d m_origin;
  OdString m_comments;
  OdString m_path;
  OdDb::UnitsValue m_units = OdDb::kUnitsUndefined;
  OdDb::XrefStatus m_xrefStatus = OdDb::kXrfNotAnXref;
  bool m_overlay = false;

  OdDbDatabase* m_xrefDatabase = nullptr;
  // The entities as a set, made when a long list is first asked for one of its members.
  mutable std::unique_ptr<std::unordered_set<OdDbObjectId>> m_entitySet;
  mutable bool m_measuring = false;
  mutable bool m_drawing = false;

  OD_DB_DECLARE_FILING()
};
