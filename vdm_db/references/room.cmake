# Compound ids, subentity paths, stable handles, index maps.
list(APPEND VDM_DB_SOURCES
  references/vdm_compound_object_id.cpp
  references/vdm_database_handles.cpp
  references/vdm_index_map.cpp
  references/vdm_path_compare.cpp
  references/vdm_path_utils.cpp
)
list(APPEND VDM_DB_HEADERS
  references/vdm_compound_object_id.h
  references/vdm_database_handles.h
  references/vdm_extended_path.h
  references/vdm_index_map.h
  references/vdm_object_id_hash.h
  references/vdm_path_utils.h
)
