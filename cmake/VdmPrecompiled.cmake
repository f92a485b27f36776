# Precompiled headers. Most of a compiler's time here goes into the standard library's headers, so
# each kind of target parses them once. A source still includes what it uses: the presets dev and
# tidy build without, and fail on a source that leans on the precompiled set.
#
# A set belongs to one target (its owner) and serves all others of its kind, whose options must be
# the owner's.

option(VDM_PRECOMPILED_HEADERS "Parse the headers of the standard library once for each kind of target"
       ON)

set(vdm_standard_headers
    <algorithm> <array> <cmath> <cstdint> <cstring> <functional> <limits> <map> <memory> <optional>
    <set> <span> <string> <string_view> <unordered_map> <unordered_set> <utility> <vector>)

# _vdm_precompile(<target> <header>...): a set of the target's own, beside the standard headers.
function(_vdm_precompile target)
  if(VDM_PRECOMPILED_HEADERS)
    target_precompile_headers(${target} PRIVATE ${vdm_standard_headers} ${ARGN})
  endif()
endfunction()

# _vdm_share_precompiled(<target> <owner>): the set of another target.
function(_vdm_share_precompiled target owner)
  if(VDM_PRECOMPILED_HEADERS)
    target_precompile_headers(${target} REUSE_FROM ${owner})
  endif()
endfunction()
