// VdmAssocUtils: what the module for associations of entities does for others.
#pragma once

#include "platform/base/result.h"
#include "platform/db/entity.h"
#include "platform/db/subent.h"
#include "platform/ge/plane.h"
#include "vdm_db/common/vdm_db_export.h"

/// Operations on entities that carry a vdm_assoc::EntityAssocAttribute. This module has none of its
/// own: another one sets them when it starts and sets null before it ends. An operation that is not
/// set gives eModuleNotLoaded and changes nothing; otherwise the result is the operation's. Not to
/// be set while another thread uses them.
class VDM_DB_EXPORT VdmAssocUtils {
 public:
  VdmAssocUtils() = delete;

  using SwapAssocHandles = OdResult (*)(const OdDbObjectId& a, const OdDbObjectId& b);
  using MarkTrackingEnts = OdResult (*)(const OdArray<OdDbFullSubentPath>& paths);
  using MarkTrackingEntsByIds = OdResult (*)(const OdArray<OdDbObjectId>& ids);
  using SetSectionAttr = OdResult (*)(const OdDbEntityPtr& entity, const OdGePlane& plane,
                                      const OdString& name);
  using TransformAcisDepToVdm = OdResult (*)(const OdDbEntityPtr& entity, OdDbEntityPtr& result);
  using SetHandleAttrByFSP = OdResult (*)(const OdDbEntityPtr& entity,
                                          const OdDbFullSubentPath& path);
  using GetAcisEntsFSP = OdResult (*)(const OdArray<OdDbFullSubentPath>& paths,
                                      OdArray<OdDbFullSubentPath>& result);

  /// Exchanges the dependencies that two entities stem from.
  static OdResult swapAssocHandles(const OdDbObjectId& a, const OdDbObjectId& b);
  /// Marks what the paths lead to, or the entities, as made for tracking.
  static OdResult markTrackingEnts(const OdArray<OdDbFullSubentPath>& paths);
  static OdResult markTrackingEnts(const OdArray<OdDbObjectId>& ids);
  /// Notes at an entity of a section the plane and the name of the section.
  static OdResult setSectionAttr(const OdDbEntityPtr& entity, const OdGePlane& plane,
                                 const OdString& name);
  /// From an entity of the older kind of association to one of the present kind.
  static OdResult transformAcisDepToVdm(const OdDbEntityPtr& entity, OdDbEntityPtr& result);
  /// Notes at an entity the dependency of what the path leads to.
  static OdResult setHandleAttrByFSP(const OdDbEntityPtr& entity, const OdDbFullSubentPath& path);
  /// Paths to the entities of the older kind for paths of the present kind.
  static OdResult getAcisEntsFSP(const OdArray<OdDbFullSubentPath>& paths,
                                 OdArray<OdDbFullSubentPath>& result);

  static void setImplSwapAssocHandles(SwapAssocHandles method);
  static void setImplMarkTrackingEnts(MarkTrackingEnts method);
  static void setImplMarkTrackingEntsByIds(MarkTrackingEntsByIds method);
  static void setImplSectionAttrMethod(SetSectionAttr method);
  static void setImplTransformAcisDepToVdmMethod(TransformAcisDepToVdm method);
  static void setImplHandleAttrByFSPMethod(SetHandleAttrByFSP method);
  static void setImplGetAcisEntsFSPMethod(GetAcisEntsFSP method);
};
