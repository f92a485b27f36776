// Typed operations of property bags for values that are maps.
#include "vdm_db/properties/vdm_properties_templates.h"
#include "vdm_db/properties/vdm_property_type_rows.h"

#define VDM_INSTANTIATE_BAG_MAP(V, K) VDM_INSTANTIATE_BAG_VALUE(std::map<K, V>)
#define VDM_INSTANTIATE_BAG_MAPS(K) VDM_ELEMENT_TYPE_ROWS(VDM_INSTANTIATE_BAG_MAP, K)
VDM_PLAIN_TYPE_ROWS(VDM_INSTANTIATE_BAG_MAPS)
#undef VDM_INSTANTIATE_BAG_MAPS
#undef VDM_INSTANTIATE_BAG_MAP

// Only these maps are mapped onto variables.
VDM_INSTANTIATE_BAG_MAPPING(std::map<OdString, OdString>)
VDM_INSTANTIATE_BAG_MAPPING(std::map<OdString, OdDbTypedId>)
VDM_INSTANTIATE_BAG_MAPPING(std::map<OdDbTypedId, bool>)
VDM_INSTANTIATE_BAG_MAPPING(std::map<OdDbTypedId, OdDbTypedId>)
