# Utilities of drawings: dictionaries, blocks, external references, reactors, display, transactions.
list(APPEND VDM_DB_SOURCES
  cloning/vdm_assoc_array_utils.cpp
  cloning/vdm_block_utils.cpp
  cloning/vdm_database_transaction.cpp
  cloning/vdm_dictionary_utils.cpp
  cloning/vdm_display_utils.cpp
  cloning/vdm_id_mappings.cpp
  cloning/vdm_long_transaction_utils.cpp
  cloning/vdm_reactor_utils.cpp
  cloning/vdm_remapping_bracket.cpp
  cloning/vdm_string_utils.cpp
  cloning/vdm_xref_utils.cpp
)
list(APPEND VDM_DB_HEADERS
  cloning/vdm_assoc_array_utils.h
  cloning/vdm_block_utils.h
  cloning/vdm_database_transaction.h
  cloning/vdm_database_utils.h
  cloning/vdm_dictionary_utils.h
  cloning/vdm_display_utils.h
  cloning/vdm_id_mappings.h
  cloning/vdm_iterator_utils.h
  cloning/vdm_long_transaction_utils.h
  cloning/vdm_reactor_utils.h
  cloning/vdm_remapping_bracket.h
  cloning/vdm_string_utils.h
  cloning/vdm_xref_utils.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  cloning/undo_recording_off.h
)
