// What the faces and edges of a part with components come from, by the construction alone.
#include "bench/naming/component_truth.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace naming_bench {
namespace {

using Type = OdModelerSubentType;
constexpr double kClose = 1e-6;   // of what the construction makes equal
constexpr double kBeside = 1e-3;  // how far beside a boundary its sides are asked

bool isOnBoundary(const PartPlan& plan, const OdGePoint3d& point, const OdGeVector3d& normal) {
  return plan.isMaterial(point - normal * kBeside) && !plan.isMaterial(point + normal * kBeside);
}

bool holds(const OdGeExtents3d& box, const OdGePoint3d& point) {
  OdGeExtents3d wide = box;
  wide.expandBy(kBeside);
  return wide.contains(point);
}

// Points inside of an edge, spread over a line or circle; the middle alone of others.
std::vector<OdGePoint3d> insideOf(const OdModelerBody& body, OdUInt32 index) {
  constexpr int kCount = 24;
  const OdModelerEdge& edge = body.edge(index);
  std::vector<OdGePoint3d> points;
  const double half = edge.radius > 0.0 ? edge.length / edge.radius / 2.0 : 0.0;
  for (int i = 0; i < kCount; ++i) {
    const double t = (i + 0.5) / kCount;
    if (edge.kind == OdModelerCurveKind::kLine && edge.startVertex != 0) {
      const OdGePoint3d from = body.vertex(edge.startVertex).point;
      points.push_back(from + (body.vertex(edge.endVertex).point - from) * t);
    } else if (edge.kind == OdModelerCurveKind::kCircle) {
      points.push_back(OdGeMatrix3d::rotation((2.0 * t - 1.0) * half, edge.axis, edge.center) *
                       edge.midPoint);
    }
  }
  if (points.empty()) points.push_back(edge.midPoint);
  return points;
}

std::string textOf(const Source& source) {
  const std::string maker = source.maker < 0 ? "base" : "#" + std::to_string(source.maker);
  return maker + "." + std::to_string(source.face);
}

}  // namespace

SourcedBody::SourcedBody(const PartPlan& plan, OdModelerBodyPtr body)
    : m_body(std::move(body)),
      m_patches(plan.patches()),
      m_faces(m_body->numFaces()),
      m_edges(m_body->numEdges()),
      m_isCurved(m_body->numEdges(), false) {
  findSources(plan);
  for (OdUInt32 edge = 1; edge <= m_body->numEdges(); ++edge) findPairs(edge);
}

bool SourcedBody::liesOnSurface(OdUInt32 index, const Patch& patch) const {
  const OdModelerFace& face = m_body->face(index);
  if (face.kind != patch.kind) return false;
  if (face.kind == OdModelerSurfaceKind::kPlane) {
    return face.axis.isEqualTo(patch.axis, OdGeTol(kClose)) &&
           std::abs((face.origin - patch.origin).dotProduct(patch.axis)) <= kClose;
  }
  const OdGeVector3d between = face.origin - patch.origin;
  return std::abs(face.radius - patch.radius) <= kClose && face.inward == (patch.inward > 0.0) &&
         std::hypot(between.x, between.y) <= kClose;
}

// The candidate that holds the point comes from the patch.
void SourcedBody::offer(const PartPlan& plan, std::size_t patch, const OdGePoint3d& point,
                        const std::vector<OdUInt32>& candidates) {
  std::vector<OdUInt32> near;
  for (const OdUInt32 face : candidates) {
    if (holds(m_body->subentExtents({Type::kFace, face}), point)) near.push_back(face);
  }
  if (near.empty() || !isOnBoundary(plan, point, m_patches[patch].normalAt(point))) return;
  if (near.size() > 1) {
    std::erase_if(near, [&](OdUInt32 face) {
      return m_body->distanceTo({Type::kFace, face}, point) > kClose;
    });
  }
  if (near.size() == 1) m_faces[near.front() - 1].insert(patch);
}

void SourcedBody::findSources(const PartPlan& plan) {
  for (std::size_t i = 0; i < m_patches.size(); ++i) {
    const Patch& patch = m_patches[i];
    std::vector<OdUInt32> candidates;
    for (OdUInt32 face = 1; face <= m_body->numFaces(); ++face) {
      if (liesOnSurface(face, patch)) candidates.push_back(face);
    }
    if (candidates.empty()) continue;
    for (const OdGePoint3d& point : patch.samples()) offer(plan, i, point, candidates);
    for (const OdUInt32 face : candidates) {
      const OdGePoint3d inside = m_body->face(face).pointOnFace;
      if (patch.holds(inside) && isOnBoundary(plan, inside, patch.normalAt(inside))) {
        m_faces[face - 1].insert(i);
      }
    }
  }
  const auto unknown = std::ranges::find_if(m_faces, [](const auto& row) { return row.empty(); });
  if (unknown != m_faces.end()) {
    const auto index = static_cast<OdUInt32>(unknown - m_faces.begin()) + 1;
    const OdGePoint3d at = m_body->face(index).pointOnFace;
    throw std::logic_error("the plan does not know face " + std::to_string(index) + " at (" +
                           std::to_string(at.x) + ", " + std::to_string(at.y) + ", " +
                           std::to_string(at.z) + ")");
  }
}

std::vector<std::size_t> SourcedBody::patchesAt(OdUInt32 face, const OdGePoint3d& point) const {
  std::vector<std::size_t> found;
  for (const std::size_t patch : m_faces[face - 1]) {
    if (m_patches[patch].holds(point)) found.push_back(patch);
  }
  return found;
}

void SourcedBody::findPairs(OdUInt32 index) {
  const std::span<const OdUInt32> faces = m_body->facesOfEdge(index);
  if (faces.size() != 2) return;
  for (const OdGePoint3d& point : insideOf(*m_body, index)) {
    for (const std::size_t a : patchesAt(faces[0], point)) {
      for (const std::size_t b : patchesAt(faces[1], point)) {
        const Patch& one = m_patches[a];
        const Patch& other = m_patches[b];
        m_edges[index - 1].insert(std::minmax(one.source, other.source));
        const bool isRound =
            one.kind != OdModelerSurfaceKind::kPlane || other.kind != OdModelerSurfaceKind::kPlane;
        if (isRound && !one.isLevel && !other.isLevel && one.source.maker != other.source.maker) {
          m_isCurved[index - 1] = true;
        }
      }
    }
  }
}

Birth SourcedBody::birthOf(OdModelerSubent subent) const {
  Birth birth;
  birth.type = subent.type;
  if (subent.type == Type::kEdge) {
    birth.pairs = m_edges[subent.index - 1];
  } else {
    for (const std::size_t patch : m_faces[subent.index - 1]) {
      birth.sources.insert(m_patches[patch].source);
    }
  }
  return birth;
}

std::vector<OdModelerSubent> SourcedBody::meeting(const Birth& birth) const {
  std::vector<OdModelerSubent> found;
  if (birth.type == Type::kEdge) {
    for (OdUInt32 edge = 1; edge <= m_body->numEdges(); ++edge) {
      const auto isOf = [&](const auto& pair) { return birth.pairs.contains(pair); };
      if (std::ranges::any_of(m_edges[edge - 1], isOf)) found.push_back({Type::kEdge, edge});
    }
    return found;
  }
  for (OdUInt32 face = 1; face <= m_body->numFaces(); ++face) {
    const auto isOf = [&](std::size_t patch) {
      return birth.sources.contains(m_patches[patch].source);
    };
    if (std::ranges::any_of(m_faces[face - 1], isOf)) found.push_back({Type::kFace, face});
  }
  return found;
}

std::vector<OdModelerSubent> SourcedBody::wholes() const {
  std::vector<OdModelerSubent> found;
  const auto add = [&](OdModelerSubent subent) {
    const Birth birth = birthOf(subent);
    const bool isKnown = !birth.sources.empty() || !birth.pairs.empty();
    if (isKnown && meeting(birth).size() == 1) found.push_back(subent);
  };
  for (OdUInt32 face = 1; face <= m_body->numFaces(); ++face) add({Type::kFace, face});
  for (OdUInt32 edge = 1; edge <= m_body->numEdges(); ++edge) {
    if (!m_isCurved[edge - 1]) add({Type::kEdge, edge});
  }
  return found;
}

Truth SourcedBody::truthOf(const Birth& birth) const {
  Truth truth;
  truth.subents = meeting(birth);
  truth.kind = truth.subents.empty() ? TruthKind::kGone : TruthKind::kAnswer;
  const auto isCurved = [this](OdModelerSubent subent) {
    return subent.type == Type::kEdge && m_isCurved[subent.index - 1];
  };
  if (std::ranges::any_of(truth.subents, isCurved)) truth = {};
  return truth;
}

std::string SourcedBody::nameOf(const Birth& birth) const {
  std::string text;
  for (const Source& source : birth.sources) text += (text.empty() ? "" : " ") + textOf(source);
  for (const auto& [a, b] : birth.pairs) {
    text += (text.empty() ? "" : " ") + textOf(a) + "/" + textOf(b);
  }
  return text;
}

}  // namespace naming_bench
