// VdmDbExtensionData: a filed object that carries bytes too large for extended data.
#pragma once

#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_db_properties_base.h"

// The bag of an extension data object.
class VDM_DB_EXPORT VdmDbExtensionDataImpl : public VdmDbPropertiesBase {};

// Listed under the key "VDM_DB" in the extension dictionary of the object that it extends. Its bag
// holds blobs: under "VDM_DB" the flat form of a large property bag, under "VDM_OBJECT" a
// serialised object (vdm_serialized_object.h). Its record has no version of its own.
class VDM_DB_EXPORT VdmDbExtensionData : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbExtensionData)

  VdmDbExtensionData();
  ~VdmDbExtensionData() override;

  // Raises OdError(eNotOpenForRead) unless the object is open for read.
  [[nodiscard]] const VdmProperties& properties() const;
  // Calls assertWriteEnabled: the whole bag is recorded for undo.
  VdmProperties& propertiesForWrite();

  // One property, which alone is recorded for undo. As the bag's operations of the same names.
  template <VdmPropertyValue T>
  bool setProperty(const OdString& key, const T& value) {
    return bagForChange(key).setProperty(key, value);
  }
  bool setProperty(const OdString& key, const VdmPropertyDataPtr& value) {
    return bagForChange(key).setProperty(key, value);
  }
  bool removeProperty(const OdString& key) { return bagForChange(key).removeProperty(key); }

  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;

 private:
  VdmProperties& bagForChange(const OdString& key);
  void recordProperty(const OdString& key);

  VdmDbExtensionDataImpl m_impl;
};
using VdmDbExtensionDataPtr = OdSmartPtr<VdmDbExtensionData>;

// Blobs beside a host object, in its VdmDbExtensionData.
namespace vdmu {

// Creates the extension dictionary and the extension data as needed; the host is open for write and
// in a database. Raises OdError(eWrongObjectType) when an object of another class is in their
// place.
VDM_DB_EXPORT void storeExtensionBytes(OdDbObject* host, const OdString& key, const VdmBlob& bytes);
// False when there are none.
[[nodiscard]] VDM_DB_EXPORT bool readExtensionBytes(const OdDbObject* host, const OdString& key,
                                                    VdmBlob& bytes);
// Erases the extension data with its last blob, and the extension dictionary with its last entry.
VDM_DB_EXPORT void eraseExtensionBytes(OdDbObject* host, const OdString& key);

}  // namespace vdmu
