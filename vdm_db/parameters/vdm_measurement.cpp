// Units and conversion of parameters.
#include <array>

#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/units.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_cv_unit_interface.h"
#include "vdm_db/parameters/vdm_variable_values.h"

namespace {

/// By OdDb::UnitsValue.
constexpr std::array<const wchar_t*, 21> kUnitTexts{
    L"",   L"in",       L"ft",   L"miles", L"mm",        L"cm", L"meters",
    L"km", L"\u00B5in", L"mils", L"yd",    L"angstroms", L"nm", L"microns",
    L"dm", L"dam",      L"hm",   L"Gm",    L"AU",        L"ly", L"pc"};

bool isPowerOfLength(int type) {
  return type >= VdmAssocVariableExt::kLength && type <= VdmAssocVariableExt::kVolume;
}

double powerOf(double factor, int exponent) {
  if (exponent == VdmAssocVariableExt::kLength) return factor;
  if (exponent == VdmAssocVariableExt::kArea) return factor * factor;
  return factor * (factor * factor);
}

}  // namespace

OdString VdmAssocVariableExt::unitsToString(OdDb::UnitsValue units) {
  const auto row = static_cast<std::size_t>(units);
  return row < kUnitTexts.size() ? OdString(kUnitTexts[row]) : OdString();
}

OdString VdmAssocVariableExt::measurementTypeToString(OdDb::UnitsValue units, int type) {
  const OdString text = unitsToString(units);
  if (text.isEmpty() || !isPowerOfLength(type)) return {};
  return type == kLength ? text : OdString().format(L"%ls^%d", text.c_str(), type);
}

// ---- Of the variable

OdDb::UnitsValue VdmAssocVariableExt::getBlockUnits() const {
  if (m_variable.isNull()) return OdDb::kUnitsUndefined;
  const OdDbObjectId block = m_variable->objectThatOwnsNetworkInstance();
  const OdDbDatabase* database = block.database();
  if (database == nullptr) return OdDb::kUnitsUndefined;
  if (block == database->getModelSpaceId()) return database->getINSUNITS();
  const auto record = block.openAs<OdDbBlockTableRecord>();
  return record.isNull() ? OdDb::kUnitsUndefined : record->blockInsertUnits();
}

VdmAssocVariableExt::Measurement VdmAssocVariableExt::getMeasurement(bool withValue) const {
  Measurement measurement;
  if (withValue) measurement.value = vdmu::getValueAsDouble(m_variable.get());
  measurement.units = getBlockUnits();
  measurement.type = measurementType();
  if (measurement.type == kNumber && isLinearDimension()) measurement.type = kLength;
  if (!bag().getProperty(kVdmUnits, measurement.text)) {
    measurement.text = measurementTypeToString(measurement.units, measurement.type);
  }
  return measurement;
}

OdString VdmAssocVariableExt::unitsAsString() const {
  return getMeasurement(/*withValue=*/false).text;
}

// ---- Conversion

namespace {

using Measurement = VdmAssocVariableExt::Measurement;

/// Converts a number with a free unit, in which the length unit occurs; false where that fails.
bool convertFreeUnit(const Measurement& from, Measurement& to) {
  const VdmCVUnitInterfacePtr host = VdmCVUnitInterface::instance();
  if (from.text.isEmpty() || host.isNull()) return false;
  OdString text = from.text;
  text.replace(VdmAssocVariableExt::unitsToString(from.units),
               VdmAssocVariableExt::unitsToString(to.units));
  if (text == from.text) return false;
  double factor = 1.0;
  if (host->getConversionFactor(from.text, text, &factor) != eOk) return false;
  to.value *= factor;
  to.text = text;
  return true;
}

}  // namespace

VdmAssocVariableExt::Measurement VdmAssocVariableExt::convertMeasurement(
    OdDb::UnitsValue target, const Measurement& measurement) {
  Measurement converted;
  converted.value = measurement.value;
  converted.type = measurement.type;
  if (target == OdDb::kUnitsUndefined || measurement.units == OdDb::kUnitsUndefined) {
    return converted;
  }
  converted.units = target;
  if (target == measurement.units) {
    converted.text = measurement.text;
  } else if (isPowerOfLength(measurement.type)) {
    const double factor = oddbGetUnitsConversion(measurement.units, target);
    converted.value *= powerOf(factor, measurement.type);
    converted.text = measurementTypeToString(target, measurement.type);
  } else {
    static_cast<void>(convertFreeUnit(measurement, converted));
  }
  return converted;
}

VdmAssocVariableExt::Measurement VdmAssocVariableExt::convertMeasurement(
    OdDb::UnitsValue target) const {
  return convertMeasurement(target, getMeasurement(/*withValue=*/true));
}

double VdmAssocVariableExt::getScaleFactor(OdDb::UnitsValue target) const {
  return convertMeasurement(target, getMeasurement(/*withValue=*/false)).value;
}
