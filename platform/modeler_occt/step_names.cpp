// Names and layers that a STEP file gives to bodies, shells and faces.
#include "platform/modeler_occt/step_names.h"

#include <algorithm>

#include "platform/modeler_occt/step_items.h"

namespace od_occt {
namespace {

constexpr std::string_view kNamedTypes[] = {
    "ADVANCED_FACE",   "FACE_SURFACE", "MANIFOLD_SOLID_BREP",
    "BREP_WITH_VOIDS", "FACETED_BREP", "SHELL_BASED_SURFACE_MODEL",
    "CLOSED_SHELL",    "OPEN_SHELL",   "CONNECTED_FACE_SET",
};

bool namesShape(const StepText& file, const StepInstance& instance) {
  const std::vector<std::string_view> types = file.types(instance);
  return std::ranges::find_first_of(types, kNamedTypes) != types.end();
}

TopoDS_Shape unplaced(const TopoDS_Shape& shape) { return shape.Located(TopLoc_Location()); }

// ---- Layers.

// What an assigned item is about: a styled item's item, a representation's items, or itself.
std::vector<OdUInt64> subjectsOf(const StepText& file, OdUInt64 id) {
  const StepInstance* instance = file.find(id);
  if (instance == nullptr) return {};
  const std::vector<std::string_view> types = file.types(*instance);
  if (const auto item = styledItem(file, *instance)) return {*item};
  if (types.size() == 1 && types.front().ends_with("REPRESENTATION")) {
    const std::vector<std::string_view> arguments = file.arguments(*instance);
    std::vector<OdUInt64> items;
    if (arguments.size() < 2) return items;
    for (const std::string_view element : StepText::elements(arguments[1])) {
      if (const auto item = StepText::reference(element)) items.push_back(*item);
    }
    return items;
  }
  return {id};
}

bool assignLayer(const StepText& file, const StepTransfer& transfer, OdUInt64 item,
                 const OdString& layer, ShapeTexts& layers) {
  bool any = false;
  for (const OdUInt64 subject : subjectsOf(file, item)) {
    const TopoDS_Shape shape = transfer.shapeOf(subject);
    if (shape.IsNull()) continue;
    layers.add(shape, layer);
    any = true;
  }
  return any;
}

}  // namespace

bool ShapeTexts::add(const TopoDS_Shape& shape, const OdString& text) {
  if (!m_rows.Bind(unplaced(shape), static_cast<int>(m_texts.size()))) return false;
  m_texts.push_back(text);
  return true;
}

const OdString& ShapeTexts::of(const TopoDS_Shape& shape) const {
  static const OdString kNone;
  const int* row = m_rows.Seek(unplaced(shape));
  return row == nullptr ? kNone : m_texts[static_cast<std::size_t>(*row)];
}

ShapeTexts stepNames(const StepText& file, const StepStrings& strings,
                     const StepTransfer& transfer) {
  ShapeTexts names;
  for (const StepInstance& instance : file.instances()) {
    if (!namesShape(file, instance)) continue;
    const OdString name = itemName(file, strings, instance);
    const TopoDS_Shape shape = name.isEmpty() ? TopoDS_Shape() : transfer.shapeOf(instance.id);
    if (!shape.IsNull()) names.add(shape, name);
  }
  return names;
}

ShapeTexts stepLayers(const StepText& file, const StepStrings& strings,
                      const StepTransfer& transfer, OdStringArray& leftOut) {
  ShapeTexts layers;
  for (const StepInstance& instance : file.instances()) {
    const std::vector<std::string_view> arguments =
        file.arguments(instance, "PRESENTATION_LAYER_ASSIGNMENT");
    if (arguments.size() != 3) continue;
    const OdString layer = strings.decodeArgument(arguments[0]);
    unsigned others = 0;
    for (const std::string_view element : StepText::elements(arguments[2])) {
      const auto item = StepText::reference(element);
      if (!item || !assignLayer(file, transfer, *item, layer, layers)) ++others;
    }
    if (others == 0) continue;
    OdString line;
    line.format(L"layer '%ls': %u %ls no body", layer.c_str(), others,
                others == 1 ? L"item is" : L"items are");
    leftOut.append(line);
  }
  return layers;
}

}  // namespace od_occt
