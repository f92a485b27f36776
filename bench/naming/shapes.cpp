// The modeller's own shapes of the subentities of a body.
#include "bench/naming/shapes.h"

#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <array>
#include <list>

#include "platform/modeler_occt/occt_bridge.h"

namespace naming_bench {
namespace {

struct Numbering {
  TopoDS_Shape shape;
  std::array<TopTools_IndexedMapOfShape, 4> maps;  // by subentity type
};

TopAbs_ShapeEnum shapeType(OdModelerSubentType type) {
  if (type == OdModelerSubentType::kFace) return TopAbs_FACE;
  return type == OdModelerSubentType::kEdge ? TopAbs_EDGE : TopAbs_VERTEX;
}

constexpr std::array<OdModelerSubentType, 3> kTypes = {
    OdModelerSubentType::kFace, OdModelerSubentType::kEdge, OdModelerSubentType::kVertex};

const Numbering& numberingOf(const OdModelerBody& body) {
  constexpr std::size_t kKept = 4;
  thread_local std::list<Numbering> kept;
  const TopoDS_Shape& shape = odOcctShape(body);
  for (auto it = kept.begin(); it != kept.end(); ++it) {
    if (!it->shape.IsEqual(shape)) continue;
    kept.splice(kept.begin(), kept, it);
    return kept.front();
  }
  Numbering& numbering = kept.emplace_front();
  numbering.shape = shape;
  for (const OdModelerSubentType type : kTypes) {
    TopExp::MapShapes(shape, shapeType(type), numbering.maps[static_cast<std::size_t>(type)]);
  }
  if (kept.size() > kKept) kept.pop_back();
  return numbering;
}

}  // namespace

TopoDS_Shape shapeOf(const OdModelerBody& body, OdModelerSubent subent) {
  return numberingOf(body).maps[static_cast<std::size_t>(subent.type)].FindKey(
      static_cast<int>(subent.index));
}

OdModelerSubent subentOf(const OdModelerBody& body, const TopoDS_Shape& shape) {
  for (const OdModelerSubentType type : kTypes) {
    if (shape.IsNull() || shape.ShapeType() != shapeType(type)) continue;
    const int index = numberingOf(body).maps[static_cast<std::size_t>(type)].FindIndex(shape);
    if (index > 0) return {type, static_cast<OdUInt32>(index)};
  }
  return {};
}

}  // namespace naming_bench
