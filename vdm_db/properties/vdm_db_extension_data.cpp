// Extension data objects and how their hosts own them.
#include "vdm_db/properties/vdm_db_extension_data.h"

#include "platform/base/error.h"
#include "platform/db/dictionary.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/properties/vdm_bag_filing.h"

VDM_DEFINE_DB_CLASS(VdmDbExtensionData, OdDbObject, L"VdmDbExtensionData", L"VDMDBEXTENSIONDATA",
                    L"extension data")

VdmDbExtensionData::VdmDbExtensionData() = default;
VdmDbExtensionData::~VdmDbExtensionData() = default;

const VdmProperties& VdmDbExtensionData::properties() const {
  assertReadEnabled();
  return m_impl.properties();
}

VdmProperties& VdmDbExtensionData::propertiesForWrite() {
  assertWriteEnabled();
  return m_impl.properties();
}

// ---- Partial undo: the key (wrString), then its value before the change

VdmProperties& VdmDbExtensionData::bagForChange(const OdString& key) {
  assertWriteEnabled(/*autoUndo=*/false);
  recordProperty(key);
  return m_impl.properties();
}

void VdmDbExtensionData::recordProperty(const OdString& key) {
  OdDbDwgFiler* filer = beginPartialUndo(desc());
  if (filer == nullptr) return;
  filer->wrString(key);
  m_impl.properties().dwgOutProperty(filer, key);
}

void VdmDbExtensionData::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  const OdString key = filer->rdString();
  recordProperty(key);
  const OdResult result = m_impl.properties().dwgInProperty(filer, key);
  if (result != eOk) throw OdError(result, "undo of property \"" + key + "\"");
}

// ---- Filing: the base's part, then the bag

VDM_DEFINE_BAG_DWG_FILING(VdmDbExtensionData, m_impl)
VDM_DEFINE_BAG_DXF_FILING(VdmDbExtensionData, m_impl)

// ---- On a host

namespace {

// Both give null when there is none (or what is there is of another class), and raise when it
// cannot be opened.
OdDbDictionaryPtr openDictionary(const OdDbObject* host, OdDb::OpenMode mode) {
  const OdDbObjectId id = host->extensionDictionary();
  return id.isErased() ? OdDbDictionaryPtr() : OdDbDictionary::cast(id.safeOpenObject(mode));
}

VdmDbExtensionDataPtr openExtensionData(const OdDbObject* host, OdDb::OpenMode mode) {
  const OdDbDictionaryPtr dictionary = openDictionary(host, OdDb::kForRead);
  if (dictionary.isNull()) return VdmDbExtensionDataPtr();
  const OdDbObjectId id = dictionary->getAt(kVdmRegApp);
  return id.isNull() ? VdmDbExtensionDataPtr() : VdmDbExtensionData::cast(id.safeOpenObject(mode));
}

VdmDbExtensionDataPtr createExtensionData(OdDbObject* host) {
  host->createExtensionDictionary();
  const OdDbDictionaryPtr dictionary = openDictionary(host, OdDb::kForWrite);
  if (dictionary.isNull() || dictionary->has(kVdmRegApp)) {
    throw OdError(eWrongObjectType, "entry " + kVdmRegApp + " of the extension dictionary of " +
                                        host->getDbHandle().ascii() +
                                        " cannot be opened as VdmDbExtensionData");
  }
  const VdmDbExtensionDataPtr created = VdmDbExtensionData::createObject();
  const OdDbObjectId id = dictionary->setAt(kVdmRegApp, created.get());
  return id.safeOpenAs<VdmDbExtensionData>(OdDb::kForWrite);
}

}  // namespace

namespace vdmu {

void storeExtensionBytes(OdDbObject* host, const OdString& key, const VdmBlob& bytes) {
  VdmDbExtensionDataPtr data = openExtensionData(host, OdDb::kForWrite);
  if (data.isNull()) data = createExtensionData(host);
  data->propertiesForWrite().setProperty(key, VdmPropertyData::create(bytes));
}

bool readExtensionBytes(const OdDbObject* host, const OdString& key, VdmBlob& bytes) {
  const VdmDbExtensionDataPtr data = openExtensionData(host, OdDb::kForRead);
  return !data.isNull() && data->properties().getProperty(key, bytes);
}

void eraseExtensionBytes(OdDbObject* host, const OdString& key) {
  {
    const VdmDbExtensionDataPtr data = openExtensionData(host, OdDb::kForWrite);
    if (data.isNull()) return;
    VdmProperties& properties = data->propertiesForWrite();
    properties.removeProperty(key);
    if (!properties.isEmpty()) return;
    data->erase();
  }
  host->releaseExtensionDictionary();
}

}  // namespace vdmu
