// Clean-up of the 2D entities of a block.
#include "vdm_db/drafting/vdm_dxf_utils.h"

#include <cmath>
#include <memory>
#include <unordered_map>

#include "platform/db/block_table_record.h"
#include "platform/entities/arc.h"
#include "platform/entities/arc_aligned_text.h"
#include "platform/entities/circle.h"
#include "platform/entities/dimension.h"
#include "platform/entities/ellipse.h"
#include "platform/entities/hatch.h"
#include "platform/entities/leader.h"
#include "platform/entities/line.h"
#include "platform/entities/mline.h"
#include "platform/entities/mtext.h"
#include "platform/entities/point.h"
#include "platform/entities/polyline.h"
#include "platform/entities/polyline_2d.h"
#include "platform/entities/text.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

bool isMinusZ(const OdGeVector3d& normal) {
  return std::abs(normal.z + 1.0) < vdmu::normalTolerance();
}

template <class T>
class VdmuNormalCleaner final : public VdmuINormalCleaner {
 public:
  void clean(OdDbEntity* entity) const override {
    const OdSmartPtr<T> pTypeEnt = T::cast(entity);
    if (pTypeEnt.isNull() || !isMinusZ(pTypeEnt->normal().normal())) return;
    mirror(*pTypeEnt);
    vdmAssert(!isMinusZ(pTypeEnt->normal()),
              "fabs(pTypeEnt->normal().z + 1.0) >= normalTolerance()", OdString::kEmpty,
              "vdm_db/vdm_dxf_utils", 63);
  }

 private:
  // In a plane of the normal -Z, X and Y keep their values and Z changes its sign.
  static void mirror(T& entity) {
    const VdmOpenUpgrade upgrade(&entity);
    const OdGePlane plane(OdGePoint3d::kOrigin, OdGeVector3d::kXAxis, OdGeVector3d::kYAxis);
    OdGeMatrix3d matrix;
    entity.transformBy(matrix.setToMirroring(plane));
  }
};

using Cleaners = std::unordered_map<const OdRxClass*, std::unique_ptr<VdmuINormalCleaner>>;

template <class... T>
Cleaners makeCleaners() {
  Cleaners cleaners;
  (cleaners.emplace(T::desc(), std::make_unique<VdmuNormalCleaner<T>>()), ...);
  return cleaners;
}

// The cleaner of the class itself. An abstract class of the table, as that of dimensions, has no
// entities of its own: its row serves the classes below it.
const VdmuINormalCleaner* cleanerOf(const Cleaners& cleaners, const OdRxClass* own) {
  for (const OdRxClass* cls = own; cls != nullptr; cls = cls->myParent()) {
    const auto found = cleaners.find(cls);
    if (found == cleaners.end()) continue;
    return cls == own || cls->isAbstract() ? found->second.get() : nullptr;
  }
  return nullptr;
}

}  // namespace

VdmuINormalCleaner::~VdmuINormalCleaner() = default;

void vdmu::cleanUp2DEntities(const OdDbObjectId& block) {
  const auto record = block.openAs<OdDbBlockTableRecord>();
  if (record.isNull()) return;
  const OdDbObjectIteratorPtr it = record->newIterator(/*atBeginning=*/true, /*skipErased=*/true);
  if (it.isNull()) return;
  const Cleaners cleaners = makeCleaners<OdDb2dPolyline, OdDbArc, OdDbCircle, OdDbEllipse, OdDbLine,
                                         OdDbPolyline, OdDbArcAlignedText, OdDbDimension, OdDbHatch,
                                         OdDbLeader, OdDbMText, OdDbMline, OdDbPoint, OdDbText>();
  for (; !it->done(); it->step()) {
    const OdDbEntityPtr entity = it->entity();
    if (entity.isNull()) continue;
    const VdmuINormalCleaner* cleaner = cleanerOf(cleaners, entity->isA());
    if (cleaner != nullptr) cleaner->clean(entity);
  }
}
