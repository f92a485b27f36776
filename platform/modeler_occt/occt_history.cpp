// Histories of operations, and the attributes that follow them.
//
// The modeller's operations name what became of a shape that they are asked for; bodies name faces,
// edges and vertices by number. Both number their shapes by one walk (Topology), so that each part
// of an input is asked for once, and each answer is looked up in the map of the result: the cost is
// linear in the parts of the inputs and their images.
//
// An answer that is not in the result is left out: operations also name intermediate shapes that a
// later step took away. A part that an operation does not mention is its own image if the result
// has it. So the laws of OdModelerFate hold whatever an operation answers: images exist, are of the
// same type, rise, and occur once.
#include "platform/modeler_occt/occt_history.h"

#include <BRepBuilderAPI_MakeShape.hxx>
#include <BRepTools_History.hxx>
#include <TopTools_ListOfShape.hxx>

#include "platform/base/sort_unique.h"

#include "platform/modeler_occt/occt_guard.h"

namespace od_occt {
namespace {

constexpr OdModelerSubentType kTypes[] = {OdModelerSubentType::kFace, OdModelerSubentType::kEdge,
                                          OdModelerSubentType::kVertex};

OdModelerSubent findSubent(const Topology& topology, const TopoDS_Shape& shape) {
  for (const OdModelerSubentType type : kTypes) {
    const int index = topology.map(type).FindIndex(shape);
    if (index != 0) return {type, static_cast<OdUInt32>(index)};
  }
  return {};
}

template <class Operation>
OdModelerFate fateOf(Operation& operation, const TopoDS_Shape& old, OdModelerSubentType type,
                     const Topology& result) {
  OdModelerFate fate;
  const TopTools_IndexedMapOfShape& parts = result.map(type);
  const auto add = [&](const TopoDS_Shape& shape) {
    const OdModelerSubent found = findSubent(result, shape);
    if (found.index == 0) return;
    if (found.type == type) fate.images.push_back(found.index);
  };
  for (const TopoDS_Shape& shape : operation.Modified(old)) add(shape);
  fate.changed = !fate.images.empty();
  // Some operations call a part deleted that is in the result as it was: what is there is there.
  const int same = fate.images.empty() ? parts.FindIndex(old) : 0;
  if (same != 0) fate.images.push_back(static_cast<OdUInt32>(same));
  for (const TopoDS_Shape& shape : operation.Generated(old)) {
    const OdModelerSubent found = findSubent(result, shape);
    if (found.index != 0) fate.generated.push_back(found);
  }
  odSortUnique(fate.images);
  odSortUnique(fate.generated);
  return fate;
}

template <class Operation>
std::vector<OdModelerFate> fatesOf(Operation& operation, const Topology& input,
                                   OdModelerSubentType type, const Topology& result) {
  const TopTools_IndexedMapOfShape& parts = input.map(type);
  std::vector<OdModelerFate> fates;
  fates.reserve(static_cast<std::size_t>(parts.Extent()));
  for (int i = 1; i <= parts.Extent(); ++i) {
    fates.push_back(fateOf(operation, parts(i), type, result));
  }
  return fates;
}

template <class Operation>
OdModelerHistory historyOf(Operation& operation, std::span<const OdModelerBodyPtr> inputs,
                           const Body& result) {
  OdModelerHistory history;
  const Topology& now = result.topology();
  for (const OdModelerBodyPtr& input : inputs) {
    const Topology& then = asOcct(*input).topology();
    history.inputs.push_back({fatesOf(operation, then, OdModelerSubentType::kFace, now),
                              fatesOf(operation, then, OdModelerSubentType::kEdge, now),
                              fatesOf(operation, then, OdModelerSubentType::kVertex, now)});
  }
  return history;
}

}  // namespace

OdModelerHistory collectHistory(BRepTools_History& history,
                                std::span<const OdModelerBodyPtr> inputs, const Body& result) {
  return historyOf(history, inputs, result);
}

OdModelerBodyAttributes inheritAttributes(std::span<const OdModelerBodyPtr> inputs,
                                          const OdModelerHistory& history) {
  const OdModelerBodyAttributes& base = inputs.front()->attributes();
  OdModelerBodyAttributes result{base.name, base.color, {}, {}};
  for (std::size_t input = 0; input < inputs.size(); ++input) {
    const OdModelerBodyAttributes& own = inputs[input]->attributes();
    const std::vector<OdModelerFate>& faces = history.inputs[input].faces;
    const bool recolor = own.color && own.color != base.color;
    for (OdUInt32 old = 1; old <= faces.size(); ++old) {
      const auto color = own.faceColors.find(old);
      const auto name = own.faceNames.find(old);
      for (const OdUInt32 image : faces[old - 1].images) {
        if (color != own.faceColors.end()) {
          result.faceColors.emplace(image, color->second);
        } else if (recolor) {
          result.faceColors.emplace(image, *own.color);
        }
        if (name != own.faceNames.end()) result.faceNames.emplace(image, name->second);
      }
    }
  }
  return result;
}

OdStatus takeOutcome(const char* name, BRepBuilderAPI_MakeShape& operation,
                     const OdModelerBodyPtr& input, OdModelerBodyPtr& result,
                     OdModelerHistory* history) {
  const std::shared_ptr<const Body> plain = bodyOf(operation.Shape());
  if (!plain) return failure(eModelerError, name, "nothing came out");
  if (OdStatus sound = checkShape(plain->shape()); !sound.ok()) {
    return {eModelerInvalidBody, OdString(name) + L": " + sound.text};
  }
  OdModelerHistory fates = historyOf(operation, {&input, 1}, *plain);
  result = plain->withAttributes(inheritAttributes({&input, 1}, fates));
  if (history != nullptr) *history = std::move(fates);
  return {};
}

}  // namespace od_occt
