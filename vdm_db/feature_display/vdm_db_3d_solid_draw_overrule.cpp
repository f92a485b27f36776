// VdmDb3dSolidDrawOverrule: draws solids in the colours of their features.
//
// The solid draws itself, and knows nothing of features: the overrule gives it a context whose
// traits are replaced (Vdm3dSolidAdaptedWorldDraw). Before each face the solid sets a selection
// marker; at that moment the traits look the face up among the dependencies of the solid's model
// object, ask the features that hold the dependency, and send the feature's colour and material to
// the real traits instead of the solid's. What the solid sets during that time is remembered and
// sent with the next marker that has no feature colour, and at the end. So the real traits always
// end as the solid left them, and nothing is stored on the solid.
//
// needDrawOverride() asks the cheap questions first, because it runs for every solid of every
// picture. A solid without features then costs no look-up by face; one with features costs a hashed
// look-up for each face, and opens features for those faces only to which they refer.
#include "vdm_db/feature_display/vdm_db_3d_solid_draw_overrule.h"

#include "platform/db/database.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_reactor_utils.h"
#include "vdm_db/feature_display/vdm_3d_solid_adapted_world_draw.h"
#include "vdm_db/feature_display/vdm_db_3d_solid_feature_coloring.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_color_material.h"
#include "vdm_db/features/vdm_feature_colors.h"
#include "vdm_db/features/vdm_feature_manager_utils.h"

namespace {

// The feature's answer for the masks under which it holds a dependency with these watchers, in
// their order, until one is a colour.
bool answersWithColor(const VdmFeature& feature, const OdDbObjectIdArray& watchers,
                      OdCmEntityColor& color) {
  for (const OdDbObjectId& id : watchers) {
    const VdmDbPersIdReactorPtr reactor = id.openAs<VdmDbPersIdReactor>();
    if (reactor.isNull() || reactor->ownerId() != feature.objectId()) continue;
    if (feature.overrideColor(static_cast<int>(reactor->mask()), color)) return true;
  }
  return false;
}

OdDbObjectIdArray watchersOf(const OdDbObjectId& id) {
  const OdDbObjectPtr object = id.openObject();
  return object.isNull() ? OdDbObjectIdArray() : object->getPersistentReactors();
}

bool isInLocalDrawing(const OdDb3dSolid& solid) {
  const OdDbDatabase* database = solid.database();
  return database != nullptr && database->xrefBlockId().isNull();
}

bool isBlockColored(const OdDb3dSolid& solid) {
  const OdDbObjectId owner = solid.ownerId();
  return owner == solid.database()->getModelSpaceId() ||
         VdmDb3dSolidFeatureColoring::isOverridenColorForBlock(owner);
}

bool canHaveFeatures(const OdDb3dSolid& solid) {
  return !VdmDbFeatureManager::getInstance(solid.ownerId(), /*create=*/false).isNull() &&
         vdmu::hasReactorOfKind(&solid, VdmDbObject::desc());
}

}  // namespace

OdDbObjectId VdmDb3dSolidDrawOverrule::createFeatureColorMaterial(OdDbDatabase* database) {
  return vdmu::createFeatureColorMaterial(database);
}

OdDbObjectId VdmDb3dSolidDrawOverrule::findFeatureColorMaterial(OdDbDatabase* database) {
  return vdmu::findFeatureColorMaterial(database);
}

bool VdmDb3dSolidDrawOverrule::isOverriddenColor(const OdDbObjectId& dependency,
                                                 OdCmEntityColor& color) {
  VdmFeatureManagerUtils::IdSet features;
  VdmFeatureManagerUtils::getFeaturesByDep(dependency, features, {});
  if (features.empty()) return false;
  const OdDbObjectIdArray watchers = watchersOf(dependency);
  for (const OdDbObjectId& id : features) {
    const VdmFeaturePtr feature = VdmFeature::open(id);
    if (feature.isNull() || !answersWithColor(*feature, watchers, color)) continue;
    return feature->getAllDependencies(/*filtered=*/false).contains(dependency);
  }
  return false;
}

bool VdmDb3dSolidDrawOverrule::needDrawOverride(const OdDb3dSolid* solid,
                                                const OdGiRegenType& regenType) {
  return solid != nullptr && regenType != kOdGiForExtents && vdmu::GetFEATURECOLORS::getValue() &&
         isInLocalDrawing(*solid) && solid->database()->isReadyForDisplay() &&
         isBlockColored(*solid) && canHaveFeatures(*solid);
}

bool VdmDb3dSolidDrawOverrule::worldDraw(const OdGiDrawable* drawable, OdGiWorldDraw* context) {
  const OdDb3dSolidPtr solid = OdDb3dSolid::cast(drawable);
  if (!needDrawOverride(solid, context->regenType())) {
    return OdGiDrawableOverrule::worldDraw(drawable, context);
  }
  OdStaticRxObject<Vdm3dSolidAdaptedWorldDraw> adapted(*context, solid.get(),
                                                       findFeatureColorMaterial(solid->database()));
  return OdGiDrawableOverrule::worldDraw(drawable, &adapted);
}
