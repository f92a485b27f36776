# Features: carriers and adapters, reactors, managers, names, the interface of the update pass.
list(APPEND VDM_DB_SOURCES
  features/vdm_db_feature_data.cpp
  features/vdm_db_feature_manager.cpp
  features/vdm_db_feature_manager_clone.cpp
  features/vdm_db_feature_manager_transaction.cpp
  features/vdm_db_iterator.cpp
  features/vdm_db_naming_policy_pe.cpp
  features/vdm_db_pers_id_reactor.cpp
  features/vdm_db_sheet_metal_context_pe.cpp
  features/vdm_feature.cpp
  features/vdm_feature_color_material.cpp
  features/vdm_feature_colors.cpp
  features/vdm_feature_manager_utils.cpp
  features/vdm_feature_pe.cpp
  features/vdm_feature_references.cpp
  features/vdm_matching_faces.cpp
  features/vdm_naming_service.cpp
  features/vdm_sheet_metal_source.cpp
  features/vdm_update_feature_interface.cpp
  features/vdm_update_feature_interface_layers.cpp
)
list(APPEND VDM_DB_HEADERS
  features/vdm_db_feature_data.h
  features/vdm_db_feature_manager.h
  features/vdm_db_feature_manager_transaction.h
  features/vdm_db_iterator.h
  features/vdm_db_naming_policy_pe.h
  features/vdm_db_pers_id_reactor.h
  features/vdm_db_sheet_metal_context_pe.h
  features/vdm_feature.h
  features/vdm_feature_colors.h
  features/vdm_feature_group_faces.h
  features/vdm_feature_impl.h
  features/vdm_feature_manager_utils.h
  features/vdm_feature_pe.h
  features/vdm_feature_results.h
  features/vdm_feature_validation_context.h
  features/vdm_matching_faces.h
  features/vdm_naming_service.h
  features/vdm_sheet_metal_source.h
  features/vdm_update_feature_interface.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  features/vdm_db_feature_manager_impl.h
  features/vdm_feature_color_material.h
  features/vdm_feature_reactor_walk.h
)
