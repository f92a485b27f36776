// State of sheet-metal contexts.
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context_impl.h"

#include "vdm_db/common/vdm_constants.h"

VdmDbSheetMetalContextImpl::VdmDbSheetMetalContextImpl()
    : options{
#define VDM_SHEET_METAL_OPTION(Name, member, access) &member,
#include "vdm_db/sheet_metal/vdm_sheet_metal_option_rows.inc"
#undef VDM_SHEET_METAL_OPTION
      } {
  for (VdmISheetMetalContextOption* option : options) option->bind(m_properties);
}

OdDbObjectId VdmDbSheetMetalContextImpl::thicknessVariable() const {
  OdDbObjectId variable;
  m_properties.getProperty(kVdmThicknessVar, variable);
  return variable;
}
