// VdmHlrUtils: what the module for hidden lines does for others.
#pragma once

#include <memory>

#include "platform/base/result.h"
#include "platform/db/entity.h"
#include "platform/ge/plane.h"
#include "vdm_db/common/vdm_db_export.h"

/// Operations that another module sets when it starts, and sets to null before it ends. One that is
/// not set gives eModuleNotLoaded and changes nothing. Not to be set while another thread uses
/// them.
class VDM_DB_EXPORT VdmHlrUtils {
 public:
  VdmHlrUtils() = delete;

  using MakeShadowRegion = OdResult (*)(const OdDbEntityPtr& entity, const OdGePlane& plane,
                                        OdArray<OdDbEntityPtr>& regions);

  /// The outline that an entity covers when it is projected onto a plane, as entities that are in
  /// no drawing.
  static OdResult makeShadowRegion(const OdDbEntityPtr& entity, const OdGePlane& plane,
                                   OdArray<OdDbEntityPtr>& regions);
  static void setImplMakeShadowRegion(MakeShadowRegion method);
};

/// A scope in which drawing views do not follow changes of their models: it ends with the object. A
/// host sets how it is made at start, and null before it ends.
class VDM_DB_EXPORT AutoDisableDraftingViewReactorDb {
 public:
  using Factory = std::shared_ptr<AutoDisableDraftingViewReactorDb> (*)();

  AutoDisableDraftingViewReactorDb() = default;
  virtual ~AutoDisableDraftingViewReactorDb() = 0;
  AutoDisableDraftingViewReactorDb(const AutoDisableDraftingViewReactorDb&) = delete;
  AutoDisableDraftingViewReactorDb& operator=(const AutoDisableDraftingViewReactorDb&) = delete;

  static void setImpl(Factory factory);
  /// A new scope; null while no factory is set.
  [[nodiscard]] static std::shared_ptr<AutoDisableDraftingViewReactorDb> get();
};
