// Checking the outcome of an operation: the body as a whole at once, its geometry where the
// operation changed something.
//
// A full check of a body looks at the geometry of every face; after drilling one hole into a part
// with a thousand faces nearly all of that repeats an earlier check, and costs more than the hole.
// So the check has two halves.
//
//   Over the whole body, what is cheap:
//     - shells close and their faces are oriented alike: each edge is used once in either sense,
//     and
//       edges connect all faces (shellsAreSound); solids are well formed;
//     - every boundary closes in the parameters of its face, also of those that are as they were
//       (boundariesClose): the traces of edges belong to all bodies that share these, and a trace
//       on the wrong side of a seam turns a face inside out and leaves all counts right.
//   Where something changed: a face that the base has is taken for sound. A face that was changed
//   is checked with its new boundaries, and with those old ones whose boxes meet a new one: old
//   boundaries of one face were sound together.
//
// The quick check may refuse a sound body and never decides alone: what it refuses, the full check
// judges. Its laws are with the declaration (occt_body.h). It costs one visit of each use of an
// edge and two points of its trace, beside the changed faces.
#include <BRepAdaptor_Surface.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepCheck_ListOfStatus.hxx>
#include <BRepCheck_Solid.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <Geom2d_Curve.hxx>
#include <Precision.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Vertex.hxx>
#include <algorithm>
#include <iterator>
#include <vector>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_face_boxes.h"

namespace od_occt {
namespace {

struct Boundary {
  TopoDS_Shape wire;
  std::vector<OdUInt32> bounded;  ///< faces that it bounded before; none when it is new
};

std::vector<OdUInt32> inCommon(const std::vector<OdUInt32>& a, const std::vector<OdUInt32>& b) {
  std::vector<OdUInt32> common;
  std::ranges::set_intersection(a, b, std::back_inserter(common));
  return common;
}

Boundary boundaryOf(const TopoDS_Shape& wire, const Topology& before) {
  Boundary boundary{wire, {}};
  bool isFirst = true;
  for (TopoDS_Iterator it(wire); it.More(); it.Next(), isFirst = false) {
    const int edge = before.edges.FindIndex(it.Value());
    if (edge == 0) return {wire, {}};
    const std::vector<OdUInt32>& faces = before.facesOfEdge[static_cast<std::size_t>(edge - 1)];
    boundary.bounded = isFirst ? faces : inCommon(boundary.bounded, faces);
  }
  return boundary;
}

// The face with its new boundaries and the old ones that may meet them; with a single old one when
// none is new. The whole face when its old boundaries come from different faces, since nothing is
// known of how they lie to each other.
TopoDS_Shape concerned(const TopoDS_Shape& face, const Topology& before) {
  const bool isPlane =
      BRepAdaptor_Surface(TopoDS::Face(face), Standard_False).GetType() == GeomAbs_Plane;
  std::vector<Boundary> boundaries;
  Bnd_Box fresh;
  std::vector<OdUInt32> origin;
  bool hasKnown = false;
  for (TopoDS_Iterator it(face); it.More(); it.Next()) {
    if (it.Value().ShapeType() != TopAbs_WIRE) return face;
    const Boundary& boundary = boundaries.emplace_back(boundaryOf(it.Value(), before));
    if (boundary.bounded.empty()) {
      fresh.Add(boxOfLoop(it.Value(), isPlane));
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
    if (boundary.bounded.empty() || !boxOfLoop(boundary.wire, isPlane).IsOut(fresh)) {
      builder.Add(part, boundary.wire);
    }
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

// ---- Boundaries in the parameters of their faces

/// Where the trace of an edge begins or ends.
struct TraceEnd {
  TopoDS_Shape vertex;
  gp_Pnt2d at;
};

/// How far apart in the parameters of a surface two points may be that are one in space.
class ParameterTolerance {
 public:
  explicit ParameterTolerance(const TopoDS_Face& face) : m_surface(face, Standard_False) {}

  [[nodiscard]] bool isPlane() const { return m_surface.GetType() == GeomAbs_Plane; }
  /// A gap of less than a quarter of a period is left to the geometry checks: traces of sloppy
  /// imports have such gaps, at vertices of large tolerance or near poles.
  [[nodiscard]] bool meet(const gp_Pnt2d& a, const gp_Pnt2d& b, double inSpace) const {
    return std::abs(a.X() - b.X()) <= std::max(m_surface.UResolution(inSpace), slack(inU())) &&
           std::abs(a.Y() - b.Y()) <= std::max(m_surface.VResolution(inSpace), slack(inV()));
  }

 private:
  [[nodiscard]] double inU() const { return m_surface.IsUPeriodic() ? m_surface.UPeriod() : 0.0; }
  [[nodiscard]] double inV() const { return m_surface.IsVPeriodic() ? m_surface.VPeriod() : 0.0; }
  static double slack(double period) {
    return period > 0.0 ? 0.25 * period : Precision::Infinite();
  }

  BRepAdaptor_Surface m_surface;
};

// Each end of a trace is where another one begins, at the same vertex.
bool closes(const TopoDS_Shape& boundary, const TopoDS_Face& face, const ParameterTolerance& near) {
  std::vector<TraceEnd> starts;
  std::vector<TraceEnd> ends;
  for (TopoDS_Iterator it(boundary); it.More(); it.Next()) {
    const TopoDS_Edge& edge = TopoDS::Edge(it.Value());
    const bool isForward = edge.Orientation() == TopAbs_FORWARD;
    if (!isForward && edge.Orientation() != TopAbs_REVERSED) continue;  // inside the face
    double first = 0.0;
    double last = 0.0;
    const Handle(Geom2d_Curve) trace = BRep_Tool::CurveOnSurface(edge, face, first, last);
    if (trace.IsNull()) return false;
    const TraceEnd low{TopExp::FirstVertex(edge), trace->Value(first)};
    const TraceEnd high{TopExp::LastVertex(edge), trace->Value(last)};
    starts.push_back(isForward ? low : high);
    ends.push_back(isForward ? high : low);
  }
  return std::ranges::all_of(ends, [&](const TraceEnd& end) {
    return std::ranges::any_of(starts, [&](const TraceEnd& start) {
      return start.vertex.IsSame(end.vertex) &&
             near.meet(start.at, end.at, BRep_Tool::Tolerance(TopoDS::Vertex(end.vertex)));
    });
  });
}

// A plane has one place for each point: its boundaries close as their edges meet.
bool boundariesClose(const Topology& now, const std::vector<bool>& isLookedAt) {
  for (int i = 1; i <= now.faces.Extent(); ++i) {
    if (!isLookedAt[static_cast<std::size_t>(i - 1)]) continue;
    const TopoDS_Face face = TopoDS::Face(now.faces(i).Oriented(TopAbs_FORWARD));
    const ParameterTolerance near(face);
    if (near.isPlane()) continue;
    for (TopoDS_Iterator it(face); it.More(); it.Next()) {
      if (it.Value().ShapeType() == TopAbs_WIRE && !closes(it.Value(), face, near)) return false;
    }
  }
  return true;
}

// ---- Shells and solids

/// The uses of the edges of one shell by its faces, which it connects.
class EdgeUses {
 public:
  explicit EdgeUses(const TopoDS_Shape& shell) {
    for (TopoDS_Iterator it(shell); it.More(); it.Next()) addFace(it.Value());
  }

  /// Once in either sense.
  [[nodiscard]] bool arePaired() const {
    return std::ranges::all_of(
        m_uses, [](const Uses& uses) { return uses.forward == 1 && uses.reversed == 1; });
  }
  /// Each face can be reached from each other one over edges.
  [[nodiscard]] bool connectFaces() {
    for (std::size_t i = 1; i < m_root.size(); ++i) {
      if (rootOf(i) != rootOf(0)) return false;
    }
    return true;
  }

 private:
  struct Uses {
    std::size_t face;  // the first one
    int forward = 0;
    int reversed = 0;
  };

  void addFace(const TopoDS_Shape& face) {
    const std::size_t number = m_root.size();
    m_root.push_back(number);
    for (TopExp_Explorer it(face, TopAbs_EDGE); it.More(); it.Next()) {
      const TopAbs_Orientation sense = it.Current().Orientation();
      const bool bounds = sense == TopAbs_FORWARD || sense == TopAbs_REVERSED;
      if (!bounds || BRep_Tool::Degenerated(TopoDS::Edge(it.Current()))) continue;
      const auto index = static_cast<std::size_t>(m_edges.Add(it.Current()));
      if (m_uses.size() < index) m_uses.push_back({number});
      Uses& uses = m_uses[index - 1];
      ++(sense == TopAbs_FORWARD ? uses.forward : uses.reversed);
      m_root[rootOf(number)] = rootOf(uses.face);
    }
  }
  std::size_t rootOf(std::size_t face) {
    while (m_root[face] != face) face = m_root[face] = m_root[m_root[face]];
    return face;
  }

  TopTools_IndexedMapOfShape m_edges;
  std::vector<Uses> m_uses;         // by edge
  std::vector<std::size_t> m_root;  // of the faces connected so far, by face
};

// The modeller's own check of a shell compares faces with each other, which takes longer than a cut
// on a face with some hundred holes.
bool shellsAreSound(const TopoDS_Shape& shape) {
  for (TopExp_Explorer it(shape, TopAbs_SHELL); it.More(); it.Next()) {
    EdgeUses uses(it.Current());
    if (!uses.arePaired() || !uses.connectFaces()) return false;
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

// The faces at which an operation that worked on some edges can have written traces: those of the
// edges, and new ones.
std::vector<bool> facesAt(const TopTools_MapOfShape& edges, const Topology& now,
                          const Topology& before) {
  std::vector<bool> isLookedAt;
  for (int i = 1; i <= now.faces.Extent(); ++i) {
    isLookedAt.push_back(!before.faces.Contains(now.faces(i)));
  }
  for (TopTools_MapOfShape::Iterator it(edges); it.More(); it.Next()) {
    const int edge = now.edges.FindIndex(it.Value());
    if (edge == 0) continue;
    for (const OdUInt32 face : now.facesOfEdge[static_cast<std::size_t>(edge - 1)]) {
      isLookedAt[face - 1] = true;
    }
  }
  return isLookedAt;
}

}  // namespace

bool isPlainlySound(const Body& outcome, const Body& base, const TopTools_MapOfShape* edges) {
  if (outcome.kind() != OdModelerBodyKind::kSolid || !shellsAreSound(outcome.shape()) ||
      !solidsAreSound(outcome.shape())) {
    return false;
  }
  const Topology& now = outcome.topology();
  const std::vector<bool> isLookedAt =
      edges != nullptr ? facesAt(*edges, now, base.topology())
                       : std::vector<bool>(static_cast<std::size_t>(now.faces.Extent()), true);
  return boundariesClose(now, isLookedAt) && facesAreSound(now, base.topology());
}

// The full check decides where the quick one refuses, and names the fault.
OdStatus checkOutcome(const Body& outcome, const Body& base) {
  return isPlainlySound(outcome, base) ? OdStatus() : checkShape(outcome.shape());
}

}  // namespace od_occt
