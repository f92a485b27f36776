// Checks of the values that entities take.
#pragma once

#include <cmath>

#include "platform/db/entity.h"
#include "platform/ge/finite.h"

// As predicates of stored fields.

constexpr auto oddbIsNumber = [](double value) { return std::isfinite(value); };
constexpr auto oddbIsLength = [](double value) { return std::isfinite(value) && value > 0.0; };
constexpr auto oddbIsWidth = [](double value) { return std::isfinite(value) && value >= 0.0; };
constexpr auto oddbIsPoint = [](const auto& value) { return odgeIsFinite(value); };
/// Stored normals: what was a unit vector when it was written.
constexpr auto oddbIsNormal = [](const OdGeVector3d& normal) {
  return normal.isUnitLength(OdGeTol(1e-6));
};

/// The style; for null the one of that fixed handle in the drawing, null outside of drawings.
[[nodiscard]] OdDbObjectId oddbStyleOrStandard(const OdDbObjectId& style,
                                               const OdDbDatabase* drawing, OdUInt64 standard);

/// Raises eInvalidInput naming what, the value and the entity.
[[noreturn]] void oddbRaiseValue(const OdDbEntity* entity, const char* what, double value);

/// The value, a number or an enumerator, when it passes the check; raises otherwise. A point is
/// refused by its first coordinate that is not finite.
template <class Value, class Check>
Value oddbChecked(const OdDbEntity* entity, const char* what, Value value, const Check& check) {
  if (!check(value)) oddbRaiseValue(entity, what, static_cast<double>(value));
  return value;
}
const OdGePoint3d& oddbChecked(const OdDbEntity* entity, const char* what,
                               const OdGePoint3d& point);
const OdGePoint2d& oddbChecked(const OdDbEntity* entity, const char* what,
                               const OdGePoint2d& point);
