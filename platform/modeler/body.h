// A solid body as the drawing runtime sees it, whichever modeller made it.
#pragma once

#include <array>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/status.h"
#include "platform/base/types.h"
#include "platform/ge/extents3d.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/body_attributes.h"
#include "platform/modeler/mesh.h"
#include "platform/modeler/subentity.h"

class OdModelerBody;
using OdModelerBodyPtr = std::shared_ptr<const OdModelerBody>;

/// Numbers are stored.
enum class OdModelerBodyKind : OdUInt8 { kSolid = 0, kSheet = 1, kWire = 2, kMixed = 3 };
enum class OdModelerSurfaceKind : OdUInt8 {
  kPlane = 0,
  kCylinder = 1,
  kCone = 2,
  kSphere = 3,
  kTorus = 4,
  kOther = 5,
};
enum class OdModelerCurveKind : OdUInt8 { kLine = 0, kCircle = 1, kEllipse = 2, kOther = 3 };

/// One face. Lengths in drawing units, angles in radians.
struct OdModelerFace {
  OdModelerSurfaceKind kind = OdModelerSurfaceKind::kOther;
  double area = 0.0;
  OdGePoint3d centroid;     ///< of the area; need not lie on the face
  OdGePoint3d pointOnFace;  ///< inside the face's boundary, near the middle of its parameters
  OdGeVector3d normal;      ///< unit, away from the material, at pointOnFace

  /// The surface: a plane's point and its outward normal; the axis of a cylinder, torus or cone
  /// (origin: any point of a cylinder's axis, the apex of a cone, the centre of a torus); the
  /// centre of a sphere. The sign of an axis of revolution is the surface's own. Zero for other
  /// surfaces.
  OdGePoint3d origin;
  OdGeVector3d axis;
  double radius = 0.0;       ///< cylinder, sphere, torus (major); 0 else
  double minorRadius = 0.0;  ///< torus; 0 else
  double halfAngle = 0.0;    ///< cone: between axis and surface; 0 else
  /// A face of revolution whose outward normal points at its axis or centre: a hole or groove.
  bool inward = false;

  std::vector<OdUInt32> edges;  ///< indices, rising, each once; a degenerate edge is left out
};

/// A point of a face.
struct OdModelerFacePoint {
  OdGePoint3d point;
  OdGeVector3d normal;  ///< unit, away from the material; zero at a point without one, as an apex
};

/// One edge. A closed edge has the same start and end; an edge without ends (a degenerate point of
/// a cone or sphere has none of length) gives index 0.
struct OdModelerEdge {
  OdModelerCurveKind kind = OdModelerCurveKind::kOther;
  double length = 0.0;
  OdGePoint3d midPoint;    ///< half way in the curve's parameter
  OdGeVector3d direction;  ///< unit tangent at midPoint; zero for a degenerate edge
  OdGePoint3d center;      ///< circle, ellipse
  OdGeVector3d axis;       ///< circle, ellipse: normal of its plane
  double radius = 0.0;     ///< circle; ellipse: major
  double minorRadius = 0.0;
  OdUInt32 startVertex = 0;
  OdUInt32 endVertex = 0;
  bool degenerate = false;
  bool seam = false;            ///< both sides lie on one and the same face
  std::vector<OdUInt32> faces;  ///< indices, rising, each once
};

/// One vertex.
struct OdModelerVertex {
  OdGePoint3d point;
  std::vector<OdUInt32> edges;  ///< indices, rising, each once
};

/// Volume in cubic, area in square drawing units; the inertia tensor is about the centroid, along
/// the world axes, for density 1. Volume and inertia are zero for bodies without solids, whose
/// centroid is that of the area or length.
struct OdModelerMassProperties {
  double volume = 0.0;
  double area = 0.0;
  OdGePoint3d centroid;
  std::array<std::array<double, 3>, 3> inertia{};
};

/// An immutable boundary representation; every operation gives a new body. Held by shared pointer,
/// may be shared between drawings and read from several threads.
///
/// Laws of order:
///   1. faces, edges and vertices are numbered from 1 in the order of the stored boundary;
///   2. the order survives serialising, rigid and affine transformation, and attribute changes;
///   3. the history of a boolean or blend says what became of a number; equal numbers mean nothing.
/// A query with an index that the body does not have raises OdError_InvalidIndex.
class OdModelerBody {
 public:
  virtual ~OdModelerBody() = default;
  OdModelerBody(const OdModelerBody&) = delete;
  OdModelerBody& operator=(const OdModelerBody&) = delete;

  [[nodiscard]] virtual OdModelerBodyKind kind() const = 0;
  [[nodiscard]] virtual OdUInt32 numSolids() const = 0;
  [[nodiscard]] virtual OdUInt32 numFaces() const = 0;
  [[nodiscard]] virtual OdUInt32 numEdges() const = 0;
  [[nodiscard]] virtual OdUInt32 numVertices() const = 0;
  /// Number of subentities of a type; 0 for the null type.
  [[nodiscard]] OdUInt32 numSubents(OdModelerSubentType type) const;
  [[nodiscard]] bool hasSubent(OdModelerSubent subent) const;

  /// Computed when first asked for; the reference lives as long as the body.
  [[nodiscard]] virtual const OdModelerFace& face(OdUInt32 index) const = 0;
  [[nodiscard]] virtual const OdModelerEdge& edge(OdUInt32 index) const = 0;
  [[nodiscard]] virtual const OdModelerVertex& vertex(OdUInt32 index) const = 0;

  // Without a whole description: what bounds what, and of which kind.
  /// Edges of a face, rising, each once; degenerate ones too.
  [[nodiscard]] virtual std::span<const OdUInt32> edgesOfFace(OdUInt32 face) const = 0;
  /// Faces at an edge, rising, each once.
  [[nodiscard]] virtual std::span<const OdUInt32> facesOfEdge(OdUInt32 edge) const = 0;
  [[nodiscard]] virtual OdModelerSurfaceKind surfaceKind(OdUInt32 face) const = 0;
  [[nodiscard]] virtual OdModelerCurveKind curveKind(OdUInt32 edge) const = 0;

  /// A hash of the boundary: counts, kinds and places of the subentities in their order. Survives
  /// serialising; a boundary that was moved or changed has another one, but for the chance of one
  /// in 2^64. Attributes do not enter it. Never 0. Cheap: a fraction of a microsecond per
  /// subentity.
  [[nodiscard]] virtual OdUInt64 fingerprint() const = 0;
  /// A tight box around the exact geometry.
  [[nodiscard]] virtual OdGeExtents3d extents() const = 0;
  /// A box around one subentity, tight but for the modeller's tolerance.
  [[nodiscard]] virtual OdGeExtents3d subentExtents(OdModelerSubent subent) const = 0;
  /// From a point to the nearest point of a subentity, its boundary included.
  [[nodiscard]] virtual double distanceTo(OdModelerSubent subent,
                                          const OdGePoint3d& point) const = 0;
  /// The point of a face, its boundary included, that is nearest to a point.
  [[nodiscard]] virtual OdModelerFacePoint nearestOnFace(OdUInt32 face,
                                                         const OdGePoint3d& point) const = 0;
  [[nodiscard]] virtual OdModelerMassProperties massProperties() const = 0;
  /// Checks the boundary: closed, oriented, curves on their surfaces within tolerance. The text
  /// names the first fault.
  virtual OdStatus check() const = 0;
  /// eInvalidInput for a negative or non-finite option.
  virtual OdStatus tessellate(const OdModelerMeshOptions& options, OdModelerMesh& mesh) const = 0;
  /// The mesh with default options, made once and shared by all views of the body. On failure
  /// `mesh` stays as it was.
  OdStatus displayMesh(std::shared_ptr<const OdModelerMesh>& mesh) const;
  /// A memory estimate of the display mesh, in bytes; 0 before the mesh is made.
  [[nodiscard]] std::size_t displayMeshSize() const;

  /// The body under a transformation. Rigid and uniformly scaled ones keep every surface and curve
  /// kind; other affine ones turn analytic surfaces into free-form ones. eInvalidInput for a
  /// singular matrix or one with entries that are no finite numbers.
  virtual OdStatus transformed(const OdGeMatrix3d& matrix, OdModelerBodyPtr& result) const = 0;
  /// One face, edge or vertex as a body of its own. eInvalidInput if the body does not have it.
  virtual OdStatus subentBody(OdModelerSubent subent, OdModelerBodyPtr& result) const = 0;
  /// The solids of the body as bodies of their own, in order, with the attributes of their faces.
  [[nodiscard]] virtual std::vector<OdModelerBodyPtr> solids() const = 0;

  [[nodiscard]] virtual const OdModelerBodyAttributes& attributes() const = 0;
  /// The same geometry with other attributes. Entries for faces that the body does not have are
  /// dropped.
  [[nodiscard]] virtual OdModelerBodyPtr withAttributes(
      OdModelerBodyAttributes attributes) const = 0;

  /// The stored form. The same body gives the same bytes, on every run and after any number of
  /// round trips.
  virtual OdStatus serialise(OdBinaryData& bytes) const = 0;

  /// A memory estimate in bytes, for the residency budget of a database.
  [[nodiscard]] virtual std::size_t approximateSize() const = 0;

 protected:
  OdModelerBody() = default;

 private:
  mutable std::mutex m_displayMutex;
  mutable std::shared_ptr<const OdModelerMesh> m_displayMesh;
};
