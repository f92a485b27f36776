# Script of the consumer test: install, move, check the library paths, configure, build, run. Any
# failing step ends it.
cmake_minimum_required(VERSION 3.25)

# step(<command>...): runs one command and stops with its output when it fails.
function(step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed with ${result}: ${ARGN}\n${output}")
  endif()
  set(step_output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
step("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --config "${CONFIG}" --prefix "${WORK_DIR}/first")
file(RENAME "${WORK_DIR}/first" "${WORK_DIR}/moved")  # the package must not know where it lay
step("${CMAKE_COMMAND}" "-DREADELF=${READELF}"
     "-DFOLDERS=${WORK_DIR}/moved/${LIBDIR}\;${WORK_DIR}/moved/${BINDIR}" -P "${PATH_CHECK}")

step("${CMAKE_COMMAND}" -S "${PROJECT_DIR}" -B "${WORK_DIR}/build" -G "${GENERATOR}"
     "-DCMAKE_BUILD_TYPE=${CONFIG}" "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
     "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_PREFIX_PATH=${WORK_DIR}/moved")
step("${CMAKE_COMMAND}" --build "${WORK_DIR}/build")
step("${WORK_DIR}/build/consumer")
file(REAL_PATH "${WORK_DIR}/moved" package_dir)
foreach(text "consumer: loaded ${package_dir}/" "/vdm_db.tx\n" "consumer: unloaded\n")
  string(FIND "${step_output}" "${text}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "no '${text}' in what the consumer printed:\n${step_output}")
  endif()
endforeach()
message("${step_output}")
