// Products and occurrences out of the document that the modeller's reader made.
#pragma once

#include <NCollection_DataMap.hxx>
#include <TDF_LabelMapHasher.hxx>
#include <TopTools_DataMapOfShapeInteger.hxx>
#include <TopTools_MapOfShape.hxx>
#include <gp_Trsf.hxx>
#include <map>
#include <set>

#include "platform/modeler/assembly.h"
#include "platform/modeler_occt/step_part_styles.h"
#include "platform/modeler_occt/step_strings.h"

namespace od_occt {

/// Fills an assembly. The arguments must outlive the object.
class StepProducts {
 public:
  StepProducts(const StepSession& session, const StepStrings& strings, const ShapeLooks& looks,
               OdModelerAssembly& assembly)
      : m_session(session), m_strings(strings), m_looks(looks), m_assembly(assembly) {}

  void run();

  /// The shapes that became bodies, without their places.
  [[nodiscard]] const TopTools_MapOfShape& taken() const { return m_taken; }
  /// The product of a shape without its place; null when it is none's.
  [[nodiscard]] OdModelerProduct* productOf(const TopoDS_Shape& shape) const;

 private:
  OdUInt32 productOf(const TDF_Label& label);
  void addContent(OdUInt32 product, const TDF_Label& label, const gp_Trsf& placement);
  void addComponent(OdUInt32 product, const TDF_Label& component, const gp_Trsf& placement);
  void addBodies(OdUInt32 product, const TDF_Label& label, const gp_Trsf& placement);
  [[nodiscard]] OdString nameOf(const TDF_Label& label) const;
  OdString uniqueId(const OdString& name);

  const StepSession& m_session;
  const StepStrings& m_strings;
  const ShapeLooks& m_looks;
  OdModelerAssembly& m_assembly;
  NCollection_DataMap<TDF_Label, int, TDF_LabelMapHasher> m_products;
  TopTools_DataMapOfShapeInteger m_productShapes;
  TopTools_MapOfShape m_taken;
  std::set<OdString> m_ids;
  std::map<OdString, unsigned> m_nextNumbers;  // by name that was taken already
};

}  // namespace od_occt
