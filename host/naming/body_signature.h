// What a face, edge or vertex looks like and where it lies: how it is known without a history.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/ge/matrix3d.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// Lengths within which geometry counts as the same. From the body: the modeller's confusion
/// distance, or the body's size in the accuracy of its doubles, whichever is more.
struct MatchTolerance {
  double length = 1e-6;     ///< drawing units
  double direction = 1e-7;  ///< sine of an angle between unit vectors
  double size = 300.0;      ///< diagonal of the body's box, drawing units

  static MatchTolerance of(const OdModelerBody& body);
  /// Around two bodies: the wider of each.
  static MatchTolerance of(const OdModelerBody& a, const OdModelerBody& b);
};

/// One subentity as plain values. Lengths in drawing units, angles in radians.
struct SubentSignature {
  OdModelerSubentType type = OdModelerSubentType::kNull;
  OdUInt8 kind = 0;         ///< OdModelerSurfaceKind or OdModelerCurveKind; 0 for a vertex
  bool inward = false;      ///< face of revolution around empty space: a hole
  bool closed = false;      ///< edge without ends
  OdUInt16 bounds = 0;      ///< edges of a face, faces of an edge, edges of a vertex
  OdUInt32 neighbours = 0;  ///< hash of the kinds of the subentities that meet here, without order
  double size = 0.0;        ///< area, length, 0
  double radius = 0.0;
  double minorRadius = 0.0;
  double halfAngle = 0.0;
  OdGePoint3d place;   ///< centroid of a face, middle or centre of an edge, a vertex's point
  OdGePoint3d anchor;  ///< a point of the surface's plane or axis next to `place`; apex, centre
  /// Unit: outward normal of a plane; axis of a surface of revolution, line or circle, whose sign
  /// means nothing; zero where there is none.
  OdGeVector3d direction;

  [[nodiscard]] bool hasSign() const;
  /// The length by which a displacement is small or large: a radius, half the root of an area, half
  /// a length; 0 for a vertex.
  [[nodiscard]] double reach() const;
  /// After a rigid motion, mirror or uniform scaling.
  [[nodiscard]] SubentSignature movedBy(const OdGeMatrix3d& motion) const;
  /// Stable 32-bit hash of kind and rounded sizes, never 0: does not depend on the place.
  [[nodiscard]] OdUInt32 shapeHash() const;
};

/// The same kind on the same surface or curve, whatever the boundary.
[[nodiscard]] bool liesOnSame(const SubentSignature& a, const SubentSignature& b,
                              const MatchTolerance& tolerance);
/// That, and the same boundary by measure, place and number of bounds: the identical subentity.
[[nodiscard]] bool isIdentical(const SubentSignature& a, const SubentSignature& b,
                               const MatchTolerance& tolerance);
/// The same kind, measure and parameters wherever it lies.
[[nodiscard]] bool isCongruent(const SubentSignature& a, const SubentSignature& b,
                               const MatchTolerance& tolerance);

/// Signature of one subentity; a null one for a subentity that the body does not have.
[[nodiscard]] SubentSignature signatureOf(const OdModelerBody& body, OdModelerSubent subent);
/// Of all subentities of a type, by index - 1.
[[nodiscard]] std::vector<SubentSignature> signaturesOf(const OdModelerBody& body,
                                                        OdModelerSubentType type);

/// The same for a planar face between lines and circles that lies in the plane of `known`, with the
/// same side out: from its edges alone, without the modeller's integrals. None where that is not
/// so.
[[nodiscard]] std::optional<SubentSignature> signatureOfPlane(const OdModelerBody& body,
                                                              OdUInt32 face,
                                                              const SubentSignature& known);
/// SubentSignature::neighbours of a face with these edges.
[[nodiscard]] OdUInt32 kindsAround(const OdModelerBody& body, OdUInt32 face,
                                   std::span<const OdUInt32> edges);

/// Faces that meet at an edge or vertex, faces that share an edge with a face; rising, each once.
[[nodiscard]] std::vector<OdUInt32> facesAround(const OdModelerBody& body, OdModelerSubent subent);

}  // namespace vdm_host
