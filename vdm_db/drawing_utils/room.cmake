# Utilities of drawings: dictionaries, blocks, external references, reactors, display,
# transactions, id mappings, scope guards.
list(APPEND VDM_DB_SOURCES
  drawing_utils/vdm_assoc_action_utils.cpp
  drawing_utils/vdm_assoc_array_utils.cpp
  drawing_utils/vdm_auto_save_solid_properties.cpp
  drawing_utils/vdm_block_utils.cpp
  drawing_utils/vdm_db_database_transaction.cpp
  drawing_utils/vdm_db_id_mapping.cpp
  drawing_utils/vdm_db_reverse_id_mapping.cpp
  drawing_utils/vdm_dictionary_utils.cpp
  drawing_utils/vdm_display_utils.cpp
  drawing_utils/vdm_long_transaction_utils.cpp
  drawing_utils/vdm_parameter_copy_mode.cpp
  drawing_utils/vdm_reactor_utils.cpp
  drawing_utils/vdm_res_buf_utils.cpp
  drawing_utils/vdm_string_utils.cpp
  drawing_utils/vdm_xref_utils.cpp
)
list(APPEND VDM_DB_HEADERS
  drawing_utils/vdm_assoc_action_utils.h
  drawing_utils/vdm_assoc_array_utils.h
  drawing_utils/vdm_auto_save_solid_properties.h
  drawing_utils/vdm_block_utils.h
  drawing_utils/vdm_database_utils.h
  drawing_utils/vdm_db_database_transaction.h
  drawing_utils/vdm_db_id_mapping.h
  drawing_utils/vdm_db_reverse_id_mapping.h
  drawing_utils/vdm_dictionary_utils.h
  drawing_utils/vdm_display_utils.h
  drawing_utils/vdm_iterator_utils.h
  drawing_utils/vdm_long_transaction_utils.h
  drawing_utils/vdm_parameter_copy_mode.h
  drawing_utils/vdm_reactor_utils.h
  drawing_utils/vdm_res_buf_utils.h
  drawing_utils/vdm_string_utils.h
  drawing_utils/vdm_xref_utils.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  drawing_utils/undo_recording_off.h
  drawing_utils/vdm_erase_utils.h
  drawing_utils/vdm_handle_text.h
  drawing_utils/vdm_layer_utils.h
  drawing_utils/vdm_object_id_class.h
  drawing_utils/vdm_open_upgrade.h
)
