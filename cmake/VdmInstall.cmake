# Installed package: `find_package(vdm_db)` gives the aliases that the tree itself uses.
include(CMakePackageConfigHelpers)

set(vdm_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/vdm_db")
configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/vdm_dbConfig.cmake.in" "${PROJECT_BINARY_DIR}/vdm_dbConfig.cmake"
  INSTALL_DESTINATION "${vdm_package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/vdm_dbConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/vdm_dbConfig.cmake"
              "${PROJECT_BINARY_DIR}/vdm_dbConfigVersion.cmake"
        DESTINATION "${vdm_package_dir}")

get_property(vdm_targets GLOBAL PROPERTY VDM_TARGETS)
if(vdm_targets)
  install(EXPORT vdm_dbTargets DESTINATION "${vdm_package_dir}")
endif()
