// The births of a solid's faces, as they are kept with the solid.
#pragma once

#include "host/naming/face_births.h"
#include "platform/base/handle.h"
#include "platform/filer/object_id.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// Stored once for each solid that references lead into: the xrecord "VDM_BIRTHS" in the solid's
/// extension dictionary. Its first value is binary (varints: rules, which are 1; next key; number
/// of faces; for each face the number of its births, and of each birth maker and key), after a
/// uint64 fingerprint of the body. The makers follow as soft pointers, so that a copy of the solid
/// with its features means the copied features.
struct SolidBirths {
  OdUInt64 fingerprint = 0;  ///< of the body whose faces these are; 0 when there is no record
  OdUInt32 nextKey = 1;      ///< that the part will give
  OdDbObjectIdArray makers;  ///< features; a place in the list is never used again
  FaceBirths faces;

  /// A default one when the solid has none that can be read.
  [[nodiscard]] static SolidBirths read(const OdDbObjectId& solid);
  /// Writes nothing that is there already, nor for a solid that cannot be opened for write.
  void write(const OdDbObjectId& solid) const;

  [[nodiscard]] bool areOf(const OdModelerBody& body) const {
    return fingerprint != 0 && fingerprint == body.fingerprint() &&
           faces.numFaces() == body.numFaces();
  }
  /// Every face of the body is the part's own and has a key of its own.
  void begin(const OdModelerBody& body);
  /// The number of a feature among the makers, at their end when it is new.
  OdUInt32 makerOf(const OdDbObjectId& solid, OdDbHandle feature);
  /// Null for the part itself and for a feature that does not exist any more.
  [[nodiscard]] OdDbHandle featureOf(OdUInt32 maker) const;
};

/// The births of a solid's present body; begun and written where there are none.
[[nodiscard]] SolidBirths presentBirths(const OdDbObjectId& solid, const OdModelerBody& body);

}  // namespace vdm_host
