# Paths to entities and subentities, compound ids, handles of drawings, maps over them.
list(APPEND VDM_DB_SOURCES
  references/vdm_clone_mapping.cpp
  references/vdm_compound_object_id.cpp
  references/vdm_database_handles.cpp
  references/vdm_dependencies_replacement_map.cpp
  references/vdm_index_map.cpp
  references/vdm_indexed_ids.cpp
  references/vdm_path_utils.cpp
  references/vdm_path_utils_compare.cpp
)
list(APPEND VDM_DB_HEADERS
  references/vdm_clone_mapping.h
  references/vdm_compound_object_id.h
  references/vdm_database_handles.h
  references/vdm_dependencies_replacement_map.h
  references/vdm_extended_path.h
  references/vdm_index_map.h
  references/vdm_indexed_ids.h
  references/vdm_path_utils.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  references/vdm_path_hash.h
  references/vdm_subent_letters.h
)
