// How a host shows, reads and converts measurements.
#include "vdm_db/parameters/vdm_cv_unit_interface.h"

#include "vdm_db/parameters/vdm_variable_values.h"

OD_RX_DEFINE_ABSTRACT(VdmCVUnitInterface, OdRxObject, L"VdmCVUnitInterface")

VdmCVUnitInterfacePtr VdmCVUnitInterface::instance() {
  return cast(OdDbAssocVariable::desc()->getX(desc()));
}

OdString VdmCVUnitInterface::unformatLength(const OdString& text) {
  if (text.isEmpty()) return text;
  const VdmCVUnitInterfacePtr host = instance();
  double length = 0;
  if (host.isNull() || !host->parseLength(text, &length)) return text;
  return vdmu::getConstExpression(length);
}

OdString VdmCVUnitInterface::getFormattedMeasurement(const OdDbAssocVariable* variable,
                                                     OdDb::UnitsValue target) {
  if (variable == nullptr) return {};
  const VdmCVUnitInterfacePtr host = instance();
  if (host.isNull()) return vdmu::getConstExpression(vdmu::getValueAsDouble(variable));
  const VdmAssocVariableExtPtr wrapper = VdmAssocVariableExt::cast(variable);
  return host->formatMeasurement(target == OdDb::kUnitsUndefined
                                     ? wrapper->getMeasurement(/*withValue=*/true)
                                     : wrapper->convertMeasurement(target));
}
