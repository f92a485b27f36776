// ComponentHandler: references, residues and placements once the solids are done, in the
// transaction that keeps the solids: a component's record and its cut change together or not at
// all.
//
// When an opening is closed and cut again, no history of the modeller leads from its old faces to
// its new ones: healing took the old ones away. What leads there is the tool. The references of an
// opening carry the number of the tool's face as tag, so each face of a tool knows the faces that
// it left in the old body (Work::oldFaces) and, through the lineage of the pass, those that it left
// in the new one (toolFaces). These pairs go to the naming of references as respawns; it decides
// what each reference stands for. Then faces without a reference get one, and the new residues and
// placements are stored.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "host/modeling/component_handler.h"
#include "host/modeling/component_query.h"
#include "host/modeling/model_update_context.h"
#include "host/modeling/update_helper.h"
#include "host/naming/body_lineage.h"
#include "host/naming/reference_record.h"
#include "host/naming/reference_update.h"
#include "vdm_db/features/vdm_db_feature_manager_transaction.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace vdm_host {
namespace {

OdModelerBodyPtr bodyOf(const OdDbObjectId& solid) {
  const OdDb3dSolidPtr object = solid.openAs<OdDb3dSolid>();
  return object.isNull() ? nullptr : object->body();
}

VdmComponentFeaturePtr openForWrite(const OdDbObjectId& feature) {
  return openComponent(feature, OdDb::kForWrite);
}

// For texts: what is as good as 0 is 0.
OdGePoint3d withoutNoise(const OdGePoint3d& point) {
  const auto plain = [](double value) {
    return std::abs(value) <= OdGeTol::kDefault.equalPoint() ? 0.0 : value;
  };
  return {plain(point.x), plain(point.y), plain(point.z)};
}

void noteBasePlane(const VdmComponentFeature& feature, VdmComponentFeature::Placed& placed) {
  placed.baseNormal = OdGeVector3d();
  const OdModelerBodyPtr body = bodyOf(feature.solidId());
  for (const OdDbObjectId& id : feature.baseFaceDependencies()) {
    const OdUInt32 index = resolvedIndexOf(id);
    if (!body || !body->hasSubent({OdModelerSubentType::kFace, index})) continue;
    const OdModelerFace& face = body->face(index);
    if (face.kind != OdModelerSurfaceKind::kPlane) continue;
    placed.basePoint = face.origin;
    placed.baseNormal = face.axis;
    return;
  }
}

// References into an opening remember the tool's face: by that they are found when it is closed and
// cut again.
void noteBirths(const OdDbObjectId& feature) {
  const VdmComponentFeaturePtr component = openComponent(feature);
  for (const auto& [toolFace, dependencies] : component->openingDependencies()) {
    for (const OdDbObjectId& id : dependencies) {
      const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>(OdDb::kForWrite);
      ReferenceRecord record;
      if (dependency.isNull() || !record.readFrom(*dependency) || record.birth.isOfTool()) continue;
      record.birth = {feature.getHandle(), static_cast<OdUInt32>(toolFace)};
      record.writeTo(*dependency);
    }
  }
}

}  // namespace

// The first failure ends it: the solids are as all features say, so all are taken back together.
bool ComponentHandler::settle() {
  if (m_work.empty()) return true;
  return storePieces() && m_helper.workFor(OdDbObjectId(), [this] { settleReferences(); }) &&
         !m_helper.failed() && storeApplied();
}

bool ComponentHandler::storePieces() {
  for (const std::unique_ptr<Site>& site : m_sites) {
    for (ComponentPieces& pieces : site->ledger.components()) {
      if (!pieces.isChanged(ToolKind::kCut) && !pieces.isChanged(ToolKind::kFill)) continue;
      if (!m_helper.workFor(pieces.feature, [&pieces] { storePiecesOf(pieces); })) return false;
    }
  }
  return true;
}

void ComponentHandler::storePiecesOf(ComponentPieces& pieces) {
  const VdmComponentFeaturePtr feature = openForWrite(pieces.feature);
  if (feature.isNull()) return;
  feature->getDbObject()->assertWriteEnabled();
  for (const ToolKind kind : kToolKinds) {
    if (pieces.isChanged(kind)) feature->setPiece(kind, pieces.pieceOf(kind));
  }
}

// ---- References

// Names the tools, and for each face of an opening what it was before and what it is now. A face of
// a tool that left nothing in the old body, or leaves nothing now, has an entry all the same.
void ComponentHandler::addRespawns(ReferenceUpdate& update, const BodyLineage& lineage,
                                   const Work& work) {
  const OdDbHandle feature = work.feature.getHandle();
  FaceRespawn respawn;
  respawn.feature = feature;
  if (work.wasPlaced && work.applies) respawn.motion = work.now * work.before.transform.inverse();
  std::map<int, std::vector<OdUInt32>> oldFaces;
  for (const auto& [toolFace, face] : work.oldFaces) oldFaces[toolFace].push_back(face);
  std::map<int, std::vector<OdUInt32>> newFaces;
  for (auto& [toolFace, faces] : toolFaces(lineage, twinOf(work))) {
    oldFaces.try_emplace(toolFace);
    newFaces[toolFace] = std::move(faces);
  }
  // All of its births end here, also those without a reference.
  update.addRespawn(work.solid, respawn);
  for (const Tool& tool : work.tools) update.nameTool(tool.body, feature);
  for (const auto& [toolFace, faces] : oldFaces) {
    respawn.toolFace = static_cast<OdUInt32>(toolFace);
    respawn.newFaces = newFaces[toolFace];
    respawn.toolBox = boxOfToolFace(work, toolFace);
    respawn.oldFace = 0;
    if (faces.empty() && !respawn.newFaces.empty()) update.addRespawn(work.solid, respawn);
    for (const OdUInt32 face : faces) {
      respawn.oldFace = face;
      update.addRespawn(work.solid, respawn);
    }
  }
}

void ComponentHandler::settleReferences() {
  VdmDependenciesReplacementMap ownMap;
  ModelUpdateContext* context = m_helper.context();
  ReferenceUpdate update(context != nullptr ? context->nextMap : ownMap);
  const BodyLineage lineage(m_helper.changes());
  for (const Work& work : m_work) addRespawns(update, lineage, work);
  ReferenceUpdateReport report = update.settle(m_helper.changes());
  if (context != nullptr) {
    context->noteReferences(std::move(report));
    context->numSettled = context->journal.mark();
  }
  referToOpenings(lineage);
  noteOpenings(lineage);
  matchSamples(lineage);
}

void ComponentHandler::noteOpenings(const BodyLineage& lineage) const {
  ModelUpdateContext* context = m_helper.context();
  if (context == nullptr) return;
  for (const OdDbObjectId& solid : lineage.solids()) context->openings.erase(solid);
  for (const Work& work : m_work) {
    if (work.condemned) continue;
    Opening opening{work.feature, {}};
    for (auto& [toolFace, faces] : toolFaces(lineage, work)) {
      opening.faces.emplace(toolFace, std::move(faces));
    }
    context->openings[work.solid].push_back(std::move(opening));
  }
}

// Makes references to the faces that the tools left and that have no reference yet.
void ComponentHandler::referToOpenings(const BodyLineage& lineage) {
  std::vector<const Work*> extended;
  {
    // References are made when the transaction ends.
    const VdmDbFeatureManagerTransactionPtr transaction =
        VdmDbFeatureManagerTransaction::createObject();
    for (const Work& work : m_work) {
      if (!work.applies || work.condemned) continue;
      m_helper.workFor(work.feature, [&] {
        if (referToOpening(*transaction, lineage, work)) extended.push_back(&work);
      });
    }
  }
  for (const Work* work : extended) {
    m_helper.workFor(work->feature, [work] { noteBirths(work->feature); });
  }
}

/// True when there are faces without a reference.
bool ComponentHandler::referToOpening(VdmDbFeatureManagerTransaction& transaction,
                                      const BodyLineage& lineage, const Work& work) {
  const VdmComponentFeaturePtr feature = openForWrite(work.feature);
  if (feature.isNull()) return false;
  const std::map<int, OdDbObjectIdArray> known = feature->openingDependencies();
  bool isExtended = false;
  for (const auto& [toolFace, faces] : toolFaces(lineage, work)) {
    std::vector<OdUInt32> missing = faces;
    if (const auto have = known.find(toolFace); have != known.end()) {
      for (const OdDbObjectId& id : have->second) std::erase(missing, resolvedIndexOf(id));
    }
    OdDbFullSubentPathArray paths;
    for (const OdUInt32 index : missing) {
      paths.append(OdDbFullSubentPath(work.solid, OdDbSubentId(OdDb::kFaceSubentType, index)));
    }
    transaction.append(feature.get(), paths, VdmComponentFeature::kOpeningMask, toolFace);
    isExtended |= !missing.empty();
  }
  return isExtended;
}

// The component that cuts for this one: itself, but where its only tool takes away nothing because
// an equal one is in the very same place.
const ComponentHandler::Work& ComponentHandler::twinOf(const Work& work) {
  ComponentPieces* pieces = siteOf(work.solid).ledger.find(work.feature);
  if (work.tools.size() != 1 || work.tools[0].kind != ToolKind::kCut || pieces == nullptr ||
      pieces->hasPiece(ToolKind::kCut)) {
    return work;
  }
  const auto isTwin = [&](const Work& other) {
    return &other != &work && other.solid == work.solid && other.tools.size() == 1 &&
           other.tools[0].kind == ToolKind::kCut &&
           other.tools[0].body->fingerprint() == work.tools[0].body->fingerprint() &&
           siteOf(work.solid).ledger.find(other.feature)->hasPiece(ToolKind::kCut);
  };
  const auto twin = std::ranges::find_if(m_work, isTwin);
  return twin == m_work.end() ? work : *twin;
}

OdGeExtents3d ComponentHandler::boxOfToolFace(const Work& work, int toolFace) {
  for (const Tool& tool : work.tools) {
    const int face = toolFace - tool.firstFace;
    if (face < 1 || face > static_cast<int>(tool.body->numFaces())) continue;
    return tool.body->subentExtents({OdModelerSubentType::kFace, static_cast<OdUInt32>(face)});
  }
  return {};
}

ComponentHandler::ToolFaces ComponentHandler::toolFaces(const BodyLineage& lineage,
                                                        const Work& work) {
  ToolFaces all;
  const OdModelerBodyPtr now = lineage.bodyAfter(work.solid);
  for (const Tool& tool : work.tools) {
    for (OdUInt32 face = 1; face <= tool.body->numFaces(); ++face) {
      std::vector<OdUInt32> left =
          now ? lineage.facesFrom(tool.body, face, now) : std::vector<OdUInt32>();
      all.emplace_back(tool.firstFace + static_cast<int>(face), std::move(left));
    }
  }
  return all;
}

// The markers of sampled faces after the pass.
void ComponentHandler::matchSamples(const BodyLineage& lineage) {
  const auto marker = [](OdUInt32 face) {
    return static_cast<unsigned>(odSubentToMarker({OdModelerSubentType::kFace, face}));
  };
  for (const Work& work : m_work) {
    const OdModelerBodyPtr before = lineage.bodyBefore(work.solid);
    const OdModelerBodyPtr after = lineage.bodyAfter(work.solid);
    VdmFeatureUpdateDataHelper::MarkerMap markers;
    for (const OdUInt32 face : work.sampledFaces) {
      const std::vector<OdUInt32> images = lineage.facesFrom(before, face, after);
      if (images.empty()) continue;
      std::vector<unsigned>& now = markers[marker(face)];
      std::ranges::transform(images, std::back_inserter(now), marker);
    }
    if (markers.empty()) continue;
    m_helper.fillSampleFeatureMapWithMarkers(work.feature, markers);
    m_helper.fillBaseFaceMapWithMarkers(work.feature, VdmComponentFeature::kBaseFaceTag, markers);
  }
}

// ---- The component's own record

bool ComponentHandler::storeApplied() {
  return std::ranges::all_of(m_work, [this](const Work& work) {
    return m_helper.workFor(work.feature, [&] {
      if (work.condemned) {
        storeHealedOf(work);
      } else {
        storeAppliedOf(work);
      }
    });
  });
}

// Nothing of it is left in the solid, also when it cannot be erased afterwards.
void ComponentHandler::storeHealedOf(const Work& work) {
  m_helper.condemn(work.feature);
  if (!work.heals) return;  // its solid was erased
  const VdmComponentFeaturePtr feature = openForWrite(work.feature);
  if (feature.isNull()) return;
  feature->getDbObject()->assertWriteEnabled();
  feature->forgetApplied();
}

void ComponentHandler::storeAppliedOf(const Work& work) {
  const VdmComponentFeaturePtr feature = openForWrite(work.feature);
  if (feature.isNull()) return;
  feature->getDbObject()->assertWriteEnabled();
  VdmComponentFeature::Placed placed = work.before;
  if (work.applies) {
    placed.transform = work.now;
    const ComponentPieces* pieces = siteOf(work.solid).ledger.find(work.feature);
    placed.box = pieces != nullptr ? pieces->box : decltype(placed.box){};
  }
  // The plane of a base face changes with its solid alone: that was moved or is new then.
  if (!work.wasPlaced || !work.heals) noteBasePlane(*feature, placed);
  feature->setApplied(work.state, placed, work.applies ? work.toolStamp : feature->toolStamp());
  const VdmDbInsertReactorPtr reactor =
      feature->insertReactorId().openAs<VdmDbInsertReactor>(OdDb::kForWrite);
  if (!reactor.isNull()) reactor->setChanged(false);
  if (work.applies) noteWithoutEffect(work);
}

// A component whose tools left no residue: it is off the solid, or in what others took already.
void ComponentHandler::noteWithoutEffect(const Work& work) {
  ComponentPieces* pieces = siteOf(work.solid).ledger.find(work.feature);
  if (m_helper.context() == nullptr) return;
  if (pieces != nullptr &&
      std::ranges::any_of(kToolKinds, [&](ToolKind kind) { return pieces->hasPiece(kind); })) {
    return;
  }
  const OdGeVector3d at = work.now.translation();
  const OdModelerBodyPtr body = bodyOf(work.solid);
  const OdGeExtents3d box = body ? body->extents() : OdGeExtents3d();
  const OdGePoint3d low = withoutNoise(box.minPoint());
  const OdGePoint3d high = withoutNoise(box.maxPoint());
  OdString text;
  text.format(
      L"at (%g, %g, %g) it changes nothing: solid %ls reaches from (%g, %g, %g) to "
      L"(%g, %g, %g)",
      at.x, at.y, at.z, OdString(work.solid.getHandle().ascii()).c_str(), low.x, low.y, low.z,
      high.x, high.y, high.z);
  m_helper.context()->recorder.noteIdle(work.feature, text);
}

}  // namespace vdm_host
