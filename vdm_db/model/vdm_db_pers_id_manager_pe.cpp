// The protocol extension that finds geometry again.
#include "vdm_db/model/vdm_db_pers_id_manager_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmDbPersIdManagerPE, OdRxObject, L"VdmDbPersIdManagerPE")
