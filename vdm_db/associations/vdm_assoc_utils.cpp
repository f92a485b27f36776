// The hooks of the module for associations.
#include "vdm_db/associations/vdm_assoc_utils.h"

namespace {

struct Methods {
  VdmAssocUtils::SwapAssocHandles swapAssocHandles = nullptr;
  VdmAssocUtils::MarkTrackingEnts markTrackingEnts = nullptr;
  VdmAssocUtils::MarkTrackingEntsByIds markTrackingEntsByIds = nullptr;
  VdmAssocUtils::SetSectionAttr setSectionAttr = nullptr;
  VdmAssocUtils::TransformAcisDepToVdm transformAcisDepToVdm = nullptr;
  VdmAssocUtils::SetHandleAttrByFSP setHandleAttrByFSP = nullptr;
  VdmAssocUtils::GetAcisEntsFSP getAcisEntsFSP = nullptr;
};
constinit Methods g_methods;

template <class Method, class... Arguments>
OdResult call(Method method, Arguments&... arguments) {
  return method == nullptr ? eModuleNotLoaded : method(arguments...);
}

}  // namespace

OdResult VdmAssocUtils::swapAssocHandles(const OdDbObjectId& a, const OdDbObjectId& b) {
  return call(g_methods.swapAssocHandles, a, b);
}
OdResult VdmAssocUtils::markTrackingEnts(const OdArray<OdDbFullSubentPath>& paths) {
  return call(g_methods.markTrackingEnts, paths);
}
OdResult VdmAssocUtils::markTrackingEnts(const OdArray<OdDbObjectId>& ids) {
  return call(g_methods.markTrackingEntsByIds, ids);
}
OdResult VdmAssocUtils::setSectionAttr(const OdDbEntityPtr& entity, const OdGePlane& plane,
                                       const OdString& name) {
  return call(g_methods.setSectionAttr, entity, plane, name);
}
OdResult VdmAssocUtils::transformAcisDepToVdm(const OdDbEntityPtr& entity, OdDbEntityPtr& result) {
  return call(g_methods.transformAcisDepToVdm, entity, result);
}
OdResult VdmAssocUtils::setHandleAttrByFSP(const OdDbEntityPtr& entity,
                                           const OdDbFullSubentPath& path) {
  return call(g_methods.setHandleAttrByFSP, entity, path);
}
OdResult VdmAssocUtils::getAcisEntsFSP(const OdArray<OdDbFullSubentPath>& paths,
                                       OdArray<OdDbFullSubentPath>& result) {
  return call(g_methods.getAcisEntsFSP, paths, result);
}

#define VDM_ASSOC_SETTER(setter, Method, slot) \
  void VdmAssocUtils::setter(Method method) { g_methods.slot = method; }
VDM_ASSOC_SETTER(setImplSwapAssocHandles, SwapAssocHandles, swapAssocHandles)
VDM_ASSOC_SETTER(setImplMarkTrackingEnts, MarkTrackingEnts, markTrackingEnts)
VDM_ASSOC_SETTER(setImplMarkTrackingEntsByIds, MarkTrackingEntsByIds, markTrackingEntsByIds)
VDM_ASSOC_SETTER(setImplSectionAttrMethod, SetSectionAttr, setSectionAttr)
VDM_ASSOC_SETTER(setImplTransformAcisDepToVdmMethod, TransformAcisDepToVdm, transformAcisDepToVdm)
VDM_ASSOC_SETTER(setImplHandleAttrByFSPMethod, SetHandleAttrByFSP, setHandleAttrByFSP)
VDM_ASSOC_SETTER(setImplGetAcisEntsFSPMethod, GetAcisEntsFSP, getAcisEntsFSP)
#undef VDM_ASSOC_SETTER
