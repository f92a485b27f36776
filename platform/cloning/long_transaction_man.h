// Long transactions: entities are edited as copies in another block, and checked in at the end.
#pragma once

#include <vector>

#include "platform/cloning/id_mapping.h"
#include "platform/db/db_object.h"
#include "platform/db/long_transaction.h"

class OdDbLongTransaction;
using OdDbLongTransactionPtr = OdSmartPtr<OdDbLongTransaction>;

/// One long transaction: which entities of the origin block are being edited, and which copies in
/// the destination block stand for them. An object of the drawing, so that it is saved and undone
/// with it. Made and ended by OdDbLongTransactionMan.
class OdDbLongTransaction : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLongTransaction)

  ~OdDbLongTransaction() override;

  [[nodiscard]] const OdString& name() const;
  /// Block of the originals, and block of the copies.
  [[nodiscard]] OdDbObjectId originBlock() const;
  [[nodiscard]] OdDbObjectId destinationBlock() const;
  /// What will be checked in: copies and added entities that are not erased.
  [[nodiscard]] OdDbObjectIdArray workSet() const;
  /// The entity that was copied; null for an added entity and for any other.
  [[nodiscard]] OdDbObjectId originalOf(const OdDbObjectId& copy) const;
  /// Takes entities of the destination block into the work set: at check-in they become new
  /// entities of the origin. eWrongObjectType for one that lies elsewhere; nothing changes then.
  OdResult addToWorkSet(const OdDbObjectIdArray& entities);
  /// Takes an added entity out again; false for any other.
  bool removeFromWorkSet(const OdDbObjectId& entity);

  /// While observers are called: from the originals to their copies at check-out, from the copies
  /// to what they become in the origin at check-in. Null at any other time.
  [[nodiscard]] OdDbIdMapping* activeIdMap() const { return m_activeIdMap; }

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;

 private:
  friend class OdDbLongTransactionMan;
  struct Groups;
  struct Pair {
    OdDbObjectId original;  ///< null for an added entity
    OdDbObjectId copy;
  };

  OdString m_name;
  OdDbObjectId m_origin;
  OdDbObjectId m_destination;
  std::vector<Pair> m_pairs;
  OdDbIdMapping* m_activeIdMap = nullptr;  // not filed
};

/// Observer of long transactions. It may clone more objects through the active mapping in the calls
/// before translation; their ids are then translated with the others. Does nothing by default. What
/// it raises aborts the operation.
class OdDbLongTransactionReactor {
 public:
  virtual ~OdDbLongTransactionReactor() = default;
  /// The copies are made; their ids are not translated yet.
  virtual void checkingOut(OdDbLongTransaction&) {}
  virtual void checkedOut(OdDbLongTransaction&) {}
  /// The originals have taken over, and added entities are cloned; ids are not translated yet.
  virtual void checkingIn(OdDbLongTransaction&) {}
  /// The copies are still there.
  virtual void checkedIn(OdDbLongTransaction&) {}
  /// The copies are about to be erased.
  virtual void discarding(OdDbLongTransaction&) {}
};

/// Runs the long transactions of drawings, at most one at a time in each. Each operation is one
/// transaction of the drawing: it happens whole or not at all, also on locked layers. Refusals go
/// to the optional `reason`.
class OdDbLongTransactionMan {
 public:
  OdDbLongTransactionMan() = delete;

  /// Copies entities of one block into `destination`, another block of the drawing. The originals
  /// stay as they are; a host hides or locks them. eInvalidOpenState while a long transaction is
  /// running, eWrongObjectType for what is no entity of one block, eInvalidInput for none, and for
  /// the block itself, eReadOnlyDatabase.
  static OdResult checkOut(const OdDbObjectIdArray& entities, const OdDbObjectId& destination,
                           const OdString& name, OdDbObjectId& transaction,
                           OdString* reason = nullptr);
  /// Ends it: each original takes over the state of its copy and keeps its id, its place in the
  /// block and its reactors; what it owned gives way to what the copy owns. Originals whose copies
  /// are erased are erased. Added entities, and copies whose originals are erased, become new
  /// entities of the origin. Then the copies are erased.
  static OdResult checkIn(const OdDbObjectId& transaction, OdString* reason = nullptr);
  /// Ends it without a trace of what was edited: erases the copies and added entities.
  static OdResult discard(const OdDbObjectId& transaction, OdString* reason = nullptr);

  /// The long transaction of a drawing; null without one.
  [[nodiscard]] static OdDbObjectId current(const OdDbDatabase* database);

  /// Called in order of attachment; not owned.
  static void addReactor(OdDbLongTransactionReactor* reactor);
  static void removeReactor(OdDbLongTransactionReactor* reactor);

 private:
  class Activation;
  static void tell(OdDbLongTransaction& transaction,
                   void (OdDbLongTransactionReactor::*event)(OdDbLongTransaction&));
  static void end(OdDbLongTransaction& transaction);
};
