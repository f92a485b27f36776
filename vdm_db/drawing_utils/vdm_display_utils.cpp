// Layers, viewports and how entities are shown.
#include "vdm_db/drawing_utils/vdm_display_utils.h"

#include "platform/db/database.h"
#include "platform/db/layer_table.h"
#include "platform/ge/plane.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"

namespace {

constexpr const wchar_t* kSubtractLayer = L"VC_SUBTRACT";

// Points of the display plane to world points: the plane through the view target, turned by the
// twist about the direction of view.
OdGeMatrix3d displayToWorld(const OdDbViewport* viewport) {
  const OdGePlane plane(viewport->viewTarget(), viewport->viewDirection());
  const OdGeMatrix3d untwisted =
      OdGeMatrix3d::coordSystem(plane.origin(), plane.uAxis(), plane.vAxis(), plane.normal());
  return untwisted * OdGeMatrix3d::rotation(-viewport->twistAngle(), OdGeVector3d::kZAxis);
}

// Points on paper to points of the display plane.
OdGeMatrix3d paperToDisplay(const OdDbViewport* viewport) {
  const OdGePoint3d paper = viewport->centerPoint();
  const OdGePoint2d view = viewport->viewCenter();
  return OdGeMatrix3d::translation({view.x, view.y, 0.0}) *
         OdGeMatrix3d::scaling(1.0 / viewport->customScale()) *
         OdGeMatrix3d::translation({-paper.x, -paper.y, -paper.z});
}

void markToRedraw(const OdDbObjectId& id) {
  const OdDbEntityPtr entity = id.openAs<OdDbEntity>();
  if (entity.isNull() || entity->database()->isReadOnly()) return;
  const VdmOpenUpgrade upgrade(entity);
  entity->recordGraphicsModified();
}

}  // namespace

namespace vdmu {

OdDbObjectId getVCSubtractLayer(OdDbDatabase* database) {
  if (database == nullptr) return OdDbObjectId::kNull;
  const OdDbLayerTablePtr table = database->getLayerTableId().openAs<OdDbLayerTable>();
  if (table.isNull()) return OdDbObjectId::kNull;
  if (const OdDbObjectId present = table->getAt(kSubtractLayer); !present.isNull()) return present;
  const OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setIsFrozen(true);
  layer->setIsHidden(true);
  layer->setName(kSubtractLayer);
  layer->setColor(OdCmColor::fromRGB(255, 0, 0));
  const VdmOpenUpgrade upgrade(table);
  return table->add(layer);
}

void markEntToRedraw(const OdArray<OdDbObjectId>& ids) {
  for (const OdDbObjectId& id : ids) {
    if (!id.isErased()) markToRedraw(id);
  }
}

bool getPaperDcsToWcsMatrix(OdSmartPtr<OdDbViewport> viewport, OdGeMatrix3d& matrix) {
  if (viewport.isNull()) return false;
  matrix = displayToWorld(viewport) * paperToDisplay(viewport);
  return true;
}

}  // namespace vdmu
