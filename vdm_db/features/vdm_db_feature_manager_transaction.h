// VdmDbFeatureManagerTransaction: makes the references of many features in one step.
#pragma once

#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbUserIO;
class VdmFeature;

/// Gathers paths of features, and makes the persistent references for all of them when its last
/// pointer is released. One transaction is active at a time: createObject() gives that one while it
/// is held, so the outermost owner decides when the references are made. Used on the thread that
/// holds the drawing.
///
/// All paths of a transaction begin in one block: that of the first path's first id. Errors that
/// arise when the references are made are reported as an assertion, and the reactors stay empty.
/// They also stay empty, without a report, when the manager of references does not give one id for
/// each path.
class VDM_DB_EXPORT VdmDbFeatureManagerTransaction : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbFeatureManagerTransaction)

  ~VdmDbFeatureManagerTransaction() override;

  /// Paths for the feature's first reactor with exactly this mask, and exactly this tag in the
  /// second form; a missing reactor is made. Raises OdError(16) for a null feature; nothing happens
  /// without paths.
  void append(VdmFeature* feature, const OdDbFullSubentPathArray& paths, int mask);
  void append(VdmFeature* feature, const OdDbFullSubentPathArray& paths, int mask, int tag);
  /// Given to the manager of references; null at first. Not owned.
  void setUserIO(OdDbUserIO* userIO) { m_userIO = userIO; }

 protected:
  VdmDbFeatureManagerTransaction();

 private:
  struct Entry {
    OdDbObjectId reactorId;
    OdUInt32 pathCount = 0;
    bool overrideColor = false;
  };

  void appendTo(VdmFeature* feature, const OdDbFullSubentPathArray& paths, int mask,
                const int* tag);
  void makeReferences() const;
  [[nodiscard]] OdDbObjectIdArray makeIds() const;
  void handOut(const OdDbObjectIdArray& ids) const;

  OdArray<Entry> m_entries;
  OdDbFullSubentPathArray m_paths;
  OdDbUserIO* m_userIO = nullptr;
};
using VdmDbFeatureManagerTransactionPtr = OdSmartPtr<VdmDbFeatureManagerTransaction>;
