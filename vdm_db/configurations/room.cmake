# Tables of configurations, and the feature that applies their rows.
list(APPEND VDM_DB_SOURCES
  configurations/vdm_cell_number.cpp
  configurations/vdm_configuration_feature.cpp
  configurations/vdm_configuration_feature_selection.cpp
  configurations/vdm_configuration_feature_variables.cpp
  configurations/vdm_configuration_load.cpp
  configurations/vdm_configuration_match.cpp
  configurations/vdm_configuration_roles.cpp
  configurations/vdm_db_config_var_reactor.cpp
  configurations/vdm_db_configuration_table.cpp
  configurations/vdm_db_configuration_table_rows.cpp
  configurations/vdm_name_order.cpp
)
list(APPEND VDM_DB_HEADERS
  configurations/vdm_configuration_cells.h
  configurations/vdm_configuration_feature.h
  configurations/vdm_configuration_match.h
  configurations/vdm_db_config_var_reactor.h
  configurations/vdm_db_configuration_table.h
  configurations/vdm_name_order.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  configurations/vdm_cell_number.h
  configurations/vdm_configuration_load.h
  configurations/vdm_configuration_results.h
  configurations/vdm_configuration_roles.h
)
