// Products and occurrences out of the document that the modeller's reader made.
#include "platform/modeler_occt/step_products.h"

#include <BRep_Builder.hxx>
#include <TDF_LabelSequence.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS_Compound.hxx>

#include "platform/base/case_compare.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_convert.h"

namespace od_occt {
namespace {

// ---- The bodies of a shape: each solid and each shell alone, loose faces and curves together.

bool isAmong(const TopoDS_Shape& shape, const TopTools_MapOfShape& shapes) {
  return shapes.Contains(shape.Located(TopLoc_Location()));
}

void addLoose(const TopoDS_Shape& shape, TopAbs_ShapeEnum type, TopAbs_ShapeEnum outside,
              const TopTools_MapOfShape& excluded, std::vector<TopoDS_Shape>& bodies) {
  BRep_Builder builder;
  TopoDS_Compound loose;
  builder.MakeCompound(loose);
  bool any = false;
  for (TopExp_Explorer it(shape, type, outside); it.More(); it.Next()) {
    if (isAmong(it.Current(), excluded)) continue;
    builder.Add(loose, it.Current());
    any = true;
  }
  if (any) bodies.push_back(loose);
}

std::vector<TopoDS_Shape> splitBodies(const TopoDS_Shape& shape,
                                      const TopTools_MapOfShape& excluded) {
  std::vector<TopoDS_Shape> bodies;
  for (TopExp_Explorer it(shape, TopAbs_SOLID); it.More(); it.Next()) {
    bodies.push_back(it.Current());
  }
  for (TopExp_Explorer it(shape, TopAbs_SHELL, TopAbs_SOLID); it.More(); it.Next()) {
    if (!isAmong(it.Current(), excluded)) bodies.push_back(it.Current());
  }
  addLoose(shape, TopAbs_FACE, TopAbs_SHELL, excluded, bodies);
  addLoose(shape, TopAbs_EDGE, TopAbs_FACE, excluded, bodies);
  return bodies;
}

}  // namespace

void StepProducts::run() {
  TDF_LabelSequence roots;
  m_session.shapes()->GetFreeShapes(roots);
  for (const TDF_Label& root : roots) {
    const OdUInt32 product = productOf(root);
    m_assembly.roots.push_back({product, {}, m_assembly.products[product].name, std::nullopt});
  }
}

OdModelerProduct* StepProducts::productOf(const TopoDS_Shape& shape) const {
  const int* row = shape.IsNull() ? nullptr : m_productShapes.Seek(shape);
  return row == nullptr ? nullptr : &m_assembly.products[static_cast<std::size_t>(*row)];
}

// Products are numbered in the order in which the walk meets them first.
OdUInt32 StepProducts::productOf(const TDF_Label& label) {
  if (const int* known = m_products.Seek(label)) return static_cast<OdUInt32>(*known);
  const auto index = static_cast<OdUInt32>(m_assembly.products.size());
  m_products.Bind(label, static_cast<int>(index));
  const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label);
  if (!shape.IsNull())
    m_productShapes.Bind(shape.Located(TopLoc_Location()), static_cast<int>(index));
  OdModelerProduct& product = m_assembly.products.emplace_back();
  product.name = nameOf(label);
  product.uniqueId = uniqueId(product.name);
  addContent(index, label, gp_Trsf());
  return index;
}

void StepProducts::addContent(OdUInt32 product, const TDF_Label& label, const gp_Trsf& placement) {
  if (!XCAFDoc_ShapeTool::IsAssembly(label)) {
    addBodies(product, label, placement);
    return;
  }
  TDF_LabelSequence components;
  XCAFDoc_ShapeTool::GetComponents(label, components);
  for (const TDF_Label& component : components) addComponent(product, component, placement);
}

// Several representations of one product arrive as components without a name. They are no
// products; their content belongs to the product itself.
void StepProducts::addComponent(OdUInt32 product, const TDF_Label& component,
                                const gp_Trsf& placement) {
  TDF_Label referred;
  if (!XCAFDoc_ShapeTool::GetReferredShape(component, referred)) return;
  const gp_Trsf place = placement * XCAFDoc_ShapeTool::GetLocation(component).Transformation();
  if (labelName(referred).isEmpty()) {
    addContent(product, referred, place);
    return;
  }
  const OdUInt32 child = productOf(referred);
  m_assembly.products[product].occurrences.push_back(
      {child, toMatrix(place), nameOf(component), labelColor(m_session.colors(), component)});
}

void StepProducts::addBodies(OdUInt32 product, const TDF_Label& label, const gp_Trsf& placement) {
  const PartStyles styles(m_session, m_looks, label);
  for (const TopoDS_Shape& shape :
       splitBodies(XCAFDoc_ShapeTool::GetShape(label), m_looks.annotations)) {
    OdModelerBodyAttributes attributes = styles.attributesOf(shape);
    const TopoDS_Shape placed =
        placement.Form() == gp_Identity ? shape : shape.Moved(TopLoc_Location(placement));
    if (OdModelerBodyPtr body = odBodyFromOcct(placed, std::move(attributes))) {
      m_taken.Add(shape.Located(TopLoc_Location()));
      m_assembly.products[product].bodies.push_back(std::move(body));
      m_assembly.products[product].layers.push_back(styles.layerOf(shape));
    }
  }
}

OdString StepProducts::nameOf(const TDF_Label& label) const {
  return m_strings.restored(labelName(label));
}

OdString StepProducts::uniqueId(const OdString& name) {
  const OdString base = name.isEmpty() ? OdString(L"product") : name;
  OdString candidate = base;
  unsigned& number = m_nextNumbers.try_emplace(odCaseFold(base), 2U).first->second;
  while (!m_ids.insert(odCaseFold(candidate)).second) {
    candidate.format(L"%ls~%u", base.c_str(), number++);
  }
  return candidate;
}

}  // namespace od_occt
