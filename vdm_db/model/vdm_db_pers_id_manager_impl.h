// VdmDbPersIdManagerImpl: the state of a persistent id manager. For its own sources.
#pragma once

#include "vdm_db/properties/vdm_db_properties_base.h"
#include "vdm_db/references/vdm_indexed_ids.h"

/// A bag of version 1 that drops erased ids on save, with "deps" mapped to the list.
class VdmDbPersIdManagerImpl : public VdmDbPropertiesBase {
 public:
  VdmDbPersIdManagerImpl();

  VdmIndexedIds dependencies;

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
};
