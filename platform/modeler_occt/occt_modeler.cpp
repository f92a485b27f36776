// The solid modeller of the drawing runtime, as implemented on Open CASCADE.
#include "platform/modeler_occt/occt_modeler.h"

#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Standard_Version.hxx>
#include <utility>

#include "platform/modeler_occt/occt_kept_cut.h"
#include "platform/modeler_occt/occt_operations.h"

namespace od_occt {
namespace {

class Modeler final : public OdModeler {
 public:
  explicit Modeler(Options options) : m_options(std::move(options)) {}

  [[nodiscard]] OdString name() const override {
    return OdString(L"Open CASCADE " OCC_VERSION_COMPLETE);
  }

  OdStatus box(double dx, double dy, double dz, OdModelerBodyPtr& result) override {
    return makeBox(dx, dy, dz, result);
  }
  OdStatus cylinder(double radius, double height, OdModelerBodyPtr& result) override {
    return makeCylinder(radius, height, result);
  }
  OdStatus cone(double bottomRadius, double topRadius, double height,
                OdModelerBodyPtr& result) override {
    return makeCone(bottomRadius, topRadius, height, result);
  }
  OdStatus sphere(double radius, OdModelerBodyPtr& result) override {
    return makeSphere(radius, result);
  }
  OdStatus torus(double majorRadius, double minorRadius, OdModelerBodyPtr& result) override {
    return makeTorus(majorRadius, minorRadius, result);
  }
  OdStatus wedge(double dx, double dy, double dz, double topDx, OdModelerBodyPtr& result) override {
    return makeWedge(dx, dy, dz, topDx, result);
  }
  OdStatus extrude(const OdModelerProfile& profile, const OdGeVector3d& direction,
                   OdModelerBodyPtr& result) override {
    return od_occt::extrude(profile, direction, result);
  }
  OdStatus revolve(const OdModelerProfile& profile, const OdGePoint3d& axisPoint,
                   const OdGeVector3d& axis, double angle, OdModelerBodyPtr& result) override {
    return od_occt::revolve(profile, axisPoint, axis, angle, result);
  }
  OdStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                   std::span<const OdModelerBodyPtr> tools, OdModelerBodyPtr& result,
                   OdModelerHistory* history) override {
    return od_occt::boolean(kind, base, tools, m_options, m_keptCut, result, history);
  }
  OdStatus fillet(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double radius,
                  OdModelerBodyPtr& result, OdModelerHistory* history) override {
    return od_occt::fillet(body, edges, radius, result, history);
  }
  OdStatus chamfer(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double distance,
                   OdModelerBodyPtr& result, OdModelerHistory* history) override {
    return od_occt::chamfer(body, edges, distance, result, history);
  }
  OdStatus removeFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                       OdModelerBodyPtr& result, OdModelerHistory* history) override {
    return od_occt::removeFaces(body, faces, m_options, result, history);
  }
  OdStatus compound(std::span<const OdModelerBodyPtr> bodies, OdModelerBodyPtr& result) override {
    return od_occt::compound(bodies, result);
  }
  OdStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& result) override {
    return od_occt::deserialise(bytes, result);
  }
  OdStatus importStep(const OdString& path, const OdModelerReadOptions& options,
                      OdModelerAssembly& result) override {
    return od_occt::importStep(path, options, result);
  }
  OdStatus exportStep(const OdString& path, const OdModelerAssembly& assembly) override {
    return od_occt::exportStep(path, assembly);
  }

 private:
  Options m_options;
  KeptCut m_keptCut;
};

}  // namespace
}  // namespace od_occt

std::shared_ptr<OdModeler> odCreateOcctModeler(OdOcctOptions options) {
  return std::make_shared<od_occt::Modeler>(std::move(options));
}

void odMakeOcctModeler(std::shared_ptr<OdModeler>& result) {
  // Callers get a status; console lines of the modeller would only spoil the program's output.
  Message::DefaultMessenger()->ChangePrinters().Clear();
  result = odCreateOcctModeler();
}

void odInstallOcctModeler() {
  std::shared_ptr<OdModeler> modeler;
  odMakeOcctModeler(modeler);
  odSetModeler(std::move(modeler));
}
