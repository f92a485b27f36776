// Where an object keeps its properties.
#include "host/cli/property_home.h"

#include "host/cli/cli_error.h"
#include "host/cli/text_output.h"
#include "platform/db/dictionary.h"
#include "platform/filer/memory_filer.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/properties/vdm_db_extension_data.h"

namespace cli {

namespace {

bool hasOwnBag(const OdDbObject& object) {
  return VdmDbExtensionData::desc() != nullptr && object.isKindOf(VdmDbExtensionData::desc());
}

/// There is something at the place of a bag, readable or not.
bool carriesBag(const OdDbObject& object) {
  const OdResBufPtr data = object.xData(kVdmRegApp);
  if (!data.isNull() && !data->next().isNull()) return true;
  const auto dictionary = object.extensionDictionary().openAs<OdDbDictionary>();
  return !dictionary.isNull() && dictionary->has(kVdmRegApp);
}

}  // namespace

std::string PropertyHome::name() const { return str(m_object->getDbHandle()); }

bool PropertyHome::keepsIds() const { return hasOwnBag(*m_object); }

VdmProperties PropertyHome::read() const {
  if (hasOwnBag(*m_object)) {
    return static_cast<const VdmDbExtensionData&>(*m_object).properties();
  }
  VdmProperties properties;
  if (!properties.readFromDbObject(m_object) && carriesBag(*m_object)) {
    throw CliError("the properties of object " + name() + " cannot be read");
  }
  return properties;
}

void PropertyHome::write(const VdmProperties& properties) {
  if (hasOwnBag(*m_object)) {
    static_cast<VdmDbExtensionData&>(*m_object).propertiesForWrite() = properties;
    return;
  }
  properties.writeToDbObject(m_object);
}

}  // namespace cli
