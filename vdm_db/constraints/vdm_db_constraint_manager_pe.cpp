// The protocol extension of a solver's module.
#include "vdm_db/constraints/vdm_db_constraint_manager_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmDbConstraintManagerPE, OdRxObject, L"VdmDbConstraintManagerPE")
