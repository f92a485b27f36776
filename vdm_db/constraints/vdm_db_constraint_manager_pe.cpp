// The protocol extensions that a solver's and an assembly module attach.
#include "vdm_db/constraints/vdm_db_constraint_manager_pe.h"

#include "vdm_db/constraints/vdm_db_assembly_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmDbConstraintManagerPE, OdRxObject, L"VdmDbConstraintManagerPE")
OD_RX_DEFINE_ABSTRACT(VdmDbAssemblyPE, OdRxObject, L"VdmDbAssemblyPE")

bool VdmDbAssemblyPE::collectFromFeature(VdmFeature*, const VdmMatchingFaces&,
                                         VdmFeatureUpdateData&, VdmUpdateInfo&, bool) {
  return false;
}
