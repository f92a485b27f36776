// Registration of VdmPropertiesPE.
#include "vdm_db/properties/vdm_properties_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmPropertiesPE, OdRxObject, L"VdmPropertiesPE")
