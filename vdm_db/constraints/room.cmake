# Constraints: the record, their manager, the extensions that a solver's module attaches.
list(APPEND VDM_DB_SOURCES
  constraints/vdm_constraint.cpp
  constraints/vdm_constraint_cleanup.cpp
  constraints/vdm_constraint_filing.cpp
  constraints/vdm_constraint_flip.cpp
  constraints/vdm_constraint_manager_services.cpp
  constraints/vdm_constraint_names.cpp
  constraints/vdm_constraint_orientation.cpp
  constraints/vdm_constraint_properties_utils.cpp
  constraints/vdm_constraint_roles.cpp
  constraints/vdm_constraint_utils.cpp
  constraints/vdm_constraint_variable.cpp
  constraints/vdm_db_assembly_pe.cpp
  constraints/vdm_db_constraint_manager.cpp
  constraints/vdm_db_constraint_manager_arguments.cpp
  constraints/vdm_db_constraint_manager_audit.cpp
  constraints/vdm_db_constraint_manager_clone.cpp
  constraints/vdm_db_constraint_manager_creation.cpp
  constraints/vdm_db_constraint_manager_filing.cpp
  constraints/vdm_db_constraint_manager_merge.cpp
  constraints/vdm_db_constraint_manager_pe.cpp
  constraints/vdm_db_constraint_manager_registry.cpp
  constraints/vdm_db_constraint_manager_status.cpp
  constraints/vdm_db_constraint_manager_variables.cpp
  constraints/vdm_db_variable_reactor.cpp
  constraints/vdm_taken_names.cpp
)
list(APPEND VDM_DB_HEADERS
  constraints/vdm_constraint.h
  constraints/vdm_constraint_cleanup.h
  constraints/vdm_constraint_manager_services.h
  constraints/vdm_constraint_names.h
  constraints/vdm_constraint_orientation.h
  constraints/vdm_constraint_properties_utils.h
  constraints/vdm_constraint_utils.h
  constraints/vdm_db_assembly_pe.h
  constraints/vdm_db_constraint_manager.h
  constraints/vdm_db_constraint_manager_pe.h
  constraints/vdm_db_variable_reactor.h
  constraints/vdm_taken_names.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  constraints/vdm_constraint_roles.h
  constraints/vdm_db_constraint_manager_names.h
)
