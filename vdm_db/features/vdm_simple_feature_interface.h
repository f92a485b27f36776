// VdmSimpleFeatureInterface: an update interface that leaves everything as it is.
#pragma once

#include "vdm_db/features/vdm_update_feature_interface.h"

/// Base of interfaces that need few of the operations. It is active for every feature that it is
/// attached to, lets the feature take part in each pass that concerns it, and changes no solid: a
/// class overrides initAfterUpdate, or the feature's own update, and is done.
///
/// Its answers: the feature has no opening, removes no faces, cuts and fills nothing, needs no base
/// faces, loses a reference without being erased, filters no reactor, makes no component, and is
/// cloned as features without interface are.
///
/// It has no run-time class of its own: to the runtime its objects are of the class
/// VdmUpdateFeatureInterface, and so is the parent of a class derived from it.
class VDM_DB_EXPORT VdmSimpleFeatureInterface : public VdmUpdateFeatureInterface {
 public:
  ~VdmSimpleFeatureInterface() override;

  [[nodiscard]] OpeningFaces openingFaces() const override;
  /// False: the feature's update and initAfterUpdate are called.
  bool prepareUpdateData(VdmFeatureUpdateData& data, bool forced) override;
  bool removeSubents(VdmFeatureSubentsToRemove& record,
                     const OdDbFullSubentPathArray& paths) override;
  bool initAfterUpdate(VdmFeatureUpdateData& data) override;
  /// True: the feature is bound by its references alone.
  bool createForEntity(VdmDbFeatureManager* manager, const OdDbFullSubentPath& basePath,
                       const OdDbObjectId& entity, VdmFeatureUpdateData& data) override;
  [[nodiscard]] bool isRequiredDependency(int mask, int tag) override;
  void onDeepClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                   bool flag) const override;
  void onWblockClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                     bool flag) const override;
  [[nodiscard]] VdmSolidOccurrences subtractSolids(const OdDbObjectId& block,
                                                   bool forWrite) override;
  [[nodiscard]] VdmSolidOccurrences uniteSolids(const OdDbObjectId& block, bool forWrite) override;
  [[nodiscard]] bool isReactorFiltered(const VdmDbPersIdReactor* reactor) const override;
  [[nodiscard]] bool erasesOwnObjects() const override;
  [[nodiscard]] bool needsBaseFaces() const override;
  [[nodiscard]] OdString extensionValue() const override;
  void applyExtension(OdDbObject* object, const OdString& value) override;
  [[nodiscard]] OdString componentName() const override;
  /// The feature's carrier, which makes the interface active.
  [[nodiscard]] OdDbObjectIdArray ownObjectIds() const override;
  void setEntities(const OdDbObjectIdArray& entities) override;
  void attachToSolid(VdmDbFeatureManager* manager, const OdDbObjectId& solid) override;
};
