// OdDbViewport: rectangle, view, filing.
#include "platform/entities/viewport.h"

#include <cmath>
#include <string>

#include "platform/base/error.h"
#include "platform/db/field_list.h"
#include "platform/ge/finite.h"

OD_RX_DEFINE_DB(OdDbViewport, OdDbEntity, L"OdDbViewport", 0, 0, 0, L"VIEWPORT", OdString())

namespace {

bool isSize(double value) { return std::isfinite(value) && value > 0.0; }
// The direction is kept as given; it has only to be one.
bool isDirection(const OdGeVector3d& vector) {
  return std::isfinite(vector.length()) && !vector.isZeroLength();
}

[[noreturn]] void raiseValue(const OdDbViewport* viewport, const char* what, double value) {
  throw OdError(eInvalidInput,
                OdString(std::string(what) + " " + std::to_string(value) + " of viewport ") +
                    viewport->getDbHandle().ascii());
}

double checkedSize(const OdDbViewport* viewport, const char* what, double value) {
  if (!isSize(value)) raiseValue(viewport, what, value);
  return value;
}

template <class Point>
const Point& checkedPoint(const OdDbViewport* viewport, const char* what, const Point& point) {
  if (!odgeIsFinite(point)) raiseValue(viewport, what, std::isfinite(point.x) ? point.y : point.x);
  return point;
}

}  // namespace

OdGePoint3d OdDbViewport::centerPoint() const { return read(m_center); }
void OdDbViewport::setCenterPoint(const OdGePoint3d& center) {
  change(m_center, checkedPoint(this, "centre", center));
}
double OdDbViewport::width() const { return read(m_width); }
void OdDbViewport::setWidth(double width) { change(m_width, checkedSize(this, "width", width)); }
double OdDbViewport::height() const { return read(m_height); }
void OdDbViewport::setHeight(double height) {
  change(m_height, checkedSize(this, "height", height));
}
OdGePoint2d OdDbViewport::viewCenter() const { return read(m_viewCenter); }
void OdDbViewport::setViewCenter(const OdGePoint2d& center) {
  change(m_viewCenter, checkedPoint(this, "view centre", center));
}
OdGePoint3d OdDbViewport::viewTarget() const { return read(m_viewTarget); }
void OdDbViewport::setViewTarget(const OdGePoint3d& target) {
  change(m_viewTarget, checkedPoint(this, "view target", target));
}
OdGeVector3d OdDbViewport::viewDirection() const { return read(m_viewDirection); }
void OdDbViewport::setViewDirection(const OdGeVector3d& direction) {
  if (!isDirection(direction)) {
    throw OdError(eDegenerateGeometry,
                  OdString("view direction of viewport ") + getDbHandle().ascii());
  }
  change(m_viewDirection, direction);
}
double OdDbViewport::viewHeight() const { return read(m_viewHeight); }
void OdDbViewport::setViewHeight(double height) {
  change(m_viewHeight, checkedSize(this, "view height", height));
}
double OdDbViewport::twistAngle() const { return read(m_twist); }
void OdDbViewport::setTwistAngle(double angle) {
  if (!std::isfinite(angle)) raiseValue(this, "twist angle", angle);
  change(m_twist, angle);
}
double OdDbViewport::customScale() const { return read(m_height) / m_viewHeight; }
void OdDbViewport::setCustomScale(double scale) {
  setViewHeight(m_height / checkedSize(this, "scale", scale));
}
OdInt16 OdDbViewport::number() const { return read(m_number); }
void OdDbViewport::setNumber(OdInt16 number) {
  if (number < 0) raiseValue(this, "number", number);
  change(m_number, number);
}
bool OdDbViewport::isOn() const { return read(m_on); }
void OdDbViewport::setOn(bool on) { change(m_on, on); }

OdResult OdDbViewport::getGeomExtents(OdGeExtents3d& extents) const {
  const OdGeVector3d half(m_width / 2, m_height / 2, 0.0);
  extents = OdGeExtents3d(centerPoint() - half, centerPoint() + half);
  return eOk;
}

// The rectangle stays parallel to the paper's axes: only its middle and size follow.
OdResult OdDbViewport::subTransformBy(const OdGeMatrix3d& transform) {
  const double factor = transform.scale();
  const OdGePoint3d center = transform * m_center;
  if (!odgeIsFinite(center) || !isSize(m_width * factor) || !isSize(m_height * factor)) {
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
  fields.value(40, self.m_width, isSize);
  fields.value(41, self.m_height, isSize);
  fields.value(17, self.m_viewTarget, isPoint);
  fields.value(16, self.m_viewDirection, isDirection);
  fields.value(12, self.m_viewCenter, isPoint);
  fields.value(45, self.m_viewHeight, isSize);
  fields.value(51, self.m_twist, [](double angle) { return std::isfinite(angle); });
  fields.value(69, self.m_number, [](OdInt16 number) { return number >= 0; });
  fields.value(290, self.m_on);
}

OD_DB_DEFINE_FILING(OdDbViewport, OdDbEntity)
