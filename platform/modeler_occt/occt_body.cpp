// A body of the runtime that holds an Open CASCADE shape.
#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler/reach.h"

#include <BRep_Tool.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Iterator.hxx>
#include <utility>

#include "platform/base/error.h"
#include "platform/base/sort_unique.h"
#include "platform/modeler/body_envelope.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_convert.h"
#include "platform/modeler_occt/occt_face_boxes.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_recognise.h"

namespace od_occt {
namespace {

OdUInt32 extent(const TopTools_IndexedMapOfShape& map) {
  return static_cast<OdUInt32>(map.Extent());
}

// For each part of type `of`, the indices of the parts of type `in` below it, rising, each once;
// and the other way round.
void collectBounds(const TopTools_IndexedMapOfShape& wholes,
                   const TopTools_IndexedMapOfShape& parts, TopAbs_ShapeEnum partType,
                   std::vector<std::vector<OdUInt32>>* partsOfWhole,
                   std::vector<std::vector<OdUInt32>>& wholesOfPart) {
  wholesOfPart.resize(extent(parts));
  if (partsOfWhole != nullptr) partsOfWhole->resize(extent(wholes));
  for (OdUInt32 whole = 1; whole <= extent(wholes); ++whole) {
    std::vector<OdUInt32> found;
    TopExp_Explorer it(wholes(static_cast<int>(whole)), partType);
    for (; it.More(); it.Next()) {
      found.push_back(static_cast<OdUInt32>(parts.FindIndex(it.Current())));
    }
    odSortUnique(found);
    for (const OdUInt32 part : found) wholesOfPart[part - 1].push_back(whole);
    if (partsOfWhole != nullptr) (*partsOfWhole)[whole - 1] = std::move(found);
  }
}

template <class Item, class Make>
const Item& cached(std::vector<std::unique_ptr<Item>>& items, OdUInt32 index, OdUInt32 count,
                   const Make& make) {
  if (index < 1 || index > count) throw OdError_InvalidIndex(index, count);
  if (items.empty()) items.resize(count);
  std::unique_ptr<Item>& item = items[index - 1];
  if (!item) item = std::make_unique<Item>(make());
  return *item;
}

// The content of a compound with a single content, else the shape itself.
TopoDS_Shape unwrapped(TopoDS_Shape shape) {
  while (!shape.IsNull() && shape.ShapeType() == TopAbs_COMPOUND) {
    TopoDS_Iterator it(shape);
    if (!it.More()) return {};
    const TopoDS_Shape content = it.Value();
    it.Next();
    if (it.More()) break;
    shape = content;
  }
  return shape;
}

bool has(const TopoDS_Shape& shape, TopAbs_ShapeEnum type, TopAbs_ShapeEnum outside) {
  return TopExp_Explorer(shape, type, outside).More();
}

}  // namespace

Topology::Topology(const TopoDS_Shape& shape) {
  TopExp::MapShapes(shape, TopAbs_FACE, faces);
  TopExp::MapShapes(shape, TopAbs_EDGE, edges);
  TopExp::MapShapes(shape, TopAbs_VERTEX, vertices);
  collectBounds(faces, edges, TopAbs_EDGE, &edgesOfFace, facesOfEdge);
  collectBounds(edges, vertices, TopAbs_VERTEX, nullptr, edgesOfVertex);
}

const TopTools_IndexedMapOfShape& Topology::map(OdModelerSubentType type) const {
  switch (type) {
    case OdModelerSubentType::kFace:
      return faces;
    case OdModelerSubentType::kEdge:
      return edges;
    default:
      return vertices;
  }
}

namespace {

void normaliseNew(const TopoDS_Shape& shape, const Topology* known, TopTools_MapOfShape& seen) {
  if (known != nullptr && shape.ShapeType() == TopAbs_FACE && known->faces.Contains(shape)) return;
  if (!seen.Add(shape)) return;
  const Handle(TopoDS_TShape)& part = shape.TShape();
  // Bodies share parts: write only where something changes.
  if (part->Free()) part->Free(false);
  if (part->Modified()) part->Modified(false);
  if (part->Checked()) part->Checked(false);
  for (TopoDS_Iterator it(shape); it.More(); it.Next()) normaliseNew(it.Value(), known, seen);
}

}  // namespace

void normaliseFlags(const TopoDS_Shape& shape, const Topology* known) {
  TopTools_MapOfShape seen;
  normaliseNew(shape, known, seen);
}

Body::Body(const TopoDS_Shape& shape, OdModelerBodyAttributes attributes, BodyOrigin origin)
    : m_shape(shape),
      m_attributes(std::move(attributes)),
      m_leftApart(origin.leftApart),
      m_bytes(std::move(origin.bytes)) {
  if (m_attributes.faceColors.empty() && m_attributes.faceNames.empty()) return;
  const OdUInt32 count = numFaces();
  const auto unknown = [count](const auto& row) { return row.first < 1 || row.first > count; };
  std::erase_if(m_attributes.faceColors, unknown);
  std::erase_if(m_attributes.faceNames, unknown);
}

const Topology& Body::topology() const {
  if (const Topology* ready = m_topologyReady.load(std::memory_order_acquire)) return *ready;
  const std::scoped_lock lock(m_mutex);
  if (!m_topology) m_topology = std::make_shared<const Topology>(m_shape);
  m_topologyReady.store(m_topology.get(), std::memory_order_release);
  return *m_topology;
}

OdModelerBodyKind Body::kind() const {
  const bool solid = has(m_shape, TopAbs_SOLID, TopAbs_SHAPE);
  const bool sheet = has(m_shape, TopAbs_FACE, TopAbs_SOLID);
  const bool wire =
      has(m_shape, TopAbs_EDGE, TopAbs_FACE) || has(m_shape, TopAbs_VERTEX, TopAbs_EDGE);
  if (solid + sheet + wire > 1) return OdModelerBodyKind::kMixed;
  if (solid) return OdModelerBodyKind::kSolid;
  return sheet ? OdModelerBodyKind::kSheet : OdModelerBodyKind::kWire;
}

OdUInt32 Body::numSolids() const {
  OdUInt32 count = 0;
  for (TopExp_Explorer it(m_shape, TopAbs_SOLID); it.More(); it.Next()) ++count;
  return count;
}

OdUInt32 Body::numFaces() const { return extent(topology().faces); }
OdUInt32 Body::numEdges() const { return extent(topology().edges); }
OdUInt32 Body::numVertices() const { return extent(topology().vertices); }

const OdModelerFace& Body::face(OdUInt32 index) const {
  const Topology& topo = topology();
  const std::scoped_lock lock(m_mutex);
  return cached(m_faces, index, extent(topo.faces), [&] { return describeFace(topo, index); });
}

const OdModelerEdge& Body::edge(OdUInt32 index) const {
  const Topology& topo = topology();
  const std::scoped_lock lock(m_mutex);
  return cached(m_edges, index, extent(topo.edges), [&] { return describeEdge(topo, index); });
}

const OdModelerVertex& Body::vertex(OdUInt32 index) const {
  const Topology& topo = topology();
  const std::scoped_lock lock(m_mutex);
  return cached(m_vertices, index, extent(topo.vertices), [&] {
    const TopoDS_Vertex& v = TopoDS::Vertex(topo.vertices(static_cast<int>(index)));
    return OdModelerVertex{toPoint(BRep_Tool::Pnt(v)), topo.edgesOfVertex[index - 1]};
  });
}

namespace {

const std::vector<OdUInt32>& rowAt(const std::vector<std::vector<OdUInt32>>& rows, OdUInt32 index) {
  if (index < 1 || index > rows.size()) {
    throw OdError_InvalidIndex(index, static_cast<OdUInt32>(rows.size()));
  }
  return rows[index - 1];
}

}  // namespace

std::span<const OdUInt32> Body::edgesOfFace(OdUInt32 face) const {
  return rowAt(topology().edgesOfFace, face);
}

std::span<const OdUInt32> Body::facesOfEdge(OdUInt32 edge) const {
  return rowAt(topology().facesOfEdge, edge);
}

OdModelerSurfaceKind Body::surfaceKind(OdUInt32 face) const {
  const TopoDS_Shape& shape = part({OdModelerSubentType::kFace, face});
  const OdModelerSurfaceKind kind = surfaceKindOf(shape);
  if (kind != OdModelerSurfaceKind::kOther) return kind;
  const std::scoped_lock lock(m_mutex);
  const auto [row, isNew] = m_surfaceKinds.try_emplace(face, kind);
  if (isNew) {
    const auto known = recogniseSurface(TopoDS::Face(shape));
    if (known) row->second = known->kind;
  }
  return row->second;
}

OdModelerCurveKind Body::curveKind(OdUInt32 edge) const {
  const TopoDS_Shape& shape = part({OdModelerSubentType::kEdge, edge});
  const OdModelerCurveKind kind = curveKindOf(shape);
  if (kind != OdModelerCurveKind::kOther || BRep_Tool::Degenerated(TopoDS::Edge(shape)))
    return kind;
  const std::scoped_lock lock(m_mutex);
  const auto [row, isNew] = m_curveKinds.try_emplace(edge, kind);
  if (isNew) {
    const auto known = recogniseCurve(TopoDS::Edge(shape));
    if (known) row->second = known->kind;
  }
  return row->second;
}

OdUInt64 Body::fingerprint() const {
  const Topology& topo = topology();
  const std::scoped_lock lock(m_mutex);
  if (!m_fingerprint) m_fingerprint = computeFingerprint(topo);
  return *m_fingerprint;
}

OdGeExtents3d Body::extents() const {
  const std::scoped_lock lock(m_mutex);
  if (!m_extents) m_extents = measureExtents(m_shape);
  return *m_extents;
}

const std::vector<Bnd_Box>& Body::faceBoxes() const {
  const Topology& topo = topology();
  const std::scoped_lock lock(m_mutex);
  if (m_faceBoxesReady) return m_faceBoxes;
  m_faceBoxes.resize(extent(topo.faces));
  for (OdUInt32 i = 0; i < extent(topo.faces); ++i) {
    Bnd_Box& box = m_faceBoxes[i];
    if (box.IsVoid()) box = boxOfFace(TopoDS::Face(topo.faces(static_cast<int>(i) + 1)));
  }
  m_faceBoxesReady = true;
  return m_faceBoxes;
}

void Body::adoptFrom(const Body& other) {
  const TopTools_IndexedMapOfShape& theirs = other.topology().faces;
  const TopTools_IndexedMapOfShape& ours = topology().faces;
  const std::scoped_lock lock(other.m_mutex);
  if (other.m_faceBoxesReady) m_faceBoxes.resize(extent(ours));
  if (other.m_measures && !other.m_measures->faces.empty()) {
    m_measures = BodyMeasures{other.m_measures->origin, {}};
    m_measures->faces.resize(extent(ours));
  }
  for (int i = 1; i <= ours.Extent(); ++i) {
    const int known = theirs.FindIndex(ours(i));
    if (known == 0) continue;
    const auto to = static_cast<std::size_t>(i - 1);
    const auto from = static_cast<std::size_t>(known - 1);
    if (other.m_faceBoxesReady) m_faceBoxes[to] = other.m_faceBoxes[from];
    if (m_measures && theirs(known).IsEqual(ours(i))) {
      m_measures->faces[to] = other.m_measures->faces[from];
    }
  }
}

namespace {

// Near the body, so that differences of volumes lose no digits.
gp_Pnt someOrigin(const Topology& topology) {
  if (topology.vertices.IsEmpty()) return {};
  return BRep_Tool::Pnt(TopoDS::Vertex(topology.vertices(1)));
}

}  // namespace

OdModelerMassProperties Body::massProperties() const {
  const Topology& topo = topology();
  const std::scoped_lock lock(m_mutex);
  if (m_mass) return *m_mass;
  if (!m_measures) m_measures.emplace().origin = someOrigin(topo);
  m_mass = massByFaces(m_shape, topo, *m_measures);
  if (!m_mass) m_mass = measureMass(m_shape);
  return *m_mass;
}

OdStatus Body::check() const {
  return guarded("check", [this]() -> OdStatus {
    if (OdStatus status = odCheckReach(*this); !status.ok()) {
      status.code = eModelerInvalidBody;
      return status;
    }
    return checkShape(m_shape);
  });
}

OdStatus Body::subentBody(OdModelerSubent subent, OdModelerBodyPtr& result) const {
  if (!hasSubent(subent)) {
    OdString text;
    text.format(L"subentity copy: the body has no subentity of type %d with index %u of %u",
                static_cast<int>(subent.type), subent.index, numSubents(subent.type));
    return {eInvalidInput, text};
  }
  OdModelerBodyAttributes attributes;
  attributes.color = m_attributes.color;
  if (subent.type == OdModelerSubentType::kFace) {
    if (const auto it = m_attributes.faceColors.find(subent.index);
        it != m_attributes.faceColors.end()) {
      attributes.color = it->second;
    }
    if (const auto it = m_attributes.faceNames.find(subent.index);
        it != m_attributes.faceNames.end()) {
      attributes.name = it->second;
    }
  }
  result = odBodyFromOcct(topology().map(subent.type)(static_cast<int>(subent.index)),
                          std::move(attributes));
  return {};
}

std::vector<OdModelerBodyPtr> Body::solids() const {
  std::vector<OdModelerBodyPtr> result;
  const Topology& topo = topology();
  for (TopExp_Explorer it(m_shape, TopAbs_SOLID); it.More(); it.Next()) {
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(it.Current(), TopAbs_FACE, faces);
    OdModelerBodyAttributes attributes{m_attributes.name, m_attributes.color, {}, {}};
    for (OdUInt32 i = 1; i <= extent(faces); ++i) {
      const auto old = static_cast<OdUInt32>(topo.faces.FindIndex(faces(static_cast<int>(i))));
      if (const auto c = m_attributes.faceColors.find(old); c != m_attributes.faceColors.end()) {
        attributes.faceColors.emplace(i, c->second);
      }
      if (const auto n = m_attributes.faceNames.find(old); n != m_attributes.faceNames.end()) {
        attributes.faceNames.emplace(i, n->second);
      }
    }
    result.push_back(odBodyFromOcct(it.Current(), std::move(attributes)));
  }
  return result;
}

OdModelerBodyPtr Body::withAttributes(OdModelerBodyAttributes attributes) const {
  auto result = std::make_shared<Body>(m_shape, std::move(attributes), BodyOrigin{m_leftApart, {}});
  const std::scoped_lock lock(m_mutex);
  result->m_topology = m_topology;
  result->m_topologyReady.store(m_topology.get(), std::memory_order_release);
  result->m_fingerprint = m_fingerprint;
  result->m_faceBoxes = m_faceBoxes;
  result->m_faceBoxesReady = m_faceBoxesReady;
  result->m_measures = m_measures;
  OdModelerEnvelope stored;
  // The geometry that was written once need not be written again.
  if (!m_bytes.isEmpty() && odReadEnvelope({m_bytes.asArrayPtr(), m_bytes.size()}, stored).ok()) {
    stored.attributes = result->m_attributes;
    odWriteEnvelope(stored, result->m_bytes);
  }
  return result;
}

std::size_t Body::approximateSize() const {
  // An estimate: a face with its share of edges, vertices and geometry.
  constexpr std::size_t kBytesPerFace = 4096;
  std::size_t faces = 1;
  for (TopExp_Explorer it(m_shape, TopAbs_FACE); it.More(); it.Next()) ++faces;
  return sizeof(Body) + faces * kBytesPerFace;
}

std::shared_ptr<const Body> bodyOf(const TopoDS_Shape& shape, OdModelerBodyAttributes attributes,
                                   BodyOrigin origin, const Body* known) {
  const TopoDS_Shape content = unwrapped(shape);
  if (content.IsNull()) return nullptr;
  normaliseFlags(content, known != nullptr ? &known->topology() : nullptr);
  const auto body = std::make_shared<Body>(content, std::move(attributes), std::move(origin));
  if (known != nullptr) body->adoptFrom(*known);
  return body;
}

const Body& asOcct(const OdModelerBody& body) {
  const auto* own = dynamic_cast<const Body*>(&body);
  if (own == nullptr) {
    throw OdError(eNotThatKindOfClass, OdString(L"the body belongs to another modeller"));
  }
  return *own;
}

}  // namespace od_occt

const TopoDS_Shape& odOcctShape(const OdModelerBody& body) { return od_occt::asOcct(body).shape(); }

OdModelerBodyPtr odBodyFromOcct(const TopoDS_Shape& shape, OdModelerBodyAttributes attributes) {
  return od_occt::bodyOf(shape, std::move(attributes));
}
