// A modeller that fails when a test asks for it.
#pragma once

#include <memory>
#include <span>
#include <utility>

#include "platform/modeler/modeler.h"

/// Passes every operation on to another modeller, counts the booleans and can let one of them fail.
class FailingModeler : public OdModeler {
 public:
  explicit FailingModeler(std::shared_ptr<OdModeler> modeler) : m_modeler(std::move(modeler)) {}
  /// Lets `times` booleans from the n-th from now on fail; 0 none.
  void failAt(int boolean, int times = 1) {
    m_fails = boolean;
    m_times = times;
    m_count = 0;
  }
  [[nodiscard]] int count() const { return m_count; }

  [[nodiscard]] OdString name() const override { return m_modeler->name(); }
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
    ++m_count;
    if (m_fails != 0 && m_count >= m_fails && m_count < m_fails + m_times)
      return {eModelerError, OdString(L"the modeller gave up")};
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
  OdStatus removeFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                       OdModelerBodyPtr& r, OdModelerHistory* history) override {
    return m_modeler->removeFaces(body, faces, r, history);
  }
  OdStatus compound(std::span<const OdModelerBodyPtr> bodies, OdModelerBodyPtr& r) override {
    return m_modeler->compound(bodies, r);
  }
  OdStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& r) override {
    return m_modeler->deserialise(bytes, r);
  }
  OdStatus importStep(const OdString& path, const OdModelerReadOptions& options,
                      OdModelerAssembly& r) override {
    return m_modeler->importStep(path, options, r);
  }
  OdStatus exportStep(const OdString& path, const OdModelerAssembly& assembly) override {
    return m_modeler->exportStep(path, assembly);
  }

 private:
  std::shared_ptr<OdModeler> m_modeler;
  int m_fails = 0;
  int m_times = 1;
  int m_count = 0;
};
