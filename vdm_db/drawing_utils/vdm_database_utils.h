// The utilities of drawings, family by family.
#pragma once

#include "vdm_db/drawing_utils/vdm_assoc_action_utils.h"
#include "vdm_db/drawing_utils/vdm_assoc_array_utils.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_db_database_transaction.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_display_utils.h"
#include "vdm_db/drawing_utils/vdm_iterator_utils.h"
#include "vdm_db/drawing_utils/vdm_long_transaction_utils.h"
#include "vdm_db/drawing_utils/vdm_parameter_copy_mode.h"
#include "vdm_db/drawing_utils/vdm_reactor_utils.h"
#include "vdm_db/drawing_utils/vdm_res_buf_utils.h"
#include "vdm_db/drawing_utils/vdm_string_utils.h"
#include "vdm_db/drawing_utils/vdm_xref_utils.h"
