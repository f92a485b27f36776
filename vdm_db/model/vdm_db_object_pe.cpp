// The protocol extension that hears of model objects' entities.
#include "vdm_db/model/vdm_db_object_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmDbObjectPE, OdRxObject, L"VdmDbObjectPE")
