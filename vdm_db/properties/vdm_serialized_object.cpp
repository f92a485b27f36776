// Objects that are kept as bytes beside another object.
//
// Layout, in the flat form of VdmFlatFiler, as a blob of the host's VdmDbExtensionData under the
// key "VDM_OBJECT":
//
//   class    wrString   name of the object's own class
//   fields              what the object's dwgOutFields writes
//
// An object of a class "VdmX", whose fields are the 32-bit number 7 behind the base's:
//
//   04 00 56 64 6D 58     "VdmX"
//   ...                   fields of OdDbObject
//   07 00 00 00           7
#include "vdm_db/properties/vdm_serialized_object.h"

#include "platform/base/error.h"
#include "platform/rx/rx_class.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/properties/vdm_db_extension_data.h"
#include "vdm_db/properties/vdm_flat_filer.h"

namespace {

OdDbObjectPtr createObject(const OdString& className, const OdRxClass* asked) {
  const OdRxClass* stored = odrxClassDictionary()->getAt(className);
  if (stored == nullptr || !stored->isDerivedFrom(asked)) return OdDbObjectPtr();
  return OdDbObject::cast(odrxCreateObject(className));
}

OdDbObjectPtr readObject(const VdmBlob& bytes, const OdRxClass* asked) {
  VdmFlatFiler filer;
  filer.setBinaryData(bytes.data(), static_cast<unsigned int>(bytes.size()));
  OdDbObjectPtr object = createObject(filer.rdString(), asked);
  if (object.isNull() || object->dwgInFields(&filer) != eOk) return OdDbObjectPtr();
  return object;
}

}  // namespace

OdDbObjectPtr VdmReadSerializedObject(OdRxClass* rxClass, const OdDbObject* host) {
  if (rxClass == nullptr || host == nullptr) return OdDbObjectPtr();
  VdmBlob bytes;
  if (!vdmu::readExtensionBytes(host, kVdmSerializedObject, bytes)) return OdDbObjectPtr();
  try {
    return readObject(bytes, rxClass);
  } catch (const OdError&) {
    return OdDbObjectPtr();  // damaged bytes
  }
}

OdDbObjectPtr VdmReadSerializedObject(const OdString& className, const OdDbObject* host) {
  return VdmReadSerializedObject(odrxClassDictionary()->getAt(className), host);
}

void VdmWriteSerializedObject(OdRxClass* rxClass, const OdDbObject* source, OdDbObject* host) {
  if (host == nullptr) throw OdError(eNullPointer, OdString("host of a serialised object"));
  host->assertWriteEnabled();
  if (source == nullptr) return vdmu::eraseExtensionBytes(host, kVdmSerializedObject);
  if (rxClass != nullptr && !source->isKindOf(rxClass)) {
    throw OdError(eWrongObjectType,
                  "an object of class " + source->isA()->name() + " as a " + rxClass->name());
  }
  VdmFlatFiler filer;
  filer.clear();
  filer.wrString(source->isA()->name());
  source->dwgOutFields(&filer);
  if (filer.hasUnreadableString()) {
    throw OdError(eLimitExceeded, "an object of class " + source->isA()->name() +
                                      " beside object " + host->getDbHandle().ascii() +
                                      ": a text of more than 32767 bytes");
  }
  vdmu::storeExtensionBytes(host, kVdmSerializedObject, filer.getBinaryData());
}
