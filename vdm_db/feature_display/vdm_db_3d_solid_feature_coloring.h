// VdmDb3dSolidFeatureColoring: feature colours beyond drawing, and the blocks that show them.
#pragma once

#include "platform/base/non_copyable.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

/// Hooks through which a host writes feature colours into a solid for as long as they are needed
/// there (during an export, say), and the marks of blocks whose solids are drawn in feature
/// colours. The hooks are set at start-up.
class VDM_DB_EXPORT VdmDb3dSolidFeatureColoring {
 public:
  /// Called with the id of a solid.
  using Method = void (*)(const OdDbObjectId&);

  /// Writes the feature colours into the solid while it lives: calls the overwrite hook when the
  /// solid is one that would be drawn in feature colours, and then the recover hook at its end.
  class VDM_DB_EXPORT AutoApplyColor : OdNonCopyable {
   public:
    explicit AutoApplyColor(const OdDbObjectId& solid);
    ~AutoApplyColor();

   private:
    OdDbObjectId m_id;
    bool m_overwritten = false;
  };

  VdmDb3dSolidFeatureColoring() = delete;

  static void setMethodOverwriteAttr(Method method) { m_methodOverwriteAttr = method; }
  static void setMethodRecoverAttr(Method method) { m_methodRecoverAttr = method; }

  /// Calls the overwrite hook for any solid.
  static void setOverriddenAttr(const OdDbObjectId& solid);
  /// Calls the recover hook for a solid that would be drawn in feature colours; nothing without
  /// `condition`.
  static void restoreColorAndMaterialAttr(const OdDbObjectId& solid, bool condition);

  /// Marks a block, or takes its mark away; nothing when it is so already. The drawing learns the
  /// application name of the mark. Raises what opening for write raises.
  static void overrideColorForBlock(const OdDbObjectId& block, bool on);
  /// False for what is no block.
  [[nodiscard]] static bool isOverridenColorForBlock(const OdDbObjectId& block);

 private:
  static Method m_methodOverwriteAttr;
  static Method m_methodRecoverAttr;
};
