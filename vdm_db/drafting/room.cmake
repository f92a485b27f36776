# Display: feature colours and what an entity looks like.
list(APPEND VDM_DB_SOURCES
  drafting/vdm_3d_solid_adapted_draw.cpp
  drafting/vdm_auto_save_solid_properties.cpp
  drafting/vdm_db_3d_solid_draw_overrule.cpp
  drafting/vdm_db_3d_solid_feature_coloring.cpp
  drafting/vdm_db_3d_solid_feature_material.cpp
  drafting/vdm_feature_colors.cpp
)
list(APPEND VDM_DB_HEADERS
  drafting/vdm_auto_save_solid_properties.h
  drafting/vdm_db_3d_solid_draw_overrule.h
  drafting/vdm_db_3d_solid_feature_coloring.h
  drafting/vdm_feature_colors.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  drafting/vdm_3d_solid_adapted_draw.h
)
