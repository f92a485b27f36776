// Clean-up of the 2D entities of a block.
#pragma once

#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbEntity;

/// Turns entities of one class.
class VDM_DB_EXPORT VdmuINormalCleaner {
 public:
  virtual ~VdmuINormalCleaner();
  /// Mirrors an entity whose normal is -Z in the plane Z = 0, so that its normal is +Z and it looks
  /// the same from there. Others, and null, stay as they are. The entity is open for read.
  virtual void clean(OdDbEntity* entity) const = 0;
};

namespace vdmu {

/// How far the Z of a unit normal may be from -1.
constexpr double normalTolerance() { return 1e-06; }

/// Projected geometry often comes with the normal -Z, and readers of other formats see it mirrored
/// then. Turns all such entities of a block: arcs, circles, dimensions, ellipses, hatches, leaders,
/// lines, multi-lines, points, polylines and texts. Every kind of dimension counts; entities of
/// classes derived from the others stay as they are. Nothing happens for what is no block.
VDM_DB_EXPORT void cleanUp2DEntities(const OdDbObjectId& block);

}  // namespace vdmu
