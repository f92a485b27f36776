// OdDbRoundCurve: what circles and arcs share.
#include "platform/entities/round_curve.h"

#include "platform/entities/ellipse.h"
#include "platform/entities/property_rows.h"

OD_DB_CHECKED_PROPERTY(OdDbRoundCurve, OdGePoint3d, center, setCenter, m_center, "centre")
OD_DB_CHECKED_PROPERTY(OdDbRoundCurve, double, radius, setRadius, m_radius, "radius", oddbIsLength)

OdResult OdDbRoundCurve::getRange(double& start, double& end) const {
  start = startOf();
  end = start + sweepOf();
  return eOk;
}

double OdDbRoundCurve::length() const { return read(m_radius) * sweepOf(); }

OdDbArcShape OdDbRoundCurve::shape() const {
  const OdDbPlaneFrame frame(m_normal);
  return {m_center, frame.xAxis() * m_radius, frame.yAxis() * m_radius, startOf(), sweepOf()};
}

OdGePoint3d OdDbRoundCurve::pointAt(double parameter) const { return shape().at(parameter); }

void OdDbRoundCurve::addChords(double deviation, std::vector<OdGePoint3d>& points) const {
  shape().addChords(deviation, points);
}

OdResult OdDbRoundCurve::getGeomExtents(OdGeExtents3d& extents) const {
  assertReadEnabled();
  OdGeExtents3d box;
  shape().addExtents(box);
  oddbExtrude(box, extrusion());
  extents = box;
  return eOk;
}

OdResult OdDbRoundCurve::subTransformBy(const OdGeMatrix3d& transform) {
  const OdDbPlaneMove move(transform, m_normal);
  const OdGePoint3d center = transform * m_center;
  if (!move.isSimilar() || !move.takesThickness(m_thickness)) return eCannotScaleNonUniformly;
  if (!move.isFinite() || !odgeIsFinite(center)) return eInvalidInput;
  moveAngles(move);
  m_center = center;
  m_radius *= move.scale();
  m_thickness *= move.depthScale();
  m_normal = move.normal();
  return eOk;
}

OdDbEntityPtr OdDbRoundCurve::subMoreGeneral() const {
  const OdDbEllipsePtr ellipse = OdDbEllipse::createObject();
  const OdDbArcShape arc = shape();
  ellipse->set(arc.center, m_normal, arc.a, 1.0, arc.start, arc.start + arc.sweep);
  return ellipse;
}
