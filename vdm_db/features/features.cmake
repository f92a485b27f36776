# Feature objects: features and their carriers, reactors, managers, references, names.
list(APPEND VDM_DB_SOURCES
  features/vdm_db_feature_data.cpp
  features/vdm_db_feature_manager.cpp
  features/vdm_db_feature_manager_clone.cpp
  features/vdm_db_feature_manager_pass.cpp
  features/vdm_db_feature_manager_pe.cpp
  features/vdm_db_feature_manager_transaction.cpp
  features/vdm_db_feature_reactor.cpp
  features/vdm_db_iterator.cpp
  features/vdm_db_naming_policy_pe.cpp
  features/vdm_feature.cpp
  features/vdm_feature_manager_utils.cpp
  features/vdm_feature_pe.cpp
  features/vdm_feature_references.cpp
  features/vdm_naming_service.cpp
)
list(APPEND VDM_DB_HEADERS
  features/vdm_db_feature_data.h
  features/vdm_db_feature_manager.h
  features/vdm_db_feature_manager_pe.h
  features/vdm_db_feature_manager_transaction.h
  features/vdm_db_feature_reactor.h
  features/vdm_db_iterator.h
  features/vdm_db_naming_policy_pe.h
  features/vdm_feature.h
  features/vdm_feature_group_faces.h
  features/vdm_feature_impl.h
  features/vdm_feature_manager_utils.h
  features/vdm_feature_pe.h
  features/vdm_feature_results.h
  features/vdm_feature_validation_context.h
  features/vdm_naming_service.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  features/vdm_db_feature_manager_impl.h
  features/vdm_feature_reactor_walk.h
)
