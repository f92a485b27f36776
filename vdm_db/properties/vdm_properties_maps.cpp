// Typed operations of property bags for values that are maps.
#include "vdm_db/properties/vdm_properties_templates.h"

#define VDM_INSTANTIATE_BAG_MAPS(K)                          \
  VDM_INSTANTIATE_BAG_VALUE(std::map<K, VdmPropertyDataPtr>) \
  VDM_INSTANTIATE_BAG_VALUE(std::map<K, OdString>)           \
  VDM_INSTANTIATE_BAG_VALUE(std::map<K, OdLong>)             \
  VDM_INSTANTIATE_BAG_VALUE(std::map<K, double>)             \
  VDM_INSTANTIATE_BAG_VALUE(std::map<K, bool>)               \
  VDM_INSTANTIATE_BAG_VALUE(std::map<K, signed char>)        \
  VDM_INSTANTIATE_BAG_VALUE(std::map<K, OdDbHandle>)         \
  VDM_INSTANTIATE_BAG_VALUE(std::map<K, OdDbTypedId>)        \
  VDM_INSTANTIATE_BAG_VALUE(std::map<K, VdmBlob>)

VDM_INSTANTIATE_BAG_MAPS(OdString)
VDM_INSTANTIATE_BAG_MAPS(OdLong)
VDM_INSTANTIATE_BAG_MAPS(double)
VDM_INSTANTIATE_BAG_MAPS(bool)
VDM_INSTANTIATE_BAG_MAPS(signed char)
VDM_INSTANTIATE_BAG_MAPS(OdDbHandle)
VDM_INSTANTIATE_BAG_MAPS(OdDbTypedId)
#undef VDM_INSTANTIATE_BAG_MAPS

VDM_INSTANTIATE_BAG_MAPPING(std::map<OdString, OdString>)
VDM_INSTANTIATE_BAG_MAPPING(std::map<OdString, OdDbTypedId>)
VDM_INSTANTIATE_BAG_MAPPING(std::map<OdDbTypedId, bool>)
VDM_INSTANTIATE_BAG_MAPPING(std::map<OdDbTypedId, OdDbTypedId>)
