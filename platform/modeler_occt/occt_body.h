// A body of the runtime that holds an Open CASCADE shape.
#pragma once

#include <Bnd_Box.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS_Shape.hxx>
#include <atomic>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/modeler/body.h"
#include "platform/modeler_occt/occt_face_measures.h"

class GProp_GProps;

namespace od_occt {

/// The numbered subentities of a shape and which bounds which.
struct Topology {
  TopTools_IndexedMapOfShape faces;
  TopTools_IndexedMapOfShape edges;
  TopTools_IndexedMapOfShape vertices;
  std::vector<std::vector<OdUInt32>> facesOfEdge;    ///< by edge index - 1
  std::vector<std::vector<OdUInt32>> edgesOfFace;    ///< by face index - 1, degenerate edges too
  std::vector<std::vector<OdUInt32>> edgesOfVertex;  ///< by vertex index - 1

  explicit Topology(const TopoDS_Shape& shape);
  [[nodiscard]] const TopTools_IndexedMapOfShape& map(OdModelerSubentType type) const;
};

/// What a body knows of its making beside the shape.
struct BodyOrigin {
  /// A boolean had to leave faces of one surface side by side: the next one may join them. Not
  /// stored.
  bool leftApart = false;
  /// The bytes that the body was read from; empty for others.
  OdBinaryData bytes;
};

/// Holds the shape. Shape, attributes and origin are fixed when the body is made; all else is
/// computed when it is first asked for, under a mutex, and kept.
class Body final : public OdModelerBody {
 public:
  /// The shape is not null and its flags are normal; use bodyOf elsewhere.
  Body(const TopoDS_Shape& shape, OdModelerBodyAttributes attributes, BodyOrigin origin = {});

  const TopoDS_Shape& shape() const { return m_shape; }
  const Topology& topology() const;
  /// A box around each face, by index - 1: as wide as subentExtents, kept with the body.
  const std::vector<Bnd_Box>& faceBoxes() const;
  /// Takes over what is known of the faces of another body that this one has too. Before the body
  /// is shared.
  void adoptFrom(const Body& other);
  /// BodyOrigin::leftApart.
  [[nodiscard]] bool isLeftApart() const { return m_leftApart; }

  OdModelerBodyKind kind() const override;
  OdUInt32 numSolids() const override;
  OdUInt32 numFaces() const override;
  OdUInt32 numEdges() const override;
  OdUInt32 numVertices() const override;
  const OdModelerFace& face(OdUInt32 index) const override;
  const OdModelerEdge& edge(OdUInt32 index) const override;
  const OdModelerVertex& vertex(OdUInt32 index) const override;
  std::span<const OdUInt32> edgesOfFace(OdUInt32 face) const override;
  std::span<const OdUInt32> facesOfEdge(OdUInt32 edge) const override;
  OdModelerSurfaceKind surfaceKind(OdUInt32 face) const override;
  OdModelerCurveKind curveKind(OdUInt32 edge) const override;
  OdUInt64 fingerprint() const override;
  OdGeExtents3d extents() const override;
  OdGeExtents3d subentExtents(OdModelerSubent subent) const override;
  double distanceTo(OdModelerSubent subent, const OdGePoint3d& point) const override;
  OdModelerFacePoint nearestOnFace(OdUInt32 face, const OdGePoint3d& point) const override;
  OdModelerMassProperties massProperties() const override;
  OdStatus check() const override;
  OdStatus tessellate(const OdModelerMeshOptions& options, OdModelerMesh& mesh) const override;
  OdStatus transformed(const OdGeMatrix3d& matrix, OdModelerBodyPtr& result) const override;
  OdStatus subentBody(OdModelerSubent subent, OdModelerBodyPtr& result) const override;
  std::vector<OdModelerBodyPtr> solids() const override;
  const OdModelerBodyAttributes& attributes() const override { return m_attributes; }
  OdModelerBodyPtr withAttributes(OdModelerBodyAttributes attributes) const override;
  OdStatus serialise(OdBinaryData& bytes) const override;
  std::size_t approximateSize() const override;

 private:
  const TopoDS_Shape& part(OdModelerSubent subent) const;

  TopoDS_Shape m_shape;
  OdModelerBodyAttributes m_attributes;
  bool m_leftApart;

  // Made on demand, under the mutex. What is there is never changed or taken away again, so that
  // references to it need no lock.
  mutable std::mutex m_mutex;
  mutable std::shared_ptr<const Topology> m_topology;  // shared with bodies of the same shape
  mutable std::atomic<const Topology*> m_topologyReady{nullptr};
  mutable std::vector<std::unique_ptr<OdModelerFace>> m_faces;
  mutable std::vector<std::unique_ptr<OdModelerEdge>> m_edges;
  mutable std::vector<std::unique_ptr<OdModelerVertex>> m_vertices;
  // What faces and edges in free form are.
  mutable std::unordered_map<OdUInt32, OdModelerSurfaceKind> m_surfaceKinds;
  mutable std::unordered_map<OdUInt32, OdModelerCurveKind> m_curveKinds;
  mutable std::optional<OdUInt64> m_fingerprint;
  mutable std::optional<OdGeExtents3d> m_extents;
  mutable std::optional<OdModelerMassProperties> m_mass;
  mutable std::vector<Bnd_Box> m_faceBoxes;  // void ones are not known yet
  mutable bool m_faceBoxesReady = false;
  mutable std::optional<BodyMeasures> m_measures;
  mutable OdBinaryData m_bytes;  // the stored form
};

/// The body of a shape, as odBodyFromOcct makes it. `known` is a body that may have some of its
/// faces, or null.
std::shared_ptr<const Body> bodyOf(const TopoDS_Shape& shape,
                                   OdModelerBodyAttributes attributes = {}, BodyOrigin origin = {},
                                   const Body* known = nullptr);

/// The interface's body as ours; raises OdError eNotThatKindOfClass for another modeller's.
const Body& asOcct(const OdModelerBody& body);

// Descriptions, one source each. The kinds are those in which the shape is written.
OdModelerSurfaceKind surfaceKindOf(const TopoDS_Shape& face);
OdModelerCurveKind curveKindOf(const TopoDS_Shape& edge);
OdModelerFace describeFace(const Topology& topology, OdUInt32 index);
OdModelerEdge describeEdge(const Topology& topology, OdUInt32 index);
OdUInt64 computeFingerprint(const Topology& topology);
OdGeExtents3d measureExtents(const TopoDS_Shape& shape);
OdModelerMassProperties measureMass(const TopoDS_Shape& shape);
/// The area of all faces with its centroid.
void measureArea(const TopoDS_Shape& shape, GProp_GProps& result);
/// eModelerInvalidBody with the first fault, or ok.
OdStatus checkShape(const TopoDS_Shape& shape);
/// Whether the outcome of an operation on a base is plainly sound: true means that it is, by the
/// laws of checkOutcome; false that the full check has to decide. `edges` are those that the
/// operation worked on, null for all: boundaries of other faces are as they were.
[[nodiscard]] bool isPlainlySound(const Body& outcome, const Body& base,
                                  const TopTools_MapOfShape* edges = nullptr);
/// The same as checkShape for the outcome of an operation on a base, at about the cost of what the
/// operation changed. Laws: over the whole body, shells close, are connected and oriented, each
/// edge is used once in either sense, solids are well formed, and boundaries close in the
/// parameters of their faces; the geometry of faces of the base that are there as they were is not
/// looked at; in a face that is not, boundaries that were the base's are sound by themselves and
/// towards each other, and are checked against those that are not where their boxes meet.
OdStatus checkOutcome(const Body& outcome, const Body& base);

/// Resets the flags of all parts of a shape that depend on how it was made and not on what it is;
/// those of the faces of `known`, which may be null, are reset already.
void normaliseFlags(const TopoDS_Shape& shape, const Topology* known = nullptr);

}  // namespace od_occt
