// Encodings of maps with text and identity keys.
#include "vdm_db/properties/vdm_property_encoding.h"

VDM_INSTANTIATE_MAPS(OdString)
VDM_INSTANTIATE_MAPS(OdDbHandle)
VDM_INSTANTIATE_MAPS(OdDbTypedId)
