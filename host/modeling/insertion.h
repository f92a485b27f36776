// Inserting a component at a solid.
#pragma once

#include "host/modeling/component_tools.h"
#include "host/modeling/model_editor.h"

namespace vdm_host {

/// The place of a component: its point, its z axis out of the material, turned about that axis
/// (radians).
[[nodiscard]] OdGeMatrix3d componentFrame(const OdGePoint3d& point, const OdGeVector3d& direction,
                                          double rotation);

/// How far a point may be from the face in which it is said to lie, as a part of the body's
/// diagonal: what a user types with four digits.
inline constexpr double kOnFace = 1e-4;

/// Where a component comes to lie.
struct InsertionPlace {
  OdUInt32 face = 0;   ///< the base face; 0 for none
  OdGeMatrix3d frame;  ///< of the insert, in the solid's block
};

/// Works out the place in the solid's present body. Errors name the object and the values.
[[nodiscard]] OdStatus placeInsertion(const ComponentInsert& component, ComponentTools& tools,
                                      InsertionPlace& place);
/// Makes the block reference, its feature and the reference to the base face; nothing is cut yet.
[[nodiscard]] OdStatus makeInsertion(OdDbDatabase* database, const ComponentInsert& component,
                                     const InsertionPlace& place, OdDbObjectId& insert,
                                     OdDbObjectId& feature);

}  // namespace vdm_host
