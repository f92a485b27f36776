// What planar entities share: a normal, and a thickness for those that have one.
#pragma once

#include "platform/entities/value_checks.h"

/// Adds a unit normal to a base class. Not a run-time class: the class that derives from it names
/// the base as its parent.
template <class Base>
class OdDbPlanar : public Base {
 public:
  /// Unit vector.
  [[nodiscard]] OdGeVector3d normal() const { return this->read(m_normal); }
  /// Raises eDegenerateGeometry for a zero vector. Points of the entity stay where they are; what
  /// is kept in coordinates of the plane moves with it.
  void setNormal(const OdGeVector3d& normal) { this->change(m_normal, normal.normal()); }

 protected:
  OdGeVector3d m_normal = OdGeVector3d::kZAxis;
};

/// Adds a thickness: what the entity draws is drawn again at that distance along the normal, and
/// joined to it.
template <class Base>
class OdDbThick : public OdDbPlanar<Base> {
 public:
  /// Drawing units, positive along the normal; 0 for none.
  [[nodiscard]] double thickness() const { return this->read(m_thickness); }
  /// Raises eInvalidInput for a number that is not finite.
  void setThickness(double thickness) {
    this->change(m_thickness, oddbChecked(this, "thickness", thickness, oddbIsNumber));
  }

 protected:
  double m_thickness = 0.0;
};
