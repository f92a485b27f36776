// A body under a transformation.
#include <BRepBuilderAPI_GTransform.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <gp_GTrsf.hxx>

#include "platform/ge/finite.h"
#include "platform/modeler/reach.h"
#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_convert.h"
#include "platform/modeler_occt/occt_guard.h"

namespace od_occt {
namespace {

// Relative: how far a matrix may be from rigid or uniform before free-form surfaces are needed.
constexpr double kOrthogonalTolerance = 1e-9;

bool isRigid(const OdGeMatrix3d& m) {
  return m.isOrthonormal(OdGeTol(kOrthogonalTolerance)) && m.det() > 0.0;
}

// One location on top, however many moves there were.
TopoDS_Shape moved(const TopoDS_Shape& shape, const OdGeMatrix3d& matrix) {
  gp_Trsf move = toTrsf(matrix);
  move.SetScaleFactor(1.0);
  const gp_Trsf sum = move * shape.Location().Transformation();
  const bool back = toMatrix(sum).isIdentity(OdGeTol(1e-15));
  return shape.Located(back ? TopLoc_Location() : TopLoc_Location(sum));
}

TopoDS_Shape scaled(const TopoDS_Shape& shape, const OdGeMatrix3d& matrix) {
  return BRepBuilderAPI_Transform(shape, toTrsf(matrix), /*Copy=*/Standard_True).Shape();
}

TopoDS_Shape deformed(const TopoDS_Shape& shape, const OdGeMatrix3d& matrix) {
  gp_GTrsf general;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 4; ++c) general.SetValue(r + 1, c + 1, matrix.entry[r][c]);
  }
  return BRepBuilderAPI_GTransform(shape, general, /*Copy=*/Standard_True).Shape();
}

}  // namespace

OdStatus Body::transformed(const OdGeMatrix3d& matrix, OdModelerBodyPtr& result) const {
  if (!odgeIsFinite(matrix) || matrix.isSingular()) {
    OdString text;
    text.format(L"transform: the matrix is singular or not finite, determinant %g", matrix.det());
    return {eInvalidInput, text};
  }
  return guarded("transform", [&]() -> OdStatus {
    if (OdStatus status = odCheckReach(*this, matrix); !status.ok()) return status;
    const bool rigid = isRigid(matrix);
    const bool uniform = rigid || matrix.isUniScaledOrtho(OdGeTol(kOrthogonalTolerance));
    const TopoDS_Shape shape = rigid     ? moved(m_shape, matrix)
                               : uniform ? scaled(m_shape, matrix)
                                         : deformed(m_shape, matrix);
    OdModelerBodyPtr body = odBodyFromOcct(shape, m_attributes);
    if (!body) return failure(eModelerError, "transform", "nothing came out");
    if (!rigid) {
      if (OdStatus sound = checkShape(shape); !sound.ok()) return sound;
    }
    result = std::move(body);
    return {};
  });
}

}  // namespace od_occt
