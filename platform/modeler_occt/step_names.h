// Names that a STEP file gives to bodies, shells and faces.
#pragma once

#include <TopTools_DataMapOfShapeInteger.hxx>
#include <TopoDS_Shape.hxx>
#include <vector>

#include "platform/base/string.h"

class XSControl_Reader;

namespace od_occt {

/// Looked up among the representation items of the file after its transfer. The modeller's own
/// expansion of such names crashes on items that were not transferred, which honest files have.
class StepNames {
 public:
  explicit StepNames(const XSControl_Reader& reader);

  /// The name of the item that the shape came from, wherever the shape is placed; empty without.
  [[nodiscard]] const OdString& of(const TopoDS_Shape& shape) const;

 private:
  TopTools_DataMapOfShapeInteger m_rows;
  std::vector<OdString> m_names;
};

}  // namespace od_occt
