// What a face, edge or vertex looks like and where it lies: how it is known without a history.
#pragma once

#include "host/naming/match_tolerance.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/subentity.h"

namespace vdm_host {

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
/// That, and the same part of it by measure and middle: the identical subentity.
[[nodiscard]] bool isIdentical(const SubentSignature& a, const SubentSignature& b,
                               const MatchTolerance& tolerance);
/// The same kind, measure and parameters wherever it lies.
[[nodiscard]] bool isCongruent(const SubentSignature& a, const SubentSignature& b,
                               const MatchTolerance& tolerance);

}  // namespace vdm_host
