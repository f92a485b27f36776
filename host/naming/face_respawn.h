// One face of an opening that was closed and, perhaps, cut again.
#pragma once

#include <vector>

#include "platform/base/handle.h"
#include "platform/base/types.h"
#include "platform/ge/extents3d.h"
#include "platform/ge/matrix3d.h"

namespace vdm_host {

/// What one face of an opening's tool left in the old body and in the new one. Several rows name
/// the same old face where openings had merged in it. A row without faces says that the opening was
/// closed, or cut again.
struct FaceRespawn {
  OdDbHandle feature;              ///< whose opening it is
  OdUInt32 toolFace = 0;           ///< the face of the tool; 0 in a row without faces
  OdUInt32 oldFace = 0;            ///< in the body before the changes; 0 when it was closed already
  std::vector<OdUInt32> newFaces;  ///< in the body after the changes; none when it stays closed
  OdGeMatrix3d motion;             ///< how the tool moved between its two cuts
  OdGeExtents3d toolBox;           ///< around the tool's face where it cut; invalid when unknown
};

}  // namespace vdm_host
