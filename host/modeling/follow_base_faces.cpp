// A step of the update: inserts follow their base faces on replaced bodies.
#include <cmath>

#include "host/modeling/component_query.h"
#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"
#include "platform/entities/block_reference.h"

namespace vdm_host {
namespace {

// Parallel within about 0.06 degrees: what tells a displaced face from a tilted one.
constexpr double kParallelCosine = 1.0 - 5e-7;

// The plane face that a reference stands for; null for other faces and when there is none.
const OdModelerFace* planeOf(const OdDbObjectId& reference, const OdModelerBody& body) {
  const OdUInt32 index = resolvedIndexOf(reference);
  if (!body.hasSubent({OdModelerSubentType::kFace, index})) return nullptr;
  const OdModelerFace& face = body.face(index);
  return face.kind == OdModelerSurfaceKind::kPlane ? &face : nullptr;
}

// How far the face lies from where it was, along its normal; 0 for one that was tilted.
double displacement(const OdModelerFace& face, const VdmComponentFeature::Placed& placed) {
  if (face.axis.dotProduct(placed.baseNormal) < kParallelCosine) return 0.0;
  return (face.origin - placed.basePoint).dotProduct(placed.baseNormal);
}

void followBaseFace(const VdmComponentFeature& component, const OdModelerBody& body) {
  VdmComponentFeature::Placed placed;
  if (!component.placed(placed) || placed.baseNormal.isZeroLength()) return;
  for (const OdDbObjectId& reference : component.baseFaceDependencies()) {
    const OdModelerFace* face = planeOf(reference, body);
    const double offset = face == nullptr ? 0.0 : displacement(*face, placed);
    if (std::abs(offset) <= OdGeTol::kDefault.equalPoint()) continue;
    const OdDbBlockReferencePtr insert =
        component.insertId().openAs<OdDbBlockReference>(OdDb::kForWrite);
    if (!insert.isNull()) {
      insert->transformBy(OdGeMatrix3d::translation(placed.baseNormal * offset));
    }
  }
}

}  // namespace

OdStatus followBaseFaces(ModelUpdateContext& context) {
  for (const OdDbObjectId& solid : context.replacedSolids) {
    const OdDb3dSolidPtr object = solid.openAs<OdDb3dSolid>();
    const OdModelerBodyPtr body = object.isNull() ? nullptr : object->body();
    if (!body) continue;
    for (const OdDbObjectId& id : context.componentsAt(solid)) {
      const VdmComponentFeaturePtr component = openComponent(id);
      if (!component.isNull()) followBaseFace(*component, *body);
    }
  }
  return {};
}

}  // namespace vdm_host
