# Typed values, property bags, their stored forms, extension data.
list(APPEND VDM_DB_SOURCES
  properties/vdm_data_extension.cpp
  properties/vdm_db_extension_data.cpp
  properties/vdm_db_properties_base.cpp
  properties/vdm_dwg_utils.cpp
  properties/vdm_flat_filer.cpp
  properties/vdm_properties.cpp
  properties/vdm_properties_db_object.cpp
  properties/vdm_properties_maps.cpp
  properties/vdm_properties_pe.cpp
  properties/vdm_properties_wire.cpp
  properties/vdm_property_data.cpp
  properties/vdm_property_encoding.cpp
  properties/vdm_property_encoding_number_maps.cpp
  properties/vdm_property_encoding_text_maps.cpp
  properties/vdm_property_mapping.cpp
  properties/vdm_property_shape.cpp
  properties/vdm_property_shape_registry.cpp
  properties/vdm_property_slots.cpp
  properties/vdm_serialized_object.cpp
  properties/vdm_trans_dwg_filer.cpp
)
list(APPEND VDM_DB_HEADERS
  properties/db_typed_id.h
  properties/vdm_data_extension.h
  properties/vdm_db_extension_data.h
  properties/vdm_db_properties_base.h
  properties/vdm_dwg_utils.h
  properties/vdm_flat_filer.h
  properties/vdm_properties.h
  properties/vdm_properties_pe.h
  properties/vdm_property_concrete_data.h
  properties/vdm_property_data.h
  properties/vdm_property_mapping.h
  properties/vdm_property_slots.h
  properties/vdm_property_types.h
  properties/vdm_serialized_object.h
  properties/vdm_trans_dwg_filer.h
)
list(APPEND VDM_DB_PRIVATE_HEADERS
  properties/vdm_bag_filing.h
  properties/vdm_properties_templates.h
  properties/vdm_property_encoding.h
  properties/vdm_property_shape.h
  properties/vdm_property_shape_registry.h
  properties/vdm_property_type_rows.h
)
