# All foreign packages, found in one place and offered as imported targets. Which folder may use
# which one is checked by tests/architecture.
#
#   ICU::uc ICU::i18n                       case folding and collation
#   SQLite::SQLite3  vdm::xxhash            drawing file
#   occt::modeling occt::step occt::ocaf occt::ocaf_binary
#                                           solids, STEP exchange, labels to measure against
#   CLI11::CLI11  nlohmann_json::nlohmann_json
#                                           command line and machine output
#   PNG::PNG                                pictures
#   udunits::udunits                        units beyond those of drawings
#   csv::csv                                tables of comma-separated values
#   GTest::gtest_main GTest::gmock          tests

find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(SQLite3 REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(PNG REQUIRED)
if(VDM_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()

# _vdm_plain_library(<target> <header> <library>): a library taken by its file alone, so that the
# exported package refers to no target that its user would have to find.
function(_vdm_plain_library target header library)
  find_path(VDM_${library}_INCLUDE_DIR ${header} REQUIRED)
  find_library(VDM_${library}_LIBRARY ${library} REQUIRED)
  mark_as_advanced(VDM_${library}_INCLUDE_DIR VDM_${library}_LIBRARY)
  if(NOT TARGET ${target})
    add_library(${target} UNKNOWN IMPORTED GLOBAL)
    set_target_properties(${target} PROPERTIES
                          IMPORTED_LOCATION "${VDM_${library}_LIBRARY}"
                          INTERFACE_INCLUDE_DIRECTORIES "${VDM_${library}_INCLUDE_DIR}")
  endif()
endfunction()
_vdm_plain_library(vdm::xxhash xxhash.h xxhash)
_vdm_plain_library(udunits::udunits udunits2.h udunits2)
_vdm_plain_library(csv::csv csv.h csv)
# The list of units that the library reads when it is first needed.
find_file(VDM_UNITS_FILE udunits2.xml PATH_SUFFIXES share/xml/udunits share/udunits REQUIRED)
mark_as_advanced(VDM_UNITS_FILE)

# The modeller's own package description asks for development files of libraries that only its
# sources need (threading, visualisation), so its toolkits are looked up one by one.
find_path(VDM_OCCT_INCLUDE_DIR Standard_Version.hxx PATH_SUFFIXES opencascade REQUIRED)
mark_as_advanced(VDM_OCCT_INCLUDE_DIR)

# _vdm_group_toolkits(<target> [LINKS <target>...] TOOLKITS <library>...): what one job needs.
function(_vdm_group_toolkits target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINKS;TOOLKITS")
  set(libraries)
  foreach(toolkit IN LISTS arg_TOOLKITS)
    find_library(VDM_OCCT_${toolkit} ${toolkit} REQUIRED)
    mark_as_advanced(VDM_OCCT_${toolkit})
    list(APPEND libraries "${VDM_OCCT_${toolkit}}")
  endforeach()
  if(NOT TARGET ${target})
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} SYSTEM INTERFACE "${VDM_OCCT_INCLUDE_DIR}")
    target_link_libraries(${target} INTERFACE ${arg_LINKS} ${libraries})
  endif()
endfunction()
_vdm_group_toolkits(occt::modeling TOOLKITS
                    TKFeat TKOffset TKFillet TKMesh TKBool TKBO TKPrim TKShHealing TKTopAlgo
                    TKGeomAlgo TKBRep TKGeomBase TKG3d TKG2d TKMath TKernel)
_vdm_group_toolkits(occt::ocaf LINKS occt::modeling TOOLKITS TKCAF TKLCAF TKCDF)
_vdm_group_toolkits(occt::ocaf_binary LINKS occt::ocaf TOOLKITS TKBin TKBinL)
_vdm_group_toolkits(occt::step LINKS occt::ocaf TOOLKITS
                    TKXDESTEP TKXCAF TKSTEP TKSTEP209 TKSTEPAttr TKSTEPBase TKXSBase)
