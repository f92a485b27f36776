// Special members of VdmDataExtension, whose table of virtual functions lies here.
#include "vdm_db/properties/vdm_data_extension.h"

VdmDataExtension::VdmDataExtension() = default;
VdmDataExtension::VdmDataExtension(const VdmDataExtension& other) = default;
VdmDataExtension& VdmDataExtension::operator=(const VdmDataExtension& other) = default;
VdmDataExtension::~VdmDataExtension() = default;
