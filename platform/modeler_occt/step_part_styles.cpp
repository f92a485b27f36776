// Colours, names and layers of a product's bodies and faces.
#include "platform/modeler_occt/step_part_styles.h"

#include <TDF_LabelSequence.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include "platform/modeler_occt/occt_convert.h"

namespace od_occt {

std::optional<OdModelerColor> labelColor(const Handle(XCAFDoc_ColorTool) & colors,
                                         const TDF_Label& label) {
  for (const XCAFDoc_ColorType type : {XCAFDoc_ColorSurf, XCAFDoc_ColorGen}) {
    Quantity_Color color;
    if (colors->GetColor(label, type, color)) return toColor(color);
  }
  return std::nullopt;
}

PartStyles::PartStyles(const StepSession& session, const ShapeLooks& looks,
                       const TDF_Label& product)
    : m_looks(looks), m_product(XCAFDoc_ShapeTool::GetShape(product)) {
  m_color = labelColor(session.colors(), product);
  TDF_LabelSequence parts;
  XCAFDoc_ShapeTool::GetSubShapes(product, parts);
  for (const TDF_Label& part : parts) {
    const std::optional<OdModelerColor> color = labelColor(session.colors(), part);
    if (!color) continue;
    m_rows.Bind(XCAFDoc_ShapeTool::GetShape(part), static_cast<int>(m_colors.size()));
    m_colors.push_back(*color);
  }
}

OdModelerBodyAttributes PartStyles::attributesOf(const TopoDS_Shape& body) const {
  OdModelerBodyAttributes result;
  result.color = m_color;
  result.name = m_looks.names.of(body);
  if (const OdModelerColor* own = find(body)) result.color = *own;
  for (TopExp_Explorer shell(body, TopAbs_SHELL); shell.More(); shell.Next()) {
    if (const OdModelerColor* own = find(shell.Current())) result.color = *own;
  }
  TopTools_IndexedMapOfShape faces;
  TopExp::MapShapes(body, TopAbs_FACE, faces);
  for (int i = 1; i <= faces.Extent(); ++i) {
    const auto index = static_cast<OdUInt32>(i);
    const OdModelerColor* own = find(faces(i));
    if (own != nullptr && *own != result.color) result.faceColors.emplace(index, *own);
    const OdString& name = m_looks.names.of(faces(i));
    if (!name.isEmpty()) result.faceNames.emplace(index, name);
  }
  return result;
}

OdString PartStyles::layerOf(const TopoDS_Shape& body) const {
  if (const OdString& own = m_looks.layers.of(body); !own.isEmpty()) return own;
  for (const TopAbs_ShapeEnum type : {TopAbs_SHELL, TopAbs_FACE, TopAbs_WIRE, TopAbs_EDGE}) {
    for (TopExp_Explorer it(body, type); it.More(); it.Next()) {
      if (const OdString& its = m_looks.layers.of(it.Current()); !its.isEmpty()) return its;
    }
  }
  return m_looks.layers.of(m_product);
}

const OdModelerColor* PartStyles::find(const TopoDS_Shape& shape) const {
  const int* row = m_rows.Seek(shape);
  return row == nullptr ? nullptr : &m_colors[static_cast<std::size_t>(*row)];
}

}  // namespace od_occt
