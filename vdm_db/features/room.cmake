# Features: objects, reactors, manager, update pass.
include(${CMAKE_CURRENT_LIST_DIR}/features.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/group_features.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/update_pass.cmake)
