# What an entity was made from: its association attribute, and the hooks of the module that uses it.
list(APPEND VDM_DB_SOURCES
  associations/vdm_assoc_utils.cpp
  associations/vdm_entity_assoc_attribute.cpp
)
list(APPEND VDM_DB_HEADERS
  associations/vdm_assoc_utils.h
  associations/vdm_entity_assoc_attribute.h
)
