// OdDbEllipse: an ellipse or a part of one.
#include "platform/entities/ellipse.h"

#include <algorithm>
#include <cmath>

#include "platform/base/error.h"
#include "platform/db/field_list.h"
#include "platform/entities/property_rows.h"

OD_RX_DEFINE_DB(OdDbEllipse, OdDbCurve, L"OdDbEllipse", 0, 0, 0, L"ELLIPSE", OdString())

namespace {

constexpr double kPerpendicular = 1e-6;  // cosine of the angle between major axis and normal

bool isRatio(double ratio) { return ratio >= OdDbEllipse::kLeastRatio && ratio <= 1.0; }
bool isAxis(const OdGeVector3d& axis) {
  return std::isfinite(axis.length()) && axis.length() > 0.0;
}
bool isSweep(double start, double end) {
  return start >= 0.0 && start < kOdDbFullTurn && end > start && end <= start + kOdDbFullTurn;
}

/// Principal axes of an ellipse that is given by two conjugate ones: with
/// tan 2t = 2 a b / (a a - b b) the directions at the parameters t and t + a quarter turn are
/// perpendicular. `turn` is t of the longer one.
struct PrincipalAxes {
  OdGeVector3d major;
  OdGeVector3d minor;
  double turn = 0.0;

  PrincipalAxes(const OdGeVector3d& a, const OdGeVector3d& b) : major(a), minor(b) {
    constexpr double kNone = 1e-14;  // rounding of axes that are perpendicular already
    const double mixed = 2.0 * a.dotProduct(b);
    const double difference = a.lengthSqrd() - b.lengthSqrd();
    const double size = a.lengthSqrd() + b.lengthSqrd();
    const bool isPerpendicular = std::abs(mixed) <= kNone * size;
    if (isPerpendicular && difference >= -kNone * size) return;
    turn = isPerpendicular ? kOdDbFullTurn / 4 : std::atan2(mixed, difference) / 2;
    major = a * std::cos(turn) + b * std::sin(turn);
    minor = b * std::cos(turn) - a * std::sin(turn);
  }
};

}  // namespace

void OdDbEllipse::set(const OdGePoint3d& center, const OdGeVector3d& normal,
                      const OdGeVector3d& majorAxis, double radiusRatio, double startParam,
                      double endParam) {
  oddbChecked(this, "centre", center);
  const OdGeVector3d unit = normal.normal();
  const OdGeVector3d along = majorAxis.normal(OdGeTol(0.0));
  oddbChecked(this, "length of the major axis", majorAxis.length(), oddbIsLength);
  oddbChecked(this, "major axis along the normal", along.dotProduct(unit),
              [](double cosine) { return std::abs(cosine) <= kPerpendicular; });
  oddbChecked(this, "radius ratio", radiusRatio, isRatio);
  oddbChecked(this, "start parameter", startParam, oddbIsNumber);
  oddbChecked(this, "end parameter", endParam, oddbIsNumber);
  const double start = oddbNormalAngle(startParam);
  const bool isWhole = endParam - startParam >= kOdDbFullTurn * (1.0 - 1e-15);
  const double end = start + (isWhole ? kOdDbFullTurn : oddbSweep(startParam, endParam));
  change(m_center, center);
  change(m_normal, unit);
  change(m_major, majorAxis);
  change(m_ratio, radiusRatio);
  change(m_start, start);
  change(m_end, end);
}

OD_DB_CHECKED_PROPERTY(OdDbEllipse, OdGePoint3d, center, setCenter, m_center, "centre")
OdGeVector3d OdDbEllipse::majorAxis() const { return read(m_major); }
OdGeVector3d OdDbEllipse::minorAxis() const {
  return m_normal.crossProduct(read(m_major)) * m_ratio;
}
OD_DB_CHECKED_PROPERTY(OdDbEllipse, double, radiusRatio, setRadiusRatio, m_ratio, "radius ratio",
                       isRatio)
double OdDbEllipse::startParam() const { return read(m_start); }
double OdDbEllipse::endParam() const { return read(m_end); }
double OdDbEllipse::startAngle() const { return angleAtParam(startParam()); }
double OdDbEllipse::endAngle() const { return angleAtParam(endParam()); }

// Both keep the quarters of the turn, so the difference from the parameter is below a quarter.
double OdDbEllipse::angleAtParam(double parameter) const {
  const double angle = std::atan2(read(m_ratio) * std::sin(parameter), std::cos(parameter));
  return angle + kOdDbFullTurn * std::round((parameter - angle) / kOdDbFullTurn);
}

double OdDbEllipse::paramAtAngle(double angle) const {
  const double parameter = std::atan2(std::sin(angle), read(m_ratio) * std::cos(angle));
  return parameter + kOdDbFullTurn * std::round((angle - parameter) / kOdDbFullTurn);
}

void OdDbEllipse::setNormal(const OdGeVector3d& normal) {
  const OdGeVector3d unit = normal.normal();
  const OdGeVector3d flat = read(m_major) - unit * m_major.dotProduct(unit);
  oddbChecked(this, "major axis across the normal", flat.length() / m_major.length(),
              [](double share) { return share > kPerpendicular; });
  change(m_major, flat * (m_major.length() / flat.length()));
  change(m_normal, unit);
}

OdResult OdDbEllipse::getRange(double& start, double& end) const {
  start = startParam();
  end = endParam();
  return eOk;
}

OdDbArcShape OdDbEllipse::shape() const {
  return {m_center, m_major, m_normal.crossProduct(m_major) * m_ratio, m_start, m_end - m_start};
}

double OdDbEllipse::length() const {
  constexpr int kPieces = 256;
  const double radius = read(m_major).length();
  const auto speed = [&](double parameter) {
    return radius * std::hypot(std::sin(parameter), m_ratio * std::cos(parameter));
  };
  const double step = (m_end - m_start) / kPieces;
  double sum = speed(m_start) + speed(m_end);
  for (int i = 1; i < kPieces; ++i) sum += (i % 2 == 0 ? 2.0 : 4.0) * speed(m_start + i * step);
  return sum * step / 3.0;
}

OdGePoint3d OdDbEllipse::pointAt(double parameter) const { return shape().at(parameter); }

void OdDbEllipse::addChords(double deviation, std::vector<OdGePoint3d>& points) const {
  shape().addChords(deviation, points);
}

OdResult OdDbEllipse::getGeomExtents(OdGeExtents3d& extents) const {
  assertReadEnabled();
  OdGeExtents3d box;
  shape().addExtents(box);
  extents = box;
  return eOk;
}

// The axes go to conjugate ones, and from there to principal ones again. The new normal is on the
// side of the old one's image, so that under a reflection the parameter runs the other way.
OdResult OdDbEllipse::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbArcShape old = shape();
  const PrincipalAxes axes(transform * old.a, transform * old.b);
  const OdGePoint3d center = transform * m_center;
  const double ratio = std::min(1.0, axes.minor.length() / axes.major.length());
  if (!odgeIsFinite(center) || !isAxis(axes.major)) return eInvalidInput;
  if (!isRatio(ratio)) return eDegenerateGeometry;
  const bool flips = transform.det() < 0.0;
  const OdGeVector3d across = axes.major.crossProduct(axes.minor) * (flips ? -1.0 : 1.0);
  const double sweep = m_end - m_start;
  m_start = oddbNormalAngle(flips ? axes.turn - m_end : m_start - axes.turn);
  m_end = std::min(m_start + sweep, m_start + kOdDbFullTurn);
  m_center = center;
  m_major = axes.major;
  m_ratio = ratio;
  m_normal = across / across.length();
  return eOk;
}

// Fields:
//
//   field        binary      groups
//   version      uint8
//   centre       point       10       drawing units, coordinates of the block
//   major axis   vector      11       from the centre, not zero, across the normal
//   normal       vector      210      unit length
//   ratio        double      40       0.000001 to 1
//   start, end   2 doubles   41, 42   parameters, radians; start from 0 up to a turn, end above it
//                                     by at most a turn

template <class Fields, class Self>
void OdDbEllipse::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(10, self.m_center, oddbIsPoint);
  fields.value(11, self.m_major, isAxis);
  fields.value(210, self.m_normal, oddbIsNormal);
  fields.value(40, self.m_ratio, isRatio);
  fields.value(41, self.m_start, oddbIsNumber);
  fields.value(42, self.m_end, oddbIsNumber);
  fields.rule([&] {
    return isSweep(self.m_start, self.m_end) && std::abs(self.m_major.dotProduct(self.m_normal)) <=
                                                    kPerpendicular * self.m_major.length();
  });
}

OD_DB_DEFINE_FILING(OdDbEllipse, OdDbCurve)
