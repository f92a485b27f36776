// Vectors and points in space: the operations that are not inline.
#include "platform/ge/vector3d.h"

#include <numbers>

#include "platform/base/error.h"
#include "platform/ge/point3d.h"

namespace {

template <class Triple>
auto& component(Triple& t, unsigned index) {
  switch (index) {
    case 0:
      return t.x;
    case 1:
      return t.y;
    case 2:
      return t.z;
    default:
      throw OdError(eInvalidIndex);
  }
}

// Sine and cosine of an angle from the two products keep their accuracy near 0 and pi, where the
// arc cosine of the dot product loses half of its digits.
double angleBetween(const OdGeVector3d& a, const OdGeVector3d& b) {
  return std::atan2(a.crossProduct(b).length(), a.dotProduct(b));
}

}  // namespace

double& OdGeVector3d::operator[](unsigned index) { return component(*this, index); }
double OdGeVector3d::operator[](unsigned index) const { return component(*this, index); }
double& OdGePoint3d::operator[](unsigned index) { return component(*this, index); }
double OdGePoint3d::operator[](unsigned index) const { return component(*this, index); }

double OdGeVector3d::angleTo(const OdGeVector3d& v) const { return angleBetween(*this, v); }

double OdGeVector3d::angleTo(const OdGeVector3d& v, const OdGeVector3d& axis) const {
  const double angle = angleBetween(*this, v);
  return crossProduct(v).dotProduct(axis) < 0.0 ? 2.0 * std::numbers::pi - angle : angle;
}

OdGeVector3d OdGeVector3d::perpVector() const {
  constexpr double kNearZ = 1.0 / 64.0;
  const OdGeVector3d unit = normal();
  const bool nearZ = std::abs(unit.x) < kNearZ && std::abs(unit.y) < kNearZ;
  return (nearZ ? kYAxis : kZAxis).crossProduct(unit).normalize();
}

OdGeVector3d& OdGeVector3d::normalize(const OdGeTol& tol) {
  const double len = length();
  if (!(len > tol.equalVector())) throw OdError(eDegenerateGeometry);
  return *this /= len;
}

OdGeVector3d OdGeVector3d::normal(const OdGeTol& tol) const {
  return OdGeVector3d(*this).normalize(tol);
}

bool OdGeVector3d::isParallelTo(const OdGeVector3d& v, const OdGeTol& tol) const {
  const double product = length() * v.length();
  return product > 0.0 && crossProduct(v).length() <= tol.equalVector() * product;
}

bool OdGeVector3d::isCodirectionalTo(const OdGeVector3d& v, const OdGeTol& tol) const {
  return isParallelTo(v, tol) && dotProduct(v) > 0.0;
}

bool OdGeVector3d::isPerpendicularTo(const OdGeVector3d& v, const OdGeTol& tol) const {
  const double product = length() * v.length();
  return product > 0.0 && std::abs(dotProduct(v)) <= tol.equalVector() * product;
}
