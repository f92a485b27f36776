// VdmDb3dSolidDrawOverrule: draws solids in the colours of their features.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/gi/drawable_overrule.h"
#include "platform/gi/entity_color.h"
#include "platform/gi/regen_type.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDb3dSolid;
class OdDbDatabase;

/// Steps between a solid and the context that it draws into, and swaps in the colours of features
/// face by face. The colours are the features' own: nothing is stored on the solid. The module
/// installs one for the class of solids.
class VDM_DB_EXPORT VdmDb3dSolidDrawOverrule : public OdGiDrawableOverrule {
 public:
  VdmDb3dSolidDrawOverrule() = default;

  /// Whether a feature claims the subentity behind a persistent reference, and in which colour. The
  /// first feature, in the order of their handles, that answers for one of the masks under which it
  /// depends on the reference decides; the answer is true only if the reference is among those it
  /// can tell. `color` may have been changed when the answer is false.
  [[nodiscard]] static bool isOverriddenColor(const OdDbObjectId& dependency,
                                              OdCmEntityColor& color);

  /// The material that faces with a feature colour are drawn with; made when it is missing, once,
  /// however many callers there are. Null for null.
  static OdDbObjectId createFeatureColorMaterial(OdDbDatabase* database);
  /// The same without making it; null when there is none.
  [[nodiscard]] static OdDbObjectId findFeatureColorMaterial(OdDbDatabase* database);

  /// Whether colours may have to be swapped: not when only sizes are wanted, the switch is off, the
  /// solid is of an external drawing or not ready for display, its block is neither model space nor
  /// marked, or no feature can depend on it.
  [[nodiscard]] static bool needDrawOverride(const OdDb3dSolid* solid,
                                             const OdGiRegenType& regenType);

  bool worldDraw(const OdGiDrawable* drawable, OdGiWorldDraw* context) override;
};
