// Taking faces off a body where they end in holes of its other faces.
//
// Where all edges of a loop have the faces that go on their other side, the loop is the rim of what
// goes. A face that loses a rim inside its outer boundary goes on over the place, on the surface
// that it has, so nothing need be computed. The check of the outcome refuses what falls apart, as
// an outer shell and a cavity that a hole had connected.
#include "platform/modeler_occt/occt_drop_loops.h"

#include <BRepTools.hxx>
#include <BRepTools_History.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Wire.hxx>
#include <algorithm>
#include <optional>

#include "platform/base/sort_unique.h"
#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_history.h"
#include "platform/modeler_occt/occt_operations.h"
#include "platform/modeler_occt/occt_put_faces.h"

namespace od_occt {
namespace {

class Rims {
 public:
  Rims(const Topology& topology, std::span<const OdUInt32> faces)
      : m_topology(topology), m_goes(static_cast<std::size_t>(topology.faces.Extent())) {
    for (const OdUInt32 face : faces) m_goes[face - 1] = true;
  }

  /// The faces that stay and have edges with those that go, rising.
  [[nodiscard]] std::vector<OdUInt32> neighbours() const {
    std::vector<OdUInt32> found;
    for (OdUInt32 face = 1; face <= m_goes.size(); ++face) {
      if (!m_goes[face - 1]) continue;
      for (const OdUInt32 edge : m_topology.edgesOfFace[face - 1]) {
        for (const OdUInt32 other : m_topology.facesOfEdge[edge - 1]) {
          if (!m_goes[other - 1]) found.push_back(other);
        }
      }
    }
    odSortUnique(found);
    return found;
  }

  /// The face without its rims. Empty where that is not a matter of dropping loops.
  [[nodiscard]] std::optional<TopoDS_Shape> without(const TopoDS_Face& face) const {
    const TopoDS_Shape outer = BRepTools::OuterWire(face);
    TopoDS_Shape rest = face.EmptyCopied();
    BRep_Builder builder;
    for (TopoDS_Iterator it(face); it.More(); it.Next()) {
      const Rim rim = rimOf(it.Value());
      if (rim == Rim::kPartly || (rim == Rim::kWholly && it.Value().IsSame(outer))) return {};
      if (rim == Rim::kNot) builder.Add(rest, it.Value());
    }
    return rest;
  }

 private:
  enum class Rim { kNot, kPartly, kWholly };

  [[nodiscard]] Rim rimOf(const TopoDS_Shape& loop) const {
    int goes = 0;
    int total = 0;
    for (TopoDS_Iterator it(loop); it.More(); it.Next(), ++total) {
      const int edge = m_topology.edges.FindIndex(it.Value());
      if (edge == 0) return Rim::kPartly;
      const std::vector<OdUInt32>& faces =
          m_topology.facesOfEdge[static_cast<std::size_t>(edge - 1)];
      if (std::ranges::any_of(faces, [this](OdUInt32 face) { return m_goes[face - 1]; })) ++goes;
    }
    if (goes == 0) return Rim::kNot;
    return goes == total ? Rim::kWholly : Rim::kPartly;
  }

  const Topology& m_topology;
  std::vector<bool> m_goes;  // by face index - 1
};

}  // namespace

OdStatus dropLoops(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                   OdModelerBodyPtr& result, OdModelerHistory* history) {
  const Body& own = asOcct(*body);
  const Topology& topology = own.topology();
  const Rims rims(topology, faces);
  FaceChanges changes;
  const Handle(BRepTools_History) fates = new BRepTools_History;
  const std::vector<OdUInt32> neighbours = rims.neighbours();
  if (neighbours.empty()) return declined(L"the faces have no neighbours");
  for (const OdUInt32 index : neighbours) {
    const TopoDS_Face& face = TopoDS::Face(topology.faces(static_cast<int>(index)));
    const std::optional<TopoDS_Shape> rest = rims.without(face);
    if (!rest) return declined(L"a neighbour of the faces must be extended");
    TopTools_ListOfShape instead;
    instead.Append(*rest);
    changes.of.Bind(face, instead);
    fates->AddModified(face, *rest);
  }
  for (const OdUInt32 index : faces) {
    const TopoDS_Shape& face = topology.faces(static_cast<int>(index));
    changes.of.Bind(face, TopTools_ListOfShape());
    fates->Remove(face);
  }
  const std::optional<TopoDS_Shape> whole = withChangedFaces(own.shape(), changes);
  if (!whole) return declined(L"the faces are of several shells");
  const std::shared_ptr<const Body> plain = bodyOf(*whole, {}, {own.isLeftApart(), {}}, &own);
  const TopTools_MapOfShape noEdges;  // none gets a new trace
  if (!isPlainlySound(*plain, own, &noEdges)) return declined(L"the outcome is not one plain body");
  OdModelerHistory outcome = collectHistory(*fates, {&body, 1}, *plain);
  outcome.effort.numFaces = static_cast<OdUInt32>(neighbours.size() + faces.size());
  result = plain->withAttributes(inheritAttributes({&body, 1}, outcome));
  if (history != nullptr) *history = std::move(outcome);
  return {};
}

}  // namespace od_occt
