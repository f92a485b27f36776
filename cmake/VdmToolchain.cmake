# Compiler, linker and cache: language level, warnings, instrumentation, output folders.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# Libraries and modules lie together, so that the module loader finds a module beside the others.
# The build tree has the layout of the installed tree: one library path holds in both.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_BINDIR}")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

if(VDM_SANITIZE AND VDM_TSAN)
  message(FATAL_ERROR "VDM_SANITIZE and VDM_TSAN exclude each other: choose one")
endif()

find_program(VDM_CCACHE ccache)
mark_as_advanced(VDM_CCACHE)
if(VDM_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  # What the cache must not mind where headers are precompiled.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND};-E;env;CCACHE_SLOPPINESS=pch_defines,time_macros;${VDM_CCACHE}")
endif()

# mold links several times faster than the default linker; either gives the same result.
find_program(VDM_MOLD mold)
mark_as_advanced(VDM_MOLD)

set(vdm_warnings
    -Wall
    -Wextra
    -Wpedantic
    -Wshadow
    -Wconversion
    -Wsign-conversion
    -Wold-style-cast
    -Wnon-virtual-dtor
    -Woverloaded-virtual
    -Wundef)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # This release sees overlapping and oversized copies inside std::string that cannot happen.
  list(APPEND vdm_warnings -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds)
endif()
if(VDM_WERROR)
  list(APPEND vdm_warnings -Werror)
endif()

set(vdm_instrumentation)
if(VDM_SANITIZE)
  list(APPEND vdm_instrumentation -fsanitize=address,undefined -fno-sanitize-recover=all
       -fno-omit-frame-pointer)
elseif(VDM_TSAN)
  list(APPEND vdm_instrumentation -fsanitize=thread -fno-omit-frame-pointer)
endif()
if(VDM_COVERAGE)
  list(APPEND vdm_instrumentation --coverage)
endif()

set(vdm_link_options)
if(VDM_MOLD)
  list(APPEND vdm_link_options -fuse-ld=mold)
endif()
# A library must name what it uses; clang leaves the sanitizer runtime to the executable.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" OR NOT vdm_instrumentation)
  list(APPEND vdm_link_options $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,-z,defs>)
endif()

if(VDM_TIDY)
  find_program(VDM_CLANG_TIDY clang-tidy REQUIRED)
  mark_as_advanced(VDM_CLANG_TIDY)
endif()
