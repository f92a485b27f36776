// Length units: exact definitions and names.
#include "platform/db/units.h"

#include <iterator>

namespace {

// One unit is numerator / denominator metres. Both are whole numbers, so that a conversion is
// rounded once. Inch and yard: international agreement of 1959; US survey foot: 1200/3937 m;
// astronomical unit, parsec (648000/pi of it): IAU 2012 and 2015; light year: 365.25 days of the
// defined speed of light.
struct UnitRow {
  OdDb::UnitsValue units;
  double numerator;
  double denominator;
  const char* name;
  const char* symbol;
};

constexpr UnitRow kUnits[] = {
    {OdDb::kUnitsUndefined, 0, 1, "unitless", ""},
    {OdDb::kUnitsInches, 254, 1e4, "inches", "in"},
    {OdDb::kUnitsFeet, 3048, 1e4, "feet", "ft"},
    {OdDb::kUnitsMiles, 1609344, 1e3, "miles", "mi"},
    {OdDb::kUnitsMillimeters, 1, 1e3, "millimeters", "mm"},
    {OdDb::kUnitsCentimeters, 1, 1e2, "centimeters", "cm"},
    {OdDb::kUnitsMeters, 1, 1, "meters", "m"},
    {OdDb::kUnitsKilometers, 1e3, 1, "kilometers", "km"},
    {OdDb::kUnitsMicroinches, 254, 1e10, "microinches", "uin"},
    {OdDb::kUnitsMils, 254, 1e7, "mils", "mil"},
    {OdDb::kUnitsYards, 9144, 1e4, "yards", "yd"},
    {OdDb::kUnitsAngstroms, 1, 1e10, "angstroms", ""},
    {OdDb::kUnitsNanometers, 1, 1e9, "nanometers", "nm"},
    {OdDb::kUnitsMicrons, 1, 1e6, "microns", "um"},
    {OdDb::kUnitsDecimeters, 1, 10, "decimeters", "dm"},
    {OdDb::kUnitsDekameters, 10, 1, "dekameters", "dam"},
    {OdDb::kUnitsHectometers, 100, 1, "hectometers", "hm"},
    {OdDb::kUnitsGigameters, 1e9, 1, "gigameters", "Gm"},
    {OdDb::kUnitsAstronomical, 149597870700.0, 1, "astronomical units", "au"},
    {OdDb::kUnitsLightYears, 9460730472580800.0, 1, "light years", "ly"},
    {OdDb::kUnitsParsecs, 30856775814913673.0, 1, "parsecs", "pc"},
    {OdDb::kUnitsUSSurveyFeet, 1200, 3937, "US survey feet", ""},
};
static_assert(std::size(kUnits) == OdDb::kUnitsMax + 1);

constexpr bool rowsStandAtTheirNumbers() {
  for (std::size_t i = 0; i < std::size(kUnits); ++i) {
    if (static_cast<std::size_t>(kUnits[i].units) != i) return false;
  }
  return true;
}
static_assert(rowsStandAtTheirNumbers());

const UnitRow* rowOf(OdDb::UnitsValue units) {
  return oddbIsUnit(units) ? &kUnits[units] : nullptr;
}

}  // namespace

bool oddbIsUnit(OdInt32 number) { return number >= 0 && number <= OdDb::kUnitsMax; }

double oddbGetUnitsConversion(OdDb::UnitsValue from, OdDb::UnitsValue to) {
  const UnitRow* source = rowOf(from);
  const UnitRow* target = rowOf(to);
  if (source == nullptr || target == nullptr) return 1.0;
  if (from == to || source->numerator == 0 || target->numerator == 0) return 1.0;
  return (source->numerator * target->denominator) / (source->denominator * target->numerator);
}

double oddbMetresPerUnit(OdDb::UnitsValue units) {
  const UnitRow* row = rowOf(units);
  return row == nullptr ? 0.0 : row->numerator / row->denominator;
}

OdString oddbUnitsName(OdDb::UnitsValue units) {
  const UnitRow* row = rowOf(units);
  return row == nullptr ? OdString() : OdString(row->name);
}

OdString oddbUnitsSymbol(OdDb::UnitsValue units) {
  const UnitRow* row = rowOf(units);
  return row == nullptr ? OdString() : OdString(row->symbol);
}

std::optional<OdDb::UnitsValue> oddbUnitsFromName(const OdString& text) {
  if (text.isEmpty()) return std::nullopt;
  for (const UnitRow& row : kUnits) {
    if (text == row.symbol) return row.units;
  }
  for (const UnitRow& row : kUnits) {
    if (text.iEquals(OdString(row.name)) || text.iEquals(OdString(row.symbol))) return row.units;
  }
  return std::nullopt;
}
