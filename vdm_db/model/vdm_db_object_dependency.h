// VdmDbObjectDependency: a persistent reference to one piece of geometry.
#pragma once

#include "platform/base/types.h"
#include "platform/db/db_object.h"
#include "platform/db/subent.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/references/vdm_compound_object_id.h"

/// A reference to a subentity of an entity, or to the whole entity, along a path of block
/// references. Features and constraints hold the id of a dependency and attach themselves to it as
/// persistent reactors; the host makes the dependency follow its geometry when that is computed
/// anew. It does not compare or find geometry itself. Its owner is the VdmDbPersIdManager of the
/// block in which the geometry lies, or, for a constraint, a VdmDbObject.
///
/// Readers raise OdError eNotOpenForRead unless the object is open for read, writers need it open
/// for write. Writers record for undo what they change and nothing else.
class VDM_DB_EXPORT VdmDbObjectDependency : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbObjectDependency)

  VdmDbObjectDependency();
  ~VdmDbObjectDependency() override;

  /// The present path; see VdmCompoundObjectId::getFullPathEx. `path` gets the ids that were
  /// resolved and the subentity, also when the result is not ePathOk.
  vdmu::EVdmPathRes getLinkObject(OdDbFullSubentPath& path, bool openErased) const;
  [[nodiscard]] OdDbFullSubentPath getLinkObject(bool openErased) const;
  /// Makes it refer to another place. Nothing is recorded when it refers to that place already.
  void setLinkObject(const OdDbFullSubentPath& path);
  /// Id of the first path element: the entity, or its outermost block reference. Null when the
  /// path is empty.
  [[nodiscard]] OdDbObjectId getInsertId() const;
  [[nodiscard]] const VdmCompoundObjectId& compoundId() const;
  void setCompoundId(const VdmCompoundObjectId& id);
  [[nodiscard]] const OdDbSubentId& subentId() const;

  /// Two numbers that a host compares when it matches geometry; also the properties "entity_tag"
  /// and "body_top_hash".
  [[nodiscard]] int entityTag() const;
  void setEntityTag(int tag);
  [[nodiscard]] OdLong bodyHash() const;
  void setBodyHash(OdLong hash);
  /// All properties, those two among them. Free ones are filed only together with a tag, a hash, or
  /// a path of several elements.
  [[nodiscard]] const VdmProperties& properties() const;
  /// For changes; the whole object is recorded for undo.
  VdmProperties& propertiesForWrite();

  /// A persistent reactor of the object can still be opened.
  [[nodiscard]] bool isWatched() const;

  /// A new dependency on `path` with the tag and the hash of this one, without its free properties.
  /// It is in no database.
  [[nodiscard]] OdSmartPtr<VdmDbObjectDependency> doClone(const OdDbFullSubentPath& path) const;
  /// Lists a clone with its manager.
  void appendToOwner(OdDbIdPair& pair, OdDbObject* owner, OdDbIdMapping& mapping) override;

  /// A number that rises whenever a dependency of any drawing begins to refer to another place.
  /// Results of look-ups by path are outdated when it has risen.
  [[nodiscard]] static OdUInt64 linkGeneration();

  void subExistenceChanged() override;
  void subIdSwapped() override;
  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  enum UndoStep : OdUInt8 { kUndoLink = 0, kUndoTag = 1, kUndoHash = 2 };

  [[nodiscard]] bool standsAt(const OdDbFullSubentPath& path) const;
  [[nodiscard]] bool needsExtendedForm(const OdDbDwgFiler* filer) const;
  void linkWillChange();
  /// Raises linkGeneration().
  void linkIsNoLongerValid() const;
  OdDbDwgFiler* recordStep(UndoStep step);
  void recordLink();
  void setNumber(UndoStep step, OdLong& number, OdLong value);
  void readLinkStep(OdDbDwgFiler* filer);
  OdResult readExtendedForm(OdDbDwgFiler* filer, OdInt32 version);
  void mapMembers();
  void resetProperties();

  VdmProperties m_properties;
  OdDbSubentId m_subent;
  OdLong m_entityTag = 0;
  OdLong m_bodyHash = 0;
  VdmCompoundObjectId m_compoundId;
};
using VdmDbObjectDependencyPtr = OdSmartPtr<VdmDbObjectDependency>;

namespace vdmu {

/// The path of a dependency in the form of formatFullSubentPath; "invalid path" when the id is none
/// or its path cannot be resolved.
[[nodiscard]] VDM_DB_EXPORT OdString strFSPFromDependency(OdDbObjectId id, bool markErased);

}  // namespace vdmu
