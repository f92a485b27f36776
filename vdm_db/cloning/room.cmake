# The bracket around remapping.
list(APPEND VDM_DB_SOURCES
  cloning/vdm_remapping_operation_bracket.cpp
)
list(APPEND VDM_DB_HEADERS
  cloning/vdm_remapping_operation_bracket.h
)
