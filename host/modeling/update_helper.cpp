// UpdateHelper: planning, healing and cutting. The results are in update_helper_results.cpp.
#include "host/modeling/update_helper.h"

#include <algorithm>

#include "host/modeling/component_query.h"
#include "host/modeling/model_update.h"
#include "host/modeling/update_helper_site.h"
#include "host/naming/reference_record.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/update/vdm_feature_subents_to_remove.h"
#include "vdm_db/update/vdm_feature_update_data.h"

namespace vdm_host {
namespace {

thread_local UpdateHelper* t_current = nullptr;

OdModelerBodyPtr storedPiece(const OdDbObjectId& feature, ToolKind kind) {
  const VdmComponentFeaturePtr component =
      VdmComponentFeature::cast(VdmFeature::open(feature).get());
  return component.isNull() ? nullptr : component->piece(kind);
}

// Faces that references of the feature stand for at present, with the number of the tool's face.
std::vector<std::pair<int, OdUInt32>> presentFaces(const VdmComponentFeature& feature) {
  std::vector<std::pair<int, OdUInt32>> faces;
  for (const auto& [tag, dependencies] : feature.openingDependencies()) {
    for (const OdDbObjectId& id : dependencies) {
      const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
      if (dependency.isNull() || isUnresolvedIndex(dependency->subentId().index())) continue;
      faces.emplace_back(tag, static_cast<OdUInt32>(dependency->subentId().index()));
    }
  }
  return faces;
}

OdUInt32 totalFaces(const BlockTools& tools) {
  OdUInt32 total = 0;
  for (const auto& bodies : tools.bodies) {
    for (const OdModelerBodyPtr& body : bodies) total += body->numFaces();
  }
  return total;
}

}  // namespace

UpdateHelper::UpdateHelper(VdmFeatureUpdateData& data)
    : VdmFeatureUpdateDataHelper(data),
      m_update(ModelUpdate::current()),
      m_outer(std::exchange(t_current, this)) {
  if (OdSolidJournal::current() == nullptr) m_ownJournal.emplace();
  m_journal = OdSolidJournal::current();
  m_journalStart = m_journal->mark();
  if (m_update != nullptr) data.setObserver(&m_update->recorder());
}

UpdateHelper::~UpdateHelper() { t_current = m_outer; }

UpdateHelper* UpdateHelper::current() { return t_current; }

bool UpdateHelper::failed() const {
  return m_failed || (m_update != nullptr && !m_update->recorder().failure().ok());
}

bool UpdateHelper::fail(const OdDbObjectId& feature, OdStatus status) {
  m_failed = true;
  if (const Work* work = findWork(feature); work != nullptr)
    status.text = L"solid " + OdString(work->solid.getHandle().ascii()) + L": " + status.text;
  if (m_update != nullptr) m_update->recorder().noteFailure(feature, std::move(status));
  return false;
}

// ---- Planning

UpdateHelper::Work* UpdateHelper::findWork(const OdDbObjectId& feature) {
  const auto found = m_workIndex.find(feature);
  return found == m_workIndex.end() ? nullptr : &m_work[found->second];
}

bool UpdateHelper::worked(const OdDbObjectId& feature) const {
  return !failed() && m_workIndex.contains(feature);
}

ComponentPlan UpdateHelper::plan(const VdmComponentFeature& feature) {
  Work work;
  work.feature = feature.objectId();
  work.solid = feature.solidId();
  work.wasPlaced = feature.placed(work.before);
  work.heals = feature.state() == VdmComponentFeature::kStateApplied;
  planAt(feature, work);
  if (!work.heals && !work.applies && !work.condemned && work.state == feature.state())
    return ComponentPlan::kNothing;
  const bool condemned = work.condemned;
  if (work.heals || work.applies) enterSite(feature, work);
  m_workIndex[work.feature] = m_work.size();
  m_work.push_back(std::move(work));
  return condemned ? ComponentPlan::kCondemned : ComponentPlan::kWork;
}

// What is given back is read now: a condemned component is erased before solids are healed.
void UpdateHelper::enterSite(const VdmComponentFeature& feature, Work& work) {
  Site& site = siteOf(work.solid);
  if (!work.heals) return;
  work.oldFaces = presentFaces(feature);
  work.pieceIsLost = feature.hasLostPiece();
  ComponentPieces& pieces = site.ledger.add(work.feature);
  pieces.heals = true;
  pieces.box = work.before.box;
  for (const ToolKind kind : {ToolKind::kCut, ToolKind::kFill}) (void)pieces.pieceOf(kind);
}

// Fills in what the insert asks for; a component that is as it is to be neither heals nor applies.
void UpdateHelper::planAt(const VdmComponentFeature& feature, Work& work) {
  work.state = feature.state();
  if (work.solid.openAs<OdDb3dSolid>().isNull()) {
    work.condemned = true;
    work.heals = false;
    return;
  }
  const OdDbBlockReferencePtr insert = feature.insertId().openAs<OdDbBlockReference>();
  if (insert.isNull()) {
    work.condemned = true;
    return;
  }
  if (insert->layer().iCompare(OdString(VdmComponentFeature::kSuppressLayer)) == 0) {
    work.state = VdmComponentFeature::kStateSuppressed;
    return;
  }
  work.now = insert->blockTransform();
  work.toolStamp = m_tools.of(insert->blockTableRecord()).stamp;
  const bool isForced = m_update != nullptr && m_update->isForced(work.feature);
  const bool isCurrent = work.heals && work.wasPlaced && work.toolStamp == feature.toolStamp() &&
                         work.now.isEqualTo(work.before.transform);
  work.state = VdmComponentFeature::kStateApplied;
  if (isCurrent && !isForced) {
    work.heals = false;
    return;
  }
  work.applies = true;
}

bool UpdateHelper::getMatchingFaces(VdmUpdateFeatureInterface* /*updateInterface*/,
                                    OdDbObjectId feature,
                                    const VdmFeatureUpdateDataUtils::OpeningIds& /*opening*/,
                                    VdmFeatureUpdateDataUtils::FeatureArgs& args) {
  const VdmComponentFeaturePtr component =
      VdmComponentFeature::cast(VdmFeature::open(feature).get());
  if (component.isNull()) return false;
  const ComponentPlan due = plan(*component);
  if (due == ComponentPlan::kCondemned) updateData().appendFeatureToRemove(feature);
  if (due != ComponentPlan::kWork) {
    const VdmDbInsertReactorPtr reactor = component->insertReactorId().openAs<VdmDbInsertReactor>();
    if (due == ComponentPlan::kNothing && !reactor.isNull() && reactor->hasChanges())
      reactor->setChanged(false);
    return false;
  }
  Work& work = *findWork(feature);
  const auto sample = [&work](OdUInt32 face) -> VdmFeatureUpdateDataUtils::Face {
    work.sampledFaces.push_back(face);
    const auto marker = static_cast<OdUInt32>(odSubentToMarker({OdModelerSubentType::kFace, face}));
    return {marker, marker};
  };
  for (const auto& [tag, face] : work.oldFaces) args.sampleFaces[tag].append(sample(face));
  appendSampleFeature(feature, args.sampleFaces);
  for (const OdDbObjectId& id : component->baseFaceDependencies()) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull() || isUnresolvedIndex(dependency->subentId().index())) continue;
    args.subtrBaseFaces[VdmComponentFeature::kBaseFaceTag] =
        sample(static_cast<OdUInt32>(dependency->subentId().index()));
  }
  if (!args.subtrBaseFaces.empty()) appendSubtrBaseFace(feature, args.subtrBaseFaces);
  return true;
}

void UpdateHelper::collectForEntity(const OdDbObjectId& /*entity*/, const IdSet& /*features*/) {}
void UpdateHelper::collectDependentsForEntity(const OdDbObjectId& /*entity*/,
                                              const IdSet& /*features*/) {}

// Healing is done for whole solids, before the cuts.
bool UpdateHelper::removeSubents(const OdDbObjectId& entityId, OdSmartPtr<OdDbEntity>& /*entity*/,
                                 VdmFeatureSubentsToRemove& record, bool /*flag*/) {
  const bool heals =
      std::ranges::any_of(m_sites, [&](const auto& s) { return s->solid == entityId; });
  if (heals) record.subents.clear();
  return heals;
}

bool UpdateHelper::clearEntity(OdSmartPtr<OdDbEntity>& /*entity*/) { return false; }

// ---- Tools

bool UpdateHelper::addCopiesToUpdateData(VdmUpdateFeatureInterface* /*updateInterface*/,
                                         OdDbObjectId feature, VdmOpeningEntities& entities) {
  Work* work = findWork(feature);
  if (work == nullptr || !work->applies) return false;
  const BlockTools& tools = m_tools.of(entities.insert->blockTableRecord());
  if (totalFaces(tools) == 0) {
    fail(feature,
         {eNotApplicable, OdString(L"its block has no solids for subtracting or uniting")});
    return false;
  }
  const OdStatus status = makeTools(*work, tools);
  return status.ok() || fail(feature, status);
}

// Copies of the tools in the solid's place. Cuts are queued; fills wait for their turn.
OdStatus UpdateHelper::makeTools(Work& work, const BlockTools& tools) {
  int faces = 0;
  for (const ToolKind kind : {ToolKind::kCut, ToolKind::kFill}) {
    for (const OdModelerBodyPtr& body : tools.of(kind)) {
      Tool tool{work.feature, kind, nullptr, faces};
      OdStatus status = body->transformed(work.now, tool.body);
      if (!status.ok()) return status;
      faces += static_cast<int>(body->numFaces());
      if (kind == ToolKind::kCut) {
        OdDb3dSolidPtr copy = OdDb3dSolid::createObject();
        copy->setBody(tool.body);
        appendSolidToSubtract(work.feature, work.solid, copy);
        m_toolOf[copy.get()] = tool;
      }
      work.tools.push_back(std::move(tool));
    }
  }
  return {};
}

void UpdateHelper::addGrossData(VdmUpdateFeatureInterface* /*updateInterface*/,
                                const OdDbObjectId& feature, OdSmartPtr<OdDbBlockReference> insert,
                                OdSmartPtr<OdDb3dSolid> solid) {
  const BlockTools& tools = m_tools.of(insert->blockTableRecord());
  const OdGeMatrix3d placement = insert->blockTransform();
  for (const ToolKind kind : {ToolKind::kCut, ToolKind::kFill}) {
    Queue& queue = kind == ToolKind::kCut ? subtractorsOnLayers() : unitersOnLayers();
    for (const OdModelerBodyPtr& body : tools.of(kind)) {
      OdModelerBodyPtr placed;
      if (!body->transformed(placement, placed).ok()) continue;
      OdDb3dSolidPtr copy = OdDb3dSolid::createObject();
      copy->setBody(placed);
      appendSolid(feature, solid->objectId(), copy, queue);
    }
  }
}

// ---- Solids

UpdateHelper::Site& UpdateHelper::siteOf(const OdDbObjectId& solid) {
  for (const std::unique_ptr<Site>& site : m_sites) {
    if (site->solid == solid) return *site;
  }
  return *m_sites.emplace_back(std::make_unique<Site>(solid, storedPiece));
}

const OdDbObjectIdArray& UpdateHelper::componentsAt(const OdDbObjectId& solid) {
  if (m_update != nullptr) return m_update->componentsAt(solid);
  m_componentsOfSite = componentsOfSolid(solid);
  return m_componentsOfSite;
}

// The components that stay; those that heal were entered when they were planned.
void UpdateHelper::fillSite(Site& site) {
  if (site.isFilled) return;
  site.isFilled = true;
  for (const OdDbObjectId& id : componentsAt(site.solid)) {
    if (const Work* work = findWork(id); work != nullptr && work->heals) continue;
    const VdmComponentFeaturePtr component = VdmComponentFeature::cast(VdmFeature::open(id).get());
    VdmComponentFeature::Placed placed;
    if (component.isNull() || component->state() != VdmComponentFeature::kStateApplied ||
        !component->placed(placed))
      continue;
    site.ledger.add(id).box = placed.box;
  }
}

OdStatus UpdateHelper::healSite(Site& site) {
  OdDb3dSolidPtr solid = site.solid.openAs<OdDb3dSolid>(OdDb::kForWrite);
  if (solid.isNull()) return {eNotOpenForWrite, OdString(L"the solid cannot be opened for write")};
  for (Work& work : m_work) {
    if (work.solid != site.solid || !work.heals) continue;
    if (OdStatus status = healWithoutResidue(work, *solid); !status.ok()) return status;
    if (m_update != nullptr)
      m_update->recorder().noteStep(work.feature, site.solid, SolidAction::kHealed);
  }
  return site.ledger.heal(*solid);
}

// An opening whose residue is lost: its faces are taken off, and the modeller closes the rest.
OdStatus UpdateHelper::healWithoutResidue(const Work& work, OdDb3dSolid& solid) {
  if (!work.pieceIsLost || work.oldFaces.empty()) return {};
  std::vector<OdUInt32> faces;
  for (const auto& [tag, face] : work.oldFaces) faces.push_back(face);
  OdStatus status = solid.removeFaces(faces);
  if (!status.ok())
    status.text =
        OdString(L"its residue is lost and its faces cannot be taken off: ") + status.text;
  return status;
}

// Whether a component that stays meets what comes or goes with the work: whatever was healed there
// would lie against its walls, and what is added would close its cuts.
bool UpdateHelper::meets(const Work& work, ComponentPieces& stays) {
  const OdGeExtents3d& cut = stays.boxOf(ToolKind::kCut);
  if (work.heals) {
    for (const OdGeExtents3d& box : work.before.box) {
      if (overlap(box, cut) || overlap(box, stays.boxOf(ToolKind::kFill))) return true;
    }
  }
  return std::ranges::any_of(work.tools, [&cut](const Tool& tool) {
    return tool.kind == ToolKind::kFill && overlap(tool.body->extents(), cut);
  });
}

// Components that meet those which heal are healed with them and done anew, and so on: a solid is
// only ever healed by whole openings, whose closing leaves no trace.
OdStatus UpdateHelper::widen(Site& site) {
  for (std::size_t i = 0; i < m_work.size(); ++i) {
    if (m_work[i].solid != site.solid) continue;
    for (ComponentPieces& pieces : site.ledger.components()) {
      if (pieces.heals || !meets(m_work[i], pieces)) continue;
      if (OdStatus status = doAnew(pieces); !status.ok()) return status;
    }
  }
  return {};
}

OdStatus UpdateHelper::doAnew(ComponentPieces& pieces) {
  const VdmComponentFeaturePtr component =
      VdmComponentFeature::cast(VdmFeature::open(pieces.feature).get());
  const OdDbBlockReferencePtr insert = component->insertId().openAs<OdDbBlockReference>();
  Work work;
  if (insert.isNull() || !component->placed(work.before)) return {};
  work.feature = pieces.feature;
  work.solid = component->solidId();
  work.wasPlaced = work.heals = work.applies = true;
  work.now = work.before.transform;
  work.toolStamp = component->toolStamp();
  work.oldFaces = presentFaces(*component);
  work.pieceIsLost = component->hasLostPiece();
  pieces.heals = true;
  OdStatus status = makeTools(work, m_tools.of(insert->blockTableRecord()));
  m_workIndex[work.feature] = m_work.size();
  m_work.push_back(std::move(work));
  return status;
}

OdStatus UpdateHelper::addFills(Site& site) {
  std::vector<OdDbObjectId> features;
  std::vector<OdModelerBodyPtr> tools;
  for (const Work& work : m_work) {
    for (const Tool& tool : work.tools) {
      if (work.solid != site.solid || tool.kind != ToolKind::kFill) continue;
      features.push_back(work.feature);
      tools.push_back(tool.body);
    }
  }
  if (tools.empty()) return {};
  OdDb3dSolidPtr solid = site.solid.openAs<OdDb3dSolid>(OdDb::kForWrite);
  OdStatus status = site.ledger.takeFills(solid->body(), features, tools);
  if (status.ok()) status = solid->booleanOper(OdModelerBooleanKind::kUnite, tools);
  if (!status.ok() || m_update == nullptr) return status;
  for (const OdDbObjectId& id : features)
    m_update->recorder().noteStep(id, site.solid, SolidAction::kAdded);
  return {};
}

// Heals, then adds: cuts come after all fills.
bool UpdateHelper::prepareForSubtract() {
  if (m_failed) return false;
  for (std::size_t i = 0; i < m_sites.size(); ++i) {
    Site& site = *m_sites[i];
    fillSite(site);
    OdStatus status = widen(site);
    if (status.ok()) status = healSite(site);
    if (status.ok()) status = addFills(site);
    if (status.ok()) continue;
    const auto culprit = std::ranges::find(m_work, site.solid, &Work::solid);
    return fail(culprit == m_work.end() ? OdDbObjectId() : culprit->feature, std::move(status));
  }
  return true;
}

// Writes down what the tools take away; they are united in one operation.
bool UpdateHelper::checkTools(OdSmartPtr<OdDb3dSolid>& solid, Tools& tools) {
  Site& site = siteOf(solid->objectId());
  std::vector<OdDbObjectId> features;
  std::vector<OdModelerBodyPtr> bodies;
  Tools known;
  for (const OdDb3dSolidPtr& tool : tools) {
    const auto found = m_toolOf.find(tool.get());
    if (found == m_toolOf.end()) continue;
    features.push_back(found->second.feature);
    bodies.push_back(found->second.body);
    known.append(tool);
  }
  if (features.empty()) return !tools.isEmpty();
  OdStatus status = site.ledger.takeCuts(solid->body(), features, bodies);
  if (!status.ok()) return fail(features.front(), std::move(status));
  // What takes nothing away is no tool.
  tools.clear();
  for (OdUInt32 i = 0; i < known.size(); ++i) {
    if (site.ledger.find(features[i])->hasPiece(ToolKind::kCut)) tools.append(known[i]);
  }
  if (tools.size() < 2) return !tools.isEmpty();
  std::vector<OdModelerBodyPtr> others;
  for (OdUInt32 i = 1; i < tools.size(); ++i) others.push_back(tools[i]->body());
  status = tools[0]->booleanOper(OdModelerBooleanKind::kUnite, others);
  tools.resize(1);
  return status.ok() || fail(features.front(), std::move(status));
}

}  // namespace vdm_host
