# What drawing views are made with: layers, line types, hidden-line seams, clean-up of 2D entities.
list(APPEND VDM_DB_SOURCES
  drafting/vdm_db_ideveloper_settings.cpp
  drafting/vdm_db_ihlr.cpp
  drafting/vdm_db_istandard_line_type_loader.cpp
  drafting/vdm_db_layer_helper.cpp
  drafting/vdm_db_trailing_line_pe.cpp
  drafting/vdm_dxf_utils.cpp
  drafting/vdm_hlr_utils.cpp
)
list(APPEND VDM_DB_HEADERS
  drafting/vdm_db_ideveloper_settings.h
  drafting/vdm_db_ihlr.h
  drafting/vdm_db_istandard_line_type_loader.h
  drafting/vdm_db_layer_helper.h
  drafting/vdm_db_trailing_line_pe.h
  drafting/vdm_drafting_layers.h
  drafting/vdm_dxf_utils.h
  drafting/vdm_hlr_utils.h
)
