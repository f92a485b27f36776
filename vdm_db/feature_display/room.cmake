# Feature colours: the draw overrule and what it draws with.
list(APPEND VDM_DB_SOURCES
  feature_display/vdm_3d_solid_adapted_subentity_traits.cpp
  feature_display/vdm_db_3d_solid_draw_overrule.cpp
  feature_display/vdm_db_3d_solid_feature_coloring.cpp
)
list(APPEND VDM_DB_HEADERS
  feature_display/vdm_db_3d_solid_draw_overrule.h
  feature_display/vdm_db_3d_solid_feature_coloring.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  feature_display/vdm_3d_solid_adapted_subentity_traits.h
  feature_display/vdm_3d_solid_adapted_world_draw.h
)
