// Joins curved faces by building the joined face anew.
//
// Two curved faces belong together when they share an edge that must not stay and lie on one turned
// surface. This relation is closed under chains, so the groups to join are the classes of a
// union-find over the faces, with one union for each such edge. Each group becomes one face
// (occt_rebuild_face.h), which replaces it in the shape.
//
// Rounds. Replacing a group changes edges that neighbouring groups share: those must see the
// copies, and the ends of the new seam. So a round joins groups without common edges only, applies
// the changes, and leaves the rest to the next round, which starts from the new shape.
//
// Why it ends: a round that joins a group lowers the number of faces. A group that cannot be joined
// has its inner edges kept from then on, and is no group in a later round. A round that joins
// nothing is the last one. A round costs one walk over the curved faces and their edges.
#include "platform/modeler_occt/occt_join_curved.h"

#include <BRepTools_ReShape.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Geom_Plane.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Vertex.hxx>
#include <algorithm>
#include <numeric>
#include <vector>

#include "platform/modeler_occt/occt_rebuild_face.h"
#include "platform/modeler_occt/occt_same_surface.h"
#include "platform/modeler_occt/occt_simplify.h"

namespace od_occt {
namespace {

struct Use {
  std::size_t face;  // its number among the curved ones
  TopoDS_Edge edge;  // as it is oriented there
};

// Looks at the stored surface only. A plane inside a trimmed surface passes for a curved one, which
// haveOneTurnedSurface sorts out.
bool isPlane(const TopoDS_Face& face) {
  TopLoc_Location location;
  return BRep_Tool::Surface(face, location)->IsKind(STANDARD_TYPE(Geom_Plane));
}

/// The groups of curved faces of a shape that are to be one.
class Groups {
 public:
  Groups(const TopoDS_Shape& shape, const TopTools_MapOfShape& kept) {
    for (TopExp_Explorer it(shape, TopAbs_FACE); it.More(); it.Next()) {
      if (!isPlane(TopoDS::Face(it.Current()))) m_faces.Add(it.Current());
    }
    collectUses();
    m_root.resize(numFaces());
    std::iota(m_root.begin(), m_root.end(), std::size_t{0});
    m_isJoint.resize(m_uses.size());
    for (std::size_t edge = 0; edge < m_uses.size(); ++edge) {
      if (!isJoint(m_uses[edge], kept)) continue;
      m_isJoint[edge] = true;
      m_root[rootOf(m_uses[edge][0].face)] = rootOf(m_uses[edge][1].face);
    }
  }

  std::vector<FaceGroup> ofSeveral() {
    std::vector<FaceGroup> groups(numFaces());
    for (std::size_t i = 0; i < numFaces(); ++i) groups[rootOf(i)].faces.push_back(face(i));
    for (std::size_t edge = 0; edge < m_uses.size(); ++edge) addEdge(edge, groups);
    std::erase_if(groups, [](const FaceGroup& group) { return group.faces.size() < 2; });
    for (FaceGroup& group : groups) addAnchors(group);
    return groups;
  }

 private:
  [[nodiscard]] std::size_t numFaces() const { return static_cast<std::size_t>(m_faces.Extent()); }
  [[nodiscard]] const TopoDS_Face& face(std::size_t number) const {
    return TopoDS::Face(m_faces(static_cast<int>(number) + 1));
  }

  void collectUses() {
    TopTools_IndexedMapOfShape edges;
    for (std::size_t i = 0; i < numFaces(); ++i) {
      for (TopExp_Explorer it(face(i), TopAbs_EDGE); it.More(); it.Next()) {
        const auto edge = static_cast<std::size_t>(edges.Add(it.Current()));
        if (m_uses.size() < edge) m_uses.resize(edge);
        m_uses[edge - 1].push_back({i, TopoDS::Edge(it.Current())});
      }
    }
  }

  [[nodiscard]] bool isJoint(const std::vector<Use>& uses, const TopTools_MapOfShape& kept) const {
    if (uses.size() != 2 || uses[0].face == uses[1].face || kept.Contains(uses[0].edge) ||
        uses[0].edge.Orientation() == uses[1].edge.Orientation() ||
        BRep_Tool::Degenerated(uses[0].edge)) {
      return false;
    }
    return haveOneTurnedSurface(face(uses[0].face), face(uses[1].face));
  }

  std::size_t rootOf(std::size_t number) {
    while (m_root[number] != number) number = m_root[number] = m_root[m_root[number]];
    return number;
  }

  void addAnchors(FaceGroup& group) const {
    for (const EdgeOfFace& edge : group.boundary) {
      for (const TopoDS_Vertex& end :
           {TopExp::FirstVertex(edge.edge), TopExp::LastVertex(edge.edge)}) {
        if (m_seamEnds.Contains(end)) group.anchors.Add(end);
      }
    }
  }

  // A seam is an edge that its only face uses twice.
  void addEdge(std::size_t edge, std::vector<FaceGroup>& groups) {
    const std::vector<Use>& uses = m_uses[edge];
    const bool isSeam = uses.size() == 2 && uses[0].face == uses[1].face;
    if (isSeam) {
      m_seamEnds.Add(TopExp::FirstVertex(uses[0].edge));
      m_seamEnds.Add(TopExp::LastVertex(uses[0].edge));
    }
    for (const Use& use : uses) {
      FaceGroup& group = groups[rootOf(use.face)];
      const bool isInner = isSeam || m_isJoint[edge];
      (isInner ? group.inner : group.boundary).push_back({use.edge, face(use.face)});
      if (isInner) break;
    }
  }

  TopTools_IndexedMapOfShape m_faces;
  std::vector<std::vector<Use>> m_uses;  // by edge
  std::vector<bool> m_isJoint;           // by edge
  std::vector<std::size_t> m_root;       // of the group of a face, by face
  TopTools_MapOfShape m_seamEnds;        // filled by addEdge
};

bool touches(const FaceGroup& group, const TopTools_MapOfShape& edges) {
  return std::ranges::any_of(group.boundary,
                             [&](const EdgeOfFace& edge) { return edges.Contains(edge.edge); });
}

TopoDS_Shape together(const std::vector<TopoDS_Edge>& parts) {
  if (parts.size() == 1) return parts.front();
  TopoDS_Compound whole;
  BRep_Builder builder;
  builder.MakeCompound(whole);
  for (const TopoDS_Edge& part : parts) builder.Add(whole, part);
  return whole;
}

void replace(const FaceGroup& group, const RebuiltFace& rebuilt, BRepTools_ReShape& changes) {
  TopTools_ListOfShape faces;
  for (const TopoDS_Face& face : group.faces) faces.Append(face);
  changes.Merge(faces, rebuilt.face);
  for (const auto& [edge, parts] : rebuilt.boundary) {
    changes.Replace(edge.Oriented(TopAbs_FORWARD), together(parts));
  }
  for (const RebuiltSeam& seam : rebuilt.seams) {
    TopTools_ListOfShape former;
    for (const TopoDS_Shape& edge : seam.former) former.Append(edge.Oriented(TopAbs_FORWARD));
    changes.Merge(former, seam.edge);
  }
  for (const EdgeOfFace& inner : group.inner) {
    if (!changes.IsRecorded(inner.edge)) changes.Remove(inner.edge);
  }
}

void keepApart(const FaceGroup& group, Simplified& outcome) {
  outcome.leftApart = true;
  for (const EdgeOfFace& inner : group.inner) outcome.kept.Add(inner.edge);
}

bool joinOneRound(Simplified& outcome) {
  TopTools_MapOfShape touched;
  const Handle(BRepTools_ReShape) changes = new BRepTools_ReShape;
  bool isChanged = false;
  for (const FaceGroup& group : Groups(outcome.shape, outcome.kept).ofSeveral()) {
    if (touches(group, touched)) continue;
    RebuiltFace rebuilt;
    if (!rebuildFace(group, rebuilt)) {
      keepApart(group, outcome);
      continue;
    }
    replace(group, rebuilt, *changes);
    for (const EdgeOfFace& edge : group.boundary) touched.Add(edge.edge);
    isChanged = true;
  }
  if (!isChanged) return false;
  const TopoDS_Shape joined = changes->Apply(outcome.shape);  // completes the history
  outcome.advance(joined, changes->History());
  return true;
}

}  // namespace

void joinCurved(Simplified& outcome) {
  while (joinOneRound(outcome)) continue;
}

}  // namespace od_occt
