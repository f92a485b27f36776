// Figures of the parts in a drawing.
#include "host/batch/drawing_figures.h"

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/layer_table.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"

namespace batch {
namespace {

class Measuring {
 public:
  void addBlock(const OdDbObjectId& id, const OdGeMatrix3d& toModel) {
    const auto block = id.openAs<OdDbBlockTableRecord>();
    if (block.isNull() || block->isFromExternalReference()) return;
    for (const OdDbObjectId& entity : block->entityIds()) {
      if (!entity.isErased()) addEntity(entity, toModel);
    }
  }

  [[nodiscard]] DrawingFigures figures() const {
    DrawingFigures figures = m_sum;
    if (figures.volume > 0.0) figures.centre = OdGePoint3d::kOrigin + m_moment / figures.volume;
    return figures;
  }

 private:
  void addEntity(const OdDbObjectId& id, const OdGeMatrix3d& toModel) {
    const auto entity = id.openAs<OdDbEntity>();
    if (entity.isNull() || isHidden(*entity)) return;
    if (const auto solid = OdDb3dSolid::cast(entity); !solid.isNull()) {
      addSolid(*solid, toModel);
    } else if (const auto insert = OdDbBlockReference::cast(entity); !insert.isNull()) {
      addBlock(insert->blockTableRecord(), toModel * insert->blockTransform());
    }
  }

  static bool isHidden(const OdDbEntity& entity) {
    const auto layer = entity.layerId().openAs<OdDbLayerTableRecord>();
    return !layer.isNull() && (layer->isOff() || layer->isFrozen());
  }

  void addSolid(const OdDb3dSolid& solid, const OdGeMatrix3d& toModel) {
    OdModelerBodyPtr body;
    OdStatus status = solid.getBody(body);
    if (status.ok() && !body) return;
    if (status.ok() && toModel != OdGeMatrix3d::kIdentity) {
      const OdModelerBodyPtr inBlock = body;
      status = inBlock->transformed(toModel, body);
    }
    if (!status.ok()) {
      throw OdError(status.code,
                    L"measuring solid " + solid.getDbHandle().ascii() + L": " + status.text);
    }
    const OdModelerMassProperties mass = body->massProperties();
    m_sum.solids += body->numSolids();
    m_sum.volume += mass.volume;
    m_sum.area += mass.area;
    m_sum.box.addExt(body->extents());
    m_moment += mass.centroid.asVector() * mass.volume;
  }

  DrawingFigures m_sum;
  OdGeVector3d m_moment;
};

}  // namespace

DrawingFigures measureDrawing(OdDbDatabase& drawing) {
  Measuring measuring;
  measuring.addBlock(drawing.getModelSpaceId(), OdGeMatrix3d::kIdentity);
  return measuring.figures();
}

}  // namespace batch
