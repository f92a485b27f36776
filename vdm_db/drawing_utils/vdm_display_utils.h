// Layers, viewports and how entities are shown.
#pragma once

#include "platform/db/entity.h"
#include "platform/entities/viewport.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;

namespace vdmu {

/// The layer "VC_SUBTRACT" for what was subtracted from solids: frozen, hidden, red. Made when it
/// is missing; one that is there stays as it is. Null without a drawing or its layer table.
VDM_DB_EXPORT OdDbObjectId getVCSubtractLayer(OdDbDatabase* database);

/// Has the entities drawn again: their reactors hear that their graphics changed, and nothing is
/// recorded for undo. What is erased, no entity, or in a read-only drawing is skipped.
VDM_DB_EXPORT void markEntToRedraw(const OdArray<OdDbObjectId>& ids);

/// The transformation from points on paper, as the viewport's rectangle lies there, to the world
/// points that it shows at them. Points above the paper are above the plane through the view
/// target. False, with the matrix unchanged, for null.
[[nodiscard]] VDM_DB_EXPORT bool getPaperDcsToWcsMatrix(OdSmartPtr<OdDbViewport> viewport,
                                                        OdGeMatrix3d& matrix);

}  // namespace vdmu
