// Records of faces that the update pass, its helper and the update interfaces exchange.
#include "vdm_db/features/vdm_matching_faces.h"

#include "platform/base/error.h"

namespace {

constexpr OdInt32 kKindStays = 1;
constexpr OdInt32 kKindStaysToo = 3;

bool staysOnSolid(const VdmFeatureUpdateDataUtils::SolidFace& face) {
  return face.kind == kKindStays || face.kind == kKindStaysToo;
}

template <class Take>
void forEachFaceToRemove(const VdmMatchingFaces& matching, Take take) {
  for (OdUInt32 i = matching.hasBaseFrontFace ? 1 : 0; i < matching.faces.size(); ++i) {
    if (!staysOnSolid(matching.faces[i])) take(matching.faces[i]);
  }
}

}  // namespace

void VdmMatchingFaces::clear() {
  faces.clear();
  hasBaseFrontFace = false;
}

const VdmFeatureUpdateDataUtils::SolidFace* VdmMatchingFaces::baseFrontFace() const {
  return hasBaseFrontFace ? &faces.at(0) : nullptr;
}

void VdmMatchingFaces::fillFacesToRemove(OdDbFullSubentPathArray& out) const {
  forEachFaceToRemove(*this, [&out](const auto& face) { out.append(face.path); });
}

void VdmMatchingFaces::fillFacesToRemove(OdArray<VdmFeatureUpdateDataUtils::SolidFace>& out) const {
  forEachFaceToRemove(*this, [&out](const auto& face) { out.append(face); });
}
