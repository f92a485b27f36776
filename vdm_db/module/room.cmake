# Module entry and class table.
list(APPEND VDM_DB_SOURCES
  module/vdm_class_table.cpp
  module/vdm_db_module.cpp
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  module/vdm_class_table.h
  module/vdm_db_module.h
)
