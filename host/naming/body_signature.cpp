// What a face, edge or vertex looks like and where it lies: how it is known without a history.
#include "host/naming/body_signature.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace vdm_host {

namespace {

/// The modeller's confusion distance, in drawing units; ten of them pass for one place, since what
/// is built twice by different operations differs by a few.
constexpr double kConfusion = 1e-7;
constexpr double kConfusions = 10.0;
/// Places far from the origin lose digits: doubles have 2^-52, a chain of some hundred operations
/// loses a thousand of these steps at most.
constexpr double kRelativeNoise = 1e-12;
/// Areas and centroids are integrated; the modeller's quadrature is good to about six digits on
/// curved faces, and differs with the place of the seam.
constexpr double kMeasureAccuracy = 1e-5;

OdUInt32 mix(OdUInt32 word) {
  word = (word ^ (word >> 16)) * 0x7FEB352DU;
  word = (word ^ (word >> 15)) * 0x846CA68BU;
  return word ^ (word >> 16);
}

bool near(double a, double b, double tolerance) { return std::abs(a - b) <= tolerance; }

double measureTolerance(double size, const MatchTolerance& tolerance) {
  return std::max(tolerance.length, kMeasureAccuracy * size);
}

OdGePoint3d footOn(const OdGePoint3d& origin, const OdGeVector3d& axis, const OdGePoint3d& point) {
  return origin + axis * axis.dotProduct(point - origin);
}

double distanceFromLine(const OdGePoint3d& origin, const OdGeVector3d& axis,
                        const OdGePoint3d& point) {
  return footOn(origin, axis, point).distanceTo(point);
}

bool isParallel(const OdGeVector3d& a, const OdGeVector3d& b, const MatchTolerance& tolerance) {
  return a.crossProduct(b).length() <= tolerance.direction;
}

// ---- Making

SubentSignature faceSignature(const OdModelerBody& body, OdUInt32 index) {
  const OdModelerFace& face = body.face(index);
  SubentSignature s;
  s.type = OdModelerSubentType::kFace;
  s.kind = static_cast<OdUInt8>(face.kind);
  s.inward = face.inward;
  s.bounds = static_cast<OdUInt16>(std::min<std::size_t>(face.edges.size(), 0xFFFF));
  s.neighbours = kindsAround(body, index, face.edges);
  s.size = face.area;
  s.radius = face.radius;
  s.minorRadius = face.minorRadius;
  s.halfAngle = face.halfAngle;
  s.place = face.centroid;
  s.direction = face.axis;
  s.anchor = face.origin;
  if (face.kind == OdModelerSurfaceKind::kCylinder) {
    s.anchor = footOn(face.origin, face.axis, face.centroid);
  }
  if (face.kind == OdModelerSurfaceKind::kPlane) {
    s.anchor = face.centroid + face.axis * face.axis.dotProduct(face.origin - face.centroid);
  }
  if (face.kind == OdModelerSurfaceKind::kOther) s.anchor = face.centroid;
  return s;
}

SubentSignature edgeSignature(const OdModelerBody& body, OdUInt32 index) {
  const OdModelerEdge& edge = body.edge(index);
  SubentSignature s;
  s.type = OdModelerSubentType::kEdge;
  s.kind = static_cast<OdUInt8>(edge.kind);
  s.closed = edge.startVertex == edge.endVertex;
  s.bounds = static_cast<OdUInt16>(edge.faces.size());
  s.size = edge.length;
  s.radius = edge.radius;
  s.minorRadius = edge.minorRadius;
  s.anchor = s.place = edge.midPoint;
  s.direction = edge.direction;
  const bool isConic =
      edge.kind == OdModelerCurveKind::kCircle || edge.kind == OdModelerCurveKind::kEllipse;
  if (isConic) {
    s.anchor = edge.center;
    s.direction = edge.axis;
    // Where a closed curve begins is the modeller's own business.
    if (s.closed) s.place = edge.center;
  }
  if (edge.kind == OdModelerCurveKind::kOther) s.direction = {};
  for (const OdUInt32 face : edge.faces) {
    s.neighbours += mix(static_cast<OdUInt32>(body.surfaceKind(face)) + 1);
  }
  return s;
}

SubentSignature vertexSignature(const OdModelerBody& body, OdUInt32 index) {
  const OdModelerVertex& vertex = body.vertex(index);
  SubentSignature s;
  s.type = OdModelerSubentType::kVertex;
  s.bounds = static_cast<OdUInt16>(vertex.edges.size());
  s.anchor = s.place = vertex.point;
  for (const OdUInt32 edge : vertex.edges) {
    s.neighbours += mix(static_cast<OdUInt32>(body.curveKind(edge)) + 1);
  }
  return s;
}

// ---- Comparing

bool onSameSurface(const SubentSignature& a, const SubentSignature& b,
                   const MatchTolerance& tolerance) {
  const double apart = a.place.distanceTo(b.place);
  // Directions that differ by their tolerance part by this much at that distance.
  const double length = tolerance.length + tolerance.direction * apart;
  if (!near(a.radius, b.radius, length) || !near(a.minorRadius, b.minorRadius, length)) {
    return false;
  }
  switch (static_cast<OdModelerSurfaceKind>(a.kind)) {
    case OdModelerSurfaceKind::kPlane:
      return isParallel(a.direction, b.direction, tolerance) &&
             a.direction.dotProduct(b.direction) > 0.0 &&
             near(a.direction.dotProduct(b.anchor - a.anchor), 0.0, length);
    case OdModelerSurfaceKind::kCylinder:
      return isParallel(a.direction, b.direction, tolerance) &&
             distanceFromLine(a.anchor, a.direction, b.anchor) <= length;
    case OdModelerSurfaceKind::kCone:
      return isParallel(a.direction, b.direction, tolerance) &&
             near(a.halfAngle, b.halfAngle, tolerance.direction) &&
             a.anchor.distanceTo(b.anchor) <= length;
    case OdModelerSurfaceKind::kSphere:
      return a.anchor.distanceTo(b.anchor) <= length;
    case OdModelerSurfaceKind::kTorus:
      return isParallel(a.direction, b.direction, tolerance) &&
             a.anchor.distanceTo(b.anchor) <= length;
    case OdModelerSurfaceKind::kOther:
      break;
  }
  return apart <= measureTolerance(2.0 * a.reach(), tolerance);
}

bool onSameCurve(const SubentSignature& a, const SubentSignature& b,
                 const MatchTolerance& tolerance) {
  const double apart = a.place.distanceTo(b.place);
  const double length = tolerance.length + tolerance.direction * apart;
  switch (static_cast<OdModelerCurveKind>(a.kind)) {
    case OdModelerCurveKind::kLine:
      return isParallel(a.direction, b.direction, tolerance) &&
             distanceFromLine(a.anchor, a.direction, b.anchor) <= length;
    case OdModelerCurveKind::kCircle:
    case OdModelerCurveKind::kEllipse:
      return isParallel(a.direction, b.direction, tolerance) && near(a.radius, b.radius, length) &&
             near(a.minorRadius, b.minorRadius, length) && a.anchor.distanceTo(b.anchor) <= length;
    case OdModelerCurveKind::kOther:
      break;
  }
  return apart <= measureTolerance(2.0 * a.reach(), tolerance);
}

bool sameMeasure(const SubentSignature& a, const SubentSignature& b,
                 const MatchTolerance& tolerance) {
  if (a.type == OdModelerSubentType::kFace) {
    const double side = std::sqrt(std::max(a.size, b.size));
    return near(a.size, b.size, side * measureTolerance(side, tolerance));
  }
  return near(a.size, b.size, measureTolerance(std::max(a.size, b.size), tolerance));
}

bool sameSort(const SubentSignature& a, const SubentSignature& b) {
  return a.type == b.type && a.kind == b.kind && a.inward == b.inward && a.closed == b.closed;
}

// The tight box costs the modeller milliseconds; that of the corners does for the order of size.
OdGeExtents3d cheapBox(const OdModelerBody& body) {
  constexpr OdUInt32 kEnoughCorners = 4;
  if (body.numVertices() < kEnoughCorners) return body.extents();
  OdGeExtents3d box;
  for (OdUInt32 i = 1; i <= body.numVertices(); ++i) box.addPoint(body.vertex(i).point);
  return box;
}

}  // namespace

MatchTolerance MatchTolerance::of(const OdModelerBody& body) {
  MatchTolerance tolerance;
  const OdGeExtents3d box = cheapBox(body);
  tolerance.size = 0.0;
  if (!box.isValidExtents()) return tolerance;
  tolerance.size = box.minPoint().distanceTo(box.maxPoint());
  const double farthest =
      std::max(box.minPoint().asVector().length(), box.maxPoint().asVector().length());
  tolerance.length = std::max(kConfusions * kConfusion, kRelativeNoise * farthest);
  return tolerance;
}

MatchTolerance MatchTolerance::of(const OdModelerBody& a, const OdModelerBody& b) {
  MatchTolerance one = of(a);
  const MatchTolerance two = of(b);
  one.length = std::max(one.length, two.length);
  one.size = std::max(one.size, two.size);
  return one;
}

bool SubentSignature::hasSign() const {
  return type == OdModelerSubentType::kFace &&
         kind == static_cast<OdUInt8>(OdModelerSurfaceKind::kPlane);
}

double SubentSignature::reach() const {
  if (type == OdModelerSubentType::kVertex) return 0.0;
  if (minorRadius > 0.0) return minorRadius;
  if (radius > 0.0) return radius;
  return type == OdModelerSubentType::kFace ? std::sqrt(size) / 2.0 : size / 2.0;
}

SubentSignature SubentSignature::movedBy(const OdGeMatrix3d& motion) const {
  SubentSignature s = *this;
  const double scale = motion.scale();
  s.place = motion * place;
  s.anchor = motion * anchor;
  s.direction = motion * direction;
  if (const double length = s.direction.length(); length > 0.0) s.direction /= length;
  s.radius *= scale;
  s.minorRadius *= scale;
  s.size *= type == OdModelerSubentType::kFace ? scale * scale : scale;
  return s;
}

OdUInt32 SubentSignature::shapeHash() const {
  // Four digits: the hash is to survive what integration and rebuilding do to the last ones.
  const auto rounded = [](double value) {
    if (value <= 0.0) return OdUInt32{0};
    const double digits = std::pow(10.0, 3.0 - std::floor(std::log10(value)));
    return static_cast<OdUInt32>(static_cast<OdInt64>(std::round(value * digits)) +
                                 OdInt64{100000} * static_cast<OdInt64>(std::log10(digits) + 64.0));
  };
  OdUInt32 hash =
      mix(static_cast<OdUInt32>(type) * 64 + kind * 4U + (inward ? 2U : 0U) + (closed ? 1U : 0U));
  for (const double value : {size, radius, minorRadius, halfAngle}) {
    hash = mix(hash * 31 + rounded(value));
  }
  return hash == 0 ? 1 : hash;
}

bool liesOnSame(const SubentSignature& a, const SubentSignature& b,
                const MatchTolerance& tolerance) {
  if (a.type != b.type || a.kind != b.kind || a.inward != b.inward) return false;
  switch (a.type) {
    case OdModelerSubentType::kFace:
      return onSameSurface(a, b, tolerance);
    case OdModelerSubentType::kEdge:
      return onSameCurve(a, b, tolerance);
    default:
      return a.place.distanceTo(b.place) <= tolerance.length;
  }
}

bool isIdentical(const SubentSignature& a, const SubentSignature& b,
                 const MatchTolerance& tolerance) {
  return sameSort(a, b) && liesOnSame(a, b, tolerance) && sameMeasure(a, b, tolerance) &&
         a.place.distanceTo(b.place) <=
             measureTolerance(2.0 * std::max(a.reach(), b.reach()), tolerance);
}

bool isCongruent(const SubentSignature& a, const SubentSignature& b,
                 const MatchTolerance& tolerance) {
  return sameSort(a, b) && sameMeasure(a, b, tolerance) &&
         near(a.radius, b.radius, tolerance.length) &&
         near(a.minorRadius, b.minorRadius, tolerance.length) &&
         near(a.halfAngle, b.halfAngle, tolerance.direction);
}

OdUInt32 kindsAround(const OdModelerBody& body, OdUInt32 face, std::span<const OdUInt32> edges) {
  OdUInt32 hash = 0;
  for (const OdUInt32 edge : edges) {
    const auto edgeKind = static_cast<OdUInt32>(body.curveKind(edge));
    for (const OdUInt32 other : body.facesOfEdge(edge)) {
      if (other == face) continue;
      hash += mix(16 * edgeKind + static_cast<OdUInt32>(body.surfaceKind(other)) + 1);
    }
  }
  return hash;
}

SubentSignature signatureOf(const OdModelerBody& body, OdModelerSubent subent) {
  if (!body.hasSubent(subent)) return {};
  switch (subent.type) {
    case OdModelerSubentType::kFace:
      return faceSignature(body, subent.index);
    case OdModelerSubentType::kEdge:
      return edgeSignature(body, subent.index);
    case OdModelerSubentType::kVertex:
      return vertexSignature(body, subent.index);
    case OdModelerSubentType::kNull:
      break;
  }
  return {};
}

std::vector<SubentSignature> signaturesOf(const OdModelerBody& body, OdModelerSubentType type) {
  std::vector<SubentSignature> result(body.numSubents(type));
  for (OdUInt32 i = 1; i <= result.size(); ++i) result[i - 1] = signatureOf(body, {type, i});
  return result;
}

std::vector<OdUInt32> facesAround(const OdModelerBody& body, OdModelerSubent subent) {
  std::vector<OdUInt32> faces;
  const auto addFacesOf = [&](std::span<const OdUInt32> edges) {
    for (const OdUInt32 edge : edges) {
      const std::span<const OdUInt32> sides = body.facesOfEdge(edge);
      faces.insert(faces.end(), sides.begin(), sides.end());
    }
  };
  if (!body.hasSubent(subent)) return faces;
  if (subent.type == OdModelerSubentType::kFace) {
    addFacesOf(body.edgesOfFace(subent.index));
  } else if (subent.type == OdModelerSubentType::kEdge) {
    addFacesOf({&subent.index, 1});
  } else {
    addFacesOf(body.vertex(subent.index).edges);
  }
  std::ranges::sort(faces);
  faces.erase(std::unique(faces.begin(), faces.end()), faces.end());
  if (subent.type == OdModelerSubentType::kFace) std::erase(faces, subent.index);
  return faces;
}

}  // namespace vdm_host
