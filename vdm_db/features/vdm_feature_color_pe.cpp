// The protocol extension for the colours of a feature class.
#include "vdm_db/features/vdm_feature_color_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmFeatureColorPE, OdRxObject, L"VdmFeatureColorPE")
