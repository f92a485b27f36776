// Length units of drawings and blocks.
#pragma once

#include <optional>

#include "platform/base/string.h"
#include "platform/db/db_enums.h"

/// Factor from lengths in `from` to lengths in `to`; 1 when either is undefined or no unit.
[[nodiscard]] double oddbGetUnitsConversion(OdDb::UnitsValue from, OdDb::UnitsValue to);
/// Metres in one unit; 0 for undefined and for numbers that are no unit.
[[nodiscard]] double oddbMetresPerUnit(OdDb::UnitsValue units);
/// English name in the plural, such as "millimeters"; "unitless" for undefined, "" for no unit.
[[nodiscard]] OdString oddbUnitsName(OdDb::UnitsValue units);
/// Common symbol, such as "mm"; empty where there is none.
[[nodiscard]] OdString oddbUnitsSymbol(OdDb::UnitsValue units);
/// By name or symbol, without regard to case; nothing when it is neither.
[[nodiscard]] std::optional<OdDb::UnitsValue> oddbUnitsFromName(const OdString& text);
[[nodiscard]] bool oddbIsUnit(OdInt32 number);
