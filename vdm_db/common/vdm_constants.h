// Keys and names that the module stores: properties, dictionary entries, applications, layers.
#pragma once

#include "platform/base/string.h"
#include "vdm_db/common/vdm_db_export.h"

// Made when the module is loaded and destroyed when it is unloaded.
#define VDM_CONSTANT(name, text) VDM_DB_EXPORT extern const OdString name;
#include "vdm_db/common/vdm_constant_rows.inc"
#undef VDM_CONSTANT
