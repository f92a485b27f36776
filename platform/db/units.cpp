// Length units of drawings, over the table of exact definitions.
#include "platform/db/units.h"

#include "platform/base/length_units.h"

namespace {

const OdLengthUnit* rowOf(OdDb::UnitsValue units) {
  return oddbIsUnit(units) ? &odLengthUnits()[static_cast<std::size_t>(units)] : nullptr;
}

}  // namespace

bool oddbIsUnit(OdInt32 number) { return number >= 0 && number <= OdDb::kUnitsMax; }

double oddbGetUnitsConversion(OdDb::UnitsValue from, OdDb::UnitsValue to) {
  const OdLengthUnit* source = odLengthUnit(from);
  const OdLengthUnit* target = odLengthUnit(to);
  if (source == nullptr || target == nullptr || from == to) return 1.0;
  return (source->numerator * target->denominator) / (source->denominator * target->numerator);
}

double oddbMetresPerUnit(OdDb::UnitsValue units) {
  const OdLengthUnit* row = odLengthUnit(units);
  return row == nullptr ? 0.0 : row->numerator / row->denominator;
}

OdString oddbUnitsName(OdDb::UnitsValue units) {
  const OdLengthUnit* row = rowOf(units);
  return row == nullptr ? OdString() : OdString(row->name);
}

OdString oddbUnitsSymbol(OdDb::UnitsValue units) {
  const OdLengthUnit* row = rowOf(units);
  return row == nullptr ? OdString() : OdString(row->symbol);
}

std::optional<OdDb::UnitsValue> oddbUnitsFromName(const OdString& text) {
  if (text.isEmpty()) return std::nullopt;
  const std::span<const OdLengthUnit> units = odLengthUnits();
  const auto numberOf = [&](const OdLengthUnit& row) {
    return static_cast<OdDb::UnitsValue>(&row - units.data());
  };
  for (const OdLengthUnit& row : units) {
    if (text == row.symbol) return numberOf(row);
  }
  for (const OdLengthUnit& row : units) {
    if (text.iEquals(OdString(row.name)) || text.iEquals(OdString(row.symbol))) {
      return numberOf(row);
    }
  }
  return std::nullopt;
}
