// What a person asks of a face, edge or vertex.
#include "host/inspect/body_facts.h"

#include <algorithm>
#include <cmath>

#include "host/naming/match_tolerance.h"
#include "platform/base/error.h"

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;

constexpr const char* kFormNames[] = {"plane", "cylinder", "cone",    "sphere",   "torus",
                                      "line",  "circle",   "ellipse", "freeform", "point"};
constexpr const char* kTurnNames[] = {"convex", "concave", "smooth", ""};

SubentForm formOf(OdModelerSurfaceKind kind) {
  constexpr SubentForm kForms[] = {SubentForm::kPlane, SubentForm::kCylinder,
                                   SubentForm::kCone,  SubentForm::kSphere,
                                   SubentForm::kTorus, SubentForm::kFreeform};
  return kForms[static_cast<std::size_t>(kind)];
}

SubentForm formOf(OdModelerCurveKind kind) {
  constexpr SubentForm kForms[] = {SubentForm::kLine, SubentForm::kCircle, SubentForm::kEllipse,
                                   SubentForm::kFreeform};
  return kForms[static_cast<std::size_t>(kind)];
}

void describeFace(const OdModelerFace& face, SubentFacts& facts) {
  facts.form = formOf(face.kind);
  facts.size = face.area;
  facts.radius = face.radius;
  facts.minorRadius = face.minorRadius;
  facts.halfAngle = face.halfAngle;
  facts.direction = face.axis;
  facts.origin = face.origin;
  facts.middle = face.pointOnFace;
  facts.inward = face.inward;
}

void describeEdge(const OdModelerEdge& edge, SubentFacts& facts) {
  facts.form = formOf(edge.kind);
  facts.size = edge.length;
  facts.radius = edge.radius;
  facts.minorRadius = edge.minorRadius;
  if (facts.form == SubentForm::kLine) facts.direction = edge.direction;
  if (edge.radius > 0.0) {
    facts.direction = edge.axis;
    facts.origin = edge.center;
  } else {
    facts.origin = edge.midPoint;
  }
  facts.middle = edge.midPoint;
  facts.closed = edge.startVertex == edge.endVertex;
}

std::size_t slotOf(Type type) { return static_cast<std::size_t>(type) - 1; }

void sortUnique(std::vector<OdModelerSubent>& subents) {
  std::ranges::sort(subents);
  const auto rest = std::ranges::unique(subents);
  subents.erase(rest.begin(), rest.end());
}

/// The faces' normals agree within half a degree: what a drawing shows as one surface.
constexpr double kSmoothSine = 0.0087;

/// Convex where one face runs below the other's tangent plane. The direction into the first face is
/// perpendicular to its normal and to the edge; which of the two it is shows in the distance of a
/// point a little way off to that face.
EdgeTurn turnAt(const OdModelerBody& body, const OdModelerEdge& edge) {
  if (edge.degenerate || edge.seam || edge.faces.size() != 2) return EdgeTurn::kNone;
  const OdUInt32 first = edge.faces.front();
  const OdModelerFacePoint here = body.nearestOnFace(first, edge.midPoint);
  const OdModelerFacePoint there = body.nearestOnFace(edge.faces.back(), edge.midPoint);
  if (here.normal.isZeroLength() || there.normal.isZeroLength()) return EdgeTurn::kNone;
  if (here.normal.crossProduct(there.normal).length() < kSmoothSine &&
      here.normal.dotProduct(there.normal) > 0.0) {
    return EdgeTurn::kSmooth;
  }
  const OdGeVector3d across = edge.direction.crossProduct(here.normal);
  if (across.isZeroLength()) return EdgeTurn::kNone;
  constexpr double kStep = 1e-3;
  const double size = std::sqrt(std::max(body.face(first).area, 0.0));
  const OdGeVector3d step = across.normal() * (kStep * std::min(edge.length, size));
  const OdModelerSubent face{Type::kFace, first};
  const bool isAhead =
      body.distanceTo(face, edge.midPoint + step) <= body.distanceTo(face, edge.midPoint - step);
  const OdGeVector3d into = isAhead ? step : -step;
  return into.dotProduct(there.normal) < 0.0 ? EdgeTurn::kConvex : EdgeTurn::kConcave;
}

}  // namespace

const char* subentFormName(SubentForm form) { return kFormNames[static_cast<std::size_t>(form)]; }

const char* edgeTurnName(EdgeTurn turn) { return kTurnNames[static_cast<std::size_t>(turn)]; }

BodyFacts::BodyFacts(OdModelerBodyPtr body) : m_body(std::move(body)) {
  m_diagonal = m_body->extents().diagonal().length();
  m_lengthTolerance = MatchTolerance::of(*m_body).length;
  for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
    m_facts[slotOf(type)].resize(m_body->numSubents(type) + 1);
  }
  m_turns.resize(m_body->numEdges() + 1);
}

const SubentFacts& BodyFacts::of(OdModelerSubent subent) {
  if (!m_body->hasSubent(subent)) throw OdError_InvalidIndex();
  std::optional<SubentFacts>& slot = m_facts[slotOf(subent.type)][subent.index];
  if (slot) return *slot;
  SubentFacts facts;
  facts.subent = subent;
  facts.box = m_body->subentExtents(subent);
  if (subent.type == Type::kFace) {
    describeFace(m_body->face(subent.index), facts);
  } else if (subent.type == Type::kEdge) {
    describeEdge(m_body->edge(subent.index), facts);
  } else {
    facts.form = SubentForm::kPoint;
    facts.origin = facts.middle = m_body->vertex(subent.index).point;
  }
  return slot.emplace(facts);
}

EdgeTurn BodyFacts::turnOf(OdUInt32 edge) {
  if (!m_body->hasSubent({Type::kEdge, edge})) throw OdError_InvalidIndex();
  std::optional<EdgeTurn>& slot = m_turns[edge];
  if (!slot) slot = turnAt(*m_body, m_body->edge(edge));
  return *slot;
}

std::vector<OdModelerSubent> BodyFacts::neighboursOf(OdModelerSubent subent) const {
  std::vector<OdModelerSubent> found;
  if (subent.type == Type::kFace) {
    for (const OdUInt32 edge : m_body->edgesOfFace(subent.index)) {
      for (const OdUInt32 face : m_body->facesOfEdge(edge)) {
        if (face != subent.index) found.push_back({Type::kFace, face});
      }
    }
  } else if (subent.type == Type::kEdge) {
    for (const OdUInt32 face : m_body->facesOfEdge(subent.index)) {
      found.push_back({Type::kFace, face});
    }
  } else {
    for (const OdUInt32 edge : m_body->vertex(subent.index).edges) {
      found.push_back({Type::kEdge, edge});
    }
  }
  sortUnique(found);
  return found;
}

std::vector<OdModelerSubent> BodyFacts::boundsOf(OdModelerSubent subent) const {
  std::vector<OdModelerSubent> found;
  if (subent.type == Type::kFace) {
    for (const OdUInt32 edge : m_body->edgesOfFace(subent.index)) {
      found.push_back({Type::kEdge, edge});
    }
  } else if (subent.type == Type::kEdge) {
    const OdModelerEdge& edge = m_body->edge(subent.index);
    for (const OdUInt32 vertex : {edge.startVertex, edge.endVertex}) {
      if (vertex != 0) found.push_back({Type::kVertex, vertex});
    }
  }
  sortUnique(found);
  return found;
}

}  // namespace vdm_host
