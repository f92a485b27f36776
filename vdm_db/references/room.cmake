# Compound ids, subentity paths, stable handles, index maps; dependencies, model objects, persistent
# id managers.
list(APPEND VDM_DB_SOURCES
  references/vdm_compound_object_id.cpp
  references/vdm_database_handles.cpp
  references/vdm_db_object.cpp
  references/vdm_db_object_dependencies.cpp
  references/vdm_db_object_dependency.cpp
  references/vdm_db_object_impl.cpp
  references/vdm_db_pers_id_links.cpp
  references/vdm_db_pers_id_manager.cpp
  references/vdm_db_pers_id_reactor.cpp
  references/vdm_db_pers_id_remap.cpp
  references/vdm_dependencies_replacement_map.cpp
  references/vdm_index_map.cpp
  references/vdm_indexed_ids.cpp
  references/vdm_path_compare.cpp
  references/vdm_path_utils.cpp
)
list(APPEND VDM_DB_HEADERS
  references/vdm_compound_object_id.h
  references/vdm_database_handles.h
  references/vdm_db_object.h
  references/vdm_db_object_dependency.h
  references/vdm_db_object_pe.h
  references/vdm_db_pers_id_manager.h
  references/vdm_db_pers_id_manager_pe.h
  references/vdm_db_pers_id_reactor.h
  references/vdm_dependencies_replacement_map.h
  references/vdm_extended_path.h
  references/vdm_index_map.h
  references/vdm_indexed_ids.h
  references/vdm_object_id_hash.h
  references/vdm_path_utils.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  references/vdm_db_object_impl.h
  references/vdm_db_pers_id_manager_impl.h
  references/vdm_open_upgrade.h
  references/vdm_path_hash.h
)
