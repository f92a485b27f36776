// UpdateHelper: references, residues and placements once the solids are done.
#include <algorithm>
#include <iterator>

#include "host/modeling/model_update.h"
#include "host/modeling/update_helper_site.h"
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
  return VdmComponentFeature::cast(VdmFeature::open(feature, OdDb::kForWrite));
}

// The subentity that a dependency leads to; 0 when there is none.
OdUInt32 resolvedIndex(const OdDbObjectId& dependency) {
  const VdmDbObjectDependencyPtr object = dependency.openAs<VdmDbObjectDependency>();
  if (object.isNull() || isUnresolvedIndex(object->subentId().index())) return 0;
  return static_cast<OdUInt32>(object->subentId().index());
}

void noteBasePlane(const VdmComponentFeature& feature, VdmComponentFeature::Placed& placed) {
  placed.baseNormal = OdGeVector3d();
  const OdModelerBodyPtr body = bodyOf(feature.solidId());
  for (const OdDbObjectId& id : feature.baseFaceDependencies()) {
    const OdUInt32 index = resolvedIndex(id);
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
  const VdmComponentFeaturePtr component =
      VdmComponentFeature::cast(VdmFeature::open(feature).get());
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

std::span<const OdSolidChange> UpdateHelper::changes() const {
  return m_journal->changes().subspan(m_journalStart);
}

void UpdateHelper::prepareInit() {
  if (failed() || m_work.empty()) return;
  storePieces();
  settleReferences();
  storeApplied();
}

void UpdateHelper::storePieces() {
  for (const std::unique_ptr<Site>& site : m_sites) {
    for (ComponentPieces& pieces : site->ledger.components()) {
      if (!pieces.isChanged(ToolKind::kCut) && !pieces.isChanged(ToolKind::kFill)) continue;
      const VdmComponentFeaturePtr feature = openForWrite(pieces.feature);
      if (feature.isNull()) continue;
      feature->getDbObject()->assertWriteEnabled();
      for (const ToolKind kind : {ToolKind::kCut, ToolKind::kFill}) {
        if (pieces.isChanged(kind)) feature->setPiece(kind, pieces.pieceOf(kind));
      }
    }
  }
}

// ---- References

// Faces of the solid that come from a face of the component's tools.
std::vector<OdUInt32> UpdateHelper::facesOf(const BodyLineage& lineage, const Work& work,
                                            int toolFace) const {
  for (const Tool& tool : work.tools) {
    const int face = toolFace - tool.firstFace;
    if (face < 1 || face > static_cast<int>(tool.body->numFaces())) continue;
    const OdModelerBodyPtr now = lineage.bodyAfter(work.solid);
    if (!now) return {};
    return lineage.facesFrom(tool.body, static_cast<OdUInt32>(face), now);
  }
  return {};
}

void UpdateHelper::tellOpenings(ReferenceUpdate& update, const BodyLineage& lineage,
                                const Work& work) const {
  const OdDbHandle feature = work.feature.getHandle();
  FaceRespawn respawn;
  respawn.feature = feature;
  if (work.wasPlaced && work.applies) respawn.motion = work.now * work.before.transform.inverse();
  std::map<int, std::vector<OdUInt32>> oldFaces;
  for (const auto& [toolFace, face] : work.oldFaces) oldFaces[toolFace].push_back(face);
  for (const Tool& tool : work.tools) {
    update.nameTool(tool.body, feature);
    for (OdUInt32 face = 1; face <= tool.body->numFaces(); ++face)
      oldFaces.try_emplace(tool.firstFace + static_cast<int>(face));
  }
  for (const auto& [toolFace, faces] : oldFaces) {
    respawn.toolFace = static_cast<OdUInt32>(toolFace);
    respawn.newFaces = facesOf(lineage, work, toolFace);
    respawn.oldFace = 0;
    if (faces.empty() && !respawn.newFaces.empty()) update.addRespawn(work.solid, respawn);
    for (const OdUInt32 face : faces) {
      respawn.oldFace = face;
      update.addRespawn(work.solid, respawn);
    }
  }
}

void UpdateHelper::settleReferences() {
  VdmDependenciesReplacementMap ownMap;
  ReferenceUpdate update(m_update != nullptr ? m_update->nextMap() : ownMap);
  const BodyLineage lineage(changes());
  for (const Work& work : m_work) tellOpenings(update, lineage, work);
  ReferenceUpdateReport report = update.settle(changes());
  if (m_update != nullptr) m_update->noteReferences(std::move(report));
  referToOpenings(lineage);
  noteOpenings(lineage);
  matchSamples(lineage);
}

void UpdateHelper::noteOpenings(const BodyLineage& lineage) const {
  if (m_update == nullptr) return;
  for (const OdDbObjectId& solid : lineage.solids()) m_update->forgetOpenings(solid);
  for (const Work& work : m_work) {
    if (!work.condemned) m_update->noteOpening(work.solid, work.feature, toolFaces(lineage, work));
  }
}

// Makes references to the faces that the tools left and that no reference stands for yet.
void UpdateHelper::referToOpenings(const BodyLineage& lineage) {
  std::vector<const Work*> extended;
  {
    // References are made when the transaction goes.
    const VdmDbFeatureManagerTransactionPtr transaction =
        VdmDbFeatureManagerTransaction::createObject();
    for (const Work& work : m_work) {
      if (!work.applies || work.condemned) continue;
      const VdmComponentFeaturePtr feature = openForWrite(work.feature);
      if (feature.isNull()) continue;
      const std::map<int, OdDbObjectIdArray> known = feature->openingDependencies();
      bool isExtended = false;
      for (const auto& [toolFace, faces] : toolFaces(lineage, work)) {
        std::vector<OdUInt32> missing = faces;
        if (const auto have = known.find(toolFace); have != known.end()) {
          for (const OdDbObjectId& id : have->second) std::erase(missing, resolvedIndex(id));
        }
        OdDbFullSubentPathArray paths;
        for (const OdUInt32 index : missing)
          paths.append(OdDbFullSubentPath(work.solid, OdDbSubentId(OdDb::kFaceSubentType, index)));
        transaction->append(feature.get(), paths, VdmComponentFeature::kOpeningMask, toolFace);
        isExtended |= !missing.empty();
      }
      if (isExtended) extended.push_back(&work);
    }
  }
  for (const Work* work : extended) noteBirths(work->feature);
}

// The faces that each face of the component's tools left in the solid, by its number.
std::vector<std::pair<int, std::vector<OdUInt32>>> UpdateHelper::toolFaces(
    const BodyLineage& lineage, const Work& work) const {
  std::vector<std::pair<int, std::vector<OdUInt32>>> all;
  for (const Tool& tool : work.tools) {
    for (int face = 1; face <= static_cast<int>(tool.body->numFaces()); ++face) {
      const int toolFace = tool.firstFace + face;
      all.emplace_back(toolFace, facesOf(lineage, work, toolFace));
    }
  }
  return all;
}

// The markers of sampled faces after the pass.
void UpdateHelper::matchSamples(const BodyLineage& lineage) {
  const auto marker = [](OdUInt32 face) {
    return static_cast<unsigned>(odSubentToMarker({OdModelerSubentType::kFace, face}));
  };
  for (const Work& work : m_work) {
    const OdModelerBodyPtr before = lineage.bodyBefore(work.solid);
    const OdModelerBodyPtr after = lineage.bodyAfter(work.solid);
    MarkerMap markers;
    for (const OdUInt32 face : work.sampledFaces) {
      const std::vector<OdUInt32> images = lineage.facesFrom(before, face, after);
      if (images.empty()) continue;
      std::vector<unsigned>& now = markers[marker(face)];
      std::ranges::transform(images, std::back_inserter(now), marker);
    }
    if (markers.empty()) continue;
    fillSampleFeatureMapWithMarkers(work.feature, markers);
    fillBaseFaceMapWithMarkers(work.feature, VdmComponentFeature::kBaseFaceTag, markers);
  }
}

// ---- The component's own record

void UpdateHelper::storeApplied() {
  for (const Work& work : m_work) {
    if (work.condemned) continue;
    const VdmComponentFeaturePtr feature = openForWrite(work.feature);
    if (feature.isNull()) continue;
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
  }
}

}  // namespace vdm_host
