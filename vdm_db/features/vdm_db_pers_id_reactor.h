// VdmDbPersIdReactor: the references of a feature to geometry.
#pragma once

#include "platform/base/array.h"
#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"
#include "vdm_db/references/vdm_indexed_ids.h"

/// State: the bag keys "mask", "tag" and "pers_ids".
class VDM_DB_EXPORT VdmDbPersIdReactorImpl : public VdmDbFeatureReactorImpl {
 public:
  VdmDbPersIdReactorImpl();

  OdLong mask = 0;
  OdLong tag = 0;
  VdmIndexedIds persIds;

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  /// Leaves the dependencies.
  OdResult subErase(VdmDbFeatureReactor* reactor) override;
};

/// Holds the dependencies that a feature refers to, and is a persistent reactor of each: that is
/// what watches them. The mask is a set of bits that says what kind of reference it is, the tag an
/// exact number that tells reactors of one kind apart. When its last dependency is erased it tells
/// the feature, and goes.
class VDM_DB_EXPORT VdmDbPersIdReactor : public VdmDbFeatureReactor {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbPersIdReactor)

  VdmDbPersIdReactor();

  void setMask(int mask);
  /// True for -1, whatever the reactor's mask; otherwise when the two have a bit in common.
  [[nodiscard]] bool hasMask(int mask) const;
  [[nodiscard]] unsigned int mask() const;
  void setTag(int tag);
  [[nodiscard]] bool hasTag(int tag) const;
  [[nodiscard]] int tag() const;

  /// Adds those that are not held yet and attaches the reactor to them. Null ids are left out. An
  /// id that cannot be opened for write is held all the same, and the audit takes it out.
  void addPersIds(const OdDbObjectIdArray& ids);
  [[nodiscard]] OdDbObjectIdArray persIds() const;
  /// The same without a copy; valid until the reactor changes.
  [[nodiscard]] const OdDbObjectIdArray& persIdsRef() const;
  /// Detaches the reactor from all dependencies and holds none.
  void removePersIds();
  /// The same for those of `ids` that are held.
  void removePersIds(const OdDbObjectIdArray& ids);

  /// A dependency is gone: the reactor lets it go, and with the last one tells the feature and
  /// erases itself. Also called for a dependency that has been replaced. Nothing happens while it
  /// is undoing, and when it comes back.
  void erased(const OdDbObject* object, bool erasing) override;
  /// Lets dependencies go that cannot be opened and attaches itself to the others; false when none
  /// is left.
  bool doAudit() override;

 private:
  [[nodiscard]] const VdmDbPersIdReactorImpl& stateForRead() const;
  VdmDbPersIdReactorImpl& stateForWrite();
  void loseLast();
};
using VdmDbPersIdReactorPtr = OdSmartPtr<VdmDbPersIdReactor>;
