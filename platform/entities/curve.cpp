// OdDbCurve: base of the entities that are one line from a start to an end.
#include "platform/entities/curve.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/gi/extents_draw.h"

OD_RX_DEFINE_ABSTRACT(OdDbCurve, OdDbEntity, L"OdDbCurve")

namespace {

constexpr double kParameterSlack = 1e-9;  // of the range of parameters

}  // namespace

bool OdDbCurve::isClosed() const {
  OdGePoint3d start;
  OdGePoint3d end;
  return getStartPoint(start) == eOk && getEndPoint(end) == eOk && start.isEqualTo(end);
}

OdResult OdDbCurve::getStartParam(double& parameter) const {
  assertReadEnabled();
  double end = 0.0;
  return getRange(parameter, end);
}

OdResult OdDbCurve::getEndParam(double& parameter) const {
  assertReadEnabled();
  double start = 0.0;
  return getRange(start, parameter);
}

OdResult OdDbCurve::getPointAtParam(double parameter, OdGePoint3d& point) const {
  assertReadEnabled();
  double start = 0.0;
  double end = 0.0;
  if (const OdResult result = getRange(start, end); result != eOk) return result;
  const double slack = (end - start) * kParameterSlack;
  if (!(parameter >= start - slack && parameter <= end + slack)) return eInvalidInput;
  point = pointAt(std::clamp(parameter, start, end));
  return eOk;
}

OdResult OdDbCurve::getStartPoint(OdGePoint3d& point) const {
  double parameter = 0.0;
  const OdResult result = getStartParam(parameter);
  return result == eOk ? getPointAtParam(parameter, point) : result;
}

OdResult OdDbCurve::getEndPoint(OdGePoint3d& point) const {
  double parameter = 0.0;
  const OdResult result = getEndParam(parameter);
  return result == eOk ? getPointAtParam(parameter, point) : result;
}

std::vector<OdGePoint3d> OdDbCurve::chords(double deviation) const {
  assertReadEnabled();
  std::vector<OdGePoint3d> points;
  addChords(deviation, points);
  return points;
}

bool OdDbCurve::subWorldDraw(OdGiWorldDraw* context) const {
  oddbDrawThick(context, chords(context->deviation()), extrusion());
  return true;
}

void oddbDrawThick(OdGiWorldDraw* context, const std::vector<OdGePoint3d>& points,
                   const OdGeVector3d& extrusion) {
  if (points.size() < 2) return;
  OdGiWorldGeometry& geometry = context->geometry();
  geometry.polyline(points);
  if (extrusion == OdGeVector3d()) return;
  std::vector<OdGePoint3d> moved;
  for (const OdGePoint3d& point : points) moved.push_back(point + extrusion);
  geometry.polyline(moved);
  const bool isClosed = points.front().isEqualTo(points.back());
  geometry.polyline(std::array{points.front(), moved.front()});
  if (!isClosed) geometry.polyline(std::array{points.back(), moved.back()});
  std::vector<OdGePoint3d> band(points);
  band.insert(band.end(), moved.begin(), moved.end());
  std::vector<std::array<OdUInt32, 3>> triangles;
  const auto count = static_cast<OdUInt32>(points.size());
  for (OdUInt32 i = 0; i + 1 < count; ++i) {
    triangles.push_back({i, i + 1, count + i + 1});
    triangles.push_back({i, count + i + 1, count + i});
  }
  geometry.shell({band, {}, triangles, {}});
}

void oddbExtrude(OdGeExtents3d& box, const OdGeVector3d& extrusion) {
  if (extrusion == OdGeVector3d() || !box.isValidExtents()) return;
  box.addExt(OdGeExtents3d(box.minPoint() + extrusion, box.maxPoint() + extrusion));
}

OdResult oddbDrawnExtents(const OdDbEntity* entity, OdGeExtents3d& extents) {
  entity->assertReadEnabled();
  OdStaticRxObject<OdGiExtentsDraw> draw;
  entity->worldDraw(&draw);
  if (!draw.box().isValidExtents()) return eNotApplicable;
  extents = draw.box();
  return eOk;
}
