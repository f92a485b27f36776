// Encodings of maps with number keys.
#include "vdm_db/properties/vdm_property_encoding.h"

VDM_INSTANTIATE_MAPS(OdLong)
VDM_INSTANTIATE_MAPS(double)
VDM_INSTANTIATE_MAPS(bool)
VDM_INSTANTIATE_MAPS(signed char)
