// State of feature managers.
#pragma once

#include "vdm_db/properties/vdm_db_properties_base.h"
#include "vdm_db/references/vdm_indexed_ids.h"

// Bag keys: "Features", "SheetMetalContext", "ColorPolicy", all hard ownership; "needEvaluate", a
// boolean that is there only while a feature waits.
class VdmDbFeatureManagerImpl : public VdmDbPropertiesBase {
 public:
  VdmDbFeatureManagerImpl();

  OdResult dwgInFields(OdDbDwgFiler* filer) override;

  VdmIndexedIds features;
  OdDbObjectId sheetMetalContext;
  OdDbObjectId colorPolicy;
};
