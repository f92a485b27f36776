// The hash of a boundary.
#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRep_Tool.hxx>
#include <TopoDS.hxx>
#include <bit>
#include <cmath>

#include "platform/modeler_occt/occt_body.h"

namespace od_occt {
namespace {

// Coordinates count in steps of 2^-20 drawing units, rounded. Directions may change their last bit
// when they are stored and read; the hash must not change by that. Decimal and inch sizes do not
// lie on the border between two steps.
constexpr double kStepsPerUnit = 1048576.0;

class Mixer {
 public:
  void add(OdUInt64 word) {
    m_state = std::rotl(m_state ^ (word * 0x9E3779B97F4A7C15ULL), 29) * 0xBF58476D1CE4E5B9ULL;
  }
  void add(const gp_Pnt& point) {
    for (int i = 1; i <= 3; ++i) {
      add(std::bit_cast<OdUInt64>(std::round(point.Coord(i) * kStepsPerUnit) + 0.0));
    }
  }
  [[nodiscard]] OdUInt64 result() const {
    OdUInt64 word = m_state;
    word = (word ^ (word >> 31)) * 0x94D049BB133111EBULL;
    word ^= word >> 30;
    return word == 0 ? 1 : word;
  }

 private:
  OdUInt64 m_state = 0x243F6A8885A308D3ULL;
};

void addEdge(const TopoDS_Edge& edge, Mixer& mixer) {
  if (BRep_Tool::Degenerated(edge)) return mixer.add(OdUInt64{255});
  const BRepAdaptor_Curve curve(edge);
  mixer.add(static_cast<OdUInt64>(curve.GetType()));
  // The vertices are hashed, and a line has nothing else.
  if (curve.GetType() == GeomAbs_Line) return;
  mixer.add(curve.Value((curve.FirstParameter() + curve.LastParameter()) / 2.0));
}

}  // namespace

OdUInt64 computeFingerprint(const Topology& topology) {
  Mixer mixer;
  for (const TopTools_IndexedMapOfShape* parts :
       {&topology.faces, &topology.edges, &topology.vertices}) {
    mixer.add(static_cast<OdUInt64>(parts->Extent()));
  }
  for (int i = 1; i <= topology.faces.Extent(); ++i) {
    const BRepAdaptor_Surface surface(TopoDS::Face(topology.faces(i)), /*R=*/Standard_False);
    mixer.add(static_cast<OdUInt64>(surface.GetType()));
  }
  for (int i = 1; i <= topology.edges.Extent(); ++i) {
    addEdge(TopoDS::Edge(topology.edges(i)), mixer);
  }
  for (int i = 1; i <= topology.vertices.Extent(); ++i) {
    mixer.add(BRep_Tool::Pnt(TopoDS::Vertex(topology.vertices(i))));
  }
  return mixer.result();
}

}  // namespace od_occt
