# Features that bind entities: groups, differences, suppression, threads, tracking, drafting groups.
list(APPEND VDM_DB_SOURCES
  concrete_features/vdm_diff_feature.cpp
  concrete_features/vdm_drafting_group_feature.cpp
  concrete_features/vdm_group_feature.cpp
  concrete_features/vdm_suppress_feature.cpp
  concrete_features/vdm_suppress_roles.cpp
  concrete_features/vdm_thread_feature.cpp
  concrete_features/vdm_tracking_feature.cpp
)
list(APPEND VDM_DB_HEADERS
  concrete_features/vdm_diff_feature.h
  concrete_features/vdm_drafting_group_feature.h
  concrete_features/vdm_group_feature.h
  concrete_features/vdm_suppress_feature.h
  concrete_features/vdm_thread_feature.h
  concrete_features/vdm_tracking_feature.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  concrete_features/vdm_suppress_roles.h
)
