// For which body the numbers of the references into a solid hold.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"

namespace vdm_host {

/// Stored once for each solid that references lead into. The xrecord "VDM_NAMING" in the solid's
/// extension dictionary, one binary value: uint64 fingerprint, uint32 operations, and 12 float64
/// (the upper rows of the frame) unless that is the identity.
struct SolidStamp {
  OdUInt64 fingerprint = 0;  ///< of the body; 0 when there is no stamp
  OdUInt32 operations = 0;   ///< booleans, blends and replacements that references went through
  OdGeMatrix3d frame;        ///< from where the signatures were taken to where the solid is

  /// A default one when the solid has none.
  [[nodiscard]] static SolidStamp read(const OdDbObjectId& solid);
  /// Writes nothing that is there already, nor for a null id or a solid that cannot be opened for
  /// write.
  void write(const OdDbObjectId& solid) const;
};

}  // namespace vdm_host
