# Parameters: variables of a block, their values, names, walks and evaluation.
list(APPEND VDM_DB_SOURCES
  parameters/vdm_variable_evaluation.cpp
  parameters/vdm_variable_names.cpp
  parameters/vdm_variable_roles.cpp
  parameters/vdm_variable_values.cpp
  parameters/vdm_variable_walks.cpp
)
list(APPEND VDM_DB_HEADERS
  parameters/vdm_variable_evaluation.h
  parameters/vdm_variable_names.h
  parameters/vdm_variable_roles.h
  parameters/vdm_variable_values.h
  parameters/vdm_variable_walks.h
)
