// Names and layers that a STEP file gives to bodies, shells and faces.
#pragma once

#include <TopTools_DataMapOfShapeInteger.hxx>
#include <TopoDS_Shape.hxx>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/modeler_occt/step_strings.h"
#include "platform/modeler_occt/step_transfer.h"

namespace od_occt {

/// Texts by shape, wherever the shape is placed. The first text of a shape counts.
class ShapeTexts {
 public:
  /// False when the shape has one already.
  bool add(const TopoDS_Shape& shape, const OdString& text);
  /// Empty without.
  [[nodiscard]] const OdString& of(const TopoDS_Shape& shape) const;

 private:
  TopTools_DataMapOfShapeInteger m_rows;
  std::vector<OdString> m_texts;
};

/// The names of representation items that became shapes. Read from the file itself: the modeller's
/// own expansion of such names crashes on items that were not transferred, which honest files have.
ShapeTexts stepNames(const StepText& file, const StepStrings& strings,
                     const StepTransfer& transfer);

/// The layers of items that became shapes. `leftOut` gets a line for each layer with items that
/// did not, such as curves and annotations.
ShapeTexts stepLayers(const StepText& file, const StepStrings& strings,
                      const StepTransfer& transfer, OdStringArray& leftOut);

}  // namespace od_occt
