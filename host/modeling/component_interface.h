// VdmComponentInterface: how components take part in the update pass.
#pragma once

#include "host/modeling/component_feature.h"
#include "vdm_db/features/vdm_update_feature_interface.h"

/// The update interface of VdmComponentFeature: says where the component sits. What is to be done
/// is decided and done by the class's handler (component_handler.h).
class VdmComponentInterface : public VdmUpdateFeatureInterface {
 public:
  OD_RX_DECLARE_MEMBERS(VdmComponentInterface)

  [[nodiscard]] OpeningFaces openingFaces() const override;
  bool storedInsert(const VdmFeature& feature, OdDbObjectId& insert) const override;
  bool prepareUpdateData(VdmFeatureUpdateData& data, bool forced) override;
  /// Heals the record's entity with the feature's residues.
  bool removeSubents(VdmFeatureSubentsToRemove& record,
                     const OdDbFullSubentPathArray& paths) override;
  bool initAfterUpdate(VdmFeatureUpdateData& data) override;
  /// The entity is the insert, and the solid that of the base path.
  bool createForEntity(VdmDbFeatureManager* manager, const OdDbFullSubentPath& basePath,
                       const OdDbObjectId& entity, VdmFeatureUpdateData& data) override;
  [[nodiscard]] VdmSolidOccurrences subtractSolids(const OdDbObjectId& block,
                                                   bool forWrite) override;
  [[nodiscard]] VdmSolidOccurrences uniteSolids(const OdDbObjectId& block, bool forWrite) override;
  /// A component may have no base face.
  [[nodiscard]] bool needsBaseFaces() const override { return false; }

  /// None is: a component whose references are lost stays where its insert is.
  [[nodiscard]] bool isRequiredDependency(int mask, int tag) override;
  [[nodiscard]] bool isReactorFiltered(const VdmDbPersIdReactor* reactor) const override;
  [[nodiscard]] OdDbObjectIdArray ownObjectIds() const override;
  [[nodiscard]] bool erasesOwnObjects() const override { return true; }
  void onDeepClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                   bool flag) const override;
  void onWblockClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                     bool flag) const override;

  [[nodiscard]] OdString componentName() const override;
  [[nodiscard]] OdString extensionValue() const override;
  void applyExtension(OdDbObject* object, const OdString& value) override;
  void setEntities(const OdDbObjectIdArray& entities) override;
  void attachToSolid(VdmDbFeatureManager* manager, const OdDbObjectId& solid) override;

 private:
  [[nodiscard]] VdmComponentFeaturePtr component() const;
  [[nodiscard]] OdDbFullSubentPathArray openingPaths() const;
};
