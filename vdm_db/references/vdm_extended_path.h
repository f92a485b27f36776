// Plain values that name a piece of geometry in a drawing, and the results of comparing and
// resolving such names.
#pragma once

#include <array>

#include "platform/base/array.h"
#include "platform/base/types.h"
#include "platform/db/subent.h"
#include "platform/filer/object_id.h"

/// Three-way result of a comparison.
enum VdmCmpRes : OdInt32 {
  kVdmLess = -1,
  kVdmEqual = 0,
  kVdmGreater = 1,
};

namespace vdmu {

/// What came of resolving a path.
enum EVdmPathRes : OdInt32 {
  ePathOk = 0,                ///< every element was resolved
  ePathXrefUnreferenced = 1,  ///< a step goes through an external reference that nothing shows
  ePathInvalid = 2,           ///< the path is empty, or a step cannot be resolved
};

/// Geometry that every entity has of itself. The numbers are stored.
enum DefaultGeometry : OdInt32 {
  kDefaultGeometryNone = -1,
  kDefaultOrigin = 0,
  kDefaultXAxis = 1,
  kDefaultYAxis = 2,
  kDefaultZAxis = 3,
  kDefaultXYPlane = 4,
  kDefaultYZPlane = 5,
  kDefaultZXPlane = 6,
};

/// Texts of the default geometry in dumps, by number.
inline constexpr std::array<const char*, 7> kDefaultGeometryNames{
    "Origin", "X Axis", "Y Axis", "Z Axis", "XY Plane", "YZ Plane", "ZX Plane"};

/// Empty for a number that is no default geometry.
constexpr const char* defaultGeometryName(OdInt32 index) {
  return index < 0 || index >= static_cast<OdInt32>(kDefaultGeometryNames.size())
             ? ""
             : kDefaultGeometryNames[static_cast<std::size_t>(index)];
}

}  // namespace vdmu

/// A path to a subentity, or to a piece of default geometry of the path's entity; then the
/// subentity says nothing.
struct VdmExtendedPath {
  OdDbFullSubentPath path;
  OdInt32 defaultGeometry = 0;  ///< vdmu::DefaultGeometry, used when the flag is set
  bool isDefaultGeometry = false;
};
using VdmExtendedPathArray = OdArray<VdmExtendedPath>;

/// The stored counterpart of an extended path: one argument of a constraint.
struct ExtendedDep {
  OdDbObjectId dependency;  ///< the persistent reference to the geometry
  bool isDefaultGeometry = false;
  OdInt32 defaultGeometry = 0;  ///< kDefaultGeometryNone in the stored array leaves the flag false
};
