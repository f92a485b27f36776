// Checking the outcome of an operation at the cost of what the operation changed.
//
// A full check of a body looks at every face; after drilling one hole into a part with a thousand
// faces nearly all of that repeats an earlier check. An operation takes over the shapes that it
// does not change, so a face that the base has is known to be sound. A face that was changed is
// checked with its new boundaries only, and with those old ones whose boxes meet a new one: old
// boundaries of one face were sound together. That the shell closes cannot be seen face by face, so
// shells and solids are checked as a whole, which is cheap: only their edges are counted.
//
// The quick check may refuse a sound body and never decides alone: what it refuses, the full check
// judges. Its laws are with the declaration (occt_body.h).
#include <BRepBndLib.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepCheck_ListOfStatus.hxx>
#include <BRepCheck_Shell.hxx>
#include <BRepCheck_Solid.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Iterator.hxx>
#include <algorithm>
#include <iterator>
#include <vector>

#include "platform/modeler_occt/occt_body.h"

namespace od_occt {
namespace {

struct Boundary {
  TopoDS_Shape wire;
  Bnd_Box box;
  std::vector<OdUInt32> bounded;  ///< faces that it bounded before; none when it is new
};

std::vector<OdUInt32> inCommon(const std::vector<OdUInt32>& a, const std::vector<OdUInt32>& b) {
  std::vector<OdUInt32> common;
  std::ranges::set_intersection(a, b, std::back_inserter(common));
  return common;
}

Boundary boundaryOf(const TopoDS_Shape& wire, const Topology& before) {
  Boundary boundary{wire, {}, {}};
  BRepBndLib::Add(wire, boundary.box, /*useTriangulation=*/Standard_False);
  bool isFirst = true;
  for (TopoDS_Iterator it(wire); it.More(); it.Next(), isFirst = false) {
    const int edge = before.edges.FindIndex(it.Value());
    if (edge == 0) return {wire, boundary.box, {}};
    const std::vector<OdUInt32>& faces = before.facesOfEdge[static_cast<std::size_t>(edge - 1)];
    boundary.bounded = isFirst ? faces : inCommon(boundary.bounded, faces);
  }
  return boundary;
}

// The face with its new boundaries and the old ones that may meet them; with a single old one when
// none is new. The whole face when its old boundaries come from different faces, since nothing is
// known of how they lie to each other.
TopoDS_Shape concerned(const TopoDS_Shape& face, const Topology& before) {
  std::vector<Boundary> boundaries;
  Bnd_Box fresh;
  std::vector<OdUInt32> origin;
  bool hasKnown = false;
  for (TopoDS_Iterator it(face); it.More(); it.Next()) {
    if (it.Value().ShapeType() != TopAbs_WIRE) return face;
    const Boundary& boundary = boundaries.emplace_back(boundaryOf(it.Value(), before));
    if (boundary.bounded.empty()) {
      fresh.Add(boundary.box);
      continue;
    }
    origin = hasKnown ? inCommon(origin, boundary.bounded) : boundary.bounded;
    hasKnown = true;
    if (origin.empty()) return face;
  }
  TopoDS_Shape part = face.EmptyCopied();
  BRep_Builder builder;
  if (fresh.IsVoid()) {
    builder.Add(part, boundaries.front().wire);
    return part;
  }
  for (const Boundary& boundary : boundaries) {
    if (boundary.bounded.empty() || !boundary.box.IsOut(fresh)) builder.Add(part, boundary.wire);
  }
  return part;
}

bool facesAreSound(const Topology& now, const Topology& before) {
  for (int i = 1; i <= now.faces.Extent(); ++i) {
    const TopoDS_Shape& face = now.faces(i);
    if (!before.faces.Contains(face) && !BRepCheck_Analyzer(concerned(face, before)).IsValid()) {
      return false;
    }
  }
  return true;
}

bool shellsAreSound(const TopoDS_Shape& shape) {
  for (TopExp_Explorer it(shape, TopAbs_SHELL); it.More(); it.Next()) {
    const Handle(BRepCheck_Shell) check = new BRepCheck_Shell(TopoDS::Shell(it.Current()));
    if (check->Closed() != BRepCheck_NoError || check->Orientation() != BRepCheck_NoError) {
      return false;
    }
  }
  return true;
}

bool solidsAreSound(const TopoDS_Shape& shape) {
  for (TopExp_Explorer it(shape, TopAbs_SOLID); it.More(); it.Next()) {
    const Handle(BRepCheck_Solid) check = new BRepCheck_Solid(TopoDS::Solid(it.Current()));
    check->Minimum();
    for (const BRepCheck_Status status : check->Status()) {
      if (status != BRepCheck_NoError) return false;
    }
  }
  return true;
}

}  // namespace

// The full check decides where the quick one refuses, and names the fault.
OdStatus checkOutcome(const Body& outcome, const Body& base) {
  const bool isSound = outcome.kind() == OdModelerBodyKind::kSolid &&
                       facesAreSound(outcome.topology(), base.topology()) &&
                       shellsAreSound(outcome.shape()) && solidsAreSound(outcome.shape());
  return isSound ? OdStatus() : checkShape(outcome.shape());
}

}  // namespace od_occt
