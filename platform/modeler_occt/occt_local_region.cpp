// The part of a body that tools can reach.
#include "platform/modeler_occt/occt_local_region.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Wire.hxx>
#include <algorithm>

#include "platform/base/sort_unique.h"
#include "platform/modeler_occt/occt_operations.h"

namespace od_occt {
namespace {

// Faces with fewer loops are taken as they are.
constexpr int kManyLoops = 6;

bool hasFewLoops(const TopoDS_Face& face) {
  int count = 0;
  for (TopoDS_Iterator it(face); it.More(); it.Next()) {
    if (++count > kManyLoops) return false;
  }
  return true;
}

struct Loop {
  TopoDS_Shape wire;
  Bnd_Box box;
};

std::vector<Loop> loopsOf(const TopoDS_Face& face, bool isPlane) {
  std::vector<Loop> loops;
  for (TopoDS_Iterator it(face); it.More(); it.Next()) {
    const bool isWire = it.Value().ShapeType() == TopAbs_WIRE;
    loops.push_back({it.Value(), isWire ? boxOfLoop(it.Value(), isPlane) : Bnd_Box()});
  }
  return loops;
}

// The outer loop. On a plane its box has the boxes of all others in it.
TopoDS_Shape outerOf(const TopoDS_Face& face, const std::vector<Loop>& loops, bool isPlane) {
  if (!isPlane) return BRepTools::OuterWire(face);
  const auto extent = [](const Loop& loop) {
    return loop.box.IsVoid() ? 0.0 : loop.box.SquareExtent();
  };
  return std::ranges::max_element(loops, {}, extent)->wire;
}

// What a loop encloses is known on a plane and, with a bound on its bulge, on a cylinder.
void leaveFarLoops(const BoxSet& tools, ReachedFace& face) {
  face.near = face.whole;
  if (hasFewLoops(face.whole)) return;
  const GeomAbs_SurfaceType type = BRepAdaptor_Surface(face.whole, Standard_False).GetType();
  if (type != GeomAbs_Plane && type != GeomAbs_Cylinder) return;
  const std::vector<Loop> loops = loopsOf(face.whole, type == GeomAbs_Plane);
  const TopoDS_Shape outer = outerOf(face.whole, loops, type == GeomAbs_Plane);
  TopTools_ListOfShape near;
  for (const Loop& loop : loops) {
    const bool stays = loop.box.IsVoid() || loop.wire.IsSame(outer) || tools.meets(loop.box);
    (stays ? near : face.far).Append(loop.wire);
  }
  if (face.far.IsEmpty()) return;
  face.near = TopoDS::Face(face.whole.EmptyCopied());
  BRep_Builder builder;
  for (const TopoDS_Shape& loop : near) builder.Add(face.near, loop);
}

bool hasCavity(const TopoDS_Shape& solid) {
  int shells = 0;
  for (TopExp_Explorer it(solid, TopAbs_SHELL); it.More(); it.Next()) ++shells;
  return shells != 1;
}

// One box and the faces of each solid.
OdStatus collectTools(std::span<const OdModelerBodyPtr> tools, LocalRegion& region) {
  std::vector<Bnd_Box> boxes;
  for (const OdModelerBodyPtr& tool : tools) {
    if (tool->kind() != OdModelerBodyKind::kSolid) return declined(L"a tool is no solid");
    for (TopExp_Explorer solid(asOcct(*tool).shape(), TopAbs_SOLID); solid.More(); solid.Next()) {
      if (hasCavity(solid.Current())) return declined(L"a tool has a cavity");
      Bnd_Box box;
      for (TopExp_Explorer it(solid.Current(), TopAbs_FACE); it.More(); it.Next()) {
        region.toolFaces.push_back(TopoDS::Face(it.Current()));
        box.Add(boxOfFace(region.toolFaces.back()));
      }
      if (box.IsVoid() || box.IsOpen()) return declined(L"a tool has no box");
      box.Enlarge(kReachMargin);
      boxes.push_back(box);
    }
  }
  region.toolBoxes = BoxSet(std::move(boxes));
  return region.toolBoxes.areApart() ? OdStatus() : declined(L"tools meet");
}

void collectFaces(const Body& base, LocalRegion& region) {
  const Topology& topology = base.topology();
  const std::vector<Bnd_Box>& boxes = base.faceBoxes();
  region.isReached.resize(boxes.size());
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (!region.toolBoxes.meets(boxes[i])) continue;
    region.isReached[i] = true;
    ReachedFace& face = region.faces.emplace_back();
    face.index = static_cast<OdUInt32>(i + 1);
    face.whole = TopoDS::Face(topology.faces(static_cast<int>(face.index)));
    leaveFarLoops(region.toolBoxes, face);
  }
}

// Of the near loops: the far ones stay as they are.
void collectBounds(const Topology& base, LocalRegion& region) {
  for (const ReachedFace& face : region.faces) {
    for (TopExp_Explorer it(face.near, TopAbs_EDGE); it.More(); it.Next()) {
      region.edges.push_back(static_cast<OdUInt32>(base.edges.FindIndex(it.Current())));
    }
    for (TopExp_Explorer it(face.near, TopAbs_VERTEX); it.More(); it.Next()) {
      region.vertices.push_back(static_cast<OdUInt32>(base.vertices.FindIndex(it.Current())));
    }
  }
  odSortUnique(region.edges);
  odSortUnique(region.vertices);
}

}  // namespace

bool LocalRegion::isShared(const Topology& base, OdUInt32 edge) const {
  return !std::ranges::all_of(base.facesOfEdge[edge - 1],
                              [this](OdUInt32 face) { return isReached[face - 1]; });
}

OdStatus findRegion(std::span<const OdModelerBodyPtr> inputs, LocalRegion& region) {
  const Body& base = asOcct(*inputs.front());
  if (base.kind() != OdModelerBodyKind::kSolid) return declined(L"the body is no solid");
  if (base.isLeftApart()) return declined(L"faces of the body wait for being joined");
  if (OdStatus status = collectTools(inputs.subspan(1), region); !status.ok()) return status;
  collectFaces(base, region);
  if (region.faces.empty()) return declined(L"no face is near a tool");
  collectBounds(base.topology(), region);
  return {};
}

}  // namespace od_occt
