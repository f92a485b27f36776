// The drawing context of a solid with feature colours: the real one, with other colours for faces.
#include "vdm_db/feature_display/vdm_3d_solid_adapted_subentity_traits.h"

#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/feature_display/vdm_db_3d_solid_draw_overrule.h"

namespace {

constexpr OdGsMarker kFirstFaceMarker = 5;
constexpr OdGsMarker kMarkersPerIndex = 4;

// 0 for a marker of something else.
OdGsMarker faceOfMarker(OdGsMarker marker) {
  const bool isFace =
      marker >= kFirstFaceMarker && (marker - kFirstFaceMarker) % kMarkersPerIndex == 0;
  return isFace ? (marker - 1) / kMarkersPerIndex : 0;
}

}  // namespace

Vdm3dSolidAdaptedSubentityTraits::Vdm3dSolidAdaptedSubentityTraits(
    OdGiSubEntityTraits& traits, const OdDb3dSolid* solid, const OdDbObjectId& featureColorMaterial)
    : m_traits(traits),
      m_color(traits.trueColor()),
      m_path(solid->objectId(), OdDbSubentId()),
      m_material(traits.material()),
      m_featureColorMaterial(featureColorMaterial),
      m_model(VdmDbObject::openVdmDbObject(solid)) {}

Vdm3dSolidAdaptedSubentityTraits::~Vdm3dSolidAdaptedSubentityTraits() { restore(); }

void Vdm3dSolidAdaptedSubentityTraits::setTrueColor(const OdCmEntityColor& color) {
  m_color = color;
  if (!m_isFeatureColor) m_traits.setTrueColor(color);
}

void Vdm3dSolidAdaptedSubentityTraits::setMaterial(const OdDbObjectId& material) {
  m_material = material;
  if (!m_isFeatureColor) m_traits.setMaterial(material);
}

void Vdm3dSolidAdaptedSubentityTraits::setSelectionMarker(OdGsMarker marker) {
  const OdGsMarker face = faceOfMarker(marker);
  OdCmEntityColor color(OdCmEntityColor::kByColor);
  if (face != 0 && findFeatureColor(face, color)) {
    useFeatureColor(color);
  } else {
    restore();
  }
  m_traits.setSelectionMarker(marker);
}

bool Vdm3dSolidAdaptedSubentityTraits::findFeatureColor(OdGsMarker face, OdCmEntityColor& color) {
  if (m_model.isNull()) return false;
  m_path.subentId() = OdDbSubentId(OdDb::kFaceSubentType, face);
  const OdDbObjectId dependency = m_model->getPersIdDependency(m_path);
  return !dependency.isNull() && VdmDb3dSolidDrawOverrule::isOverriddenColor(dependency, color);
}

void Vdm3dSolidAdaptedSubentityTraits::useFeatureColor(const OdCmEntityColor& color) {
  m_isFeatureColor = true;
  m_traits.setTrueColor(color);
  m_traits.setMaterial(m_featureColorMaterial);
}

void Vdm3dSolidAdaptedSubentityTraits::restore() {
  if (!m_isFeatureColor) return;
  m_isFeatureColor = false;
  m_traits.setTrueColor(m_color);
  m_traits.setMaterial(m_material);
}
