# What every room uses: named constants, registration of classes, export marks, hashing of ids.
list(APPEND VDM_DB_SOURCES
  common/vdm_constants.cpp
)
list(APPEND VDM_DB_HEADERS
  common/vdm_class_registration.h
  common/vdm_constant_rows.inc
  common/vdm_constants.h
  common/vdm_db_export.h
  common/vdm_object_id_hash.h
)
