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

void VdmAssocUtils::setImplSwapAssocHandles(SwapAssocHandles method) {
  g_methods.swapAssocHandles = method;
}
void VdmAssocUtils::setImplMarkTrackingEnts(MarkTrackingEnts method) {
  g_methods.markTrackingEnts = method;
}
void VdmAssocUtils::setImplMarkTrackingEntsByIds(MarkTrackingEntsByIds method) {
  g_methods.markTrackingEntsByIds = method;
}
void VdmAssocUtils::setImplSectionAttrMethod(SetSectionAttr method) {
  g_methods.setSectionAttr = method;
}
void VdmAssocUtils::setImplTransformAcisDepToVdmMethod(TransformAcisDepToVdm method) {
  g_methods.transformAcisDepToVdm = method;
}
void VdmAssocUtils::setImplHandleAttrByFSPMethod(SetHandleAttrByFSP method) {
  g_methods.setHandleAttrByFSP = method;
}
void VdmAssocUtils::setImplGetAcisEntsFSPMethod(GetAcisEntsFSP method) {
  g_methods.getAcisEntsFSP = method;
}
