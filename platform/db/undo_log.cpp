// Undo, redo and transactions.
//
// The idea: a record holds what is needed to bring one object back, and applying it records the
// opposite on the other stack first. Undo is then "apply the records of the last step, last one
// first"; redo is the same with the stacks exchanged; an abort is the same without recording.
//
// It is right because the records of a step are applied in the reverse order of the changes: when a
// record is applied, the drawing is in the state right after its change, so the bytes that it holds
// are those before the change. A state record covers all later changes of its object in the span,
// which is why one a span is enough; idRecord->undoStep holds the span that covers an object, and a
// new span begins at every boundary. Partial records do not cover: each change files its own.
//
// A change costs one comparison when its span covers the object, and one filing of the object
// otherwise. Records lie in three growing buffers that are cut, never searched.
#include "platform/db/undo_log.h"

#include "platform/base/error.h"
#include "platform/base/non_copyable.h"
#include "platform/db/database_impl.h"
#include "platform/db/internal_access.h"
#include "platform/db/object_extra.h"
#include "platform/db/reactor_calls.h"

// Recording.

void OdDbUndoLog::chooseTarget() {
  m_target = m_enabled || !m_transactions.empty() ? &m_undo : nullptr;
}

void OdDbUndoLog::nextSpan() {
  ++m_span;
  m_partialRecord = nullptr;
}

void OdDbUndoLog::push(Kind kind, OdDbIdRecord* idRecord, OdRxClass* cls) {
  const bool isChange = kind != Kind::kStep && kind != Kind::kMark;
  if (isChange && !m_applying && !m_redo.records.empty()) clearRedo();
  m_partialRecord = nullptr;
  m_target->records.push_back({kind, idRecord, cls, m_target->buffer.bytes.size(),
                               m_target->buffer.strings.size(), m_target->buffer.shared.size()});
}

void OdDbUndoLog::recordState(OdDbObject* object) {
  if (m_target == nullptr) return;
  push(Kind::kState, object->m_idRecord);
  object->m_idRecord->undoStep = m_span;
  OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, m_target->buffer, object->database());
  filer.setSharing(true);
  object->dwgOutFields(&filer);
}

void OdDbUndoLog::recordCreated(OdDbIdRecord* idRecord) {
  if (m_target == nullptr) return;
  push(Kind::kCreated, idRecord);
  idRecord->undoStep = m_span;
}

void OdDbUndoLog::recordErased(OdDbIdRecord* idRecord, bool erasing) {
  if (m_target != nullptr) push(erasing ? Kind::kErased : Kind::kUnerased, idRecord);
}

void OdDbUndoLog::recordSwap(OdDbIdRecord* a, OdDbIdRecord* b) {
  if (m_target == nullptr) return;
  push(Kind::kSwapped, a);
  OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, m_target->buffer, m_database.self);
  filer.wrSoftPointerId(OdDbObjectId(b));
}

void OdDbUndoLog::recordSetting(const OdString& name) {
  if (m_target == nullptr) return;
  push(Kind::kSetting, nullptr);
  OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, m_target->buffer, m_database.self);
  filer.wrString(name);
  OdResBuf::dwgOutChain(&filer, m_database.self->getSysVar(name).get());
}

OdDbDwgFiler* OdDbUndoLog::beginPartial(OdDbObject* object, OdRxClass* cls) {
  if (m_target == nullptr || (!m_applying && isCovered(object->m_idRecord))) return nullptr;
  push(Kind::kPartial, object->m_idRecord, cls);
  m_partialRecord = object->m_idRecord;
  return &m_partialFiler.emplace(OdDbDwgFiler::kUndoFiler, m_target->buffer, object->database());
}

OdDbDwgFiler* OdDbUndoLog::partialFiler(const OdDbObject* object) {
  return m_partialRecord != nullptr && m_partialRecord == object->m_idRecord ? &*m_partialFiler
                                                                             : nullptr;
}

// Steps and marks.

bool OdDbUndoLog::hasChanges(const Stack& stack) {
  for (auto record = stack.records.rbegin(); record != stack.records.rend(); ++record) {
    if (!isBoundary(*record)) return true;
  }
  return false;
}

void OdDbUndoLog::startStep() {
  nextSpan();
  if (m_target == nullptr || m_applying) return;
  if (m_undo.records.empty() || !isBoundary(m_undo.records.back())) push(Kind::kStep, nullptr);
}

void OdDbUndoLog::setMark() {
  nextSpan();
  if (m_target != nullptr && !m_applying) push(Kind::kMark, nullptr);
}

bool OdDbUndoLog::hasMark() const {
  for (const Record& record : m_undo.records) {
    if (record.kind == Kind::kMark) return true;
  }
  return false;
}

OdUInt32 OdDbUndoLog::numSteps() const {
  OdUInt32 steps = 0;
  bool inStep = false;
  for (const Record& record : m_undo.records) {
    if (isBoundary(record)) {
      inStep = false;
    } else if (!inStep) {
      inStep = true;
      ++steps;
    }
  }
  return steps;
}

/// While records are applied: objects say that they are undoing, and inverses go to `to`.
class OdDbUndoLog::Applying : OdNonCopyable {
 public:
  Applying(OdDbUndoLog& log, Stack* to) : m_log(log) {
    m_log.nextSpan();
    m_log.m_applying = true;
    m_log.m_target = to;
  }
  ~Applying() {
    m_log.m_applying = false;
    m_log.chooseTarget();
    m_log.nextSpan();
  }

 private:
  OdDbUndoLog& m_log;
};

OdResult OdDbUndoLog::undo() {
  if (m_applying) return eInvalidOpenState;
  const OdResult result = moveStep(m_undo, m_redo);
  if (!m_enabled) clearRedo();
  return result;
}

OdResult OdDbUndoLog::redo() { return m_applying ? eInvalidOpenState : moveStep(m_redo, m_undo); }

OdResult OdDbUndoLog::moveStep(Stack& from, Stack& to) {
  if (!hasChanges(from)) return eNothingToUndo;
  std::size_t first = from.records.size();
  while (isBoundary(from.records[first - 1])) --first;
  while (first > 0 && !isBoundary(from.records[first - 1])) --first;
  if (&from == &m_undo && !m_transactions.empty() && first < m_transactions.back()) {
    return eTransactionMismatch;
  }
  const Applying applying(*this, &to);
  while (isBoundary(from.records.back())) applyLast(from);
  push(Kind::kStep, nullptr);
  while (from.records.size() > first) applyLast(from);
  // The boundary leaves with its step; a mark stays for undoBack().
  if (first > 0 && from.records.back().kind == Kind::kStep) truncate(from, first - 1);
  return eOk;
}

OdResult OdDbUndoLog::undoBack() {
  if (!hasMark()) return eNothingToUndo;
  while (true) {
    while (!m_undo.records.empty() && m_undo.records.back().kind == Kind::kStep) {
      truncate(m_undo, m_undo.records.size() - 1);
    }
    if (m_undo.records.back().kind == Kind::kMark) {
      truncate(m_undo, m_undo.records.size() - 1);
      return eOk;
    }
    const OdResult result = undo();
    if (result != eOk) return result;
  }
}

void OdDbUndoLog::clear() {
  if (!m_transactions.empty()) return;
  clearRedo();
  truncate(m_undo, 0);
  nextSpan();
}

void OdDbUndoLog::setEnabled(bool enabled) {
  m_enabled = enabled;
  chooseTarget();
  nextSpan();
}

// Transactions.

void OdDbUndoLog::startTransaction() {
  m_transactions.push_back(m_undo.records.size());
  chooseTarget();
  nextSpan();
}

OdResult OdDbUndoLog::endTransaction() {
  if (m_transactions.empty()) return eTransactionMismatch;
  const std::size_t start = m_transactions.back();
  m_transactions.pop_back();
  chooseTarget();
  nextSpan();
  // Without undo recording the records served this transaction alone.
  if (m_target == nullptr) truncate(m_undo, start);
  return eOk;
}

OdResult OdDbUndoLog::abortTransaction() {
  if (m_transactions.empty()) return eTransactionMismatch;
  const std::size_t start = m_transactions.back();
  {
    const Applying applying(*this, nullptr);
    while (m_undo.records.size() > start) applyLast(m_undo);
  }
  clearRedo();
  m_transactions.pop_back();
  chooseTarget();
  nextSpan();
  return eOk;
}

// Applying.

void OdDbUndoLog::truncate(Stack& stack, std::size_t records) {
  if (records >= stack.records.size()) return;
  stack.buffer.bytes.resize(stack.records[records].bytes);
  stack.buffer.strings.resize(stack.records[records].strings);
  stack.buffer.shared.resize(stack.records[records].shared);
  stack.records.resize(records);
}

void OdDbUndoLog::applyLast(Stack& from) {
  const Record record = from.records.back();
  apply(from, record);
  truncate(from, from.records.size() - 1);
}

void OdDbUndoLog::apply(Stack& from, const Record& record) {
  switch (record.kind) {
    case Kind::kStep:
      return;
    case Kind::kMark:
      if (m_target != nullptr) push(Kind::kMark, nullptr);
      return;
    case Kind::kState:
      return applyState(from, record);
    case Kind::kPartial:
      return applyPartial(from, record);
    case Kind::kCreated:
      (void)m_database.resident(record.idRecord);  // redo brings back what is in memory
      if (m_target != nullptr) push(Kind::kUncreated, record.idRecord);
      applyPresence(record.idRecord, /*present=*/false);
      if (m_target == nullptr) OdDbDatabaseImpl::forgetUncreated(record.idRecord);
      return;
    case Kind::kUncreated:
      if (m_target != nullptr) push(Kind::kCreated, record.idRecord);
      return applyPresence(record.idRecord, /*present=*/true);
    case Kind::kErased:
    case Kind::kUnerased: {
      const bool erasing = record.kind == Kind::kUnerased;
      (void)m_database.resident(record.idRecord);  // it and its reactors hear of it
      if (m_target != nullptr) push(erasing ? Kind::kErased : Kind::kUnerased, record.idRecord);
      return m_database.setErased(record.idRecord, erasing);
    }
    case Kind::kSwapped:
      return applySwap(from, record);
    case Kind::kSetting:
      return applySetting(from, record);
  }
}

void OdDbUndoLog::applyState(Stack& from, const Record& record) {
  OdDbObject* object = m_database.resident(record.idRecord);
  if (object == nullptr) throw OdError(eUnknownHandle, OdDbHandle(record.idRecord->handle).ascii());
  OdResult result = eOk;
  {
    const OdDbInternalWrite internalWrite(object);
    recordState(object);
    OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, from.buffer, m_database.self);
    filer.setSharing(true);
    filer.startReading(record.bytes, record.strings);
    result = object->dwgInFields(&filer);
  }
  m_database.markDirty(record.idRecord);
  if (result != eOk) throw OdError(result, OdDbHandle(record.idRecord->handle).ascii());
  OdDbReactorCalls::tell<const OdDbObject*>(object, &OdDbObject::modifyUndone,
                                            &OdDbObjectReactor::modifyUndone, object);
}

void OdDbUndoLog::applyPartial(Stack& from, const Record& record) {
  OdDbObject* object = m_database.resident(record.idRecord);
  if (object == nullptr) throw OdError(eUnknownHandle, OdDbHandle(record.idRecord->handle).ascii());
  {
    const OdDbInternalWrite internalWrite(object);
    OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, from.buffer, m_database.self);
    filer.startReading(record.bytes, record.strings);
    object->applyPartialUndo(&filer, record.cls);
  }
  m_database.markDirty(record.idRecord);
  OdDbReactorCalls::tell<const OdDbObject*>(object, &OdDbObject::modifyUndone,
                                            &OdDbObjectReactor::modifyUndone, object);
}

void OdDbUndoLog::applyPresence(OdDbIdRecord* idRecord, bool present) {
  constexpr OdUInt32 kGone = OdDbIdRecord::kErased | OdDbIdRecord::kUnappended;
  if (present) {
    idRecord->clear(kGone);
  } else {
    idRecord->set(kGone);
  }
  m_database.markDirty(idRecord);
  OdDbObject* object = idRecord->object;
  if (object == nullptr) return;
  object->subExistenceChanged();
  if (present) {
    OdDbReactorCalls::tell<const OdDbObject*>(object, &OdDbObject::reappended,
                                              &OdDbObjectReactor::reappended, object);
  } else {
    OdDbReactorCalls::tell<const OdDbObject*>(object, &OdDbObject::unappended,
                                              &OdDbObjectReactor::unappended, object);
  }
  m_database.tellDatabaseReactors([this, object, present](OdDbDatabaseReactor* reactor) {
    present ? reactor->objectReAppended(m_database.self, object)
            : reactor->objectUnAppended(m_database.self, object);
  });
}

void OdDbUndoLog::applySwap(Stack& from, const Record& record) {
  OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, from.buffer, m_database.self);
  filer.startReading(record.bytes, record.strings);
  OdDbIdRecord* other = filer.rdSoftPointerId().idRecord();
  for (OdDbIdRecord* idRecord : {record.idRecord, other}) {
    if (m_database.resident(idRecord) == nullptr) {
      throw OdError(eUnknownHandle, OdDbHandle(idRecord->handle).ascii());
    }
  }
  recordSwap(record.idRecord, other);
  m_database.swapObjects(record.idRecord, other);
}

void OdDbUndoLog::applySetting(Stack& from, const Record& record) {
  OdDbMemoryFiler filer(OdDbDwgFiler::kUndoFiler, from.buffer, m_database.self);
  filer.startReading(record.bytes, record.strings);
  const OdString name = filer.rdString();
  m_database.self->setSysVar(name, OdResBuf::dwgInChain(&filer).get());
}

void OdDbUndoLog::clearRedo() {
  for (const Record& record : m_redo.records) {
    if (record.kind == Kind::kUncreated) OdDbDatabaseImpl::forgetUncreated(record.idRecord);
  }
  truncate(m_redo, 0);
}
