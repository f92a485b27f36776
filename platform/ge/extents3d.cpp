// An axis-parallel box in space.
#include "platform/ge/extents3d.h"

#include <algorithm>

OdGePoint3d OdGeExtents3d::center() const {
  return isValidExtents() ? m_min + (m_max - m_min) * 0.5 : OdGePoint3d::kOrigin;
}

OdGeVector3d OdGeExtents3d::diagonal() const {
  return isValidExtents() ? m_max - m_min : OdGeVector3d::kIdentity;
}

bool OdGeExtents3d::contains(const OdGePoint3d& p, const OdGeTol& tol) const {
  return !isDisjoint({p, p}, tol);
}

bool OdGeExtents3d::isDisjoint(const OdGeExtents3d& box, const OdGeTol& tol) const {
  const double t = tol.equalPoint();
  return m_min.x > box.m_max.x + t || m_min.y > box.m_max.y + t || m_min.z > box.m_max.z + t ||
         box.m_min.x > m_max.x + t || box.m_min.y > m_max.y + t || box.m_min.z > m_max.z + t;
}

bool OdGeExtents3d::isEqualTo(const OdGeExtents3d& box, const OdGeTol& tol) const {
  return m_min.isEqualTo(box.m_min, tol) && m_max.isEqualTo(box.m_max, tol);
}

OdGeExtents3d& OdGeExtents3d::addPoint(const OdGePoint3d& p) {
  m_min.set(std::min(m_min.x, p.x), std::min(m_min.y, p.y), std::min(m_min.z, p.z));
  m_max.set(std::max(m_max.x, p.x), std::max(m_max.y, p.y), std::max(m_max.z, p.z));
  return *this;
}

OdGeExtents3d& OdGeExtents3d::addExt(const OdGeExtents3d& box) {
  return box.isValidExtents() ? addPoint(box.m_min).addPoint(box.m_max) : *this;
}

OdGeExtents3d& OdGeExtents3d::expandBy(double distance) {
  if (!isValidExtents()) return *this;
  const OdGeVector3d grow(distance, distance, distance);
  m_min -= grow;
  m_max += grow;
  return *this;
}

OdGeExtents3d& OdGeExtents3d::transformBy(const OdGeMatrix3d& m) {
  if (!isValidExtents()) return *this;
  OdGeExtents3d result;
  for (unsigned corner = 0; corner < 8; ++corner) {
    result.addPoint(m * OdGePoint3d((corner & 1U) != 0 ? m_max.x : m_min.x,
                                    (corner & 2U) != 0 ? m_max.y : m_min.y,
                                    (corner & 4U) != 0 ? m_max.z : m_min.z));
  }
  return *this = result;
}
