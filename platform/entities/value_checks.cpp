// Checks of the values that entities take.
#include "platform/entities/value_checks.h"

#include <string>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/rx/rx_class.h"

OdDbObjectId oddbStyleOrStandard(const OdDbObjectId& style, const OdDbDatabase* drawing,
                                 OdUInt64 standard) {
  if (!style.isNull() || drawing == nullptr) return style;
  return drawing->getOdDbObjectId(OdDbHandle(standard));
}

void oddbRaiseValue(const OdDbEntity* entity, const char* what, double value) {
  throw OdError(eInvalidInput, OdString(std::string(what) + " " + std::to_string(value) + " of ") +
                                   entity->isA()->name() + " " + entity->getDbHandle().ascii());
}

const OdGePoint3d& oddbChecked(const OdDbEntity* entity, const char* what,
                               const OdGePoint3d& point) {
  for (const double value : {point.x, point.y, point.z}) {
    if (!std::isfinite(value)) oddbRaiseValue(entity, what, value);
  }
  return point;
}

const OdGePoint2d& oddbChecked(const OdDbEntity* entity, const char* what,
                               const OdGePoint2d& point) {
  oddbChecked(entity, what, OdGePoint3d(point.x, point.y, 0.0));
  return point;
}
