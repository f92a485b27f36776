# Sheet metal: what other rooms see of its contexts.
list(APPEND VDM_DB_SOURCES
  sheet_metal/vdm_db_sheet_metal_context_pe.cpp
  sheet_metal/vdm_sheet_metal_source.cpp
)
list(APPEND VDM_DB_HEADERS
  sheet_metal/vdm_db_sheet_metal_context_pe.h
  sheet_metal/vdm_sheet_metal_source.h
)
