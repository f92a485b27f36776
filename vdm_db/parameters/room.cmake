# Parameters: variables of a block, their values, names, walks, evaluation, attributes and units.
list(APPEND VDM_DB_SOURCES
  parameters/vdm_assoc_variable_ext.cpp
  parameters/vdm_cv_unit_interface.cpp
  parameters/vdm_measurement.cpp
  parameters/vdm_variable_evaluation.cpp
  parameters/vdm_variable_names.cpp
  parameters/vdm_variable_roles.cpp
  parameters/vdm_variable_values.cpp
  parameters/vdm_variable_walks.cpp
)
list(APPEND VDM_DB_HEADERS
  parameters/vdm_assoc_variable_ext.h
  parameters/vdm_cv_unit_interface.h
  parameters/vdm_variable_evaluation.h
  parameters/vdm_variable_names.h
  parameters/vdm_variable_roles.h
  parameters/vdm_variable_values.h
  parameters/vdm_variable_walks.h
)
