// Colours, names and layers of a product's bodies and faces.
#pragma once

#include <TDF_Label.hxx>
#include <TopTools_DataMapOfShapeInteger.hxx>
#include <TopTools_MapOfShape.hxx>
#include <optional>
#include <vector>

#include "platform/modeler/body_attributes.h"
#include "platform/modeler_occt/step_names.h"
#include "platform/modeler_occt/step_session.h"

namespace od_occt {

/// What a file says about shapes, by shape.
struct ShapeLooks {
  ShapeTexts names;
  ShapeTexts layers;
  TopTools_MapOfShape annotations;  ///< faces and edges that only explain others
};

std::optional<OdModelerColor> labelColor(const Handle(XCAFDoc_ColorTool) & colors,
                                         const TDF_Label& label);

/// Of one product. `looks` must outlive the object.
class PartStyles {
 public:
  PartStyles(const StepSession& session, const ShapeLooks& looks, const TDF_Label& product);

  [[nodiscard]] OdModelerBodyAttributes attributesOf(const TopoDS_Shape& body) const;
  /// The layer of the body, of a shell or face of it, or of the whole product.
  [[nodiscard]] OdString layerOf(const TopoDS_Shape& body) const;

 private:
  [[nodiscard]] const OdModelerColor* find(const TopoDS_Shape& shape) const;

  const ShapeLooks& m_looks;
  TopoDS_Shape m_product;
  std::optional<OdModelerColor> m_color;
  TopTools_DataMapOfShapeInteger m_rows;
  std::vector<OdModelerColor> m_colors;
};

}  // namespace od_occt
