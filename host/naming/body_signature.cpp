// Signatures of the subentities of a body.
//
// A signature must not depend on what two builds of one part do differently: the order in which
// subentities are numbered, the seam at which a closed curve begins, the point that fixes an
// axis. Neighbours are therefore added up as a hash without order, closed conics have their centre
// for a place, and the points of planes and axes are moved next to the middle of the face.
#include "host/naming/body_signature.h"

#include <algorithm>

#include "host/naming/signature_hash.h"
#include "platform/base/sort_unique.h"

namespace vdm_host {

namespace {

SubentSignature faceSignature(const OdModelerBody& body, OdUInt32 index) {
  const OdModelerFace& face = body.face(index);
  SubentSignature s;
  s.type = OdModelerSubentType::kFace;
  s.kind = static_cast<OdUInt8>(face.kind);
  s.inward = face.inward;
  s.bounds = boundsOf(face.edges.size());
  s.neighbours = kindsAround(body, index, face.edges);
  s.size = face.area;
  s.radius = face.radius;
  s.minorRadius = face.minorRadius;
  s.halfAngle = face.halfAngle;
  s.place = face.centroid;
  s.direction = face.axis;
  s.anchor = face.origin;
  if (face.kind == OdModelerSurfaceKind::kCylinder) {
    s.anchor = face.origin + face.axis * face.axis.dotProduct(face.centroid - face.origin);
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
  s.bounds = boundsOf(edge.faces.size());
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
    s.neighbours += mixBits(static_cast<OdUInt32>(body.surfaceKind(face)) + 1);
  }
  return s;
}

SubentSignature vertexSignature(const OdModelerBody& body, OdUInt32 index) {
  const OdModelerVertex& vertex = body.vertex(index);
  SubentSignature s;
  s.type = OdModelerSubentType::kVertex;
  s.bounds = boundsOf(vertex.edges.size());
  s.anchor = s.place = vertex.point;
  for (const OdUInt32 edge : vertex.edges) {
    s.neighbours += mixBits(static_cast<OdUInt32>(body.curveKind(edge)) + 1);
  }
  return s;
}

}  // namespace

OdUInt16 boundsOf(std::size_t count) {
  return static_cast<OdUInt16>(std::min<std::size_t>(count, 0xFFFF));
}

OdUInt32 kindsAround(const OdModelerBody& body, OdUInt32 face, std::span<const OdUInt32> edges) {
  OdUInt32 hash = 0;
  for (const OdUInt32 edge : edges) {
    const auto edgeKind = static_cast<OdUInt32>(body.curveKind(edge));
    for (const OdUInt32 other : body.facesOfEdge(edge)) {
      if (other == face) continue;
      hash += mixBits(16 * edgeKind + static_cast<OdUInt32>(body.surfaceKind(other)) + 1);
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
  odSortUnique(faces);
  if (subent.type == OdModelerSubentType::kFace) std::erase(faces, subent.index);
  return faces;
}

}  // namespace vdm_host
