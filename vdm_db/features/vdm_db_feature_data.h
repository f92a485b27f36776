// VdmDbFeatureData: the stored side of a feature.
#pragma once

#include <memory>

#include "platform/base/string.h"
#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/properties/vdm_db_properties_base.h"

/// The state of a carrier: the bag, the class name of the feature, the feature.
class VDM_DB_EXPORT VdmDbFeatureDataImpl : public VdmDbPropertiesBase {
 public:
  VdmDbFeatureDataImpl();
  ~VdmDbFeatureDataImpl() override;

  [[nodiscard]] const OdString& featureType() const { return m_featureType; }
  /// Null while there is none.
  [[nodiscard]] VdmFeature* feature() const { return m_feature.get(); }
  /// Makes the feature of a class that derives from VdmFeature; false when the class cannot.
  bool createFeature(const OdRxClass* cls, OdDbObject* carrier, const OdString& name);
  /// The bag was read: makes the feature where there is none, of the class that the bag names, and
  /// of VdmFeature where that is unknown or too old for the bag. Binds the feature to the bag.
  void bagWasRead(OdDbObject* carrier);

 private:
  [[nodiscard]] VdmFeaturePtr makeOfStoredType() const;

  OdString m_featureType;
  VdmFeaturePtr m_feature;  // the one reference that does not hold the carrier open
};

/// Carries a feature in the drawing: a property bag, and the VdmFeature whose fields lie in that
/// bag. The VdmDbFeatureManager of the block owns it; it owns the feature's reactors. Others refer
/// to the feature by the id of its carrier. Opened as VdmFeature, or as the feature's class, it
/// gives the feature, which keeps it open.
class VDM_DB_EXPORT VdmDbFeatureData : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbFeatureData)

  VdmDbFeatureData();
  ~VdmDbFeatureData() override;

  /// A carrier, in no database, of a new feature of the class, with status 0. Null unless the class
  /// derives from VdmFeature and makes objects.
  [[nodiscard]] static OdSmartPtr<VdmDbFeatureData> create(const OdRxClass* cls,
                                                           const OdString& name);

  /// Raises OdError(eNotOpenForRead) unless the object is open for read.
  [[nodiscard]] const VdmProperties& getReadProperties() const;
  /// Records the whole state for undo.
  [[nodiscard]] VdmProperties& getWriteProperties();

  /// How many carriers have left memory in this process.
  [[nodiscard]] static OdUInt64 numEnded();
  /// Class of the feature; that of OdRxObject without one.
  [[nodiscard]] OdRxClass* adapterClass() const;
  /// The feature with an added reference if it is of the class; null otherwise.
  [[nodiscard]] OdRxObject* queryAdapter(const OdRxClass* cls) const;
  /// Name of the class that the feature was made as, whether that is there or not.
  [[nodiscard]] OdString featureType() const;
  /// The feature without a reference. The caller holds the carrier open, or only reads the class.
  [[nodiscard]] const VdmFeature* adapter() const { return m_impl->feature(); }

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;
  OdDbObjectPtr subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                             bool isPrimary) const override;
  OdDbObjectPtr subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                               bool isPrimary) const override;
  /// Lists a clone with its manager.
  void appendToOwner(OdDbIdPair& pair, OdDbObject* owner, OdDbIdMapping& mapping) override;
  /// Erases what the feature owns. 417 for a carrier without a feature, which is erased all the
  /// same.
  OdResult subErase(bool erasing) override;
  void subExistenceChanged() override;
  void subIdSwapped() override;
  void subClose() override;

 private:
  friend class VdmFeatureReadAhead;

  void invalidateNamesOfManager() const;
  void refileManager() const;
  OdResult eraseOwnObjects();

  std::unique_ptr<VdmDbFeatureDataImpl> m_impl;
};
using VdmDbFeatureDataPtr = OdSmartPtr<VdmDbFeatureData>;
