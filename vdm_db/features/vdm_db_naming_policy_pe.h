// VdmDbNamingPolicyPE: how new features are named.
#pragma once

#include "platform/base/string.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbFeatureManager;

/// Protocol extension of VdmDbFeatureManager. Without one features keep the names that they are
/// given.
class VDM_DB_EXPORT VdmDbNamingPolicyPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbNamingPolicyPE)

  /// The name of a new feature, unique in its manager. An empty name becomes the base name of the
  /// class, without white space at its end with `trim`, and the number 1; a given one gets the
  /// number 1 with `numberGiven`. Without a manager the name stays.
  [[nodiscard]] virtual OdString generateFeatureName(VdmDbFeatureManager* manager, OdRxClass* cls,
                                                     const OdString& name, bool numberGiven,
                                                     bool trim);
  /// Name of a feature class for users.
  [[nodiscard]] virtual OdString displayName(const OdRxClass* cls) const = 0;
  /// Name without number that features of the class begin with.
  [[nodiscard]] virtual OdString baseName(const OdRxClass* cls) const = 0;
};
