// Solids of elementary shape.
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRepPrimAPI_MakeWedge.hxx>
#include <Precision.hxx>
#include <cmath>
#include <initializer_list>

#include "platform/modeler/reach.h"
#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_operations.h"

namespace od_occt {
namespace {

struct Size {
  const char* name;
  double value;
};

// Sizes are more than the distance at which points count as one, and within reach.
OdStatus requireSizes(const char* solid, std::initializer_list<Size> sizes) {
  for (const Size& size : sizes) {
    if (size.value > Precision::Confusion() && size.value <= kOdModelerReach) continue;
    OdString text;
    text.format(L"%ls: %ls is %g, it must be more than %g and at most %g", OdString(solid).c_str(),
                OdString(size.name).c_str(), size.value, Precision::Confusion(), kOdModelerReach);
    return {eInvalidInput, text};
  }
  return {};
}

template <class Make>
OdStatus build(const char* solid, std::initializer_list<Size> sizes, OdModelerBodyPtr& result,
               const Make& make) {
  if (OdStatus status = requireSizes(solid, sizes); !status.ok()) return status;
  return guarded(solid, [&]() -> OdStatus {
    OdModelerBodyPtr body = odBodyFromOcct(make());
    if (!body) return failure(eModelerError, solid, "nothing came out");
    result = std::move(body);
    return {};
  });
}

}  // namespace

OdStatus makeBox(double dx, double dy, double dz, OdModelerBodyPtr& result) {
  return build("box", {{"length", dx}, {"width", dy}, {"height", dz}}, result,
               [&] { return BRepPrimAPI_MakeBox(dx, dy, dz).Shape(); });
}

OdStatus makeCylinder(double radius, double height, OdModelerBodyPtr& result) {
  return build("cylinder", {{"radius", radius}, {"height", height}}, result,
               [&] { return BRepPrimAPI_MakeCylinder(radius, height).Shape(); });
}

OdStatus makeCone(double bottomRadius, double topRadius, double height, OdModelerBodyPtr& result) {
  if (bottomRadius == topRadius) return makeCylinder(bottomRadius, height, result);
  if (!(bottomRadius >= 0.0 && topRadius >= 0.0)) {
    OdString text;
    text.format(L"cone: radii are %g and %g, they must not be negative", bottomRadius, topRadius);
    return {eInvalidInput, text};
  }
  return build("cone",
               {{"greater radius", std::fmax(bottomRadius, topRadius)},
                {"difference of radii", std::abs(bottomRadius - topRadius)},
                {"height", height}},
               result,
               [&] { return BRepPrimAPI_MakeCone(bottomRadius, topRadius, height).Shape(); });
}

OdStatus makeSphere(double radius, OdModelerBodyPtr& result) {
  return build("sphere", {{"radius", radius}}, result,
               [&] { return BRepPrimAPI_MakeSphere(radius).Shape(); });
}

OdStatus makeTorus(double majorRadius, double minorRadius, OdModelerBodyPtr& result) {
  return build("torus",
               {{"major radius", majorRadius},
                {"minor radius", minorRadius},
                {"difference of radii", majorRadius - minorRadius}},
               result, [&] { return BRepPrimAPI_MakeTorus(majorRadius, minorRadius).Shape(); });
}

OdStatus makeWedge(double dx, double dy, double dz, double topDx, OdModelerBodyPtr& result) {
  if (!(topDx >= 0.0 && topDx <= dx)) {
    OdString text;
    text.format(L"wedge: top length is %g, it must be 0 to the length %g", topDx, dx);
    return {eInvalidInput, text};
  }
  return build("wedge", {{"length", dx}, {"width", dy}, {"height", dz}}, result, [&] {
    // The wedge of the modeller tapers along its y axis: turn y to z.
    const gp_Ax2 axes(gp_Pnt(0.0, dy, 0.0), gp_Dir(0.0, -1.0, 0.0), gp_Dir(1.0, 0.0, 0.0));
    return BRepPrimAPI_MakeWedge(axes, dx, dz, dy, topDx).Shape();
  });
}

}  // namespace od_occt
