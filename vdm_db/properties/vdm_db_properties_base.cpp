// Forwarding of implementation objects to their bags.
#include "vdm_db/properties/vdm_db_properties_base.h"

VdmDbPropertiesBase::VdmDbPropertiesBase() = default;
VdmDbPropertiesBase::VdmDbPropertiesBase(const VdmDbPropertiesBase& other) = default;
VdmDbPropertiesBase& VdmDbPropertiesBase::operator=(const VdmDbPropertiesBase& other) = default;
VdmDbPropertiesBase::~VdmDbPropertiesBase() = default;

void VdmDbPropertiesBase::dwgOutFields(OdDbDwgFiler* filer) const {
  m_properties.dwgOutFields(filer);
}
OdResult VdmDbPropertiesBase::dwgInFields(OdDbDwgFiler* filer) {
  return m_properties.dwgInFields(filer);
}
void VdmDbPropertiesBase::dxfOutFields(OdDbDxfFiler* filer) const {
  m_properties.dxfOutFields(filer);
}
OdResult VdmDbPropertiesBase::dxfInFields(OdDbDxfFiler* filer) {
  return m_properties.dxfInFields(filer);
}
