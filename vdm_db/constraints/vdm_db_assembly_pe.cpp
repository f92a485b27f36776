// The protocol extension of an assembly module.
#include "vdm_db/constraints/vdm_db_assembly_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmDbAssemblyPE, OdRxObject, L"VdmDbAssemblyPE")

bool VdmDbAssemblyPE::collectFromFeature(VdmFeature*, const VdmMatchingFaces&,
                                         VdmFeatureUpdateData&, VdmUpdateInfo&, bool) {
  return false;
}
