// Records of faces that the update pass, its helper and the update interfaces exchange.
#pragma once

#include <map>
#include <utility>

#include "platform/base/array.h"
#include "platform/base/types.h"
#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbBlockReference;

/// Solids, each with the transforms of its occurrences into the coordinates of the block that was
/// asked; a solid that stands in that block itself has the identity alone.
using VdmSolidOccurrences = OdArray<std::pair<OdDbObjectId, OdArray<OdGeMatrix3d>>>;

namespace VdmFeatureUpdateDataUtils {

/// One face by its selection marker. A face is known across an operation by its marker alone.
struct Face {
  OdUInt32 marker = 0;         ///< when the face was sampled
  OdUInt32 matchedMarker = 0;  ///< after the operation; stays as it was when there is no match
};

/// One face that matching found on a solid.
struct SolidFace {
  OdDbFullSubentPath path;
  OdInt32 kind = 0;  ///< 1 and 3 stay on the solid, all others are to go
};

/// The opening whose faces are to be matched. Passed through to the helper unread.
struct OpeningIds {
  OdDbObjectId solidId;
  OdDbObjectId insertId;
};

/// What an interface knows about its feature, and what matching finds. Passed through unread.
struct FeatureArgs {
  OdDbFullSubentPathArray featureFaces;      ///< in: faces that the feature refers to
  bool forced = false;                       ///< in: as prepareUpdateData got it
  std::map<int, OdArray<Face>> sampleFaces;  ///< out: samples by tag
  std::map<int, Face> subtrBaseFaces;        ///< out: base faces of the subtraction by tag
  OdDbFullSubentPathArray unmatchedFaces;    ///< out: feature faces for which there is no match
};

}  // namespace VdmFeatureUpdateDataUtils

/// What matching found for one feature.
struct VDM_DB_EXPORT VdmMatchingFaces {
  OdArray<VdmFeatureUpdateDataUtils::SolidFace> faces;
  bool hasBaseFrontFace = false;  ///< `faces[0]` is the base front face
  OdUInt64 hostValues[2] = {};    ///< the host's own; copied, and otherwise left alone

  [[nodiscard]] OdUInt32 size() const { return faces.size(); }
  /// Drops the faces; the host's values stay.
  void clear();
  /// Null unless there is one. Raises OdError(eInvalidIndex) when it is said to be there and
  /// `faces` is empty.
  [[nodiscard]] const VdmFeatureUpdateDataUtils::SolidFace* baseFrontFace() const;
  /// Appends the faces to go, in order: all but the base front face and those that stay.
  void fillFacesToRemove(OdDbFullSubentPathArray& out) const;
  void fillFacesToRemove(OdArray<VdmFeatureUpdateDataUtils::SolidFace>& out) const;
};

/// What VdmFeatureUpdateData::fillData works on: an opening and the faces that it touches.
struct VdmUpdateInfo {
  OdDbObjectId solidId;
  OdDbObjectId insertId;
  VdmMatchingFaces faces;
};

/// An insert that makes an opening in a solid, and the solids of its block that cut and fill it.
struct VdmOpeningEntities {
  OdSmartPtr<OdDbBlockReference> insert;
  VdmSolidOccurrences subtractors;
  VdmSolidOccurrences uniters;
  OdSmartPtr<OdDb3dSolid> solid;
};
