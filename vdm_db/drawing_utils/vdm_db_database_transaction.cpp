// VdmDbDatabaseTransaction: guard that rolls a drawing back.
#include "vdm_db/drawing_utils/vdm_db_database_transaction.h"

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/locked_layers.h"
#include "platform/entities/viewport.h"
#include "vdm_db/drawing_utils/undo_recording_off.h"
#include "vdm_db/drawing_utils/vdm_iterator_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

// The viewport in use: of those of paper space that are numbered and on, the one with the least
// number. Null when there is none.
OdDbObjectId activeViewport(const OdDbDatabase* database) {
  OdDbObjectId active;
  OdInt16 least = 0;
  const OdDbBlockTableRecordPtr paper = database->getPaperSpaceId().openAs<OdDbBlockTableRecord>();
  if (paper.isNull()) return active;
  for (const OdDbObjectIteratorPtr it = paper->newIterator(); !it->done(); it->step()) {
    if (!vdmu::isIdOf<OdDbViewport>(it->objectId())) continue;
    const OdDbViewportPtr viewport = vdmu::getPtrFromIterator<OdDbViewport>(it);
    if (viewport.isNull() || !viewport->isOn() || viewport->number() <= 0) continue;
    if (!active.isNull() && viewport->number() >= least) continue;
    active = it->objectId();
    least = viewport->number();
  }
  return active;
}

/// Rectangle and view of the active viewport across a rollback.
class KeptViewport {
 public:
  explicit KeptViewport(OdDbDatabase* database) : m_database(database) {
    const OdDbViewportPtr viewport = activeViewport(database).openAs<OdDbViewport>();
    if (viewport.isNull()) return;
    m_copy = OdDbViewport::createObject();
    copyState(viewport, m_copy);
  }
  void putBack() const {
    if (m_copy.isNull()) return;
    const UndoRecordingOff off(m_database);  // until the viewport is closed
    const OdDbViewportPtr viewport = oddbOpenThroughLock<OdDbViewport>(activeViewport(m_database));
    if (viewport.isNull()) return;  // what was rolled back had created it
    copyState(m_copy, viewport);
  }

 private:
  static void copyState(const OdDbViewport* from, OdDbViewport* to) {
    to->setCenterPoint(from->centerPoint());
    to->setWidth(from->width());
    to->setHeight(from->height());
    to->setViewCenter(from->viewCenter());
    to->setViewTarget(from->viewTarget());
    to->setViewDirection(from->viewDirection());
    to->setViewHeight(from->viewHeight());
    to->setTwistAngle(from->twistAngle());
  }

  OdDbDatabase* m_database;
  OdDbViewportPtr m_copy;  // in no database
};

// Undoes all steps after the first `keep` ones, and records nothing that redo could repeat. It
// counts before each step, because undoing once more would take back a step of the time before.
void undoSteps(OdDbDatabase* database, OdUInt32 keep) {
  const UndoRecordingOff off(database);
  while (database->numUndoSteps() > keep && database->undo() == eOk) {
  }
}

}  // namespace

VdmDbDatabaseTransaction::VdmDbDatabaseTransaction(OdDbDatabase* database, bool keepViewport,
                                                   bool useUndo)
    : m_useUndo(useUndo), m_keepViewport(keepViewport), m_database(database) {
  if (m_database == nullptr) return;
  if (!m_useUndo) {
    m_database->startTransaction();
    return;
  }
  m_database->startUndoRecord();
  m_stepsBefore = m_database->numUndoSteps();
}

VdmDbDatabaseTransaction::~VdmDbDatabaseTransaction() {
  if (m_database == nullptr) return;
  try {
    finish();
  } catch (const OdError& error) {
    vdmcCallAssert("false", error.description(), "vdm_db/vdm_database_transaction", __LINE__);
  }
}

void VdmDbDatabaseTransaction::finish() {
  if (!m_abort) {
    if (!m_useUndo) m_database->endTransaction();
    return;
  }
  if (!m_keepViewport) return rollBack();
  const KeptViewport viewport(m_database);
  rollBack();
  viewport.putBack();
}

void VdmDbDatabaseTransaction::rollBack() {
  if (m_useUndo) {
    undoSteps(m_database, m_stepsBefore);
  } else {
    m_database->abortTransaction();
  }
}
