// Booleans at the cost of the faces that they concern.
//
// The faces near the tools are divided (occt_local_split.h), and a boolean chooses among the
// pieces: of the base those outside of the tools, or inside for an intersection; of the tools those
// inside the base, turned over for a subtraction, or outside for a union; of pieces that coincide
// one or none, as the kind asks. What is chosen is joined (occt_simplify.h) and takes the place of
// the faces near the tools in their shell. Loops that were left out, because no tool reaches them,
// return to the face that has their place.
//
// Why it is right: everything that a boolean changes lies within the boxes of the tools, so a face
// that is not near is a face of the result. The new faces meet the others at edges that stayed the
// very same. Whatever breaks this, as a shell that falls apart into two, leaves edges without their
// two uses or faces without connection, and the check of the whole outcome (occt_check.h) declines.
//
// The cost is that of dividing and joining the faces near the tools, and a few visits of each part
// of the body, at a small part of a microsecond each.
#include "platform/modeler_occt/occt_local_boolean.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepTools_History.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <ElSLib.hxx>
#include <IntTools_FClass2d.hxx>
#include <Precision.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_DataMapOfShapeShape.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Vertex.hxx>
#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_history.h"
#include "platform/modeler_occt/occt_local_split.h"
#include "platform/modeler_occt/occt_put_faces.h"
#include "platform/modeler_occt/occt_simplify.h"

namespace od_occt {
namespace {

/// What a kind of boolean takes of the pieces.
struct Choice {
  OdModelerBooleanKind kind;
  Side ofBase;
  Side ofTool;
  bool turnsTool;
  bool alike;     ///< of pieces that coincide: takes those with both bodies on one side
  bool opposite;  ///< takes those with the bodies on either side
};

constexpr Choice kChoices[] = {
    {OdModelerBooleanKind::kUnite, Side::kOutside, Side::kOutside, false, true, false},
    {OdModelerBooleanKind::kIntersect, Side::kInside, Side::kInside, false, true, false},
    {OdModelerBooleanKind::kSubtract, Side::kOutside, Side::kInside, true, false, true},
};

const Choice& choiceOf(OdModelerBooleanKind kind) {
  return *std::ranges::find(kChoices, kind, &Choice::kind);
}

TopoDS_Shell newShell() {
  TopoDS_Shell shell;
  BRep_Builder().MakeShell(shell);
  return shell;
}

/// Which part of a face has a loop of the face inside its boundary.
class LoopPlaces {
 public:
  LoopPlaces(const TopoDS_Face& face, const TopTools_ListOfShape& parts)
      : m_face(face), m_parts(parts) {
    for (const TopoDS_Shape& part : parts) {
      m_fits = m_fits && hasSurfaceOf(TopoDS::Face(part), face);
      if (parts.Extent() == 1) return;
      m_places.push_back(
          std::make_unique<IntTools_FClass2d>(TopoDS::Face(part), Precision::Confusion()));
    }
  }

  /// Null where that is not exactly one part.
  [[nodiscard]] TopoDS_Shape hostOf(const TopoDS_Shape& loop) const {
    if (!m_fits || m_parts.IsEmpty()) return {};
    if (m_parts.Extent() == 1) return m_parts.First();
    const TopoDS_Iterator edge(loop);
    if (!edge.More()) return {};
    const TopoDS_Vertex vertex = TopExp::FirstVertex(TopoDS::Edge(edge.Value()));
    TopoDS_Shape found;
    auto place = m_places.begin();
    for (const TopoDS_Shape& part : m_parts) {
      const gp_Pnt2d at = parametersOf(vertex, TopoDS::Face(part));
      if ((*place++)->Perform(at) != TopAbs_IN) continue;
      if (!found.IsNull()) return {};
      found = part;
    }
    return found;
  }

 private:
  // The vertex is one of the whole face, not of the part.
  [[nodiscard]] gp_Pnt2d parametersOf(const TopoDS_Vertex& vertex, const TopoDS_Face& part) const {
    const BRepAdaptor_Surface surface(part, Standard_False);
    if (surface.GetType() != GeomAbs_Plane) return BRep_Tool::Parameters(vertex, m_face);
    double u = 0.0;
    double v = 0.0;
    ElSLib::Parameters(surface.Plane(), BRep_Tool::Pnt(vertex), u, v);
    return {u, v};
  }

  // Traces of edges belong to one surface; those on planes follow from the edges.
  static bool hasSurfaceOf(const TopoDS_Face& part, const TopoDS_Face& face) {
    TopLoc_Location a;
    TopLoc_Location b;
    const Handle(Geom_Surface) s = BRep_Tool::Surface(part, a);
    const Handle(Geom_Surface) t = BRep_Tool::Surface(face, b);
    const bool isPlane = BRepAdaptor_Surface(part, Standard_False).GetType() == GeomAbs_Plane;
    return isPlane || (s == t && a == b);
  }

  const TopoDS_Face& m_face;
  TopTools_ListOfShape m_parts;
  std::vector<std::unique_ptr<IntTools_FClass2d>> m_places;  // of several parts
  bool m_fits = true;
};

/// One boolean out of a split.
class LocalBoolean {
 public:
  LocalBoolean(const Choice& choice, std::span<const OdModelerBodyPtr> inputs,
               const LocalSplit& split)
      : m_choice(choice),
        m_inputs(inputs),
        m_base(asOcct(*inputs.front())),
        m_split(split),
        m_keepsBase(choice.ofBase == Side::kOutside) {}

  OdStatus run(const Options& options, bool wantsHistory, LocalResult& result) {
    beginLocalStep(options, "choice");
    if (OdStatus status = choose(); !status.ok()) return status;
    beginLocalStep(options, "joining");
    join();
    beginLocalStep(options, "loops");
    if (OdStatus status = restoreLoops(); !status.ok()) return status;
    beginLocalStep(options, "shells");
    TopoDS_Shape whole;
    if (OdStatus status = m_keepsBase ? putIntoBase(whole) : closePieces(whole); !status.ok()) {
      return status;
    }
    result.body = bodyOf(whole, {}, {}, &m_base);
    beginLocalStep(options, "check");
    if (!isPlainlySound(*result.body, m_base, &m_edges))
      return declined(L"the outcome is not one plain body");
    beginLocalStep(options, "history");
    if (wantsHistory) result.history = collectHistory(*fates(), m_inputs, *result.body);
    return {};
  }

 private:
  // ---- Choosing and joining

  [[nodiscard]] bool takes(const FacePiece& piece) const {
    if (piece.coincides) {
      return !piece.ofTool && (piece.facesAlike ? m_choice.alike : m_choice.opposite);
    }
    return piece.side == (piece.ofTool ? m_choice.ofTool : m_choice.ofBase);
  }

  OdStatus choose() {
    m_chosen = newShell();
    BRep_Builder builder;
    bool changes = false;
    bool leavesBase = false;
    for (const FacePiece& piece : m_split.pieces) {
      const bool isTaken = takes(piece);
      if (isTaken == piece.ofTool) changes = true;
      if (!isTaken) continue;
      if (!piece.ofTool) leavesBase = true;
      const bool turns = piece.ofTool && m_choice.turnsTool;
      builder.Add(m_chosen, turns ? piece.face.Reversed() : TopoDS_Shape(piece.face));
    }
    if (!changes) return declined(L"the tool changes nothing");
    return leavesBase ? OdStatus() : declined(L"the faces near the tool vanish");
  }

  // What other faces have as well must stay: edges with a single use, and their ends.
  PartOfBase partOfBase() {
    PartOfBase part{m_split.region.edges, m_split.region.vertices, {}};
    TopTools_IndexedDataMapOfShapeListOfShape facesOfEdge;
    TopExp::MapShapesAndAncestors(m_chosen, TopAbs_EDGE, TopAbs_FACE, facesOfEdge);
    for (int i = 1; i <= facesOfEdge.Extent(); ++i) {
      const TopoDS_Edge& edge = TopoDS::Edge(facesOfEdge.FindKey(i));
      m_edges.Add(edge);
      if (facesOfEdge(i).Extent() != 1) continue;
      if (BRep_Tool::Degenerated(edge)) continue;
      part.kept.Add(edge);
      part.kept.Add(TopExp::FirstVertex(edge));
      part.kept.Add(TopExp::LastVertex(edge));
    }
    return part;
  }

  void join() {
    const PartOfBase ofBase = partOfBase();
    m_joined = simplified({m_chosen, m_split.history}, m_inputs, &ofBase, FacesToJoin::kAll,
                          /*unifyEdges=*/true);
    for (TopExp_Explorer it(m_joined.shape, TopAbs_FACE); it.More(); it.Next()) {
      m_faces.Add(it.Current());
    }
  }

  // ---- Loops that no tool reaches

  /// The faces of the outcome that are parts of a face near the tools.
  [[nodiscard]] TopTools_ListOfShape outcomeOf(const TopoDS_Shape& near) const {
    TopTools_ListOfShape faces;
    if (m_faces.Contains(near)) {
      faces.Append(m_faces(m_faces.FindIndex(near)));
      return faces;
    }
    for (const TopoDS_Shape& image : m_joined.history->Modified(near)) {
      if (m_faces.Contains(image)) faces.Append(m_faces(m_faces.FindIndex(image)));
    }
    return faces;
  }

  OdStatus restoreLoops() {
    if (m_joined.leftApart) return declined(L"faces of one surface stay apart");
    if (!m_keepsBase) return {};
    for (const ReachedFace& face : m_split.region.faces) {
      if (face.far.IsEmpty()) continue;
      if (m_faces.Contains(face.near)) {
        m_final.Bind(face.near, face.whole);
        continue;
      }
      const LoopPlaces places(face.whole, outcomeOf(face.near));
      for (const TopoDS_Shape& loop : face.far) {
        const TopoDS_Shape host = places.hostOf(loop);
        if (host.IsNull()) return declined(L"the place of a loop is not clear");
        TopoDS_Shape* final = m_final.ChangeSeek(host);
        if (final == nullptr) final = m_final.Bound(host, copyOf(TopoDS::Face(host)));
        BRep_Builder().Add(*final, loop);
      }
    }
    return {};
  }

  static TopoDS_Shape copyOf(const TopoDS_Face& face) {
    TopoDS_Shape copy = face.EmptyCopied();
    BRep_Builder builder;
    for (TopoDS_Iterator it(face); it.More(); it.Next()) builder.Add(copy, it.Value());
    return copy;
  }

  [[nodiscard]] TopoDS_Shape finalOf(const TopoDS_Shape& face) const {
    const TopoDS_Shape* final = m_final.Seek(face);
    return final == nullptr ? face : final->Oriented(face.Orientation());
  }

  // ---- The outcome

  [[nodiscard]] TopTools_ListOfShape finalOutcomeOf(const TopoDS_Shape& near) const {
    TopTools_ListOfShape faces;
    for (const TopoDS_Shape& face : outcomeOf(near)) faces.Append(finalOf(face));
    return faces;
  }

  OdStatus putIntoBase(TopoDS_Shape& whole) const {
    FaceChanges changes;
    for (const ReachedFace& face : m_split.region.faces) {
      if (!m_faces.Contains(face.near)) changes.of.Bind(face.whole, finalOutcomeOf(face.near));
    }
    changes.added = facesOfTools();
    const std::optional<TopoDS_Shape> changed = withChangedFaces(m_base.shape(), changes);
    if (!changed) return declined(L"the tool concerns several shells");
    whole = *changed;
    return {};
  }

  [[nodiscard]] TopTools_ListOfShape facesOfTools() const {
    TopTools_ListOfShape faces;
    for (const TopoDS_Face& face : m_split.region.toolFaces) {
      for (const TopoDS_Shape& part : finalOutcomeOf(face)) faces.Append(part);
    }
    return faces;
  }

  // The pieces alone bound the outcome. Several shells are several solids when their boxes do not
  // meet, since then none lies within another.
  OdStatus closePieces(TopoDS_Shape& whole) {
    TopTools_MapOfShape taken;
    std::vector<TopoDS_Shape> faces;
    const auto takeAll = [&](const TopTools_ListOfShape& parts) {
      for (const TopoDS_Shape& part : parts) {
        if (taken.Add(part)) faces.push_back(part);
      }
    };
    for (const ReachedFace& face : m_split.region.faces) takeAll(outcomeOf(face.near));
    takeAll(facesOfTools());
    TopoDS_Compound all;
    BRep_Builder builder;
    builder.MakeCompound(all);
    std::vector<Bnd_Box> boxes;
    for (const TopTools_ListOfShape& part : connectedParts(faces)) {
      TopTools_ListOfShape shells;
      shells.Append(closedShellOf(part));
      builder.Add(all, solidOf(shells));
      Bnd_Box& box = boxes.emplace_back();
      for (const TopoDS_Shape& face : part) box.Add(boxOfFace(TopoDS::Face(face)));
    }
    if (!BoxSet(boxes).areApart()) return declined(L"the outcome has parts within each other");
    whole = all;
    return {};
  }

  static std::vector<TopTools_ListOfShape> connectedParts(const std::vector<TopoDS_Shape>& faces) {
    std::vector<std::size_t> root(faces.size());
    for (std::size_t i = 0; i < root.size(); ++i) root[i] = i;
    const auto rootOf = [&root](std::size_t i) {
      while (root[i] != i) i = root[i] = root[root[i]];
      return i;
    };
    TopTools_IndexedMapOfShape edges;
    std::vector<std::size_t> firstOf;
    for (std::size_t i = 0; i < faces.size(); ++i) {
      for (TopExp_Explorer it(faces[i], TopAbs_EDGE); it.More(); it.Next()) {
        const auto edge = static_cast<std::size_t>(edges.Add(it.Current()));
        if (firstOf.size() < edge) firstOf.push_back(i);
        const std::size_t other = rootOf(firstOf[edge - 1]);
        root[std::max(other, rootOf(i))] = std::min(other, rootOf(i));
      }
    }
    std::vector<TopTools_ListOfShape> parts(faces.size());
    for (std::size_t i = 0; i < faces.size(); ++i) parts[rootOf(i)].Append(faces[i]);
    std::erase_if(parts, [](const auto& part) { return part.IsEmpty(); });
    return parts;
  }

  // ---- History

  /// Of the parts near the tools, and of the tools; all else is as it was.
  [[nodiscard]] Handle(BRepTools_History) fates() const {
    const Handle(BRepTools_History) history = new BRepTools_History;
    const LocalRegion& region = m_split.region;
    const Topology& base = m_base.topology();
    for (const ReachedFace& face : region.faces) noteFate(face.near, face.whole, *history);
    for (const OdUInt32 edge : region.edges) noteFate(base.edges(static_cast<int>(edge)), *history);
    for (const OdUInt32 vertex : region.vertices) {
      noteFate(base.vertices(static_cast<int>(vertex)), *history);
    }
    for (const OdModelerBodyPtr& tool : m_inputs.subspan(1)) {
      const Topology& topology = asOcct(*tool).topology();
      for (const auto type :
           {OdModelerSubentType::kFace, OdModelerSubentType::kEdge, OdModelerSubentType::kVertex}) {
        const TopTools_IndexedMapOfShape& parts = topology.map(type);
        for (int i = 1; i <= parts.Extent(); ++i) noteFate(parts(i), *history);
      }
    }
    return history;
  }

  void noteFate(const TopoDS_Shape& part, BRepTools_History& history) const {
    noteFate(part, part, history);
  }
  void noteFate(const TopoDS_Shape& near, const TopoDS_Shape& old,
                BRepTools_History& history) const {
    for (const TopoDS_Shape& image : m_joined.history->Modified(near)) {
      const TopoDS_Shape final = finalOf(image);
      if (!final.IsSame(old)) history.AddModified(old, final);
    }
    for (const TopoDS_Shape& image : m_joined.history->Generated(near)) {
      history.AddGenerated(old, image);
    }
  }

  const Choice& m_choice;
  std::span<const OdModelerBodyPtr> m_inputs;
  const Body& m_base;
  const LocalSplit& m_split;
  bool m_keepsBase;  // the faces that are not near are in the outcome
  TopoDS_Shell m_chosen;
  TopTools_MapOfShape m_edges;  // of what was chosen
  Simplified m_joined;
  TopTools_IndexedMapOfShape m_faces;    // of the joined outcome
  TopTools_DataMapOfShapeShape m_final;  // of these faces: what they are with their loops
};

}  // namespace

OdStatus booleanLocally(OdModelerBooleanKind kind, std::span<const OdModelerBodyPtr> inputs,
                        const LocalSplit& split, const Options& options, bool wantsHistory,
                        LocalResult& result) {
  return LocalBoolean(choiceOf(kind), inputs, split).run(options, wantsHistory, result);
}

}  // namespace od_occt
