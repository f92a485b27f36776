// Drawings with components, edits of them, and what they are to be compared with.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/modeling/component_feature.h"
#include "host/modeling/component_library.h"
#include "host/modeling/model_editor.h"
#include "tests/modeler/drawing_fixture.h"

/// A modeller that passes everything on, counts the booleans, and lets one of them fail.
class FailingModeler;

/// The modules are loaded and a plate stands in the drawing, 300 x 200 x 10, its corner at the
/// origin.
class ModelingTest : public DrawingTest {
 protected:
  ModelingTest();
  ~ModelingTest() override;

  OdDbObjectId hole(const std::wstring& name, double diameter, std::optional<double> depth = {});
  OdDbObjectId boss(const std::wstring& name, double diameter, double height);
  /// Inserts at a point of the plate's top; ends the test when that fails.
  vdm_host::EditResult insert(const OdDbObjectId& block, double x, double y, double z = 10.0);
  void put(const OdDbObjectId& block, double x, double y) { (void)insert(block, x, y); }
  static testing::AssertionResult done(const vdm_host::EditResult& result);

  OdModelerBodyPtr plateBody() const { return solid(m_plate)->body(); }
  double volume() const { return plateBody()->massProperties().volume; }
  OdUInt32 numFaces() const { return plateBody()->numFaces(); }
  VdmComponentFeaturePtr component(const OdDbObjectId& feature) const;
  /// Index of the face that the only reference of the tool's face stands for; 0 when unresolved.
  OdUInt32 openingFace(const OdDbObjectId& feature, int toolFace) const;
  OdDbObjectId openingReference(const OdDbObjectId& feature, int toolFace) const;
  /// What every object of the drawing files, by handle.
  std::map<OdUInt64, std::string> snapshot() const;
  /// The plate without components, all fills, less all cuts, made by the modeller directly.
  OdModelerBodyPtr freshBody(const OdModelerBodyPtr& base) const;
  /// The plate and `fresh` are the same in volume and number of faces, and the plate is sound.
  testing::AssertionResult isAsFresh(const OdModelerBodyPtr& base) const;

  OdDbHostAppServices m_files;
  OdDbObjectId m_plate;
  OdModelerBodyPtr m_base;
  std::unique_ptr<vdm_host::ModelEditor> m_editor;
};

class FailingModeler : public OdModeler {
 public:
  explicit FailingModeler(std::shared_ptr<OdModeler> modeler) : m_modeler(std::move(modeler)) {}
  /// Lets the n-th boolean from now on fail; 0 none.
  void failAt(int boolean) {
    m_fails = boolean;
    m_count = 0;
  }
  [[nodiscard]] int count() const { return m_count; }

  OdString name() const override { return m_modeler->name(); }
  OdStatus box(double x, double y, double z, OdModelerBodyPtr& r) override {
    return m_modeler->box(x, y, z, r);
  }
  OdStatus cylinder(double radius, double height, OdModelerBodyPtr& r) override {
    return m_modeler->cylinder(radius, height, r);
  }
  OdStatus cone(double a, double b, double h, OdModelerBodyPtr& r) override {
    return m_modeler->cone(a, b, h, r);
  }
  OdStatus sphere(double radius, OdModelerBodyPtr& r) override {
    return m_modeler->sphere(radius, r);
  }
  OdStatus torus(double a, double b, OdModelerBodyPtr& r) override {
    return m_modeler->torus(a, b, r);
  }
  OdStatus wedge(double x, double y, double z, double t, OdModelerBodyPtr& r) override {
    return m_modeler->wedge(x, y, z, t, r);
  }
  OdStatus extrude(const OdModelerProfile& profile, const OdGeVector3d& direction,
                   OdModelerBodyPtr& r) override {
    return m_modeler->extrude(profile, direction, r);
  }
  OdStatus revolve(const OdModelerProfile& profile, const OdGePoint3d& point,
                   const OdGeVector3d& axis, double angle, OdModelerBodyPtr& r) override {
    return m_modeler->revolve(profile, point, axis, angle, r);
  }
  OdStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                   std::span<const OdModelerBodyPtr> tools, OdModelerBodyPtr& r,
                   OdModelerHistory* history) override {
    if (++m_count == m_fails) return {eModelerError, OdString(L"the modeller gave up")};
    return m_modeler->boolean(kind, base, tools, r, history);
  }
  OdStatus fillet(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double radius,
                  OdModelerBodyPtr& r, OdModelerHistory* history) override {
    return m_modeler->fillet(body, edges, radius, r, history);
  }
  OdStatus chamfer(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double distance,
                   OdModelerBodyPtr& r, OdModelerHistory* history) override {
    return m_modeler->chamfer(body, edges, distance, r, history);
  }
  OdStatus compound(std::span<const OdModelerBodyPtr> bodies, OdModelerBodyPtr& r) override {
    return m_modeler->compound(bodies, r);
  }
  OdStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& r) override {
    return m_modeler->deserialise(bytes, r);
  }
  OdStatus importStep(const OdString& path, OdModelerAssembly& r) override {
    return m_modeler->importStep(path, r);
  }
  OdStatus exportStep(const OdString& path, const OdModelerAssembly& assembly) override {
    return m_modeler->exportStep(path, assembly);
  }

 private:
  std::shared_ptr<OdModeler> m_modeler;
  int m_fails = 0;
  int m_count = 0;
};
