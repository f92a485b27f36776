# What the naming benchmark and its tests are built from: all but the program's own main.cpp.
set(vdm_naming_bench_sources carrier edits exchange families fates index_method judge label_method
    label_naming plan_bodies plan_carriers reference_drawing reference_method report run
    shape_relation shapes signature_method stage truth)
list(TRANSFORM vdm_naming_bench_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
list(TRANSFORM vdm_naming_bench_sources APPEND .cpp)
set(vdm_naming_bench_links host::naming nlohmann_json::nlohmann_json occt::ocaf platform::runtime
    platform::modeler platform::modeler_occt platform::rx vdm::vdm_db)
