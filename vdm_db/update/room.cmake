# The update pass: its data, driver and helper.
list(APPEND VDM_DB_SOURCES
  update/vdm_db_feature_manager_pass.cpp
  update/vdm_db_feature_manager_pe.cpp
  update/vdm_due_features.cpp
  update/vdm_feature_guard.cpp
  update/vdm_feature_update_data.cpp
  update/vdm_feature_update_data_features.cpp
  update/vdm_feature_update_data_helper.cpp
  update/vdm_feature_update_data_intake.cpp
  update/vdm_feature_update_data_remap.cpp
  update/vdm_feature_update_data_removal.cpp
  update/vdm_feature_update_driver.cpp
  update/vdm_update_context.cpp
  update/vdm_update_feature_interface_creation.cpp
  update/vdm_update_observer.cpp
)
list(APPEND VDM_DB_HEADERS
  update/vdm_db_feature_manager_pe.h
  update/vdm_feature_guard.h
  update/vdm_feature_subents_to_remove.h
  update/vdm_feature_update_data.h
  update/vdm_feature_update_data_helper.h
  update/vdm_feature_update_driver.h
  update/vdm_update_context.h
  update/vdm_update_observer.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  update/vdm_due_features.h
)
