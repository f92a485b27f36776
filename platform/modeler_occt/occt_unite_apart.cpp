// The union of bodies that lie apart from each other.
#include "platform/modeler_occt/occt_unite_apart.h"

#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS_Compound.hxx>
#include <algorithm>
#include <utility>

#include "platform/modeler_occt/occt_face_boxes.h"

namespace od_occt {
namespace {

Bnd_Box boxOf(const Body& body) {
  Bnd_Box box;
  for (const Bnd_Box& face : body.faceBoxes()) box.Add(face);
  return box;
}

bool areApart(std::span<const OdModelerBodyPtr> inputs) {
  std::vector<Bnd_Box> boxes;
  for (const OdModelerBodyPtr& input : inputs) {
    Bnd_Box& box = boxes.emplace_back(boxOf(asOcct(*input)));
    if (box.IsVoid() || box.IsOpen()) return false;
    box.Enlarge(kReachMargin);
  }
  return BoxSet(std::move(boxes)).areApart();
}

}  // namespace

std::shared_ptr<const Body> uniteApart(std::span<const OdModelerBodyPtr> inputs) {
  const auto isPlain = [](const OdModelerBodyPtr& input) {
    return input->kind() == OdModelerBodyKind::kSolid && !asOcct(*input).isLeftApart();
  };
  if (!std::ranges::all_of(inputs, isPlain) || !areApart(inputs)) return nullptr;
  TopoDS_Compound whole;
  BRep_Builder builder;
  builder.MakeCompound(whole);
  for (const OdModelerBodyPtr& input : inputs) {
    for (TopExp_Explorer it(asOcct(*input).shape(), TopAbs_SOLID); it.More(); it.Next()) {
      builder.Add(whole, it.Current());
    }
  }
  const Body& base = asOcct(*inputs.front());
  std::shared_ptr<const Body> body = bodyOf(whole, {}, {}, &base);
  return isPlainlySound(*body, base) ? body : nullptr;
}

}  // namespace od_occt
