// A small language for building test bodies.
#pragma once

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "tests/support/status_testing.h"

/// Installs the modeller for each test and ends the test when a body cannot be made.
class ModelerTest : public testing::Test {
 protected:
  ModelerTest() { odInstallOcctModeler(); }
  ~ModelerTest() override { odSetModeler(nullptr); }

  /// What a call puts into its argument.
  template <class T = OdModelerBodyPtr, class Call>
  static T made(Call call) {
    T result;
    const OdStatus status = call(result);
    if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
    return result;
  }
  static OdModelerBodyPtr moved(const OdModelerBodyPtr& body, const OdGeMatrix3d& matrix) {
    return made([&](auto& result) { return body->transformed(matrix, result); });
  }
  static OdModelerBodyPtr box(double dx, double dy, double dz, OdGeVector3d at = {}) {
    return moved(made([&](auto& result) { return odModeler().box(dx, dy, dz, result); }),
                 OdGeMatrix3d::translation(at));
  }
  /// Standing along z.
  static OdModelerBodyPtr cylinder(double radius, double height, OdGeVector3d at = {}) {
    return moved(made([&](auto& result) { return odModeler().cylinder(radius, height, result); }),
                 OdGeMatrix3d::translation(at));
  }
  static OdModelerBodyPtr combine(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                                  const std::vector<OdModelerBodyPtr>& tools,
                                  OdModelerHistory* history = nullptr) {
    return made(
        [&](auto& result) { return odModeler().boolean(kind, base, tools, result, history); });
  }
  /// A plate 100 x 60 x 10 with one round hole of radius 8 through its middle.
  static OdModelerBodyPtr plateWithHole() {
    return combine(OdModelerBooleanKind::kSubtract, box(100.0, 60.0, 10.0),
                   {cylinder(8.0, 30.0, {50.0, 30.0, -10.0})});
  }
  static OdModelerBodyPtr colored(const OdModelerBodyPtr& body, OdModelerColor color,
                                  const OdString& name = {}) {
    OdModelerBodyAttributes attributes = body->attributes();
    attributes.color = color;
    attributes.name = name;
    return body->withAttributes(std::move(attributes));
  }
  static OdBinaryData bytesOf(const OdModelerBodyPtr& body) {
    return made<OdBinaryData>([&](auto& bytes) { return body->serialise(bytes); });
  }
  /// The bytes of a body of one solid as it is now: a body that was stored once keeps what it
  /// wrote.
  static OdBinaryData bytesNow(const OdModelerBodyPtr& body) {
    return bytesOf(body->solids().at(0));
  }
  static OdModelerBodyPtr bodyOf(const OdBinaryData& bytes) {
    return made([&](auto& body) { return odModeler().deserialise(bytes, body); });
  }

  /// The face whose outward normal at its middle is `normal` and that lies furthest along it.
  static OdUInt32 faceTowards(const OdModelerBody& body, const OdGeVector3d& normal) {
    OdUInt32 best = 0;
    const auto reach = [&](OdUInt32 face) {
      return body.face(face).pointOnFace.asVector().dotProduct(normal);
    };
    for (OdUInt32 i = 1; i <= body.numFaces(); ++i) {
      if (!body.face(i).normal.isEqualTo(normal, OdGeTol(1e-6))) continue;
      if (best == 0 || reach(i) > reach(best)) best = i;
    }
    return best;
  }
  /// The first face of a kind; 0 if none.
  static OdUInt32 faceOfKind(const OdModelerBody& body, OdModelerSurfaceKind kind) {
    for (OdUInt32 i = 1; i <= body.numFaces(); ++i) {
      if (body.face(i).kind == kind) return i;
    }
    return 0;
  }
};
