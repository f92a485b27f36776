// An axis-parallel box in space.
#pragma once

#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"

/// A box given by its least and greatest corner, in drawing units. A new box is empty: it has no
/// valid extents until a point is added.
class OdGeExtents3d {
 public:
  OdGeExtents3d() = default;
  OdGeExtents3d(const OdGePoint3d& min, const OdGePoint3d& max) : m_min(min), m_max(max) {}

  [[nodiscard]] const OdGePoint3d& minPoint() const { return m_min; }
  [[nodiscard]] const OdGePoint3d& maxPoint() const { return m_max; }
  [[nodiscard]] bool isValidExtents() const {
    return m_min.x <= m_max.x && m_min.y <= m_max.y && m_min.z <= m_max.z;
  }
  /// The middle and the edge lengths; zero for an empty box.
  [[nodiscard]] OdGePoint3d center() const;
  [[nodiscard]] OdGeVector3d diagonal() const;
  [[nodiscard]] bool contains(const OdGePoint3d& p, const OdGeTol& tol = OdGeTol::kDefault) const;
  /// True when the two boxes share no point, the tolerance left aside.
  [[nodiscard]] bool isDisjoint(const OdGeExtents3d& box,
                                const OdGeTol& tol = OdGeTol::kDefault) const;
  [[nodiscard]] bool isEqualTo(const OdGeExtents3d& box,
                               const OdGeTol& tol = OdGeTol::kDefault) const;

  void set(const OdGePoint3d& min, const OdGePoint3d& max) { *this = OdGeExtents3d(min, max); }
  void clear() { *this = OdGeExtents3d(); }
  OdGeExtents3d& addPoint(const OdGePoint3d& p);
  /// An empty `box` adds nothing.
  OdGeExtents3d& addExt(const OdGeExtents3d& box);
  /// Grows by `distance` on all sides; an empty box stays empty.
  OdGeExtents3d& expandBy(double distance);
  /// Becomes the box around its own eight transformed corners; an empty box stays empty.
  OdGeExtents3d& transformBy(const OdGeMatrix3d& m);

 private:
  /// Beyond any drawing, and finite, so that the arithmetic on an empty box stays defined.
  static constexpr double kEmptyLimit = 1e300;

  OdGePoint3d m_min{kEmptyLimit, kEmptyLimit, kEmptyLimit};
  OdGePoint3d m_max{-kEmptyLimit, -kEmptyLimit, -kEmptyLimit};
};
