// OdDbUndoLog: what has to be done to take changes of a database back, and again.
#pragma once

#include <optional>
#include <vector>

#include "platform/base/types.h"
#include "platform/db/db_object.h"
#include "platform/filer/memory_filer.h"
#include "platform/filer/object_id.h"

class OdDbDatabaseImpl;

/// Two stacks of records, one to undo and one to redo. Applying a record of one pushes its inverse
/// on the other, so that undo and redo are one mechanism.
///
///   record        holds                          applying it
///   state         the object's fields            writes the present fields, then reads these
///   partial       what the object filed          the object's applyPartialUndo reads it
///   created       nothing                        the object leaves the database
///   uncreated     nothing                        it comes back
///   erased        nothing                        it is unerased
///   unerased      nothing                        it is erased
///   swapped       the other id                   the objects of both ids change places again
///   setting       name and old value             puts the old value back
///   step, mark    nothing                        boundaries of undo(), undoBack()
///
/// A recording span runs between two boundaries (step, transaction start or end, undo, redo).
/// Within one span the state of an object is recorded once; created objects need no state.
class OdDbUndoLog {
 public:
  explicit OdDbUndoLog(OdDbDatabaseImpl& database) : m_database(database) {}

  // Recording, called for every change.
  [[nodiscard]] bool isRecording() const { return m_target != nullptr; }
  /// The object's state was recorded, or it was created, within the present span.
  [[nodiscard]] bool isCovered(const OdDbIdRecord* idRecord) const {
    return idRecord->undoStep == m_span;
  }
  void recordState(OdDbObject* object);
  void recordCreated(OdDbIdRecord* idRecord);
  void recordErased(OdDbIdRecord* idRecord, bool erasing);
  void recordSwap(OdDbIdRecord* a, OdDbIdRecord* b);
  void recordSetting(const OdString& name);
  /// Filer of a new partial record; null when nothing needs to be recorded.
  OdDbDwgFiler* beginPartial(OdDbObject* object, OdRxClass* cls);
  /// The filer of the last partial record if it is this object's and still open.
  [[nodiscard]] OdDbDwgFiler* partialFiler(const OdDbObject* object);

  // Steps and marks.
  void startStep();
  void setMark();
  [[nodiscard]] bool hasMark() const;
  [[nodiscard]] bool hasUndo() const { return hasChanges(m_undo); }
  [[nodiscard]] bool hasRedo() const { return hasChanges(m_redo); }
  [[nodiscard]] OdUInt32 numSteps() const;
  OdResult undo();
  OdResult redo();
  OdResult undoBack();
  void clear();

  // Transactions.
  void startTransaction();
  OdResult endTransaction();
  OdResult abortTransaction();
  [[nodiscard]] OdUInt32 numTransactions() const {
    return static_cast<OdUInt32>(m_transactions.size());
  }

  void setEnabled(bool enabled);
  [[nodiscard]] bool isEnabled() const { return m_enabled; }
  /// Undo, redo or an abort is running.
  [[nodiscard]] bool isApplying() const { return m_applying; }

 private:
  enum class Kind : OdUInt8 {
    kStep,
    kMark,
    kState,
    kPartial,
    kCreated,
    kUncreated,
    kErased,
    kUnerased,
    kSwapped,
    kSetting
  };
  struct Record {
    Kind kind;
    OdDbIdRecord* idRecord;
    OdRxClass* cls;  ///< class of a partial record
    std::size_t bytes;
    std::size_t strings;
    std::size_t shared;
  };
  struct Stack {
    std::vector<Record> records;
    OdDbFilerBuffer buffer;
  };
  class Applying;

  static bool isBoundary(const Record& record) {
    return record.kind == Kind::kStep || record.kind == Kind::kMark;
  }
  static bool hasChanges(const Stack& stack);
  void push(Kind kind, OdDbIdRecord* idRecord, OdRxClass* cls = nullptr);
  void chooseTarget();
  void nextSpan();
  OdResult moveStep(Stack& from, Stack& to);
  void applyLast(Stack& from);
  void apply(Stack& from, const Record& record);
  void applyState(Stack& from, const Record& record);
  void applyPartial(Stack& from, const Record& record);
  void applyPresence(OdDbIdRecord* idRecord, bool present);
  void applySwap(Stack& from, const Record& record);
  void applySetting(Stack& from, const Record& record);
  void clearRedo();
  static void truncate(Stack& stack, std::size_t records);

  OdDbDatabaseImpl& m_database;
  Stack m_undo;
  Stack m_redo;
  Stack* m_target = nullptr;                ///< where changes are recorded now
  std::vector<std::size_t> m_transactions;  ///< sizes of the undo stack at their starts
  std::optional<OdDbMemoryFiler> m_partialFiler;
  const OdDbIdRecord* m_partialRecord = nullptr;
  OdUInt32 m_span = 1;
  bool m_enabled = false;
  bool m_applying = false;
};
