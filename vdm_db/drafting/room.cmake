# What drawing views are made with: hidden-line seams, switches.
list(APPEND VDM_DB_SOURCES
  drafting/vdm_db_ideveloper_settings.cpp
  drafting/vdm_db_ihlr.cpp
  drafting/vdm_db_trailing_line_pe.cpp
  drafting/vdm_hlr_utils.cpp
)
list(APPEND VDM_DB_HEADERS
  drafting/vdm_db_ideveloper_settings.h
  drafting/vdm_db_ihlr.h
  drafting/vdm_db_trailing_line_pe.h
  drafting/vdm_hlr_utils.h
)
