// UndoRecordingOff: guard under which changes of a drawing are not recorded for undo.
#pragma once

#include "platform/base/non_copyable.h"
#include "platform/db/database.h"

/// Puts recording back as it was. Changes inside a transaction of the drawing are recorded all the
/// same.
class UndoRecordingOff : OdNonCopyable {
 public:
  explicit UndoRecordingOff(OdDbDatabase* database)
      : m_database(database), m_wasRecording(database->undoRecording()) {
    m_database->disableUndoRecording(true);
  }
  ~UndoRecordingOff() { m_database->disableUndoRecording(!m_wasRecording); }

 private:
  OdDbDatabase* m_database;
  bool m_wasRecording;
};
