// Blocks of external references.
#include "vdm_db/drawing_utils/vdm_xref_utils.h"

#include "platform/base/non_copyable.h"
#include "platform/cloning/xref_man.h"
#include "platform/db/database.h"
#include "vdm_db/drawing_utils/undo_recording_off.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"

namespace {

/// Turns the drawing's notifications about external references off and restores them at its end.
/// Neither change is recorded for undo.
class XrefNotificationsOff : OdNonCopyable {
 public:
  explicit XrefNotificationsOff(OdDbDatabase* database)
      : m_database(database), m_previous(database->getSysVar(kSetting)) {
    const OdResBufPtr off = OdResBuf::newRb(m_previous->restype());
    off->setInt16(0);
    set(off);
  }
  ~XrefNotificationsOff() { set(m_previous); }

 private:
  static constexpr const wchar_t* kSetting = L"XREFNOTIFY";

  void set(const OdResBuf* value) {
    const UndoRecordingOff off(m_database);
    m_database->setSysVar(kSetting, value);
  }

  OdDbDatabase* m_database;
  OdResBufPtr m_previous;
};

}  // namespace

namespace vdmu {

void unloadXrefBlock(OdSmartPtr<OdDbBlockTableRecord> block) {
  if (block.isNull() || block->database() == nullptr) return;
  const VdmOpenUpgrade upgrade(block);
  const XrefNotificationsOff off(block->database());
  OdDbXRefMan::unload(block);
}

void eraseXrefBlock(OdDbObjectId id) {
  const OdDbBlockTableRecordPtr block = id.openAs<OdDbBlockTableRecord>();
  if (block.isNull() || !block->isFromExternalReference()) return;
  if (block->hasBlockReferences()) return;
  const VdmOpenUpgrade upgrade(block);
  if (block->xrefDatabase() != nullptr) unloadXrefBlock(block);
  block->erase();
}

OdDbObjectId getXrefBlock(OdDbObjectId id) {
  const OdDbBlockTableRecordPtr block = id.openAs<OdDbBlockTableRecord>();
  const OdDbDatabase* database = block.isNull() ? nullptr : block->xrefDatabase();
  return database == nullptr ? id : database->getModelSpaceId();
}

OdSmartPtr<OdDbBlockTableRecord> openXrefBlock(OdDbObjectId id, bool forWrite) {
  return getXrefBlock(id).openAs<OdDbBlockTableRecord>(forWrite ? OdDb::kForWrite : OdDb::kForRead);
}

}  // namespace vdmu
