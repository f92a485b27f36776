# Module entry, class table, constants.
list(APPEND VDM_DB_SOURCES
  module/vdm_class_table.cpp
  module/vdm_constants.cpp
  module/vdm_db_module.cpp)
list(APPEND VDM_DB_HEADERS
  module/vdm_class_registration.h
  module/vdm_constant_rows.inc
  module/vdm_constants.h)
list(APPEND VDM_DB_PRIVATE_HEADERS
  module/vdm_class_table.h
  module/vdm_db_module.h)
