// ModelTruth: what a model has to look like, computed from the edits alone.
#include "tests/reliability/model_truth.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "platform/base/sort_unique.h"
#include "platform/modeler/modeler.h"

namespace {

// Above what the modeller's own tolerance (1e-7) makes of lengths below 1000.
constexpr double kNear = 1e-5;

bool areParallel(const OdGeVector3d& a, const OdGeVector3d& b) {
  return a.crossProduct(b).length() < kNear;
}

double distanceToLine(const OdGePoint3d& point, const OdGePoint3d& origin,
                      const OdGeVector3d& axis) {
  return (point - origin).crossProduct(axis).length();
}

bool isSameSurface(const OdModelerFace& face, const OdModelerFace& source,
                   const OdGeMatrix3d& placement) {
  if (face.kind != source.kind) return false;
  const OdGePoint3d origin = placement * source.origin;
  const OdGeVector3d axis = placement * source.axis;
  const bool sameSizes = std::abs(face.radius - source.radius) < kNear &&
                         std::abs(face.minorRadius - source.minorRadius) < kNear &&
                         std::abs(face.halfAngle - source.halfAngle) < kNear;
  if (!sameSizes) return false;
  switch (face.kind) {
    case OdModelerSurfaceKind::kPlane:
      return areParallel(face.axis, axis) &&
             std::abs((face.origin - origin).dotProduct(axis)) < kNear;
    case OdModelerSurfaceKind::kCylinder:
      return areParallel(face.axis, axis) && distanceToLine(face.origin, origin, axis) < kNear;
    case OdModelerSurfaceKind::kSphere:
      return face.origin.distanceTo(origin) < kNear;
    default:
      return areParallel(face.axis, axis) && face.origin.distanceTo(origin) < kNear;
  }
}

OdModelerBodyPtr placed(const OdModelerBodyPtr& body, const OdGeMatrix3d& placement) {
  OdModelerBodyPtr result;
  const OdStatus status = body->transformed(placement, result);
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
  return result;
}

OdModelerBodyPtr combined(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                          const std::vector<OdModelerBodyPtr>& tools) {
  if (tools.empty()) return base;
  OdModelerBodyPtr result;
  const OdStatus status = odModeler().boolean(kind, base, tools, result, nullptr);
  if (!status.ok()) throw std::runtime_error("building anew: " + std::string(status.text.utf8()));
  return result;
}

}  // namespace

OdModelerBodyPtr TruthBlock::toolOf(OdUInt32& face) const {
  for (const auto* tools : {&cuts, &fills}) {
    for (const OdModelerBodyPtr& tool : *tools) {
      if (face <= tool->numFaces()) return tool;
      face -= tool->numFaces();
    }
  }
  throw std::runtime_error("the tools have no face of this number");
}

bool ModelTruth::liesIn(const OdModelerBody& body, OdUInt32 face, const TruthFace& source,
                        std::size_t solid) const {
  const TruthSolid& owner = solids[solid];
  OdModelerBodyPtr from = owner.base;
  OdGeMatrix3d placement = owner.frame;
  OdUInt32 number = source.face;
  if (source.of == TruthFace::Of::kDrill) from = owner.drills[source.owner];
  if (source.of == TruthFace::Of::kInsert) {
    from = blocks[inserts[source.owner].block].toolOf(number);
    placement = worldOf(inserts[source.owner]);
  }
  if (!isSameSurface(body.face(face), from->face(number), placement)) return false;
  OdGeExtents3d box = from->subentExtents({OdModelerSubentType::kFace, number});
  box.transformBy(placement).expandBy(kNear);
  return !box.isDisjoint(body.subentExtents({OdModelerSubentType::kFace, face}));
}

std::optional<TruthFace> ModelTruth::sourceOf(const OdModelerBody& body, OdUInt32 face,
                                              std::size_t solid) const {
  std::vector<TruthFace> found;
  const auto tryAll = [&](TruthFace::Of of, std::size_t owner, OdUInt32 count) {
    for (OdUInt32 i = 1; i <= count; ++i) {
      if (liesIn(body, face, {of, owner, i}, solid)) found.push_back({of, owner, i});
    }
  };
  const TruthSolid& owner = solids[solid];
  tryAll(TruthFace::Of::kBase, 0, owner.base->numFaces());
  for (std::size_t i = 0; i < owner.drills.size(); ++i) {
    tryAll(TruthFace::Of::kDrill, i, owner.drills[i]->numFaces());
  }
  for (std::size_t i = 0; i < inserts.size(); ++i) {
    if (inserts[i].solid != solid || inserts[i].isErased || inserts[i].isSuppressed) continue;
    OdUInt32 count = 0;
    for (const auto* tools : {&blocks[inserts[i].block].cuts, &blocks[inserts[i].block].fills}) {
      for (const OdModelerBodyPtr& tool : *tools) count += tool->numFaces();
    }
    tryAll(TruthFace::Of::kInsert, i, count);
  }
  if (found.size() != 1) return {};
  return found[0];
}

std::vector<OdUInt32> ModelTruth::facesAt(const OdModelerBody& body, OdModelerSubent subent) {
  if (subent.type == OdModelerSubentType::kFace) return {subent.index};
  if (subent.type == OdModelerSubentType::kEdge) return body.edge(subent.index).faces;
  std::vector<OdUInt32> faces;
  for (const OdUInt32 edge : body.vertex(subent.index).edges) {
    const std::vector<OdUInt32>& sides = body.edge(edge).faces;
    faces.insert(faces.end(), sides.begin(), sides.end());
  }
  odSortUnique(faces);
  return faces;
}

std::string ModelTruth::judge(const OdModelerBody& body, OdModelerSubent subent, std::size_t solid,
                              const std::vector<TruthFace>& meant) const {
  if (!body.hasSubent(subent)) return "it leads to a number that the body does not have";
  const std::vector<OdUInt32> faces = facesAt(body, subent);
  for (const TruthFace& source : meant) {
    const bool isThere = std::ranges::any_of(
        faces, [&](OdUInt32 face) { return liesIn(body, face, source, solid); });
    if (isThere) continue;
    return "subentity " + std::to_string(subent.index) + " of type " +
           std::to_string(static_cast<int>(subent.type)) + " does not lie in face " +
           std::to_string(source.face) + " of source " +
           std::to_string(static_cast<int>(source.of)) + "/" + std::to_string(source.owner);
  }
  return {};
}

OdModelerBodyPtr ModelTruth::built(std::size_t solid) const {
  std::vector<OdModelerBodyPtr> cuts;
  std::vector<OdModelerBodyPtr> fills;
  for (const TruthInsert& insert : inserts) {
    if (insert.solid != solid || insert.isErased || insert.isSuppressed) continue;
    for (const OdModelerBodyPtr& tool : blocks[insert.block].cuts) {
      cuts.push_back(placed(tool, insert.place));
    }
    for (const OdModelerBodyPtr& tool : blocks[insert.block].fills) {
      fills.push_back(placed(tool, insert.place));
    }
  }
  OdModelerBodyPtr body =
      combined(OdModelerBooleanKind::kSubtract, solids[solid].base, solids[solid].drills);
  body = combined(OdModelerBooleanKind::kUnite, body, fills);
  return combined(OdModelerBooleanKind::kSubtract, body, cuts);
}
