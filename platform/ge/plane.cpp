// An unbounded plane with a parametric frame.
#include "platform/ge/plane.h"

OdGePlane::OdGePlane(const OdGePoint3d& origin, const OdGeVector3d& normal) { set(origin, normal); }

OdGePlane::OdGePlane(const OdGePoint3d& origin, const OdGeVector3d& uAxis,
                     const OdGeVector3d& vAxis) {
  set(origin, uAxis, vAxis);
}

OdGePlane& OdGePlane::set(const OdGePoint3d& origin, const OdGeVector3d& normal) {
  const OdGeVector3d unit = normal.normal();
  const OdGeVector3d u = unit.perpVector();
  m_normal = unit;
  m_uAxis = u;
  m_vAxis = unit.crossProduct(u);
  m_origin = origin;
  return *this;
}

OdGePlane& OdGePlane::set(const OdGePoint3d& origin, const OdGeVector3d& uAxis,
                          const OdGeVector3d& vAxis) {
  m_normal = uAxis.normal().crossProduct(vAxis.normal()).normalize();
  m_uAxis = uAxis;
  m_vAxis = vAxis;
  m_origin = origin;
  return *this;
}
