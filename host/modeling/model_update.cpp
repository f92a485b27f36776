// ModelUpdate: brings a drawing up to date with an edit: references, components, features.
#include "host/modeling/model_update.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/modeling/component_query.h"
#include "host/naming/reference_query.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {
namespace {

thread_local ModelUpdate* t_current = nullptr;

VdmComponentFeaturePtr openComponent(const OdDbObjectId& id, OdDb::OpenMode mode) {
  return VdmComponentFeature::cast(VdmFeature::open(id, mode));
}

// Parallel within about 0.06 degrees: what tells a displaced face from a tilted one.
constexpr double kParallelCosine = 1.0 - 5e-7;

}  // namespace

ModelUpdate::ModelUpdate(OdDbDatabase* database, OdSolidJournal& journal, UpdateReport& report)
    : m_database(database),
      m_journal(journal),
      m_report(report),
      m_recorder(report),
      m_outer(std::exchange(t_current, this)),
      m_map(std::make_unique<VdmDependenciesReplacementMap>()),
      m_nextMap(std::make_unique<VdmDependenciesReplacementMap>()) {}

ModelUpdate::~ModelUpdate() { t_current = m_outer; }

ModelUpdate* ModelUpdate::current() { return t_current; }

void ModelUpdate::noteReferences(ReferenceUpdateReport report) {
  m_references.add(std::move(report));
}

const OdDbObjectIdArray& ModelUpdate::componentsAt(const OdDbObjectId& solid) const {
  static const OdDbObjectIdArray kNone;
  const auto found = m_components.find(solid);
  return found == m_components.end() ? kNone : found->second;
}

OdStatus ModelUpdate::run(bool force, bool foreign) {
  m_force = force;
  indexComponents();
  if (OdStatus status = followSolids(); !status.ok()) return status;
  settleReferences();
  if (foreign) settleForeignChanges();
  for (const OdDbObjectId& solid : m_replacedSolids) followBaseFaces(solid);
  enterChangedInserts();
  while (runRound()) {
    if (!m_recorder.failure().ok()) break;
    if (m_report.numRounds < kMaxRounds) continue;
    OdString text;
    text.format(L"the model does not settle: something is still new after %u passes", kMaxRounds);
    return {eModelerError, text};
  }
  if (!m_recorder.failure().ok()) return m_recorder.failure();
  eraseUnwatched();
  separateOpenings();
  dropUnwatched();
  reportReferences();
  return {};
}

void ModelUpdate::indexComponents() {
  m_managers = featureManagers(m_database);
  for (const OdDbObjectId& id : m_managers) {
    const VdmDbFeatureManagerPtr manager = id.safeOpenAs<VdmDbFeatureManager>();
    for (const OdDbObjectId& feature : manager->featureIds()) {
      const VdmComponentFeaturePtr component = openComponent(feature, OdDb::kForRead);
      if (!component.isNull()) m_components[component->solidId()].append(feature);
    }
  }
}

// ---- What the edit did to solids

OdStatus ModelUpdate::followSolids() {
  const std::vector<OdSolidChange> changes(m_journal.changes().begin(), m_journal.changes().end());
  for (const OdSolidChange& change : changes) {
    if (change.solid.isNull() || componentsAt(change.solid).isEmpty()) continue;
    OdStatus status;
    if (change.kind == OdSolidChangeKind::kMoved)
      status = carryAlong(change.solid, change.transform);
    else if (change.kind == OdSolidChangeKind::kBoolean)
      status = excludeTools(change);
    else if (change.kind == OdSolidChangeKind::kBlend)
      status = adoptBlend(change);
    else if (change.kind == OdSolidChangeKind::kReplaced)
      forgetPieces(change.solid);
    if (!status.ok()) return status;
  }
  return {};
}

// An insert that went along already, or somewhere else, is left where it is.
OdStatus ModelUpdate::carryAlong(const OdDbObjectId& solid, const OdGeMatrix3d& transform) {
  if (transform.isIdentity()) return {};
  for (const OdDbObjectId& id : componentsAt(solid)) {
    const VdmComponentFeaturePtr component = openComponent(id, OdDb::kForWrite);
    VdmComponentFeature::Placed placed;
    if (component.isNull() || !component->placed(placed)) continue;
    const OdDbBlockReferencePtr insert =
        component->insertId().openAs<OdDbBlockReference>(OdDb::kForWrite);
    const VdmDbInsertReactorPtr reactor = component->insertReactorId().openAs<VdmDbInsertReactor>();
    const bool wentSomewhere = !reactor.isNull() && reactor->hasChanges() && !insert.isNull() &&
                               !insert->blockTransform().isEqualTo(placed.transform);
    if (!insert.isNull() && !wentSomewhere) insert->transformBy(transform);
    component->getDbObject()->assertWriteEnabled();
    for (const ToolKind kind : {ToolKind::kCut, ToolKind::kFill}) {
      OdModelerBodyPtr piece = component->piece(kind);
      if (!piece) continue;
      OdStatus status = piece->transformed(transform, piece);
      if (!status.ok()) return status;
      component->setPiece(kind, piece);
    }
    placed.transform = transform * placed.transform;
    for (OdGeExtents3d& box : placed.box) box.transformBy(transform);
    placed.basePoint = transform * placed.basePoint;
    placed.baseNormal = transform * placed.baseNormal;
    component->setPlaced(placed);
  }
  return {};
}

std::unique_ptr<ResidueLedger> ModelUpdate::appliedPieces(const OdDbObjectId& solid) const {
  auto ledger = std::make_unique<ResidueLedger>([](const OdDbObjectId& feature, ToolKind kind) {
    return openComponent(feature, OdDb::kForRead)->piece(kind);
  });
  for (const OdDbObjectId& id : componentsAt(solid)) {
    const VdmComponentFeaturePtr component = openComponent(id, OdDb::kForRead);
    VdmComponentFeature::Placed placed;
    if (component.isNull() || component->state() != VdmComponentFeature::kStateApplied) continue;
    if (component->placed(placed)) ledger->add(id).box = placed.box;
  }
  return ledger;
}

void ModelUpdate::storePieces(ResidueLedger& ledger) {
  for (ComponentPieces& pieces : ledger.components()) {
    for (const ToolKind kind : {ToolKind::kCut, ToolKind::kFill}) {
      if (!pieces.isChanged(kind)) continue;
      const VdmComponentFeaturePtr component = openComponent(pieces.feature, OdDb::kForWrite);
      component->getDbObject()->assertWriteEnabled();
      component->setPiece(kind, pieces.pieceOf(kind));
    }
  }
}

OdStatus ModelUpdate::excludeTools(const OdSolidChange& change) {
  const std::unique_ptr<ResidueLedger> ledger = appliedPieces(change.solid);
  for (const OdModelerBodyPtr& tool : change.tools) {
    OdStatus status = ledger->exclude(tool);
    if (status.ok()) continue;
    status.text = L"solid " + OdString(change.solid.getHandle().ascii()) +
                  L": what components took away or added: " + status.text;
    return status;
  }
  storePieces(*ledger);
  return {};
}

// What a fillet or chamfer of an opening's rim took away goes with the opening: it closes without a
// groove. A blend that runs further than half the opening's width beyond it is the part's own.
OdStatus ModelUpdate::adoptBlend(const OdSolidChange& change) {
  OdModelerBodyPtr gone;
  OdStatus status = differenceOf(change.before, change.after, gone);
  if (!status.ok() || !gone) return status;
  const std::unique_ptr<ResidueLedger> ledger = appliedPieces(change.solid);
  for (const OdModelerBodyPtr& part : gone->solids()) {
    const OdGeExtents3d box = part->extents();
    for (ComponentPieces& pieces : ledger->components()) {
      OdGeExtents3d reach = pieces.boxOf(ToolKind::kCut);
      if (!overlap(box, reach) || !pieces.hasPiece(ToolKind::kCut)) continue;
      const OdGeVector3d size = reach.diagonal();
      reach.expandBy(0.5 * std::min({size.x, size.y, size.z}));
      if (!reach.contains(box.minPoint()) || !reach.contains(box.maxPoint())) continue;
      const OdModelerBodyPtr& piece = pieces.pieceOf(ToolKind::kCut);
      OdModelerBodyPtr both;
      status = unionOf(piece, part, both);
      if (!status.ok()) return status;
      if (both->numSolids() > piece->numSolids()) continue;
      pieces.setPiece(ToolKind::kCut, both);
      break;
    }
  }
  storePieces(*ledger);
  return {};
}

void ModelUpdate::forgetPieces(const OdDbObjectId& solid) {
  m_replacedSolids.push_back(solid);
  for (const OdDbObjectId& id : componentsAt(solid)) {
    const VdmComponentFeaturePtr component = openComponent(id, OdDb::kForWrite);
    if (component.isNull()) continue;
    component->getDbObject()->assertWriteEnabled();
    component->forgetApplied();
    const VdmDbInsertReactorPtr reactor =
        component->insertReactorId().openAs<VdmDbInsertReactor>(OdDb::kForWrite);
    if (!reactor.isNull()) reactor->setChanged(true);
  }
}

// ---- References

void ModelUpdate::settleReferences() {
  if (m_journal.changes().empty()) return;
  ReferenceUpdate update(*m_map);
  noteReferences(update.settle(m_journal.changes()));
}

// What changed behind the journal's back shows in the stamps of the solids.
void ModelUpdate::settleForeignChanges() {
  ReferenceUpdate update(*m_map);
  std::unordered_set<OdDbObjectId> known;
  for (const OdDbObjectId& id : vdmu::getAllPersIdManagers(m_database)) {
    const VdmDbPersIdManagerPtr manager = id.openAs<VdmDbPersIdManager>();
    if (manager.isNull()) continue;
    const OdDbObjectIdArray dependencies = manager->objectDependencyIds();
    for (const ResolvedReference& found :
         resolveReferences({dependencies.begin(), dependencies.size()})) {
      if (!found.solid.isNull() && known.insert(found.solid).second)
        noteReferences(update.settleByStamp(found.solid));
    }
  }
}

// A base face that was displaced along its normal takes the inserts that stand on it along.
void ModelUpdate::followBaseFaces(const OdDbObjectId& solid) {
  const OdDb3dSolidPtr object = solid.openAs<OdDb3dSolid>();
  const OdModelerBodyPtr body = object.isNull() ? nullptr : object->body();
  if (!body) return;
  for (const OdDbObjectId& id : componentsAt(solid)) {
    const VdmComponentFeaturePtr component = openComponent(id, OdDb::kForRead);
    VdmComponentFeature::Placed placed;
    if (component.isNull() || !component->placed(placed) || placed.baseNormal.isZeroLength())
      continue;
    for (const OdDbObjectId& base : component->baseFaceDependencies()) {
      const VdmDbObjectDependencyPtr dependency = base.openAs<VdmDbObjectDependency>();
      if (dependency.isNull() || isUnresolvedIndex(dependency->subentId().index())) continue;
      const auto index = static_cast<OdUInt32>(dependency->subentId().index());
      if (!body->hasSubent({OdModelerSubentType::kFace, index})) continue;
      const OdModelerFace& face = body->face(index);
      if (face.kind != OdModelerSurfaceKind::kPlane) continue;
      if (face.axis.dotProduct(placed.baseNormal) < kParallelCosine) continue;
      const double offset = (face.origin - placed.basePoint).dotProduct(placed.baseNormal);
      if (std::abs(offset) <= OdGeTol::kDefault.equalPoint()) continue;
      const OdDbBlockReferencePtr insert =
          component->insertId().openAs<OdDbBlockReference>(OdDb::kForWrite);
      if (!insert.isNull())
        insert->transformBy(OdGeMatrix3d::translation(placed.baseNormal * offset));
    }
  }
}

// ---- The passes

void ModelUpdate::enterChangedInserts() {
  for (const auto& [solid, components] : m_components) {
    const bool solidIsGone = solid.openObject().isNull();
    const bool isReplaced = std::ranges::count(m_replacedSolids, solid) != 0;
    for (const OdDbObjectId& id : components) {
      const VdmComponentFeaturePtr component = openComponent(id, OdDb::kForRead);
      if (component.isNull()) continue;
      const VdmDbInsertReactorPtr reactor =
          component->insertReactorId().openAs<VdmDbInsertReactor>();
      const bool isChanged = solidIsGone || reactor.isNull() || reactor->hasChanges() ||
                             component->insertId().isErased();
      if (!isChanged && !m_force) continue;
      if (isReplaced) {
        m_recorder.setReason(id, OdString(L"its solid was replaced"));
      } else if (!isChanged) {
        m_recorder.setReason(id, toText(VdmUpdateReason::kForced));
      }
      m_map->addTransformedObject(component->insertId(), OdGeMatrix3d(), false);
    }
  }
}

// One pass over every block; true when it left something new.
bool ModelUpdate::runRound() {
  ++m_report.numRounds;
  m_nextMap = std::make_unique<VdmDependenciesReplacementMap>();
  for (const OdDbObjectId& id : m_managers) {
    const VdmDbFeatureManagerPtr manager = id.openAs<VdmDbFeatureManager>(OdDb::kForWrite);
    if (manager.isNull()) continue;
    EPostprocessingOperationType post = PostprocessNone;
    manager->updateFeatures(*m_map, false, false, post);
    if (!m_recorder.failure().ok()) return false;
  }
  eraseUnwatched();
  std::swap(m_map, m_nextMap);
  return !m_map->isEmptyReplacementDeps();
}

// The manager leaves replaced dependencies to the owner of the map.
void ModelUpdate::eraseUnwatched() {
  for (const OdDbObjectId& id : m_map->getAll()) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>(OdDb::kForWrite);
    if (!dependency.isNull() && !dependency->isWatched()) dependency->erase();
  }
}

void ModelUpdate::noteOpening(const OdDbObjectId& solid, const OdDbObjectId& feature,
                              std::vector<std::pair<int, std::vector<OdUInt32>>> faces) {
  Opening& opening = m_openings[solid].emplace_back();
  opening.feature = feature;
  opening.faces.insert(std::make_move_iterator(faces.begin()),
                       std::make_move_iterator(faces.end()));
}

// Openings that met in one face share its reference. One that was done anew lets go what its tools
// did not leave now. Once openings are apart, or one of them is closed, the others let go what the
// tools of those left.
void ModelUpdate::separateOpenings() {
  const auto isSplit = [](const ReferenceChange& change) {
    return change.grade == ReferenceGrade::kSplit && change.replacedBy.size() > 1;
  };
  const auto hasClosed = [](const auto& row) {
    return std::ranges::any_of(row.second, [](const Opening& o) { return o.faces.empty(); });
  };
  const bool concernsAll = std::ranges::any_of(m_references.changes, isSplit) ||
                           std::ranges::any_of(m_openings, hasClosed);
  for (const auto& [solid, openings] : m_openings) {
    std::unordered_set<OdDbObjectId> doneAnew;
    for (const Opening& own : openings) {
      doneAnew.insert(own.feature);
      dropOpeningFaces(own.feature, [&own](int toolFace, OdUInt32 face) {
        const auto found = own.faces.find(toolFace);
        return found == own.faces.end() || std::ranges::count(found->second, face) == 0;
      });
    }
    if (!concernsAll) continue;
    std::unordered_set<OdUInt32> left;
    for (const Opening& opening : openings) {
      for (const auto& [toolFace, faces] : opening.faces) left.insert(faces.begin(), faces.end());
    }
    for (const OdDbObjectId& id : componentsAt(solid)) {
      if (doneAnew.contains(id)) continue;
      dropOpeningFaces(id, [&left](int, OdUInt32 face) { return left.contains(face); });
    }
  }
}

// Lets the component's references to faces of openings go for which `isForeign` holds.
void ModelUpdate::dropOpeningFaces(const OdDbObjectId& feature,
                                   const std::function<bool(int, OdUInt32)>& isForeign) {
  const VdmComponentFeaturePtr component = openComponent(feature, OdDb::kForRead);
  if (component.isNull()) return;
  for (const auto& [toolFace, dependencies] : component->openingDependencies()) {
    OdDbObjectIdArray foreign;
    for (const OdDbObjectId& reference : dependencies) {
      const VdmDbObjectDependencyPtr dependency = reference.openAs<VdmDbObjectDependency>();
      if (dependency.isNull() || isUnresolvedIndex(dependency->subentId().index())) continue;
      if (isForeign(toolFace, static_cast<OdUInt32>(dependency->subentId().index())))
        foreign.append(reference);
    }
    if (foreign.isEmpty()) continue;
    const VdmComponentFeaturePtr writer = openComponent(feature, OdDb::kForWrite);
    writer->getDbObject()->assertWriteEnabled();
    writer->dropOpening(toolFace, foreign);
    m_leavesUnwatched = true;
  }
}

// A feature that the pass erased leaves its references behind.
void ModelUpdate::dropUnwatched() {
  m_leavesUnwatched |= std::ranges::any_of(m_report.features, [](const FeatureReport& feature) {
    return feature.outcome == FeatureOutcome::kCondemned;
  });
  if (!m_leavesUnwatched) return;
  for (const OdDbObjectId& id : m_managers) {
    const VdmDbFeatureManagerPtr manager = id.openAs<VdmDbFeatureManager>();
    if (!manager.isNull()) dropUnwatchedReferences(manager->blockId());
  }
}

// Of those that are gone, only what stands for them now is told.
void ModelUpdate::reportReferences() {
  for (const ReferenceChange& change : m_references.changes) {
    if (change.replacedBy.isEmpty() && change.dependency.isErased()) continue;
    ReferenceReport entry;
    entry.reference = change.dependency;
    entry.before = gradeName(change.gradeBefore);
    entry.after = gradeName(change.grade);
    entry.text = causeName(change.cause);
    const OdDbObjectId feature = m_database->getOdDbObjectId(change.feature);
    if (const VdmFeaturePtr object = VdmFeature::open(feature); !object.isNull())
      entry.text += L" by " + object->name();
    entry.needsAttention = !isResolved(change.grade) && isResolved(change.gradeBefore);
    entry.replacedBy = change.replacedBy;
    m_report.references.push_back(std::move(entry));
  }
}

}  // namespace vdm_host
