// Drawings with components, edits of them, and what they are to be compared with.
#pragma once

#include <map>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "host/modeling/component_feature.h"
#include "host/modeling/component_library.h"
#include "host/modeling/model_editor.h"
#include "tests/support/module_testing.h"
#include "tests/support/solid_drawing_testing.h"

/// Loads the host's module; its end unloads it.
class VdmHostModule : public LoadedModule {
 public:
  VdmHostModule();
};

/// A drawing with a plate of 300 x 200 x 10, its corner at the origin; the modules are loaded.
class ModelingTest : public virtual SolidRuntime,
                     public virtual VdmModule,
                     public virtual VdmHostModule,
                     public DrawingTest {
 protected:
  ModelingTest();
  ~ModelingTest() override;

  OdDbObjectId hole(const std::wstring& name, double diameter, std::optional<double> depth = {});
  OdDbObjectId boss(const std::wstring& name, double diameter, double height);
  /// Inserts at a point of the plate's top; fails the test when that cannot be done.
  vdm_host::EditResult insert(const OdDbObjectId& block, double x, double y, double z = 10.0);
  /// Inserts at a point of the plate, along the normal there by default.
  vdm_host::EditResult insertAt(const OdDbObjectId& block, const OdGePoint3d& point,
                                std::optional<OdGeVector3d> direction = {});
  void put(const OdDbObjectId& block, double x, double y) { (void)insert(block, x, y); }
  static testing::AssertionResult done(const vdm_host::EditResult& result);

  /// Volume of a round hole.
  [[nodiscard]] static double drilled(double diameter, double depth) {
    return 0.25 * std::numbers::pi * diameter * diameter * depth;
  }
  [[nodiscard]] OdModelerBodyPtr plateBody() const { return solid(m_plate)->body(); }
  [[nodiscard]] double volume() const { return plateBody()->massProperties().volume; }
  [[nodiscard]] OdUInt32 numFaces() const { return plateBody()->numFaces(); }
  [[nodiscard]] VdmComponentFeaturePtr component(const OdDbObjectId& feature) const;
  /// Index of the face that the only reference of the tool's face stands for; 0 when unresolved.
  [[nodiscard]] OdUInt32 openingFace(const OdDbObjectId& feature, int toolFace) const;
  [[nodiscard]] OdDbObjectId openingReference(const OdDbObjectId& feature, int toolFace) const;
  [[nodiscard]] std::map<OdUInt64, std::string> snapshot() const { return statesOf(*m_database); }
  /// Where components are by their inserts, and where they were cut by their own records.
  enum class Places { kInserts, kRecords };
  /// The plate without components, all fills, less all cuts, made by the modeller directly.
  [[nodiscard]] OdModelerBodyPtr freshBody(const OdModelerBodyPtr& base,
                                           Places places = Places::kInserts) const;
  /// The plate and the fresh body are the same in volume and number of faces, and the plate is
  /// sound.
  [[nodiscard]] testing::AssertionResult isAsFresh(const OdModelerBodyPtr& base,
                                                   Places places = Places::kInserts) const;
  /// The same with the places of the records; each reference into an opening leads to a face
  /// there.
  [[nodiscard]] testing::AssertionResult isAsRecorded(const OdModelerBodyPtr& base) const;

  FilingHost m_files;
  OdDbObjectId m_plate;
  OdModelerBodyPtr m_base;
  std::unique_ptr<vdm_host::ModelEditor> m_editor;
};
