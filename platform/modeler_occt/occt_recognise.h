// Surfaces and curves by what they are, however they are written.
#pragma once

#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <optional>

#include "platform/modeler/body.h"

namespace od_occt {

/// The parameters of a surface as in OdModelerFace, but the axis of a plane may point either way.
struct RecognisedSurface {
  OdModelerSurfaceKind kind = OdModelerSurfaceKind::kOther;
  OdGePoint3d origin;
  OdGeVector3d axis;
  double radius = 0.0;
  double minorRadius = 0.0;
  double halfAngle = 0.0;
};

/// A line has a kind alone.
struct RecognisedCurve {
  OdModelerCurveKind kind = OdModelerCurveKind::kOther;
  OdGePoint3d center;
  OdGeVector3d axis;
  double radius = 0.0;
};

/// What a face in free form is: a plane, cylinder, cone, sphere or torus, when all of it lies on
/// one within ten times the modeller's confusion or the face's own tolerance, whichever is more.
[[nodiscard]] std::optional<RecognisedSurface> recogniseSurface(const TopoDS_Face& face);
/// The same for an edge: a line or a circle.
[[nodiscard]] std::optional<RecognisedCurve> recogniseCurve(const TopoDS_Edge& edge);

}  // namespace od_occt
