// OdDb2dPolyline: a polyline of the older kind.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/vertex_run.h"

namespace OdDb {

/// What was done to a 2D polyline. Numbers are stored.
enum Poly2dType : OdUInt8 {
  k2dSimplePoly = 0,
  k2dFitCurvePoly = 1,  ///< arcs through its points
  k2dQuadSplinePoly = 2,
  k2dCubicSplinePoly = 3,
};

}  // namespace OdDb

/// A run of vertices that says how it came about. The vertices are kept by the polyline itself; for
/// smoothed ones they are those of the smooth run.
class OdDb2dPolyline : public OdDbVertexRun {
 public:
  OD_RX_DECLARE_MEMBERS(OdDb2dPolyline)

  [[nodiscard]] OdDb::Poly2dType polyType() const;
  void setPolyType(OdDb::Poly2dType type);
  /// Appends a vertex by a point in the frame of the normal, whose Z is not looked at.
  void appendVertex(const OdGePoint3d& position, double bulge = 0.0, double startWidth = 0.0,
                    double endWidth = 0.0);

 private:
  OdDb::Poly2dType m_type = OdDb::k2dSimplePoly;

  OD_DB_DECLARE_FILING()
};
using OdDb2dPolylinePtr = OdSmartPtr<OdDb2dPolyline>;
