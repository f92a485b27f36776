# Utilities of drawings: dictionaries, blocks, external references, reactors, display,
# transactions, id mappings, scope guards.
list(APPEND VDM_DB_SOURCES
  drawing_utils/vdm_assoc_array_utils.cpp
  drawing_utils/vdm_auto_save_solid_properties.cpp
  drawing_utils/vdm_block_utils.cpp
  drawing_utils/vdm_database_transaction.cpp
  drawing_utils/vdm_dictionary_utils.cpp
  drawing_utils/vdm_display_utils.cpp
  drawing_utils/vdm_id_mappings.cpp
  drawing_utils/vdm_long_transaction_utils.cpp
  drawing_utils/vdm_reactor_utils.cpp
  drawing_utils/vdm_string_utils.cpp
  drawing_utils/vdm_xref_utils.cpp
)
list(APPEND VDM_DB_HEADERS
  drawing_utils/vdm_assoc_array_utils.h
  drawing_utils/vdm_auto_save_solid_properties.h
  drawing_utils/vdm_block_utils.h
  drawing_utils/vdm_database_transaction.h
  drawing_utils/vdm_database_utils.h
  drawing_utils/vdm_dictionary_utils.h
  drawing_utils/vdm_display_utils.h
  drawing_utils/vdm_id_mappings.h
  drawing_utils/vdm_iterator_utils.h
  drawing_utils/vdm_long_transaction_utils.h
  drawing_utils/vdm_reactor_utils.h
  drawing_utils/vdm_string_utils.h
  drawing_utils/vdm_xref_utils.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  drawing_utils/undo_recording_off.h
  drawing_utils/vdm_open_upgrade.h
)
