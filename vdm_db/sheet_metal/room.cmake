# The sheet-metal settings of blocks: the context, its options, the defaults of programs.
list(APPEND VDM_DB_SOURCES
  sheet_metal/vdm_db_isettings.cpp
  sheet_metal/vdm_db_sheet_metal_context.cpp
  sheet_metal/vdm_db_sheet_metal_context_external_pe.cpp
  sheet_metal/vdm_db_sheet_metal_context_impl.cpp
  sheet_metal/vdm_db_sheet_metal_context_material_pe.cpp
  sheet_metal/vdm_db_sheet_metal_context_variable.cpp
  sheet_metal/vdm_sheet_metal_context_option.cpp
  sheet_metal/vdm_sheet_metal_context_options.cpp
  sheet_metal/vdm_sheet_metal_length.cpp
)
list(APPEND VDM_DB_HEADERS
  sheet_metal/vdm_db_default_settings.h
  sheet_metal/vdm_db_isettings.h
  sheet_metal/vdm_db_isettings_rows.inc
  sheet_metal/vdm_db_sheet_metal_context.h
  sheet_metal/vdm_db_sheet_metal_context_external_pe.h
  sheet_metal/vdm_db_sheet_metal_context_material_pe.h
  sheet_metal/vdm_sheet_metal_context_option.h
  sheet_metal/vdm_sheet_metal_context_options.h
  sheet_metal/vdm_sheet_metal_length.h
  sheet_metal/vdm_sheet_metal_option_rows.inc
  sheet_metal/vdm_sheet_metal_types.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  sheet_metal/vdm_db_sheet_metal_context_impl.h
  sheet_metal/vdm_same_value.h
)
