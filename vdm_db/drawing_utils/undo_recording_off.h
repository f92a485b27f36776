// UndoRecordingOff: guard under which changes of a drawing are not recorded for undo.
#pragma once

#include "platform/db/database.h"

/// Puts recording back as it was. Changes inside a transaction of the drawing are recorded all the
/// same.
class UndoRecordingOff {
 public:
  explicit UndoRecordingOff(OdDbDatabase* database)
      : m_database(database), m_wasRecording(database->undoRecording()) {
    m_database->disableUndoRecording(true);
  }
  ~UndoRecordingOff() { m_database->disableUndoRecording(!m_wasRecording); }
  UndoRecordingOff(const UndoRecordingOff&) = delete;
  UndoRecordingOff& operator=(const UndoRecordingOff&) = delete;

 private:
  OdDbDatabase* m_database;
  bool m_wasRecording;
};
