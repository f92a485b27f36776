# Features that bind entities: groups, differences, suppression.
list(APPEND VDM_DB_SOURCES
  features/vdm_group_feature.cpp
  features/vdm_suppress_feature.cpp
)
list(APPEND VDM_DB_HEADERS
  features/vdm_group_feature.h
  features/vdm_suppress_feature.h
)
