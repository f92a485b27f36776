// An affine transformation of space.
#pragma once

#include "platform/ge/plane.h"
#include "platform/ge/point3d.h"
#include "platform/ge/scale3d.h"
#include "platform/ge/tol.h"
#include "platform/ge/vector3d.h"

/// A 4 x 4 matrix of doubles, contiguous, row after row; the translation is the last column.
/// Points are columns: `(a * b) * p` applies b first. A default matrix is the identity. `==` is
/// exact; use `isEqualTo` for a comparison within a tolerance.
class OdGeMatrix3d {
 public:
  double entry[4][4] = {
      {1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, 1.0}};

  constexpr OdGeMatrix3d() = default;

  static const OdGeMatrix3d kIdentity;

  /// Named transformations, as values.
  static OdGeMatrix3d translation(const OdGeVector3d& offset);
  /// Right-handed turn by `angle` radians about the line through `center` along `axis`. Raises
  /// OdError eDegenerateGeometry when the axis is a zero vector.
  static OdGeMatrix3d rotation(double angle, const OdGeVector3d& axis,
                               const OdGePoint3d& center = OdGePoint3d::kOrigin);
  static OdGeMatrix3d scaling(double factor, const OdGePoint3d& center = OdGePoint3d::kOrigin);
  static OdGeMatrix3d scaling(const OdGeScale3d& scale,
                              const OdGePoint3d& center = OdGePoint3d::kOrigin);
  static OdGeMatrix3d mirroring(const OdGePlane& plane);
  static OdGeMatrix3d mirroring(const OdGePoint3d& point);
  /// The matrix that takes the world axes to the given frame.
  static OdGeMatrix3d coordSystem(const OdGePoint3d& origin, const OdGeVector3d& xAxis,
                                  const OdGeVector3d& yAxis, const OdGeVector3d& zAxis);

  double& operator()(unsigned row, unsigned column) { return entry[row][column]; }
  double operator()(unsigned row, unsigned column) const { return entry[row][column]; }
  const double* operator[](unsigned row) const { return entry[row]; }
  double* operator[](unsigned row) { return entry[row]; }
  /// The sixteen entries in memory order; the pointer lives as long as the matrix.
  [[nodiscard]] const double* getElements() const { return &entry[0][0]; }
  double* getElements() { return &entry[0][0]; }

  OdGeMatrix3d& setToIdentity() { return *this = OdGeMatrix3d(); }
  OdGeMatrix3d& setToTranslation(const OdGeVector3d& v) { return *this = translation(v); }
  OdGeMatrix3d& setToRotation(double angle, const OdGeVector3d& axis,
                              const OdGePoint3d& center = OdGePoint3d::kOrigin) {
    return *this = rotation(angle, axis, center);
  }
  OdGeMatrix3d& setToScaling(double factor, const OdGePoint3d& center = OdGePoint3d::kOrigin) {
    return *this = scaling(factor, center);
  }
  OdGeMatrix3d& setToScaling(const OdGeScale3d& scale,
                             const OdGePoint3d& center = OdGePoint3d::kOrigin) {
    return *this = scaling(scale, center);
  }
  OdGeMatrix3d& setToMirroring(const OdGePlane& plane) { return *this = mirroring(plane); }
  OdGeMatrix3d& setToMirroring(const OdGePoint3d& point) { return *this = mirroring(point); }
  OdGeMatrix3d& setCoordSystem(const OdGePoint3d& origin, const OdGeVector3d& xAxis,
                               const OdGeVector3d& yAxis, const OdGeVector3d& zAxis) {
    return *this = coordSystem(origin, xAxis, yAxis, zAxis);
  }
  void getCoordSystem(OdGePoint3d& origin, OdGeVector3d& xAxis, OdGeVector3d& yAxis,
                      OdGeVector3d& zAxis) const;
  OdGeMatrix3d& setTranslation(const OdGeVector3d& v);
  [[nodiscard]] OdGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }
  [[nodiscard]] OdGeVector3d getCsXAxis() const { return {entry[0][0], entry[1][0], entry[2][0]}; }
  [[nodiscard]] OdGeVector3d getCsYAxis() const { return {entry[0][1], entry[1][1], entry[2][1]}; }
  [[nodiscard]] OdGeVector3d getCsZAxis() const { return {entry[0][2], entry[1][2], entry[2][2]}; }
  [[nodiscard]] OdGePoint3d getCsOrigin() const { return {entry[0][3], entry[1][3], entry[2][3]}; }

  OdGeMatrix3d& preMultBy(const OdGeMatrix3d& left) { return *this = left * *this; }
  OdGeMatrix3d& postMultBy(const OdGeMatrix3d& right) { return *this = *this * right; }
  OdGeMatrix3d& operator*=(const OdGeMatrix3d& right) { return *this = *this * right; }
  friend OdGeMatrix3d operator*(const OdGeMatrix3d& a, const OdGeMatrix3d& b);
  friend OdGePoint3d operator*(const OdGeMatrix3d& m, const OdGePoint3d& p);
  /// Vectors are directions: the translation does not act on them.
  friend OdGeVector3d operator*(const OdGeMatrix3d& m, const OdGeVector3d& v);

  /// Determinant of the upper left 3 x 3 part: the volume factor, negative for a reflection.
  [[nodiscard]] double det() const;
  /// A matrix counts as singular when its determinant is at most `relative` times the product of
  /// the lengths of its axes: the factor measures how flat the frame is, whatever its scale.
  [[nodiscard]] bool isSingular(double relative = 1e-12) const;
  /// The inverse in `result`. False, with `result` untouched, when the matrix is singular.
  [[nodiscard]] bool inverse(OdGeMatrix3d& result, double relative = 1e-12) const;
  /// The inverse; raises OdError eDegenerateGeometry when the matrix is singular.
  [[nodiscard]] OdGeMatrix3d inverse() const;
  OdGeMatrix3d& invert() { return *this = inverse(); }
  [[nodiscard]] OdGeMatrix3d transpose() const;

  /// The common scale factor of a uniform transformation; the largest axis length otherwise.
  [[nodiscard]] double scale() const;
  /// True when the axes are perpendicular to each other and of one length.
  [[nodiscard]] bool isUniScaledOrtho(const OdGeTol& tol = OdGeTol::kDefault) const;
  /// True when the axes are perpendicular to each other and of length 1; reflections included.
  [[nodiscard]] bool isOrthonormal(const OdGeTol& tol = OdGeTol::kDefault) const;
  /// Direction entries compare within `equalVector`, the translation within `equalPoint`.
  [[nodiscard]] bool isEqualTo(const OdGeMatrix3d& m, const OdGeTol& tol = OdGeTol::kDefault) const;
  [[nodiscard]] bool isIdentity(const OdGeTol& tol = OdGeTol::kDefault) const {
    return isEqualTo({}, tol);
  }
  friend constexpr bool operator==(const OdGeMatrix3d&, const OdGeMatrix3d&) = default;
};

inline constexpr OdGeMatrix3d OdGeMatrix3d::kIdentity{};

static_assert(sizeof(OdGeMatrix3d) == 16 * sizeof(double));
