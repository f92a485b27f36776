// Solids of a STEP file.
#include "host/modeling/step_solids.h"

#include "platform/modeler/modeler.h"

namespace vdm_host {

namespace {

OdStatus collectSolids(const OdModelerAssembly& assembly, OdUInt32 product,
                       const OdGeMatrix3d& placement, std::vector<OdModelerBodyPtr>& solids) {
  for (const OdModelerBodyPtr& body : assembly.products[product].bodies) {
    if (body->kind() != OdModelerBodyKind::kSolid) continue;
    OdModelerBodyPtr placed;
    OdStatus status = body->transformed(placement, placed);
    if (!status.ok()) return status;
    solids.push_back(std::move(placed));
  }
  for (const OdModelerOccurrence& part : assembly.products[product].occurrences) {
    OdStatus status = collectSolids(assembly, part.product, placement * part.placement, solids);
    if (!status.ok()) return status;
  }
  return {};
}

}  // namespace

OdStatus readStepSolids(const OdString& path, OdDb::UnitsValue units,
                        std::vector<OdModelerBodyPtr>& solids) {
  OdModelerAssembly assembly;
  OdStatus status = odModeler().importStep(path, assembly);
  const double unit = oddbGetUnitsConversion(OdDb::kUnitsMillimeters, units);
  for (const OdModelerOccurrence& root : assembly.roots) {
    if (!status.ok()) return status;
    status =
        collectSolids(assembly, root.product, OdGeMatrix3d::scaling(unit) * root.placement, solids);
  }
  return status;
}

}  // namespace vdm_host
