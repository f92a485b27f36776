# Takes no library from the current folder: the library path of each program and library in FOLDERS
# has only entries that are absolute or relative to the file itself. The dynamic linker reads any
# other entry from the current folder, an empty one ("", "a:", ":a", "a::b") too.
# Arguments: READELF, FOLDERS (a list).
cmake_minimum_required(VERSION 3.25)

# library_paths(<file> <result>): the RPATH and RUNPATH lines of a file, "none" for other files.
function(library_paths file result)
  execute_process(COMMAND "${READELF}" --dynamic --wide "${file}" RESULT_VARIABLE code
                  OUTPUT_VARIABLE output ERROR_QUIET)
  if(NOT code EQUAL 0 OR NOT output MATCHES "\\(NEEDED\\)")
    set(${result} "none" PARENT_SCOPE)
    return()
  endif()
  string(REGEX MATCHALL "\\((RUNPATH|RPATH)\\)[^\n]*" lines "${output}")
  set(${result} "${lines}" PARENT_SCOPE)
endfunction()

set(entry "(/|[$]ORIGIN)[^:]*")
set(faults "")
set(num_checked 0)
foreach(folder IN LISTS FOLDERS)
  file(GLOB files LIST_DIRECTORIES OFF "${folder}/*")
  foreach(file IN LISTS files)
    library_paths("${file}" lines)
    if(lines STREQUAL "none")
      continue()
    endif()
    math(EXPR num_checked "${num_checked} + 1")
    foreach(line IN LISTS lines)
      if(NOT line MATCHES "\\[${entry}(:${entry})*\\]$")
        string(APPEND faults "\n${file}: ${line}")
      endif()
    endforeach()
  endforeach()
endforeach()
if(num_checked EQUAL 0)
  message(FATAL_ERROR "no program or library in ${FOLDERS}")
endif()
if(faults)
  message(FATAL_ERROR "library paths that name the current folder:${faults}")
endif()
message("${num_checked} files")
