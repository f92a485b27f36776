// A small language for building test bodies.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "platform/modeler/modeler.h"

/// Installs the modeller once per test program and ends the test when a body cannot be made.
class ModelerTest : public testing::Test {
 protected:
  ModelerTest();
  ~ModelerTest() override;

  static OdModelerBodyPtr box(double dx, double dy, double dz, OdGeVector3d at = {});
  /// Standing along z.
  static OdModelerBodyPtr cylinder(double radius, double height, OdGeVector3d at = {});
  static OdModelerBodyPtr moved(const OdModelerBodyPtr& body, const OdGeMatrix3d& matrix);
  static OdModelerBodyPtr combine(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                                  std::vector<OdModelerBodyPtr> tools,
                                  OdModelerHistory* history = nullptr);
  /// A plate 100 x 60 x 10 with one round hole of radius 8 through its middle.
  static OdModelerBodyPtr plateWithHole(OdModelerHistory* history = nullptr);
  static OdModelerBodyPtr colored(const OdModelerBodyPtr& body, OdModelerColor color,
                                  const OdString& name = {});

  static OdBinaryData bytesOf(const OdModelerBodyPtr& body);
  static OdModelerBodyPtr bodyOf(const OdBinaryData& bytes);

  /// The face whose outward normal at its middle is `normal` and that lies furthest along it.
  static OdUInt32 faceTowards(const OdModelerBody& body, const OdGeVector3d& normal);
  /// The first face of a kind; 0 if none.
  static OdUInt32 faceOfKind(const OdModelerBody& body, OdModelerSurfaceKind kind);
};

/// A status for use in assertions: its text is the message.
testing::AssertionResult succeeded(const OdModelerStatus& status);
