// Joins what a boolean brought together.
//
// A boolean leaves faces of one surface side by side where parts of different inputs meet. They are
// to be one face, but not those that were side by side in an input: an imported cylinder in two
// halves keeps its halves. So the borders to keep are found first, in the inputs, and followed to
// the outcome:
//   - in the base, every edge between two faces of one surface, and every vertex where nothing but
//     two edges of one border meet;
//   - in a tool, such edges too, but only those that are connected with kept edges of the base. A
//     piece that was cut out and is put back continues the border of the part; a tool of its own
//     does not add borders to the part.
// All other borders go: first those of surfaces of revolution (occt_join_curved.h), then, by the
// modeller's own unification, those of planes, of free-form surfaces and of edges. The history of
// each step is merged into that of the boolean, so that one lookup leads from an input to the
// outcome.
//
// The unification is given little to decide. By its own measure of one surface, which is wider than
// ours, it joins faces that lay side by side in the part, and while it does so it writes new traces
// into edges. Those are edges of the part, and of every body that shares them: one cut would damage
// the bodies before it. So all edges are kept that do not lie between two faces of one plane or of
// one free-form surface (leaveToUnification), and around free-form faces it works on copies.
//
// Following the borders of a tool takes passes over the edges that are still open, until a pass
// connects none; each pass but the last takes one away, so it ends. Tools have few such edges.
#include "platform/modeler_occt/occt_simplify.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepTools_ReShape.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Precision.hxx>
#include <ShapeUpgrade_UnifySameDomain.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Vertex.hxx>
#include <numeric>
#include <vector>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_join_curved.h"
#include "platform/modeler_occt/occt_same_surface.h"

namespace od_occt {
namespace {

// The modeller's own measures of what is one point and one direction.
const double kLinear = Precision::Confusion();
const double kAngular = Precision::Angular();

bool partsOneSurface(const Topology& topology, std::size_t edge) {
  const std::vector<OdUInt32>& faces = topology.facesOfEdge[edge];
  return faces.size() == 2 &&
         haveOneSurface(TopoDS::Face(topology.faces(static_cast<int>(faces[0]))),
                        TopoDS::Face(topology.faces(static_cast<int>(faces[1]))));
}

// Two open edges between the same two faces meet at the vertex, and no other edge does.
bool partsOneBorder(const Topology& topology, std::size_t vertex) {
  const std::vector<OdUInt32>& edges = topology.edgesOfVertex[vertex];
  if (edges.size() != 2 ||
      topology.facesOfEdge[edges[0] - 1] != topology.facesOfEdge[edges[1] - 1]) {
    return false;
  }
  for (const OdUInt32 index : edges) {
    const TopoDS_Edge& edge = TopoDS::Edge(topology.edges(static_cast<int>(index)));
    if (BRep_Tool::Degenerated(edge) ||
        TopExp::FirstVertex(edge).IsSame(TopExp::LastVertex(edge))) {
      return false;
    }
  }
  return true;
}

// Visits what the boolean made of a part of an input.
template <class Visit>
void visitImages(const Handle(BRepTools_History) & history, const TopoDS_Shape& part,
                 const Visit& visit) {
  const TopTools_ListOfShape& images = history->Modified(part);
  if (images.IsEmpty()) visit(part);
  for (const TopoDS_Shape& image : images) visit(image);
}

std::vector<OdUInt32> numbersTo(std::size_t last) {
  std::vector<OdUInt32> numbers(last);
  std::iota(numbers.begin(), numbers.end(), OdUInt32{1});
  return numbers;
}

/// Edges at which faces are not to be joined, and vertices at which edges are not.
class Borders {
 public:
  explicit Borders(Handle(BRepTools_History) history) : m_history(std::move(history)) {}

  void keepOfBase(const Topology& base, const std::vector<OdUInt32>& edges,
                  const std::vector<OdUInt32>& vertices) {
    for (const OdUInt32 edge : edges) {
      if (!partsOneSurface(base, edge - 1)) continue;
      visitImages(m_history, base.edges(static_cast<int>(edge)),
                  [this](const TopoDS_Shape& image) { keepEdge(image); });
    }
    for (const OdUInt32 vertex : vertices) {
      if (!partsOneBorder(base, vertex - 1)) continue;
      visitImages(m_history, base.vertices(static_cast<int>(vertex)),
                  [this](const TopoDS_Shape& image) { m_kept.Add(image); });
    }
  }

  void keepAll(const TopTools_MapOfShape& shapes) { m_kept.Unite(shapes); }

  /// Edges that continue a kept border, directly or through others.
  void keepOfTool(const Topology& tool) {
    if (m_ends.IsEmpty()) return;
    TopTools_ListOfShape open;
    for (std::size_t edge = 0; edge < tool.facesOfEdge.size(); ++edge) {
      if (!partsOneSurface(tool, edge)) continue;
      visitImages(m_history, tool.edges(static_cast<int>(edge) + 1),
                  [&open](const TopoDS_Shape& image) { open.Append(image); });
    }
    for (bool found = true; found;) {
      found = false;
      for (TopTools_ListOfShape::Iterator it(open); it.More();) {
        if (!continuesKept(it.Value())) {
          it.Next();
          continue;
        }
        keepEdge(it.Value());
        open.Remove(it);
        found = true;
      }
    }
  }

  /// All edges of curved faces.
  void keepOfCurves(const TopoDS_Shape& outcome) {
    TopTools_IndexedDataMapOfShapeListOfShape facesOfEdge;
    TopExp::MapShapesAndAncestors(outcome, TopAbs_EDGE, TopAbs_FACE, facesOfEdge);
    for (int i = 1; i <= facesOfEdge.Extent(); ++i) {
      for (const TopoDS_Shape& face : facesOfEdge(i)) {
        const BRepAdaptor_Surface surface(TopoDS::Face(face), Standard_False);
        if (surface.GetType() != GeomAbs_Plane) m_kept.Add(facesOfEdge.FindKey(i));
      }
    }
  }

  [[nodiscard]] const TopTools_MapOfShape& kept() const { return m_kept; }

 private:
  void keepEdge(const TopoDS_Shape& edge) {
    m_kept.Add(edge);
    m_ends.Add(TopExp::FirstVertex(TopoDS::Edge(edge)));
    m_ends.Add(TopExp::LastVertex(TopoDS::Edge(edge)));
  }
  [[nodiscard]] bool continuesKept(const TopoDS_Shape& edge) const {
    return m_ends.Contains(TopExp::FirstVertex(TopoDS::Edge(edge))) ||
           m_ends.Contains(TopExp::LastVertex(TopoDS::Edge(edge)));
  }

  Handle(BRepTools_History) m_history;
  TopTools_MapOfShape m_kept;
  TopTools_MapOfShape m_ends;  // of the edges that are kept
};

enum class Sort { kPlane, kTurned, kFreeForm };

Sort sortOf(const TopoDS_Face& face) {
  const GeomAbs_SurfaceType type = BRepAdaptor_Surface(face, Standard_False).GetType();
  if (type == GeomAbs_Plane) return Sort::kPlane;
  return type <= GeomAbs_Torus ? Sort::kTurned : Sort::kFreeForm;
}

/// Keeps every edge but those whose faces the unification may join. Gives the free-form faces among
/// these.
TopTools_IndexedMapOfShape leaveToUnification(Simplified& outcome) {
  TopTools_IndexedDataMapOfShapeListOfShape facesOfEdge;
  TopExp::MapShapesAndAncestors(outcome.shape, TopAbs_EDGE, TopAbs_FACE, facesOfEdge);
  TopTools_IndexedMapOfShape freeForms;
  for (int i = 1; i <= facesOfEdge.Extent(); ++i) {
    const TopoDS_Shape& edge = facesOfEdge.FindKey(i);
    const TopTools_ListOfShape& faces = facesOfEdge(i);
    if (outcome.kept.Contains(edge)) continue;
    const TopoDS_Face& a = TopoDS::Face(faces.First());
    const TopoDS_Face& b = TopoDS::Face(faces.Last());
    const Sort sort = sortOf(a);
    if (faces.Extent() != 2 || sort == Sort::kTurned || !haveOneSurface(a, b)) {
      outcome.kept.Add(edge);
    } else if (sort == Sort::kFreeForm) {
      freeForms.Add(a);
      freeForms.Add(b);
    }
  }
  return freeForms;
}

// An edge of its own with the same curve, traces and vertices.
TopoDS_Shape copyOf(const TopoDS_Shape& edge) {
  TopoDS_Shape copy = edge.EmptyCopied();
  BRep_Builder builder;
  for (TopoDS_Iterator it(edge); it.More(); it.Next()) builder.Add(copy, it.Value());
  copy.Closed(edge.Closed());
  return copy;
}

void copyEdgesOf(const TopTools_IndexedMapOfShape& faces, Simplified& outcome) {
  if (faces.IsEmpty()) return;
  const Handle(BRepTools_ReShape) changes = new BRepTools_ReShape;
  for (int i = 1; i <= faces.Extent(); ++i) {
    for (TopExp_Explorer it(faces(i), TopAbs_EDGE); it.More(); it.Next()) {
      const TopoDS_Shape edge = it.Current().Oriented(TopAbs_FORWARD);
      if (!changes->IsRecorded(edge)) changes->Replace(edge, copyOf(edge));
    }
  }
  const TopoDS_Shape copied = changes->Apply(outcome.shape);  // completes the history
  outcome.advance(copied, changes->History());
}

void unify(Simplified& outcome, bool unifyEdges) {
  copyEdgesOf(leaveToUnification(outcome), outcome);
  ShapeUpgrade_UnifySameDomain unifier(outcome.shape, unifyEdges, /*UnifyFaces=*/Standard_True,
                                       /*ConcatBSplines=*/Standard_True);
  unifier.SetLinearTolerance(kLinear);
  unifier.SetAngularTolerance(kAngular);
  unifier.KeepShapes(outcome.kept);
  unifier.Build();
  outcome.advance(unifier.Shape(), unifier.History());
}

}  // namespace

void Simplified::advance(const TopoDS_Shape& now, const Handle(BRepTools_History) & step) {
  shape = now;
  history->Merge(step);
  TopTools_MapOfShape images;
  for (TopTools_MapOfShape::Iterator it(kept); it.More(); it.Next()) {
    const TopTools_ListOfShape& modified = step->Modified(it.Value());
    if (modified.IsEmpty()) images.Add(it.Value());
    for (const TopoDS_Shape& image : modified) images.Add(image);
  }
  kept = images;
}

Simplified simplified(const OperationOutcome& operation, std::span<const OdModelerBodyPtr> inputs,
                      const PartOfBase* part, FacesToJoin faces, bool unifyEdges) {
  if (faces == FacesToJoin::kNone) return {operation.shape, operation.history, {}, true};
  Borders borders(operation.history);
  const Body& base = asOcct(*inputs.front());
  if (!base.isLeftApart()) {
    const Topology& all = base.topology();
    borders.keepOfBase(all, part != nullptr ? part->edges : numbersTo(all.facesOfEdge.size()),
                       part != nullptr ? part->vertices : numbersTo(all.edgesOfVertex.size()));
  }
  for (const OdModelerBodyPtr& tool : inputs.subspan(1)) {
    borders.keepOfTool(asOcct(*tool).topology());
  }
  if (part != nullptr) borders.keepAll(part->kept);
  const bool onlyPlanes = faces == FacesToJoin::kPlanes;
  if (onlyPlanes) borders.keepOfCurves(operation.shape);
  Simplified outcome{operation.shape, new BRepTools_History, borders.kept(), onlyPlanes};
  outcome.history->Merge(operation.history);
  if (!onlyPlanes) joinCurved(outcome);
  unify(outcome, unifyEdges);
  return outcome;
}

}  // namespace od_occt
