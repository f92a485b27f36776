// VdmDbPersIdReactor: the references of a feature to geometry.
#pragma once

#include "platform/base/array.h"
#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/model/vdm_bag_with_ids.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"
#include "vdm_db/references/vdm_indexed_ids.h"

/// State: the bag keys "mask", "tag" and "pers_ids".
class VDM_DB_EXPORT VdmDbPersIdReactorImpl : public VdmBagWithIds<VdmDbFeatureReactorImpl> {
 public:
  VdmDbPersIdReactorImpl();

  OdLong mask = 0;
  OdLong tag = 0;
  VdmIndexedIds persIds;

  /// Detaches the reactor from its dependencies.
  OdResult subErase(VdmDbFeatureReactor* reactor) override;

 private:
  void idsWereRead() override { persIds.replaced(); }
};

/// The references of a feature to geometry. It holds ids of dependencies and is a persistent
/// reactor of each, which keeps them watched. The mask is a set of bits that says what kind of
/// reference it is; the tag is an exact number that distinguishes reactors of one kind. The carrier
/// of the feature owns it. When its last dependency is erased it calls eraseReactor() of the
/// feature and erases itself.
class VDM_DB_EXPORT VdmDbPersIdReactor : public VdmDbFeatureReactorOf<VdmDbPersIdReactorImpl> {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbPersIdReactor)

  void setMask(int mask);
  /// True when the two masks have a bit in common, and for -1 always.
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

  /// A dependency was erased, or replaced: takes it out. With the last one the reactor calls
  /// eraseReactor() of its feature and erases itself. Nothing happens while the dependency is
  /// undoing, and when it is unerased.
  void erased(const OdDbObject* object, bool erasing) override;
  /// Takes out dependencies that do not open and attaches itself to the others; false when none is
  /// left.
  bool doAudit() override;

 private:
  friend class VdmFeatureReadAhead;

  void loseLast();
};
using VdmDbPersIdReactorPtr = OdSmartPtr<VdmDbPersIdReactor>;
