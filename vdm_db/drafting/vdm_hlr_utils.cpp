// What the module for hidden lines does for others.
#include "vdm_db/drafting/vdm_hlr_utils.h"

namespace {

VdmHlrUtils::MakeShadowRegion g_makeShadowRegion = nullptr;
AutoDisableDraftingViewReactorDb::Factory g_scopeFactory = nullptr;

}  // namespace

OdResult VdmHlrUtils::makeShadowRegion(const OdDbEntityPtr& entity, const OdGePlane& plane,
                                       OdArray<OdDbEntityPtr>& regions) {
  if (g_makeShadowRegion == nullptr) return eModuleNotLoaded;
  return g_makeShadowRegion(entity, plane, regions);
}

void VdmHlrUtils::setImplMakeShadowRegion(MakeShadowRegion method) { g_makeShadowRegion = method; }

AutoDisableDraftingViewReactorDb::~AutoDisableDraftingViewReactorDb() = default;

void AutoDisableDraftingViewReactorDb::setImpl(Factory factory) { g_scopeFactory = factory; }

std::shared_ptr<AutoDisableDraftingViewReactorDb> AutoDisableDraftingViewReactorDb::get() {
  return g_scopeFactory == nullptr ? nullptr : g_scopeFactory();
}
