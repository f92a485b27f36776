// The solid modeller of the drawing runtime, as implemented on Open CASCADE.
#include "platform/modeler_occt/occt_modeler.h"

#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Standard_Version.hxx>

#include "platform/modeler_occt/occt_operations.h"

namespace od_occt {
namespace {

class Modeler final : public OdModeler {
 public:
  OdString name() const override { return OdString(L"Open CASCADE " OCC_VERSION_COMPLETE); }

  OdModelerStatus box(double dx, double dy, double dz, OdModelerBodyPtr& result) override {
    return makeBox(dx, dy, dz, result);
  }
  OdModelerStatus cylinder(double radius, double height, OdModelerBodyPtr& result) override {
    return makeCylinder(radius, height, result);
  }
  OdModelerStatus cone(double bottomRadius, double topRadius, double height,
                       OdModelerBodyPtr& result) override {
    return makeCone(bottomRadius, topRadius, height, result);
  }
  OdModelerStatus sphere(double radius, OdModelerBodyPtr& result) override {
    return makeSphere(radius, result);
  }
  OdModelerStatus torus(double majorRadius, double minorRadius, OdModelerBodyPtr& result) override {
    return makeTorus(majorRadius, minorRadius, result);
  }
  OdModelerStatus wedge(double dx, double dy, double dz, double topDx,
                        OdModelerBodyPtr& result) override {
    return makeWedge(dx, dy, dz, topDx, result);
  }
  OdModelerStatus extrude(const OdModelerProfile& profile, const OdGeVector3d& direction,
                          OdModelerBodyPtr& result) override {
    return od_occt::extrude(profile, direction, result);
  }
  OdModelerStatus revolve(const OdModelerProfile& profile, const OdGePoint3d& axisPoint,
                          const OdGeVector3d& axis, double angle,
                          OdModelerBodyPtr& result) override {
    return od_occt::revolve(profile, axisPoint, axis, angle, result);
  }
  OdModelerStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                          std::span<const OdModelerBodyPtr> tools, OdModelerBodyPtr& result,
                          OdModelerHistory* history) override {
    return od_occt::boolean(kind, base, tools, result, history);
  }
  OdModelerStatus fillet(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges,
                         double radius, OdModelerBodyPtr& result,
                         OdModelerHistory* history) override {
    return od_occt::fillet(body, edges, radius, result, history);
  }
  OdModelerStatus chamfer(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges,
                          double distance, OdModelerBodyPtr& result,
                          OdModelerHistory* history) override {
    return od_occt::chamfer(body, edges, distance, result, history);
  }
  OdModelerStatus removeFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                              OdModelerBodyPtr& result, OdModelerHistory* history) override {
    return od_occt::removeFaces(body, faces, result, history);
  }
  OdModelerStatus compound(std::span<const OdModelerBodyPtr> bodies,
                           OdModelerBodyPtr& result) override {
    return od_occt::compound(bodies, result);
  }
  OdModelerStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& result) override {
    return od_occt::deserialise(bytes, result);
  }
  OdModelerStatus importStep(const OdString& path, OdModelerAssembly& result) override {
    return od_occt::importStep(path, result);
  }
  OdModelerStatus exportStep(const OdString& path, const OdModelerAssembly& assembly) override {
    return od_occt::exportStep(path, assembly);
  }
};

}  // namespace
}  // namespace od_occt

std::shared_ptr<OdModeler> odCreateOcctModeler() { return std::make_shared<od_occt::Modeler>(); }

void odInstallOcctModeler() {
  // What the modeller has to say reaches the caller as a status; its console lines would only
  // spoil the output of the program.
  Message::DefaultMessenger()->ChangePrinters().Clear();
  odSetModeler(odCreateOcctModeler());
}
