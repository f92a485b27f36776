# Functions that declare the targets of this tree: folders, libraries, executables, tests.
#
# Every header of a target stands in its HEADERS (installed) or PRIVATE_HEADERS list; the
# architecture tests read these lists back through the global properties
#   VDM_TARGETS             all targets declared here
#   VDM_HEADERS_<target>    headers of one target, relative to the repository root

# Modules are loaded from folders that only their owner may write, whatever the umask.
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# vdm_add_folders(<folder>...): adds each folder, in the given order. A folder without a build file
# is an error.
function(vdm_add_folders)
  foreach(folder IN LISTS ARGN)
    add_subdirectory("${folder}")
  endforeach()
endfunction()

# What all targets share: warnings, instrumentation, repository root as include folder.
function(_vdm_configure_target target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_compile_options(${target} PRIVATE ${vdm_warnings} ${vdm_instrumentation})
  target_link_options(${target} PRIVATE ${vdm_link_options} ${vdm_instrumentation})
  if(VDM_TIDY)
    set_target_properties(${target} PROPERTIES CXX_CLANG_TIDY "${VDM_CLANG_TIDY}")
  endif()
endfunction()

# Remembers the headers of a target, relative to the repository root.
function(_vdm_record_headers target)
  set(headers)
  foreach(header IN LISTS ARGN)
    cmake_path(ABSOLUTE_PATH header BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    cmake_path(RELATIVE_PATH header BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
    list(APPEND headers "${header}")
  endforeach()
  set_property(GLOBAL APPEND PROPERTY VDM_TARGETS ${target})
  set_property(GLOBAL PROPERTY VDM_HEADERS_${target} "${headers}")
endfunction()

# The folders in which an installed target looks for its libraries, in the build tree too. A path
# that the installation rewrites is padded with ":" at the end of the build, and the dynamic linker
# takes such an empty entry for the current folder.
function(_vdm_set_library_path target path)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${path}"
                                             BUILD_WITH_INSTALL_RPATH ON)
endfunction()

# The loader refuses modules that others may write, and the umask of a build may allow just that.
function(_vdm_close_module_to_others target)
  add_custom_command(TARGET ${target} POST_BUILD VERBATIM
                     COMMAND chmod go-w "$<TARGET_FILE:${target}>" "$<TARGET_FILE_DIR:${target}>")
endfunction()

function(_vdm_refuse_unknown_arguments name unparsed)
  if(unparsed)
    message(FATAL_ERROR "${name}: unknown arguments: ${unparsed}")
  endif()
endfunction()

set(vdm_library_options -fno-semantic-interposition -fno-plt)

# Owns the precompiled headers of the libraries.
if(VDM_PRECOMPILED_HEADERS)
  add_library(vdm_library_headers OBJECT "${CMAKE_CURRENT_LIST_DIR}/precompiled.cpp")
  _vdm_configure_target(vdm_library_headers)
  target_compile_options(vdm_library_headers PRIVATE ${vdm_library_options})
  _vdm_precompile(vdm_library_headers)
endif()

# vdm_add_library(<target> ALIAS <namespace::name>
#                 [OUTPUT_NAME <file>]       whole file name, for a module with its own extension
#                 [HIDDEN_VISIBILITY]        export only what the code marks
#                 [PRECOMPILE <header>...]   headers of a precompiled set of its own; without them
#                                            it shares that of the standard library
#                 SOURCES <file>... [HEADERS <file>...] [PRIVATE_HEADERS <file>...]
#                 [PUBLIC_LINKS <target>...] [PRIVATE_LINKS <target>...])
# One shared library of one folder, installed and exported under its alias.
function(vdm_add_library target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "HIDDEN_VISIBILITY" "ALIAS;OUTPUT_NAME"
                        "SOURCES;HEADERS;PRIVATE_HEADERS;PUBLIC_LINKS;PRIVATE_LINKS;PRECOMPILE")
  _vdm_refuse_unknown_arguments("vdm_add_library(${target})" "${arg_UNPARSED_ARGUMENTS}")
  if(NOT arg_ALIAS OR NOT arg_SOURCES)
    message(FATAL_ERROR "vdm_add_library(${target}): ALIAS and SOURCES are required")
  endif()

  add_library(${target} SHARED ${arg_SOURCES} ${arg_PRIVATE_HEADERS})
  add_library(${arg_ALIAS} ALIAS ${target})
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}"
                                  FILES ${arg_HEADERS})
  target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
  target_link_libraries(${target} PUBLIC ${arg_PUBLIC_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
  _vdm_configure_target(${target})
  _vdm_record_headers(${target} ${arg_HEADERS} ${arg_PRIVATE_HEADERS})

  # Calls inside one library need no detour through the dynamic linker's tables.
  target_compile_options(${target} PRIVATE ${vdm_library_options})
  set_target_properties(${target} PROPERTIES EXPORT_NAME "${arg_ALIAS}")
  _vdm_set_library_path(${target} "$ORIGIN")
  if(arg_PRECOMPILE)
    _vdm_precompile(${target} ${arg_PRECOMPILE})
  else()
    _vdm_share_precompiled(${target} vdm_library_headers)
  endif()
  if(arg_HIDDEN_VISIBILITY)
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden
                                               VISIBILITY_INLINES_HIDDEN ON)
  endif()
  if(arg_OUTPUT_NAME)
    set_target_properties(${target} PROPERTIES OUTPUT_NAME "${arg_OUTPUT_NAME}" PREFIX "" SUFFIX "")
    _vdm_close_module_to_others(${target})
  endif()

  install(TARGETS ${target} EXPORT vdm_dbTargets
          LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
          FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/vdm_db")
endfunction()

# vdm_add_executable(<target> [OUTPUT_NAME <name>] [INSTALL] SOURCES <file>... [HEADERS <file>...]
#                    [LINKS <target>...])
# A program in the bin folder; with INSTALL it finds its libraries relative to itself.
function(vdm_add_executable target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "INSTALL" "OUTPUT_NAME" "SOURCES;HEADERS;LINKS")
  _vdm_refuse_unknown_arguments("vdm_add_executable(${target})" "${arg_UNPARSED_ARGUMENTS}")
  if(NOT arg_SOURCES)
    message(FATAL_ERROR "vdm_add_executable(${target}): SOURCES are required")
  endif()

  add_executable(${target} ${arg_SOURCES} ${arg_HEADERS})
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${target} PRIVATE ${arg_LINKS})
  _vdm_configure_target(${target})
  _vdm_record_headers(${target} ${arg_HEADERS})
  if(arg_OUTPUT_NAME)
    set_target_properties(${target} PROPERTIES OUTPUT_NAME "${arg_OUTPUT_NAME}")
  endif()
  if(arg_INSTALL)
    file(RELATIVE_PATH bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
    _vdm_set_library_path(${target} "$ORIGIN/${bin_to_lib}")
    install(TARGETS ${target} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
  endif()
endfunction()

set(vdm_test_environment
    "UBSAN_OPTIONS=print_stacktrace=1"
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0")

# Tests are small beside the libraries that they call: compiling them faster is worth more than what
# they would gain from the highest level.
set(vdm_test_options $<$<CONFIG:Release>:-O1>)

# Owns the precompiled headers of the tests: an object library with the options of an executable.
if(VDM_PRECOMPILED_HEADERS AND VDM_BUILD_TESTS)
  add_library(vdm_test_headers OBJECT "${CMAKE_CURRENT_LIST_DIR}/precompiled.cpp")
  set_target_properties(vdm_test_headers PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_link_libraries(vdm_test_headers PRIVATE GTest::gtest)
  _vdm_configure_target(vdm_test_headers)
  target_compile_options(vdm_test_headers PRIVATE -fPIE ${vdm_test_options})
  _vdm_precompile(vdm_test_headers <filesystem> <fstream> <gtest/gtest.h>)
endif()

# vdm_add_test(<name> SOURCES <file>... [HEADERS <file>...] [LINKS <target>...]
#              [LABELS <label>...] [TIMEOUT <seconds>])
# One GoogleTest executable and one CTest entry of the same name. Label "long" keeps the test out
# of the everyday run. Tests run in a folder of their own below the build folder.
function(vdm_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT" "SOURCES;HEADERS;LINKS;LABELS")
  _vdm_refuse_unknown_arguments("vdm_add_test(${name})" "${arg_UNPARSED_ARGUMENTS}")
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 300)
  endif()

  vdm_add_executable(${name} SOURCES ${arg_SOURCES} HEADERS ${arg_HEADERS}
                     LINKS ${arg_LINKS} GTest::gmock GTest::gtest GTest::gtest_main)
  target_compile_options(${name} PRIVATE ${vdm_test_options})
  _vdm_share_precompiled(${name} vdm_test_headers)
  set_target_properties(${name} PROPERTIES
                        RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests/bin")
  set(work_dir "${PROJECT_BINARY_DIR}/tests/run/${name}")
  file(MAKE_DIRECTORY "${work_dir}")
  add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY "${work_dir}")
  set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}"
                       ENVIRONMENT "${vdm_test_environment}")
endfunction()
