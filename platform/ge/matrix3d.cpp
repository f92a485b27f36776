// An affine transformation of space.
#include "platform/ge/matrix3d.h"

#include <algorithm>

#include "platform/base/error.h"

namespace {

// The transformation `m` of the origin, moved so that it acts about `center`.
OdGeMatrix3d about(OdGeMatrix3d m, const OdGePoint3d& center) {
  return m.setTranslation(center - m * center);
}

bool isOrthogonal(const OdGeVector3d& x, const OdGeVector3d& y, const OdGeVector3d& z,
                  const OdGeTol& tol) {
  return x.isPerpendicularTo(y, tol) && x.isPerpendicularTo(z, tol) && y.isPerpendicularTo(z, tol);
}

}  // namespace

OdGeMatrix3d OdGeMatrix3d::translation(const OdGeVector3d& offset) {
  OdGeMatrix3d m;
  m.setTranslation(offset);
  return m;
}

OdGeMatrix3d OdGeMatrix3d::rotation(double angle, const OdGeVector3d& axis,
                                    const OdGePoint3d& center) {
  // Rodrigues' rotation formula, column by column.
  const OdGeVector3d k = axis.normal();
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  const auto turned = [&](const OdGeVector3d& v) {
    return v * c + k.crossProduct(v) * s + k * (k.dotProduct(v) * (1.0 - c));
  };
  return about(coordSystem(OdGePoint3d::kOrigin, turned(OdGeVector3d::kXAxis),
                           turned(OdGeVector3d::kYAxis), turned(OdGeVector3d::kZAxis)),
               center);
}

OdGeMatrix3d OdGeMatrix3d::scaling(double factor, const OdGePoint3d& center) {
  return scaling(OdGeScale3d(factor), center);
}

OdGeMatrix3d OdGeMatrix3d::scaling(const OdGeScale3d& scale, const OdGePoint3d& center) {
  OdGeMatrix3d m;
  m.entry[0][0] = scale.sx;
  m.entry[1][1] = scale.sy;
  m.entry[2][2] = scale.sz;
  return about(m, center);
}

OdGeMatrix3d OdGeMatrix3d::mirroring(const OdGePlane& plane) {
  // Householder reflection: v - 2 (v . n) n.
  const OdGeVector3d& n = plane.normal();
  const auto reflected = [&](const OdGeVector3d& v) { return v - n * (2.0 * n.dotProduct(v)); };
  return about(coordSystem(OdGePoint3d::kOrigin, reflected(OdGeVector3d::kXAxis),
                           reflected(OdGeVector3d::kYAxis), reflected(OdGeVector3d::kZAxis)),
               plane.origin());
}

OdGeMatrix3d OdGeMatrix3d::mirroring(const OdGePoint3d& point) { return scaling(-1.0, point); }

OdGeMatrix3d OdGeMatrix3d::coordSystem(const OdGePoint3d& origin, const OdGeVector3d& xAxis,
                                       const OdGeVector3d& yAxis, const OdGeVector3d& zAxis) {
  const OdGeVector3d columns[] = {xAxis, yAxis, zAxis, origin.asVector()};
  OdGeMatrix3d m;
  for (unsigned c = 0; c < 4; ++c) {
    m.entry[0][c] = columns[c].x;
    m.entry[1][c] = columns[c].y;
    m.entry[2][c] = columns[c].z;
  }
  return m;
}

void OdGeMatrix3d::getCoordSystem(OdGePoint3d& origin, OdGeVector3d& xAxis, OdGeVector3d& yAxis,
                                  OdGeVector3d& zAxis) const {
  origin = getCsOrigin();
  xAxis = getCsXAxis();
  yAxis = getCsYAxis();
  zAxis = getCsZAxis();
}

OdGeMatrix3d& OdGeMatrix3d::setTranslation(const OdGeVector3d& v) {
  entry[0][3] = v.x;
  entry[1][3] = v.y;
  entry[2][3] = v.z;
  return *this;
}

OdGeMatrix3d operator*(const OdGeMatrix3d& a, const OdGeMatrix3d& b) {
  OdGeMatrix3d m;
  for (unsigned r = 0; r < 4; ++r) {
    for (unsigned c = 0; c < 4; ++c) {
      m.entry[r][c] = a.entry[r][0] * b.entry[0][c] + a.entry[r][1] * b.entry[1][c] +
                      a.entry[r][2] * b.entry[2][c] + a.entry[r][3] * b.entry[3][c];
    }
  }
  return m;
}

OdGePoint3d operator*(const OdGeMatrix3d& m, const OdGePoint3d& p) {
  return OdGePoint3d::kOrigin + (m * p.asVector() + m.translation());
}

OdGeVector3d operator*(const OdGeMatrix3d& m, const OdGeVector3d& v) {
  const auto& e = m.entry;
  return {e[0][0] * v.x + e[0][1] * v.y + e[0][2] * v.z,
          e[1][0] * v.x + e[1][1] * v.y + e[1][2] * v.z,
          e[2][0] * v.x + e[2][1] * v.y + e[2][2] * v.z};
}

double OdGeMatrix3d::det() const {
  return getCsXAxis().dotProduct(getCsYAxis().crossProduct(getCsZAxis()));
}

bool OdGeMatrix3d::isSingular(double relative) const {
  const double box = getCsXAxis().length() * getCsYAxis().length() * getCsZAxis().length();
  // Written so that a matrix with entries that are no numbers counts as singular.
  return !(std::abs(det()) > relative * box);
}

bool OdGeMatrix3d::inverse(OdGeMatrix3d& result, double relative) const {
  if (isSingular(relative)) return false;
  const OdGeVector3d x = getCsXAxis();
  const OdGeVector3d y = getCsYAxis();
  const OdGeVector3d z = getCsZAxis();
  // The rows of the inverse are the cross products of the columns over the determinant.
  const double d = det();
  const OdGeVector3d rows[] = {y.crossProduct(z) / d, z.crossProduct(x) / d, x.crossProduct(y) / d};
  const OdGeVector3d offset = translation();
  OdGeMatrix3d m;
  for (unsigned r = 0; r < 3; ++r) {
    m.entry[r][0] = rows[r].x;
    m.entry[r][1] = rows[r].y;
    m.entry[r][2] = rows[r].z;
    m.entry[r][3] = -rows[r].dotProduct(offset);
  }
  result = m;
  return true;
}

OdGeMatrix3d OdGeMatrix3d::inverse() const {
  OdGeMatrix3d result;
  if (!inverse(result)) throw OdError(eDegenerateGeometry);
  return result;
}

OdGeMatrix3d OdGeMatrix3d::transpose() const {
  OdGeMatrix3d m;
  for (unsigned r = 0; r < 4; ++r) {
    for (unsigned c = 0; c < 4; ++c) m.entry[r][c] = entry[c][r];
  }
  return m;
}

double OdGeMatrix3d::scale() const {
  return std::max({getCsXAxis().length(), getCsYAxis().length(), getCsZAxis().length()});
}

bool OdGeMatrix3d::isUniScaledOrtho(const OdGeTol& tol) const {
  const OdGeVector3d x = getCsXAxis();
  const OdGeVector3d y = getCsYAxis();
  const OdGeVector3d z = getCsZAxis();
  const double within = tol.equalVector() * scale();
  return isOrthogonal(x, y, z, tol) && std::abs(x.length() - y.length()) <= within &&
         std::abs(x.length() - z.length()) <= within;
}

bool OdGeMatrix3d::isOrthonormal(const OdGeTol& tol) const {
  return isUniScaledOrtho(tol) && getCsXAxis().isUnitLength(tol);
}

bool OdGeMatrix3d::isEqualTo(const OdGeMatrix3d& m, const OdGeTol& tol) const {
  for (unsigned r = 0; r < 4; ++r) {
    for (unsigned c = 0; c < 4; ++c) {
      const double within = c == 3 ? tol.equalPoint() : tol.equalVector();
      if (!(std::abs(entry[r][c] - m.entry[r][c]) <= within)) return false;
    }
  }
  return true;
}
