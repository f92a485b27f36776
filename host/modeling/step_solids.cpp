// Solids of a STEP file.
#include "host/modeling/step_solids.h"

#include <string>

namespace vdm_host {

namespace {

class SolidCollector {
 public:
  SolidCollector(const OdModelerAssembly& assembly, std::vector<OdModelerBodyPtr>& solids)
      : m_assembly(assembly), m_solids(solids) {}

  OdStatus add(OdUInt32 product, const OdGeMatrix3d& placement) {
    for (const OdModelerBodyPtr& body : m_assembly.products[product].bodies) {
      if (body->kind() != OdModelerBodyKind::kSolid) {
        ++(body->kind() == OdModelerBodyKind::kWire ? m_curves : m_sheets);
        continue;
      }
      OdModelerBodyPtr placed;
      OdStatus status = body->transformed(placement, placed);
      if (!status.ok()) return status;
      m_solids.push_back(std::move(placed));
    }
    for (const OdModelerOccurrence& part : m_assembly.products[product].occurrences) {
      OdStatus status = add(part.product, placement * part.placement);
      if (!status.ok()) return status;
    }
    return {};
  }

  void note(OdStringArray& leftOut) const {
    const auto line = [&](unsigned count, const char* one, const char* several) {
      if (count == 0) return;
      leftOut.append(OdString(std::to_string(count) + " " + (count == 1 ? one : several)));
    };
    line(m_sheets, "sheet", "sheets");
    line(m_curves, "body of curves", "bodies of curves");
  }

 private:
  const OdModelerAssembly& m_assembly;
  std::vector<OdModelerBodyPtr>& m_solids;
  unsigned m_sheets = 0;
  unsigned m_curves = 0;
};

OdString joined(const OdStringArray& lines) {
  OdString text;
  for (const OdString& line : lines) text += (text.isEmpty() ? L"" : L"; ") + line;
  return text;
}

}  // namespace

OdStatus readStepSolids(const OdString& path, const OdModelerReadOptions& options,
                        OdDb::UnitsValue units, std::vector<OdModelerBodyPtr>& solids,
                        OdStringArray* leftOut) {
  OdModelerAssembly assembly;
  if (OdStatus status = odModeler().importStep(path, options, assembly); !status.ok())
    return status;
  if (!assembly.notes.lost.isEmpty()) {
    return {eModelerError,
            L"step file '" + path + L"' is incomplete: " + joined(assembly.notes.lost)};
  }
  const double unit = oddbGetUnitsConversion(OdDb::kUnitsMillimeters, units);
  SolidCollector collector(assembly, solids);
  for (const OdModelerOccurrence& root : assembly.roots) {
    OdStatus status = collector.add(root.product, OdGeMatrix3d::scaling(unit) * root.placement);
    if (!status.ok()) return status;
  }
  if (leftOut != nullptr) collector.note(*leftOut);
  return {};
}

}  // namespace vdm_host
