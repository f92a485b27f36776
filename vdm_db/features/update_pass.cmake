# The update pass: its data, driver and helper, and the interface of features on solids.
list(APPEND VDM_DB_SOURCES
  features/vdm_feature_update_data.cpp
  features/vdm_feature_update_data_helper.cpp
  features/vdm_feature_update_driver.cpp
  features/vdm_feature_update_intake.cpp
  features/vdm_feature_update_remap.cpp
  features/vdm_feature_update_removal.cpp
  features/vdm_matching_faces.cpp
  features/vdm_update_feature_creation.cpp
  features/vdm_update_feature_interface.cpp
  features/vdm_update_feature_layers.cpp
)
list(APPEND VDM_DB_HEADERS
  features/vdm_feature_subents_to_remove.h
  features/vdm_feature_update_data.h
  features/vdm_feature_update_data_helper.h
  features/vdm_feature_update_driver.h
  features/vdm_matching_faces.h
  features/vdm_update_feature_interface.h
  features/vdm_update_observer.h
)
