// OdDbViewport: rectangle, view, filing.
#include "platform/entities/viewport.h"

#include <cmath>
#include <string>

#include "platform/base/error.h"
#include "platform/db/field_list.h"
#include "platform/entities/property_rows.h"
#include "platform/entities/value_checks.h"

OD_RX_DEFINE_DB(OdDbViewport, OdDbEntity, L"OdDbViewport", 0, 0, 0, L"VIEWPORT", OdString())

namespace {

bool isNumber(OdInt16 number) { return number >= 0; }
// The direction is kept as given; it has only to be one.
bool isDirection(const OdGeVector3d& vector) {
  return std::isfinite(vector.length()) && !vector.isZeroLength();
}

}  // namespace

OD_DB_CHECKED_PROPERTY(OdDbViewport, OdGePoint3d, centerPoint, setCenterPoint, m_center, "centre")
OD_DB_CHECKED_PROPERTY(OdDbViewport, double, width, setWidth, m_width, "width", oddbIsLength)
OD_DB_CHECKED_PROPERTY(OdDbViewport, double, height, setHeight, m_height, "height", oddbIsLength)
OD_DB_CHECKED_PROPERTY(OdDbViewport, OdGePoint2d, viewCenter, setViewCenter, m_viewCenter,
                       "view centre")
OD_DB_CHECKED_PROPERTY(OdDbViewport, OdGePoint3d, viewTarget, setViewTarget, m_viewTarget,
                       "view target")
OdGeVector3d OdDbViewport::viewDirection() const { return read(m_viewDirection); }
void OdDbViewport::setViewDirection(const OdGeVector3d& direction) {
  if (!isDirection(direction)) {
    throw OdError(eDegenerateGeometry,
                  OdString("view direction of viewport ") + getDbHandle().ascii());
  }
  change(m_viewDirection, direction);
}
OD_DB_CHECKED_PROPERTY(OdDbViewport, double, viewHeight, setViewHeight, m_viewHeight, "view height",
                       oddbIsLength)
OD_DB_CHECKED_PROPERTY(OdDbViewport, double, twistAngle, setTwistAngle, m_twist, "twist angle",
                       oddbIsNumber)
double OdDbViewport::customScale() const { return read(m_height) / m_viewHeight; }
void OdDbViewport::setCustomScale(double scale) {
  setViewHeight(m_height / oddbChecked(this, "scale", scale, oddbIsLength));
}
OD_DB_CHECKED_PROPERTY(OdDbViewport, OdInt16, number, setNumber, m_number, "number", isNumber)
OD_DB_PROPERTY(OdDbViewport, bool, isOn, setOn, m_on)

OdResult OdDbViewport::getGeomExtents(OdGeExtents3d& extents) const {
  const OdGeVector3d half(m_width / 2, m_height / 2, 0.0);
  extents = OdGeExtents3d(centerPoint() - half, centerPoint() + half);
  return eOk;
}

// The rectangle stays parallel to the paper's axes: only its middle and size follow.
OdResult OdDbViewport::subTransformBy(const OdGeMatrix3d& transform) {
  const double factor = transform.scale();
  const OdGePoint3d center = transform * m_center;
  if (!odgeIsFinite(center) || !oddbIsLength(m_width * factor) ||
      !oddbIsLength(m_height * factor)) {
    return eInvalidInput;
  }
  m_center = center;
  m_width *= factor;
  m_height *= factor;
  return eOk;
}

// Fields:
//
//   field            binary    groups
//   version          uint8
//   centre           point     10      paper units
//   width, height    2 double  40, 41  paper units, positive
//   view target      point     17      world
//   view direction   vector    16      world, from target to eye, not zero
//   view centre      2d point  12      display plane
//   view height      double    45      drawing units, positive
//   twist            double    51      radians
//   number           int16     69      0 inactive
//   on               bool      290

template <class Fields, class Self>
void OdDbViewport::fields(Fields& fields, Self& self) {
  const auto isPoint = [](const auto& point) { return odgeIsFinite(point); };
  fields.version(1);
  fields.value(10, self.m_center, isPoint);
  fields.value(40, self.m_width, oddbIsLength);
  fields.value(41, self.m_height, oddbIsLength);
  fields.value(17, self.m_viewTarget, isPoint);
  fields.value(16, self.m_viewDirection, isDirection);
  fields.value(12, self.m_viewCenter, isPoint);
  fields.value(45, self.m_viewHeight, oddbIsLength);
  fields.value(51, self.m_twist, [](double angle) { return std::isfinite(angle); });
  fields.value(69, self.m_number, [](OdInt16 number) { return number >= 0; });
  fields.value(290, self.m_on);
}

OD_DB_DEFINE_FILING(OdDbViewport, OdDbEntity)
