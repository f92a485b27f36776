// A small language for building test bodies.
#include "tests/modeler/modeler_fixture.h"

#include <stdexcept>

#include "platform/modeler_occt/occt_modeler.h"

namespace {

void require(const OdModelerStatus& status) {
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
}

}  // namespace

ModelerTest::ModelerTest() { odInstallOcctModeler(); }
ModelerTest::~ModelerTest() { odSetModeler(nullptr); }

OdModelerBodyPtr ModelerTest::box(double dx, double dy, double dz, OdGeVector3d at) {
  OdModelerBodyPtr body;
  require(odModeler().box(dx, dy, dz, body));
  return moved(body, OdGeMatrix3d::translation(at));
}

OdModelerBodyPtr ModelerTest::cylinder(double radius, double height, OdGeVector3d at) {
  OdModelerBodyPtr body;
  require(odModeler().cylinder(radius, height, body));
  return moved(body, OdGeMatrix3d::translation(at));
}

OdModelerBodyPtr ModelerTest::moved(const OdModelerBodyPtr& body, const OdGeMatrix3d& matrix) {
  OdModelerBodyPtr result;
  require(body->transformed(matrix, result));
  return result;
}

OdModelerBodyPtr ModelerTest::combine(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                                      std::vector<OdModelerBodyPtr> tools,
                                      OdModelerHistory* history) {
  OdModelerBodyPtr result;
  require(odModeler().boolean(kind, base, tools, result, history));
  return result;
}

OdModelerBodyPtr ModelerTest::plateWithHole(OdModelerHistory* history) {
  return combine(OdModelerBooleanKind::kSubtract, box(100.0, 60.0, 10.0),
                 {cylinder(8.0, 30.0, {50.0, 30.0, -10.0})}, history);
}

OdModelerBodyPtr ModelerTest::colored(const OdModelerBodyPtr& body, OdModelerColor color,
                                      const OdString& name) {
  OdModelerBodyAttributes attributes = body->attributes();
  attributes.color = color;
  attributes.name = name;
  return body->withAttributes(std::move(attributes));
}

OdBinaryData ModelerTest::bytesOf(const OdModelerBodyPtr& body) {
  OdBinaryData bytes;
  require(body->serialise(bytes));
  return bytes;
}

OdModelerBodyPtr ModelerTest::bodyOf(const OdBinaryData& bytes) {
  OdModelerBodyPtr body;
  require(odModeler().deserialise(bytes, body));
  return body;
}

OdUInt32 ModelerTest::faceTowards(const OdModelerBody& body, const OdGeVector3d& normal) {
  OdUInt32 best = 0;
  for (OdUInt32 i = 1; i <= body.numFaces(); ++i) {
    const OdModelerFace& face = body.face(i);
    if (!face.normal.isEqualTo(normal, OdGeTol(1e-6))) continue;
    const auto reach = [&](OdUInt32 f) {
      return body.face(f).pointOnFace.asVector().dotProduct(normal);
    };
    if (best == 0 || reach(i) > reach(best)) best = i;
  }
  return best;
}

OdUInt32 ModelerTest::faceOfKind(const OdModelerBody& body, OdModelerSurfaceKind kind) {
  for (OdUInt32 i = 1; i <= body.numFaces(); ++i) {
    if (body.face(i).kind == kind) return i;
  }
  return 0;
}

testing::AssertionResult succeeded(const OdModelerStatus& status) {
  if (status.ok()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << status.code << ": " << status.text.utf8();
}
