// Faces of a body and of tools, divided where they meet, and the sides of the pieces.
//
// The modeller divides the faces near the tools and the faces of the tools where they meet. Whether
// a piece lies inside the other body is then a property of whole connected groups of pieces: a
// piece has its side as far as its own body's faces go on, until they meet the other body. So
// pieces of one body that share an edge where the other body has none are one group, and one edge
// at which the group meets the other body decides for it: the two faces of the other body there
// enclose its material (occt_side_at_edge.h). A group of the base that contains an edge of a face
// that no tool can reach lies outside of all tools.
//
// Every edge that decides must agree with the others. A group that nothing decides, as a tool in
// the middle of the material, edges with more than two faces, surfaces that touch without crossing:
// all these decline, and the operation looks at the whole bodies. So a side is never guessed.
//
// The cost is that of dividing the faces near the tools; the groups take one walk over the uses of
// the pieces' edges.
#include "platform/modeler_occt/occt_local_split.h"

#include <BOPAlgo_Builder.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Geom_Surface.hxx>
#include <ShapeAnalysis_Surface.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <algorithm>
#include <array>
#include <numeric>
#include <optional>

namespace od_occt {
namespace {

template <class Faces>
TopoDS_Compound together(const Faces& faces) {
  TopoDS_Compound whole;
  BRep_Builder builder;
  builder.MakeCompound(whole);
  for (const auto& face : faces) builder.Add(whole, face);
  return whole;
}

/// Divides the faces, and finds the pieces.
class Division {
 public:
  Division(const Topology& base, LocalSplit& split) : m_base(base), m_split(split) {
    m_builder.SetRunParallel(Standard_False);
    m_builder.SetNonDestructive(Standard_True);
    m_builder.SetToFillHistory(Standard_True);
  }

  OdStatus run() {
    std::vector<TopoDS_Face> near;
    for (const ReachedFace& face : m_split.region.faces) near.push_back(face.near);
    m_builder.AddArgument(together(near));
    m_builder.AddArgument(together(m_split.region.toolFaces));
    m_builder.Perform();
    if (m_builder.HasErrors()) return declined(L"the faces near the tool cannot be divided");
    m_split.history = m_builder.History();
    if (!bordersStay()) return declined(L"the tool reaches the edge of a face beyond its box");
    for (const TopoDS_Face& face : near) addPieces(face, /*ofTool=*/false);
    for (const TopoDS_Face& face : m_split.region.toolFaces) {
      if (!addPiecesOfTool(face)) return declined(L"faces coincide in a way that is not clear");
    }
    return {};
  }

 private:
  // Edges of faces that are not near stay the very same.
  [[nodiscard]] bool bordersStay() const {
    return std::ranges::all_of(m_split.region.edges, [this](OdUInt32 edge) {
      return !m_split.region.isShared(m_base, edge) ||
             m_split.history->Modified(m_base.edges(static_cast<int>(edge))).IsEmpty();
    });
  }

  template <class Visit>
  void visitParts(const TopoDS_Face& face, const Visit& visit) {
    const TopTools_ListOfShape* images = m_builder.Images().Seek(face);
    if (images == nullptr) return visit(face);
    for (const TopoDS_Shape& image : *images) visit(TopoDS::Face(image));
  }

  // Parts lie on the surface of their face and are oriented as it is.
  void addPieces(const TopoDS_Face& face, bool ofTool) {
    visitParts(face, [&](const TopoDS_Face& part) {
      const TopoDS_Face piece = TopoDS::Face(part.Oriented(face.Orientation()));
      m_split.pieces.push_back({piece, ofTool, false, false, Side::kUnknown});
      if (!ofTool) m_numberOf.Add(piece);
    });
  }

  bool addPiecesOfTool(const TopoDS_Face& face) {
    bool isClear = true;
    visitParts(face, [&](const TopoDS_Face& part) {
      const TopoDS_Shape* same = m_builder.ShapesSD().Seek(part);
      const TopoDS_Shape& kept = same == nullptr ? part : *same;
      const int number = m_numberOf.FindIndex(kept);
      if (number != 0) {
        isClear =
            isClear && addCoincident(face, m_split.pieces[static_cast<std::size_t>(number - 1)]);
      } else if (same != nullptr && !same->IsSame(part)) {
        isClear = false;
      } else {
        const TopoDS_Face piece = TopoDS::Face(part.Oriented(face.Orientation()));
        m_split.pieces.push_back({piece, true, false, false, Side::kUnknown});
      }
    });
    return isClear;
  }

  // Two pieces that coincide are kept once: the piece of the base takes the place of the tool's.
  bool addCoincident(const TopoDS_Face& toolFace, FacePiece& ofBase) {
    const std::optional<bool> alike = areAlike(ofBase.face, toolFace);
    if (!alike || ofBase.coincides) return false;
    ofBase.coincides = true;
    ofBase.facesAlike = *alike;
    FacePiece ofTool = ofBase;
    ofTool.ofTool = true;
    if (!*alike) ofTool.face.Reverse();
    m_split.pieces.push_back(ofTool);
    return true;
  }

  // Whether the normals of two faces that lie in each other point the same way.
  static std::optional<bool> areAlike(const TopoDS_Face& piece, const TopoDS_Face& face) {
    const Handle(ShapeAnalysis_Surface) other = new ShapeAnalysis_Surface(BRep_Tool::Surface(face));
    for (TopExp_Explorer it(piece, TopAbs_EDGE); it.More(); it.Next()) {
      const TopoDS_Edge& edge = TopoDS::Edge(it.Current());
      const std::optional<gp_Vec> normal = normalAt({edge, piece});
      const std::optional<gp_Pnt> point = pointAt(edge);
      if (!normal || !point) continue;
      const gp_Pnt2d at = other->ValueOfUV(*point, BRep_Tool::Tolerance(edge));
      gp_Pnt unused;
      gp_Vec alongU;
      gp_Vec alongV;
      other->Surface()->D1(at.X(), at.Y(), unused, alongU, alongV);
      gp_Vec theirs = alongU.Crossed(alongV);
      if (theirs.Magnitude() <= gp::Resolution()) continue;
      if (face.Orientation() == TopAbs_REVERSED) theirs.Reverse();
      const double cosine = theirs.Normalized().Dot(*normal);
      if (std::abs(cosine) > 0.5) return cosine > 0.0;
    }
    return std::nullopt;
  }

  const Topology& m_base;
  LocalSplit& m_split;
  BOPAlgo_Builder m_builder;
  TopTools_IndexedMapOfShape m_numberOf;  // of the base's pieces
};

/// Finds the sides of the pieces of a split.
class Sides {
 public:
  Sides(const Topology& base, LocalSplit& split) : m_base(base), m_split(split) {
    m_root.resize(split.pieces.size());
    std::iota(m_root.begin(), m_root.end(), std::size_t{0});
    m_sideOf.resize(split.pieces.size(), Side::kUnknown);
  }

  OdStatus find() {
    if (!collectUses()) return declined(L"a section ends inside a face");
    for (const Uses& uses : m_uses) {
      if (uses.of[0].empty() || uses.of[1].empty()) connect(uses);
    }
    for (std::size_t i = 0; i < m_uses.size(); ++i) {
      const int edge = static_cast<int>(i) + 1;
      const bool isShared = isBorder(m_edges(edge));
      if (isShared && !m_uses[i].of[1].empty()) {
        return declined(L"the tool reaches the edge of a face beyond its box");
      }
      if (isShared) note(m_uses[i].of[0].front().piece, Side::kOutside);
      if (!m_uses[i].of[0].empty() && !m_uses[i].of[1].empty()) judge(m_uses[i]);
    }
    if (m_disagree) return declined(L"the sides of a face do not agree");
    for (std::size_t i = 0; i < m_split.pieces.size(); ++i) {
      FacePiece& piece = m_split.pieces[i];
      if (piece.coincides) continue;
      piece.side = m_sideOf[rootOf(i)];
      if (piece.side == Side::kUnknown) {
        return declined(piece.ofTool ? L"a tool lies in the material or beside it"
                                     : L"a part of the body meets the tool nowhere");
      }
    }
    return {};
  }

 private:
  struct Use {
    std::size_t piece;
    TopoDS_Edge edge;
  };
  struct Uses {
    std::array<std::vector<Use>, 2> of;  // of the base, of the tools
  };

  // False for an edge that has a face on neither or on both of its sides as one use.
  bool collectUses() {
    for (std::size_t i = 0; i < m_split.pieces.size(); ++i) {
      const FacePiece& piece = m_split.pieces[i];
      for (TopExp_Explorer it(piece.face, TopAbs_EDGE); it.More(); it.Next()) {
        const TopoDS_Edge& edge = TopoDS::Edge(it.Current());
        if (BRep_Tool::Degenerated(edge)) continue;
        if (edge.Orientation() != TopAbs_FORWARD && edge.Orientation() != TopAbs_REVERSED) {
          return false;
        }
        const auto index = static_cast<std::size_t>(m_edges.Add(edge));
        if (m_uses.size() < index) m_uses.resize(index);
        m_uses[index - 1].of[piece.ofTool ? 1 : 0].push_back({i, edge});
      }
    }
    return true;
  }

  [[nodiscard]] bool isBorder(const TopoDS_Shape& edge) const {
    const int index = m_base.edges.FindIndex(edge);
    return index != 0 && m_split.region.isShared(m_base, static_cast<OdUInt32>(index));
  }

  std::size_t rootOf(std::size_t number) {
    while (m_root[number] != number) number = m_root[number] = m_root[m_root[number]];
    return number;
  }

  // A piece that coincides is at the border of the other body all over.
  void connect(const Uses& uses) {
    const std::vector<Use>& own = uses.of[0].empty() ? uses.of[1] : uses.of[0];
    for (const Use& use : own) {
      if (m_split.pieces[use.piece].coincides || m_split.pieces[own[0].piece].coincides) continue;
      m_root[rootOf(use.piece)] = rootOf(own[0].piece);
    }
  }

  void note(std::size_t piece, Side side) {
    if (side == Side::kUnknown || m_split.pieces[piece].coincides) return;
    Side& known = m_sideOf[rootOf(piece)];
    if (known != Side::kUnknown && known != side) m_disagree = true;
    known = side;
  }

  [[nodiscard]] EdgeUse useOf(const Use& use) const {
    return {use.edge, m_split.pieces[use.piece].face};
  }

  void judge(const Uses& uses) {
    for (const std::size_t own : {0U, 1U}) {
      const std::vector<Use>& others = uses.of[1 - own];
      if (others.size() != 2 || others[0].edge.Orientation() == others[1].edge.Orientation()) {
        continue;
      }
      for (const Use& use : uses.of[own]) {
        if (m_split.pieces[use.piece].coincides) continue;
        note(use.piece, sideAt(useOf(use), useOf(others[0]), useOf(others[1])));
      }
    }
  }

  const Topology& m_base;
  LocalSplit& m_split;
  TopTools_IndexedMapOfShape m_edges;
  std::vector<Uses> m_uses;         // by edge
  std::vector<std::size_t> m_root;  // of the group of a piece
  std::vector<Side> m_sideOf;       // by root
  bool m_disagree = false;
};

}  // namespace

OdStatus splitLocally(std::span<const OdModelerBodyPtr> inputs, const Options& options,
                      std::shared_ptr<const LocalSplit>& result) {
  const auto split = std::make_shared<LocalSplit>();
  const Topology& base = asOcct(*inputs.front()).topology();
  beginLocalStep(options, "region");
  if (OdStatus status = findRegion(inputs, split->region); !status.ok()) return status;
  beginLocalStep(options, "division");
  if (OdStatus status = Division(base, *split).run(); !status.ok()) return status;
  beginLocalStep(options, "sides");
  if (OdStatus status = Sides(base, *split).find(); !status.ok()) return status;
  result = split;
  return {};
}

}  // namespace od_occt
