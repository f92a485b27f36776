# Instance trees.
list(APPEND VDM_DB_SOURCES
  instances/vdm_instance_tree.cpp
)
list(APPEND VDM_DB_HEADERS
  instances/vdm_instance_tree.h
)
