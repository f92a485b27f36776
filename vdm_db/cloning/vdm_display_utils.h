// Layers, viewports and how entities are shown.
#pragma once

#include "platform/db/entity.h"
#include "platform/db/viewport.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "vdm_db/vdm_db_export.h"

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

/// Keeps layer, colour, line type, weight, visibility and material of an entity while it is worked
/// on, and puts them back at its end. The entity is open for write then. Null is legal.
class VDM_DB_EXPORT AutoSaveSolidProperties {
 public:
  explicit AutoSaveSolidProperties(OdSmartPtr<OdDbEntity> entity);
  ~AutoSaveSolidProperties();
  AutoSaveSolidProperties(const AutoSaveSolidProperties&) = delete;
  AutoSaveSolidProperties& operator=(const AutoSaveSolidProperties&) = delete;

 private:
  OdSmartPtr<OdDbEntity> m_entity;
  OdSmartPtr<OdDbEntity> m_memo;  // in no database
};

/// The host's switch that turns feature colours on. Off until the host sets a function.
class VDM_DB_EXPORT GetFEATURECOLORS {
 public:
  GetFEATURECOLORS() = delete;

  [[nodiscard]] static bool getValue();
  /// Null turns the switch off.
  static void setImpl(bool (*method)());

 private:
  static bool (*m_pMethodGetValue)();
};

}  // namespace vdmu
