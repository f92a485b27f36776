// VdmDbDatabaseTransaction: guard that rolls a drawing back.
#pragma once

#include "platform/base/non_copyable.h"
#include "platform/base/types.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;

/// Takes back every change since its construction unless setNoAbort() was called. Lives on the
/// stack of its user, within the life of the drawing. A null drawing is legal: nothing happens
/// then.
///
/// It works by a transaction of the drawing or, with `useUndo`, by undo steps that begin with it.
/// Neither leaves an undo or redo step of what it rolls back. Undo steps need undo recording:
/// without it nothing is rolled back.
///
/// With `keepViewport` a rollback keeps the rectangle and the view that the active viewport has at
/// the end, so that the picture does not jump.
class VDM_DB_EXPORT VdmDbDatabaseTransaction : OdNonCopyable {
 public:
  VdmDbDatabaseTransaction(OdDbDatabase* database, bool keepViewport, bool useUndo);
  ~VdmDbDatabaseTransaction();

  /// The changes stay.
  void setNoAbort() { m_abort = false; }

 private:
  void finish();
  void rollBack();

  bool m_abort = true;
  bool m_useUndo;
  bool m_keepViewport;
  OdDbDatabase* m_database;
  OdUInt32 m_stepsBefore = 0;  // undo steps at the start
};
