// Names of the layers onto which drawing views sort their lines.
#pragma once

#include "vdm_db/common/vdm_constants.h"

// Visible and hidden lines, then those of smooth (tangent) edges and of trailing lines.
inline const OdString& VM_MECHANICAL_DRAFTING_VIS_GEOMETRY = kVdmLayerVisible;
inline const OdString& VM_MECHANICAL_DRAFTING_HID_GEOMETRY = kVdmLayerHidden;
inline const OdString& VM_MECHANICAL_DRAFTING_VIS_TAN_GEOMETRY = kVdmLayerTangentVisible;
inline const OdString& VM_MECHANICAL_DRAFTING_HID_TAN_GEOMETRY = kVdmLayerTangentHidden;
inline const OdString& VM_MECHANICAL_DRAFTING_VIS_TRAIL_GEOMETRY = kVdmLayerTrailingVisible;
inline const OdString& VM_MECHANICAL_DRAFTING_HID_TRAIL_GEOMETRY = kVdmLayerTrailingHidden;
inline const OdString& VM_MECHANICAL_DRAFTING_VIS_THREAD_GEOMETRY = kVdmLayerThreadVisible;
inline const OdString& VM_MECHANICAL_DRAFTING_HID_THREAD_GEOMETRY = kVdmLayerThreadHidden;
inline const OdString& VM_MECHANICAL_DRAFTING_HATCHING = kVdmLayerHatching;
// Layers of older drawings.
inline const OdString& VM_MECHANICAL_DRAFTING_OBS_ISO_VIS_GEOMETRY = kVdmLayerIsometricVisible;
inline const OdString& VM_MECHANICAL_DRAFTING_OBS_ISO_HID_GEOMETRY = kVdmLayerIsometricHidden;
inline const OdString& VM_MECHANICAL_DRAFTING_OBS_ORTHO_VIS_GEOMETRY = kVdmLayerOrthoVisible;
inline const OdString& VM_MECHANICAL_DRAFTING_OBS_ORTHO_HID_GEOMETRY = kVdmLayerOrthoHidden;
inline const OdString& VC_MECHANICAL_MODELING_TRAILING_LINE_GEOMETRY = kVdmLayerTrailingLines;
