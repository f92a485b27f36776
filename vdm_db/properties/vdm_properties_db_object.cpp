// Property bags on objects of any class: extended data, or the extension dictionary.
#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/db_object.h"
#include "platform/db/regapp_table.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/properties/vdm_db_extension_data.h"
#include "vdm_db/properties/vdm_flat_filer.h"
#include "vdm_db/properties/vdm_properties.h"

OdDbObjectId VdmProperties::regAppName(OdDbDatabase* database, bool create) {
  if (database == nullptr) return OdDbObjectId();
  if (create) database->newRegApp(kVdmRegApp);
  const OdDbRegAppTablePtr table =
      database->getRegAppTableId().openAs<OdDbRegAppTable>(OdDb::kForRead);
  return table.isNull() ? OdDbObjectId() : table->getAt(kVdmRegApp);
}

namespace {

// The flat form of a bag that can be read back.
void writeFlat(const VdmProperties& bag, VdmFlatFiler& filer, const OdDbObject* object) {
  bag.dwgOutFields(filer.clear());
  if (filer.hasUnreadableString()) {
    throw OdError(eLimitExceeded, "properties of object " + object->getDbHandle().ascii() +
                                      ": a text of more than 32767 bytes");
  }
}

// Extended data is read first: a bag that became smaller may have left its old form in the
// dictionary.
bool readFlat(const OdDbObject* object, VdmFlatFiler& filer) {
  const OdResBufPtr chain = object->xData(kVdmRegApp);
  if (!chain.isNull() && filer.setBinaryChunk(chain->next().get())) return true;
  VdmBlob bytes;
  if (!vdmu::readExtensionBytes(object, kVdmRegApp, bytes)) return false;
  filer.setBinaryData(bytes.data(), static_cast<unsigned int>(bytes.size()));
  return true;
}

}  // namespace

void VdmProperties::writeToDbObject(OdDbObject* object) const {
  if (object == nullptr || object->database() == nullptr) return;
  const OdResBufPtr chain = OdResBuf::newRb(OdResBuf::kDxfRegAppName, kVdmRegApp);
  if (isEmpty()) {
    object->assertWriteEnabled();
    vdmu::eraseExtensionBytes(object, kVdmRegApp);
  } else {
    VdmFlatFiler filer;
    writeFlat(*this, filer, object);
    object->assertWriteEnabled();
    if (filer.getBinaryDataSize() < VdmFlatFiler::kMaxChunkSize) {
      filer.appendToResBuf(chain.get());
    } else {
      vdmu::storeExtensionBytes(object, kVdmRegApp, filer.getBinaryData());
    }
  }
  object->database()->newRegApp(kVdmRegApp);
  object->setXData(chain.get());
}

bool VdmProperties::readFromDbObject(const OdDbObject* object) {
  if (object == nullptr) return false;
  try {
    VdmFlatFiler filer;
    return readFlat(object, filer) && dwgInFields(&filer) == eOk;
  } catch (...) {
    return false;
  }
}
