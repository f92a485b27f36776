# Copies of blocks with their managers, check-in of managers, variables of clones, the bracket around
# remapping.
list(APPEND VDM_DB_SOURCES
  cloning/vdm_assoc_variable_cloning_watcher.cpp
  cloning/vdm_check_in.cpp
  cloning/vdm_clone_utils.cpp
  cloning/vdm_model_cloning.cpp
  cloning/vdm_remapping_operation_bracket.cpp
  cloning/vdm_variable_cleanup.cpp
)
list(APPEND VDM_DB_HEADERS
  cloning/vdm_assoc_variable_cloning_watcher.h
  cloning/vdm_check_in.h
  cloning/vdm_clone_utils.h
  cloning/vdm_model_cloning.h
  cloning/vdm_remapping_operation_bracket.h
  cloning/vdm_variable_cleanup.h
)
