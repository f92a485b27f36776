// The utilities of drawings, family by family.
#pragma once

#include "vdm_db/cloning/vdm_assoc_array_utils.h"
#include "vdm_db/cloning/vdm_block_utils.h"
#include "vdm_db/cloning/vdm_database_transaction.h"
#include "vdm_db/cloning/vdm_dictionary_utils.h"
#include "vdm_db/cloning/vdm_display_utils.h"
#include "vdm_db/cloning/vdm_iterator_utils.h"
#include "vdm_db/cloning/vdm_long_transaction_utils.h"
#include "vdm_db/cloning/vdm_reactor_utils.h"
#include "vdm_db/cloning/vdm_string_utils.h"
#include "vdm_db/cloning/vdm_xref_utils.h"
