// VdmDbPropertiesBase: base of the implementation objects, a property bag with its filing.
#pragma once

#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_properties.h"

// Every filed class of the module keeps its state in an object derived from this one, which it
// owns. The operations forward to the bag and give its results.
class VDM_DB_EXPORT VdmDbPropertiesBase {
 public:
  VdmDbPropertiesBase();
  // The bags share their values, as copies of bags do.
  VdmDbPropertiesBase(const VdmDbPropertiesBase& other);
  VdmDbPropertiesBase& operator=(const VdmDbPropertiesBase& other);
  virtual ~VdmDbPropertiesBase();

  VdmProperties& properties() { return m_properties; }
  const VdmProperties& properties() const { return m_properties; }

  virtual void dwgOutFields(OdDbDwgFiler* filer) const;
  virtual OdResult dwgInFields(OdDbDwgFiler* filer);
  virtual void dxfOutFields(OdDbDxfFiler* filer) const;
  virtual OdResult dxfInFields(OdDbDxfFiler* filer);

 protected:
  VdmProperties m_properties;
};
