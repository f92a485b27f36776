# All of the naming benchmark but its main program, once for it, for its tests and for bench/update.
if(NOT TARGET vdm_naming_bench)
  set(sources carrier component_classes component_part component_play component_truth edits exchange families fates index_method judge label_method label_naming
      plan_bodies plan_carriers reference_drawing reference_method replacements report run shape_relation shapes
      signature_method stage truth)
  list(TRANSFORM sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
  list(TRANSFORM sources APPEND .cpp)
  add_library(vdm_naming_bench STATIC ${sources})
  target_include_directories(vdm_naming_bench PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(vdm_naming_bench PUBLIC
                        host::modeling host::naming nlohmann_json::nlohmann_json occt::ocaf platform::runtime
                        platform::modeler platform::modeler_occt platform::rx
                        platform::storage vdm::vdm_db)
  target_compile_definitions(vdm_naming_bench PRIVATE
                             VDM_MODULE_FILE="$<TARGET_FILE:vdm_db>"
                             VDM_HOST_MODULE_FILE="$<TARGET_FILE:vdm_host_module>")
  _vdm_configure_target(vdm_naming_bench)
  add_dependencies(vdm_naming_bench platform_modeler_occt_step vdm_host_module)  # loaded, not linked
endif()
