// ComponentHandler: what each component needs in a pass, and its tools.
#include "host/modeling/component_handler.h"

#include <algorithm>

#include "host/modeling/component_query.h"
#include "host/modeling/model_update_context.h"
#include "host/modeling/update_helper.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/common/vdm_constants.h"

namespace vdm_host {
namespace {

OdModelerBodyPtr storedPiece(const OdDbObjectId& feature, ToolKind kind) {
  const VdmComponentFeaturePtr component = openComponent(feature);
  return component.isNull() ? nullptr : component->piece(kind);
}

OdUInt32 totalFaces(const BlockTools& tools) {
  OdUInt32 total = 0;
  for (const auto& bodies : tools.bodies) {
    for (const OdModelerBodyPtr& body : bodies) total += body->numFaces();
  }
  return total;
}

BaseFace baseFaceOf(const OdDbObjectId& feature, const OdDbObjectId& solid) {
  const VdmComponentFeaturePtr component = openComponent(feature);
  const OdDb3dSolidPtr object = solid.openAs<OdDb3dSolid>();
  const OdModelerBodyPtr body = object.isNull() ? nullptr : object->body();
  BaseFace base;
  if (component.isNull() || !body) return base;
  for (const OdDbObjectId& id : component->baseFaceDependencies()) {
    base.kind = BaseKind::kOther;
    const OdUInt32 index = resolvedIndexOf(id);
    if (!body->hasSubent({OdModelerSubentType::kFace, index})) continue;
    const OdModelerFace& face = body->face(index);
    if (face.kind == OdModelerSurfaceKind::kPlane) {
      return {BaseKind::kPlane, face.origin, face.axis};
    }
  }
  return base;
}

OdDb3dSolidPtr newSolid(const OdModelerBodyPtr& body) {
  OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
  solid->setBody(body);
  return solid;
}

// What cannot be written is known before anything is done for the component, which fails alone
// then.
void assertWritable(const VdmComponentFeature& feature) {
  feature.objectId().safeOpenObject(OdDb::kForWrite)->assertWriteEnabled();
  const OdDbObjectPtr reactor = feature.insertReactorId().openObject(OdDb::kForWrite);
  if (!reactor.isNull()) reactor->assertWriteEnabled();
}

// The pass leaves the component alone: what its insert reported is dealt with.
void clearChange(const VdmComponentFeature& component) {
  const VdmDbInsertReactorPtr reactor = component.insertReactorId().openAs<VdmDbInsertReactor>();
  if (!reactor.isNull() && reactor->hasChanges()) reactor->setChanged(false);
}

}  // namespace

ComponentHandler::ComponentHandler(UpdateHelper& helper) : m_helper(helper) {}
ComponentHandler::~ComponentHandler() = default;

ComponentHandler::Work* ComponentHandler::findWork(const OdDbObjectId& feature) {
  const auto found = m_workIndex.find(feature);
  return found == m_workIndex.end() ? nullptr : &m_work[found->second];
}

void ComponentHandler::addWork(Work work) {
  m_workIndex[work.feature] = m_work.size();
  m_work.push_back(std::move(work));
}

void ComponentHandler::indexWork() {
  m_workIndex.clear();
  for (std::size_t i = 0; i < m_work.size(); ++i) m_workIndex[m_work[i].feature] = i;
}

void ComponentHandler::withdraw(const OdDbObjectId& feature) {
  std::erase_if(m_work, [&](const Work& work) { return work.feature == feature; });
  indexWork();
  for (const std::unique_ptr<Site>& site : m_sites) {
    std::erase_if(site->ledger.components(),
                  [&](const ComponentPieces& pieces) { return pieces.feature == feature; });
  }
  std::erase_if(m_toolOf, [&](const auto& entry) { return entry.second.feature == feature; });
}

ComponentHandler::Site& ComponentHandler::siteOf(const OdDbObjectId& solid) {
  for (const std::unique_ptr<Site>& site : m_sites) {
    if (site->solid == solid) return *site;
  }
  return *m_sites.emplace_back(std::make_unique<Site>(solid, storedPiece));
}

bool ComponentHandler::takesOver(const OdDbObjectId& solid) const {
  return std::ranges::any_of(m_sites, [&](const auto& site) { return site->solid == solid; });
}

bool ComponentHandler::worked(const OdDbObjectId& feature) const {
  return m_workIndex.contains(feature);
}

bool ComponentHandler::fail(const OdDbObjectId& feature, OdStatus status) {
  if (const Work* work = findWork(feature); work != nullptr) {
    status.text = L"solid " + OdString(work->solid.getHandle().ascii()) + L": " + status.text;
  }
  return m_helper.fail(feature, std::move(status));
}

// ---- Planning

bool ComponentHandler::matchFaces(const OdDbObjectId& feature,
                                  VdmFeatureUpdateDataUtils::FeatureArgs& args) {
  const VdmComponentFeaturePtr component = openComponent(feature);
  if (component.isNull()) return false;
  switch (plan(*component)) {
    case Plan::kNothing:
      clearChange(*component);
      return false;
    case Plan::kCondemned:  // after settle(): a solid that cannot be healed keeps its component
      return false;
    case Plan::kWork:
      sampleFaces(*component, *findWork(feature), args);
      return true;
  }
  return false;
}

ComponentHandler::Plan ComponentHandler::plan(const VdmComponentFeature& feature) {
  Work work;
  work.feature = feature.objectId();
  work.solid = feature.solidId();
  work.wasPlaced = feature.placed(work.before);
  work.heals = feature.state() == VdmComponentFeature::kStateApplied;
  planAt(feature, work);
  if (!work.heals && !work.applies && !work.condemned && work.state == feature.state()) {
    return Plan::kNothing;
  }
  const bool condemned = work.condemned;
  if (!condemned) assertWritable(feature);
  if (work.heals || work.applies) enterSite(feature, work);
  addWork(std::move(work));
  return condemned ? Plan::kCondemned : Plan::kWork;
}

// Fills in what the insert asks for; a component that is as it is to be neither heals nor applies.
void ComponentHandler::planAt(const VdmComponentFeature& feature, Work& work) {
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
  if (insert->layer().iCompare(kVdmSuppressLayer) == 0) {
    work.state = VdmComponentFeature::kStateSuppressed;
    return;
  }
  work.now = insert->blockTransform();
  work.toolStamp = m_tools.of(insert->blockTableRecord(), feature).stamp;
  const bool isForced =
      m_helper.context() != nullptr && m_helper.context()->takeForced(work.feature);
  const bool isCurrent = work.heals && work.wasPlaced && work.toolStamp == feature.toolStamp() &&
                         work.now.isEqualTo(work.before.transform);
  work.state = VdmComponentFeature::kStateApplied;
  work.applies = !isCurrent || isForced;
  work.heals &= work.applies;
}

// What is given back is read now: a condemned component is erased before solids are healed.
void ComponentHandler::enterSite(const VdmComponentFeature& feature, Work& work) {
  Site& site = siteOf(work.solid);
  if (!work.heals) return;
  work.oldFaces = openingFacesOf(feature);
  work.pieceIsLost = feature.hasLostPiece();
  ComponentPieces& pieces = site.ledger.add(work.feature);
  pieces.heals = true;
  pieces.box = work.before.box;
  for (const ToolKind kind : kToolKinds) (void)pieces.pieceOf(kind);
}

void ComponentHandler::sampleFaces(const VdmComponentFeature& feature, Work& work,
                                   VdmFeatureUpdateDataUtils::FeatureArgs& args) {
  const auto sample = [&work](OdUInt32 face) -> VdmFeatureUpdateDataUtils::Face {
    work.sampledFaces.push_back(face);
    const auto marker = static_cast<OdUInt32>(odSubentToMarker({OdModelerSubentType::kFace, face}));
    return {marker, marker};
  };
  for (const auto& [tag, face] : work.oldFaces) args.sampleFaces[tag].append(sample(face));
  m_helper.appendSampleFeature(work.feature, args.sampleFaces);
  for (const OdDbObjectId& id : feature.baseFaceDependencies()) {
    const OdUInt32 face = resolvedIndexOf(id);
    if (face != 0) args.subtrBaseFaces[VdmComponentFeature::kBaseFaceTag] = sample(face);
  }
  if (!args.subtrBaseFaces.empty()) m_helper.appendSubtrBaseFace(work.feature, args.subtrBaseFaces);
}

// ---- Tools

bool ComponentHandler::addTools(const OdDbObjectId& feature, VdmOpeningEntities& entities) {
  Work* work = findWork(feature);
  if (work == nullptr || !work->applies) return false;
  const VdmComponentFeaturePtr component = openComponent(feature);
  if (component.isNull()) return false;
  const BlockTools& tools = m_tools.of(entities.insert->blockTableRecord(), *component);
  if (totalFaces(tools) == 0) {
    const OdString text(L"its block has no solids for subtracting or uniting");
    return fail(feature, {eNotApplicable, text});
  }
  const OdStatus status = makeTools(*work, tools);
  return status.ok() || fail(feature, status);
}

// Copies of the tools in the solid's place. Cuts are queued; fills wait for their turn.
OdStatus ComponentHandler::makeTools(Work& work, const BlockTools& tools) {
  if (tools.form) work.base = baseFaceOf(work.feature, work.solid);
  int faces = 0;
  for (const ToolKind kind : kToolKinds) {
    for (const OdModelerBodyPtr& body : tools.of(kind)) {
      Tool tool{work.feature, kind, nullptr, faces, std::nullopt, {}};
      OdStatus status = body->transformed(work.now, tool.body);
      if (!status.ok()) return status;
      faces += static_cast<int>(body->numFaces());
      if (kind == ToolKind::kCut) {
        const OdDb3dSolidPtr copy = newSolid(tool.body);
        m_helper.appendSolidToSubtract(work.feature, work.solid, copy);
        tool.form = tools.form;
        tool.queued = copy;
        m_toolOf[copy.get()] = tool;
      }
      work.tools.push_back(std::move(tool));
    }
  }
  return {};
}

void ComponentHandler::addGrossTools(const OdDbObjectId& feature, const OdDbBlockReference& insert,
                                     const OdDbObjectId& solid) {
  const VdmComponentFeaturePtr component = openComponent(feature);
  if (component.isNull()) return;
  const BlockTools& tools = m_tools.of(insert.blockTableRecord(), *component);
  for (const ToolKind kind : kToolKinds) {
    for (const OdModelerBodyPtr& body : tools.of(kind)) {
      OdModelerBodyPtr placed;
      if (!body->transformed(insert.blockTransform(), placed).ok()) continue;
      m_helper.addGrossTool(feature, solid, kind, newSolid(placed));
    }
  }
}

}  // namespace vdm_host
