# Model objects of entities, dependencies and their managers, the base of feature reactors.
list(APPEND VDM_DB_SOURCES
  model/vdm_block_managers.cpp
  model/vdm_db_feature_reactor.cpp
  model/vdm_db_object.cpp
  model/vdm_db_object_dependencies.cpp
  model/vdm_db_object_dependency.cpp
  model/vdm_db_object_dependency_filing.cpp
  model/vdm_db_object_impl.cpp
  model/vdm_db_object_pe.cpp
  model/vdm_db_pers_id_manager.cpp
  model/vdm_db_pers_id_manager_clone.cpp
  model/vdm_db_pers_id_manager_impl.cpp
  model/vdm_db_pers_id_manager_links.cpp
  model/vdm_db_pers_id_manager_pe.cpp
  model/vdm_db_pers_id_manager_remap.cpp
  model/vdm_dependency_paths.cpp
  model/vdm_object_names.cpp
  model/vdm_reference_notes.cpp
)
list(APPEND VDM_DB_HEADERS
  model/vdm_bag_with_ids.h
  model/vdm_block_managers.h
  model/vdm_db_feature_reactor.h
  model/vdm_db_object.h
  model/vdm_db_object_dependency.h
  model/vdm_db_object_pe.h
  model/vdm_db_pers_id_manager.h
  model/vdm_db_pers_id_manager_pe.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  model/vdm_db_object_impl.h
  model/vdm_db_pers_id_manager_impl.h
  model/vdm_dependency_paths.h
  model/vdm_exchanged_ids.h
  model/vdm_merge_context.h
  model/vdm_reference_notes.h
  model/vdm_object_names.h
)
