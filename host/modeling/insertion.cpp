// Inserting a component at a solid.
//
// The place of a component is a point, a direction out of the material and a base face. A caller
// gives the point and any of the other two. The face is the one that was named or the one in which
// the point lies; the direction is the one that was given or the outward normal of the face there.
// At an apex, which has no normal, a direction is required. Without a face the component has no
// base face to follow.
#include "host/modeling/insertion.h"

#include <cmath>

#include "host/modeling/component_feature.h"
#include "host/modeling/component_kind.h"
#include "host/naming/subent_name.h"
#include "platform/db/block_table_record.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_group_faces.h"

namespace vdm_host {
namespace {

OdStatus refuse(const OdString& text) { return {eInvalidInput, text}; }

// The face that was named or in which the point lies; 0 for a point in no face that has a
// direction.
OdStatus findFace(const OdModelerBody& body, const ComponentPlacement& placement, OdUInt32& face) {
  if (!placement.face) {
    OdModelerSubent found;
    const double tolerance = kOnFace * body.extents().diagonal().length();
    OdStatus status =
        findSubentNear(body, placement.point, OdModelerSubentType::kFace, tolerance, found);
    if (status.ok()) face = found.index;
    return status.ok() || placement.direction ? OdStatus() : status;
  }
  face = static_cast<OdUInt32>(placement.face->index());
  const bool isFace = placement.face->type() == OdDb::kFaceSubentType &&
                      body.hasSubent({OdModelerSubentType::kFace, face});
  if (isFace) return {};
  OdString text;
  text.format(L"the solid has no face %u: it has %u", face, body.numFaces());
  return refuse(text);
}

// Out of the material at the point of the face that is nearest to the point.
OdStatus outwardNormal(const OdModelerBody& body, OdUInt32 face, const OdGePoint3d& point,
                       OdGeVector3d& direction) {
  direction = body.nearestOnFace(face, point).normal;
  if (!direction.isZeroLength()) return {};
  return refuse(OdString(L"the face has no normal at the point: a direction is needed"));
}

}  // namespace

OdGeMatrix3d componentFrame(const OdGePoint3d& point, const OdGeVector3d& direction,
                            double rotation) {
  const OdGeVector3d z = direction.normal();
  // As drawings choose the axes of a plane: the world's y unless the plane is nearly level.
  constexpr double kLevel = 1.0 / 64.0;
  const bool isLevel = std::abs(z.x) < kLevel && std::abs(z.y) < kLevel;
  const OdGeVector3d x =
      (isLevel ? OdGeVector3d::kYAxis : OdGeVector3d::kZAxis).crossProduct(z).normal();
  const OdGeMatrix3d frame = OdGeMatrix3d::coordSystem(point, x, z.crossProduct(x), z);
  return frame * OdGeMatrix3d::rotation(rotation, OdGeVector3d::kZAxis);
}

OdStatus placeInsertion(const ComponentInsert& component, ComponentTools& tools,
                        InsertionPlace& place) {
  const ComponentPlacement& placement = component.placement;
  const OdDb3dSolidPtr solid = placement.solid.openAs<OdDb3dSolid>();
  const OdString solidText = placement.solid.getHandle().ascii();
  if (solid.isNull()) return refuse(L"object " + solidText + L" is no solid");
  const OdModelerBodyPtr body = solid->body();
  if (!body) return refuse(L"solid " + solidText + L" is empty");
  const BlockTools& blockTools = tools.of(component.block);
  if (blockTools.bodies[0].empty() && blockTools.bodies[1].empty()) {
    return refuse(L"block " + OdString(component.block.getHandle().ascii()) + L" is no component");
  }
  if (placement.direction && placement.direction->isZeroLength()) {
    return refuse(OdString(L"the direction has no length"));
  }
  OdGeVector3d direction;
  OdStatus status = findFace(*body, placement, place.face);
  if (status.ok() && placement.direction) {
    direction = *placement.direction;
  } else if (status.ok()) {
    status = outwardNormal(*body, place.face, placement.point, direction);
  }
  if (!status.ok()) return status;
  place.frame = componentFrame(placement.point, direction, placement.rotation);
  return {};
}

OdStatus makeInsertion(OdDbDatabase* database, const ComponentInsert& component,
                       const InsertionPlace& place, OdDbObjectId& insert, OdDbObjectId& feature) {
  const ComponentPlacement& placement = component.placement;
  OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
  reference->setDatabaseDefaults(database);
  const OdDbObjectId space = placement.solid.safeOpenObject()->ownerId();
  insert = space.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite)->appendOdDbEntity(reference);
  reference->setBlockTableRecord(component.block);
  reference->setBlockTransform(place.frame);
  reference.release();

  const bool isNamed = !placement.name.isEmpty();
  const OdDbObjectId managerId = VdmDbFeatureManager::getInstance(space, /*create=*/true);
  feature = managerId.safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite)
                ->createFeatureData(VdmComponentFeature::desc(),
                                    isNamed ? placement.name : componentKind(component.block),
                                    /*numberGiven=*/!isNamed, /*trim=*/true);
  const VdmComponentFeaturePtr object =
      VdmComponentFeature::cast(VdmFeature::open(feature, OdDb::kForWrite));
  if (object.isNull()) {
    return {eModelerError, OdString(L"the feature cannot be made: its class is not loaded")};
  }
  object->getDbObject()->assertWriteEnabled();
  object->bind(placement.solid, insert);
  if (place.face == 0) return {};
  const OdDbFullSubentPath base(placement.solid, OdDbSubentId(OdDb::kFaceSubentType, place.face));
  OdDbFullSubentPathArray paths;
  paths.append(base);
  OdArray<VdmFeatureGroupFaces> groups;
  groups.append(VdmFeatureGroupFaces(VdmComponentFeature::kBaseFaceMask, paths,
                                     VdmComponentFeature::kBaseFaceTag));
  object->init(groups);
  return {};
}

}  // namespace vdm_host
