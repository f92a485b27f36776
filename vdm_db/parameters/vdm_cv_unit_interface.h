// VdmCVUnitInterface: how a host shows, reads and converts measurements.
#pragma once

#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"

class VdmCVUnitInterface;
using VdmCVUnitInterfacePtr = OdSmartPtr<VdmCVUnitInterface>;

/// Protocol extension that a host attaches to the class of OdDbAssocVariable. The order of the
/// operations is fixed for modules that are built apart.
class VDM_DB_EXPORT VdmCVUnitInterface : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmCVUnitInterface)

  /// By what a number in the unit `from` is multiplied to be one in the unit `to`. eOk when the
  /// factor was set.
  virtual OdResult getConversionFactor(const OdString& from, const OdString& to,
                                       double* factor) = 0;
  /// As it is shown to a user.
  virtual OdString formatMeasurement(const VdmAssocVariableExt::Measurement& measurement) = 0;
  // Not called by this module; they keep their places.
  virtual void reservedOperationA() = 0;
  virtual void reservedOperationB() = 0;
  virtual void reservedOperationC() = 0;
  virtual void reservedOperationD() = 0;
  virtual void reservedOperationE() = 0;
  /// The number of a text that is a length, as formatMeasurement() shows it; false for another
  /// text.
  virtual bool parseLength(const OdString& text, double* value) = 0;

  /// The host's; null without one.
  [[nodiscard]] static VdmCVUnitInterfacePtr instance();
  /// The number of a text that the host takes for a length, with up to 12 digits; any other text
  /// as it is.
  [[nodiscard]] static OdString unformatLength(const OdString& text);
  /// The value of a variable as the host shows it, in other length units unless `target` is
  /// kUnitsUndefined. Without a host the number alone; empty for null.
  [[nodiscard]] static OdString getFormattedMeasurement(const OdDbAssocVariable* variable,
                                                        OdDb::UnitsValue target);
};
