// What a person asks of a face, edge or vertex: what it is, how big, where it lies, where it looks.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "platform/ge/extents3d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// What a subentity is. The order is that of `subentFormName`.
enum class SubentForm {
  kPlane,
  kCylinder,
  kCone,
  kSphere,
  kTorus,
  kLine,
  kCircle,
  kEllipse,
  kFreeform,
  kPoint,
};
/// "plane", "cylinder", ... in lower case; static text.
[[nodiscard]] const char* subentFormName(SubentForm form);

/// One subentity. Lengths in drawing units, angles in radians, all in the body's own coordinates.
struct SubentFacts {
  OdModelerSubent subent;
  SubentForm form = SubentForm::kFreeform;
  double size = 0.0;    ///< area of a face, length of an edge, 0 for a vertex
  double radius = 0.0;  ///< 0 where it has none; the major one of a torus or ellipse
  double minorRadius = 0.0;
  double halfAngle = 0.0;  ///< of a cone
  /// Unit: the outward normal of a plane; the axis of a surface of revolution, circle or ellipse;
  /// the direction of a line. Zero for what has none. Only a plane's has a sign that means
  /// something.
  OdGeVector3d direction;
  OdGePoint3d origin;  ///< a point of the plane or axis; the centre of a circle
  OdGePoint3d middle;  ///< a point of the subentity itself, near its middle
  OdGeExtents3d box;
  bool inward = false;  ///< a face of revolution that looks at its axis, as the wall of a hole
  bool closed = false;  ///< an edge whose ends are one

  [[nodiscard]] bool hasDirection() const { return !direction.isZeroLength(); }
};

/// How two faces meet at an edge, seen from outside.
enum class EdgeTurn {
  kConvex,   ///< as at a box's edge
  kConcave,  ///< as at the foot of a boss
  kSmooth,   ///< with one tangent plane
  kNone,     ///< one face alone, or none
};
[[nodiscard]] const char* edgeTurnName(EdgeTurn turn);

/// Answers about one body; each is worked out when it is first asked for. Not for several threads.
/// Subentities that the body does not have raise OdError_InvalidIndex.
class BodyFacts {
 public:
  explicit BodyFacts(OdModelerBodyPtr body);

  [[nodiscard]] const OdModelerBody& body() const { return *m_body; }
  /// What counts as one length in this body: the modeller's accuracy at its place.
  [[nodiscard]] double lengthTolerance() const { return m_lengthTolerance; }
  [[nodiscard]] double diagonal() const { return m_diagonal; }

  [[nodiscard]] const SubentFacts& of(OdModelerSubent subent);
  [[nodiscard]] EdgeTurn turnOf(OdUInt32 edge);
  /// Of a face the faces across its edges, of an edge its faces, of a vertex its edges; rising.
  [[nodiscard]] std::vector<OdModelerSubent> neighboursOf(OdModelerSubent subent) const;
  /// Of a face its edges, of an edge its vertices; rising.
  [[nodiscard]] std::vector<OdModelerSubent> boundsOf(OdModelerSubent subent) const;

 private:
  OdModelerBodyPtr m_body;
  double m_diagonal = 0.0;
  double m_lengthTolerance = 0.0;
  std::vector<std::optional<SubentFacts>> m_facts[3];  ///< by type, from index 1
  std::vector<std::optional<EdgeTurn>> m_turns;        ///< by edge
};

}  // namespace vdm_host
