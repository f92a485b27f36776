// The run-time class of managers' extensions.
#include "vdm_db/update/vdm_db_feature_manager_pe.h"

#include "vdm_db/update/vdm_feature_update_data_helper.h"

OD_RX_DEFINE_ABSTRACT(VdmDbFeatureManagerPE, OdRxObject, L"VdmDbFeatureManagerPE")
