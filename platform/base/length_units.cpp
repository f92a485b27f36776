// Units of length: exact definitions and texts.
#include "platform/base/length_units.h"

#include <cstddef>

namespace {

// Both parts of a definition are whole numbers, so that a conversion is rounded once. Inch and
// yard: international agreement of 1959; US survey foot: 1200/3937 m; astronomical unit, parsec
// (648000/pi of it): IAU 2012 and 2015; light year: 365.25 days of the defined speed of light.
constexpr OdLengthUnit kUnits[] = {
    {0, 1, "unitless", "", "", ""},
    {254, 1e4, "inches", "inch", "in", "in"},
    {3048, 1e4, "feet", "foot", "ft", "ft"},
    {1609344, 1e3, "miles", "mile", "mi", "miles"},
    {1, 1e3, "millimeters", "millimeter", "mm", "mm"},
    {1, 1e2, "centimeters", "centimeter", "cm", "cm"},
    {1, 1, "meters", "meter", "m", "meters"},
    {1e3, 1, "kilometers", "kilometer", "km", "km"},
    {254, 1e10, "microinches", "microinch", "uin", "\xc2\xb5in"},
    {254, 1e7, "mils", "mil", "mil", "mils"},
    {9144, 1e4, "yards", "yard", "yd", "yd"},
    {1, 1e10, "angstroms", "angstrom", "", "angstroms"},
    {1, 1e9, "nanometers", "nanometer", "nm", "nm"},
    {1, 1e6, "microns", "micron", "um", "microns"},
    {1, 10, "decimeters", "decimeter", "dm", "dm"},
    {10, 1, "dekameters", "dekameter", "dam", "dam"},
    {100, 1, "hectometers", "hectometer", "hm", "hm"},
    {1e9, 1, "gigameters", "gigameter", "Gm", "Gm"},
    {149597870700.0, 1, "astronomical units", "astronomical unit", "au", "AU"},
    {9460730472580800.0, 1, "light years", "light year", "ly", "ly"},
    {30856775814913673.0, 1, "parsecs", "parsec", "pc", "pc"},
    {1200, 3937, "US survey feet", "US survey foot", "", ""},
};

}  // namespace

std::span<const OdLengthUnit> odLengthUnits() { return kUnits; }

const OdLengthUnit* odLengthUnit(OdInt32 number) {
  const std::span<const OdLengthUnit> units = odLengthUnits();
  if (number <= 0 || static_cast<std::size_t>(number) >= units.size()) return nullptr;
  return &units[static_cast<std::size_t>(number)];
}
