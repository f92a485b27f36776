// ComponentHandler: healing, filling and cutting.
//
// A solid is (G + fills) - cuts, with G the part without components (residues.h). To change one
// component, its solid is taken back to a state in which the component is not there, and the
// component is applied again:
//
//   1. fillSite: the ledger gets the components that stay. Those that heal are in it already.
//   2. widen: a component that stays but meets one that heals, or whose cut a new fill would close,
//      heals as well and is done anew. The list of work grows while it is walked, so the meeting is
//      followed to its end; each component enters it once, which ends the walk. After it no healed
//      piece touches the wall of an open cut, and healing by whole openings leaves no trace.
//   3. healSite: the pieces of cuts come back, the pieces of fills are taken away.
//   4. addFills: fills are added while none of the cuts that they meet is open.
//   5. fitTools: tools of built-in components get the reach that they need in the solid as it is
//   now.
//   6. checkTools, called for each solid before its cuts are made: notes what the cuts take away.
//
// The cost is one boolean for each step and kind at a solid, and a box test for each pair of a
// component that is worked on and one that stays.
#include <algorithm>

#include "host/modeling/component_handler.h"
#include "host/modeling/component_query.h"
#include "host/modeling/model_update_context.h"
#include "host/modeling/update_helper.h"
#include "platform/entities/block_reference.h"

namespace vdm_host {

bool ComponentHandler::prepareSolids() {
  for (std::size_t i = 0; i < m_sites.size(); ++i) {
    Site& site = *m_sites[i];
    fillSite(site);
    OdStatus status = widen(site);
    if (status.ok()) status = healSite(site);
    if (status.ok()) status = addFills(site);
    if (status.ok()) status = fitTools(site);
    if (status.ok()) continue;
    const auto culprit = std::ranges::find(m_work, site.solid, &Work::solid);
    return fail(culprit == m_work.end() ? OdDbObjectId() : culprit->feature, std::move(status));
  }
  return true;
}

OdDbObjectIdArray ComponentHandler::componentsAt(const OdDbObjectId& solid) const {
  const ModelUpdateContext* context = m_helper.context();
  return context != nullptr ? context->componentsAt(solid) : componentsOfSolid(solid);
}

// The components that stay; those that heal were entered when they were planned.
void ComponentHandler::fillSite(Site& site) {
  if (site.isFilled) return;
  site.isFilled = true;
  for (const OdDbObjectId& id : componentsAt(site.solid)) {
    if (const Work* work = findWork(id); work != nullptr && work->heals) continue;
    const VdmComponentFeaturePtr component = openComponent(id);
    VdmComponentFeature::Placed placed;
    if (component.isNull() || component->state() != VdmComponentFeature::kStateApplied ||
        !component->placed(placed)) {
      continue;
    }
    site.ledger.add(id).box = placed.box;
  }
}

// ---- Components that are done anew with others

OdStatus ComponentHandler::widen(Site& site) {
  for (std::size_t i = 0; i < m_work.size(); ++i) {
    if (m_work[i].solid != site.solid || !mayMeetOthers(m_work[i])) continue;
    for (ComponentPieces& pieces : site.ledger.components()) {
      if (pieces.heals || !meets(m_work[i], pieces)) continue;
      if (OdStatus status = doAnew(pieces); !status.ok()) return status;
    }
  }
  return {};
}

bool ComponentHandler::mayMeetOthers(const Work& work) {
  return work.heals || std::ranges::any_of(work.tools, [](const Tool& tool) {
           return tool.kind == ToolKind::kFill;
         });
}

// Whether a component that stays meets what is added or taken away with the work: a piece that was
// healed there would lie against its walls, and a fill would close its cuts.
bool ComponentHandler::meets(const Work& work, ComponentPieces& stays) {
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

OdStatus ComponentHandler::doAnew(ComponentPieces& pieces) {
  const VdmComponentFeaturePtr component = openComponent(pieces.feature);
  const OdDbBlockReferencePtr insert = component->insertId().openAs<OdDbBlockReference>();
  Work work;
  if (insert.isNull() || !component->placed(work.before)) return {};
  work.feature = pieces.feature;
  work.solid = component->solidId();
  work.wasPlaced = work.heals = work.applies = true;
  work.now = work.before.transform;
  work.toolStamp = component->toolStamp();
  work.oldFaces = openingFacesOf(*component);
  work.pieceIsLost = component->hasLostPiece();
  pieces.heals = true;
  OdStatus status = makeTools(work, m_tools.of(insert->blockTableRecord(), *component));
  addWork(std::move(work));
  return status;
}

// ---- Healing and filling

OdStatus ComponentHandler::healSite(Site& site) {
  OdDb3dSolidPtr solid = site.solid.openAs<OdDb3dSolid>(OdDb::kForWrite);
  if (solid.isNull()) return {eNotOpenForWrite, OdString(L"the solid cannot be opened for write")};
  for (const Work& work : m_work) {
    if (work.solid != site.solid || !work.heals) continue;
    if (OdStatus status = healWithoutResidue(work, *solid); !status.ok()) return status;
    m_helper.noteStep(work.feature, site.solid, SolidAction::kHealed);
  }
  return site.ledger.heal(*solid);
}

// An opening whose residue is lost: its faces are taken off, and the modeller closes the rest.
OdStatus ComponentHandler::healWithoutResidue(const Work& work, OdDb3dSolid& solid) {
  if (!work.pieceIsLost || work.oldFaces.empty()) return {};
  std::vector<OdUInt32> faces;
  for (const auto& [tag, face] : work.oldFaces) faces.push_back(face);
  OdStatus status = solid.removeFaces(faces);
  if (!status.ok()) {
    status.text =
        OdString(L"its residue is lost and its faces cannot be taken off: ") + status.text;
  }
  return status;
}

OdStatus ComponentHandler::addFills(Site& site) {
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
  if (!status.ok()) return status;
  for (const OdDbObjectId& id : features) m_helper.noteStep(id, site.solid, SolidAction::kAdded);
  return {};
}

// ---- Cutting

OdStatus ComponentHandler::fitTools(const Site& site) {
  const OdDb3dSolidPtr solid = site.solid.openAs<OdDb3dSolid>();
  const OdModelerBodyPtr body = solid.isNull() ? nullptr : solid->body();
  if (!body) return {};
  std::optional<FaceBoxes> faces;
  for (Work& work : m_work) {
    if (work.solid != site.solid) continue;
    for (Tool& tool : work.tools) {
      if (!tool.form) continue;
      if (!faces) faces.emplace(body);
      if (OdStatus status = fitTool(*faces, work, tool); !status.ok()) return status;
    }
  }
  return {};
}

OdStatus ComponentHandler::fitTool(const FaceBoxes& faces, const Work& work, Tool& tool) {
  ToolReach reach;
  OdModelerBodyPtr made;
  OdStatus status = fitReach(faces, {*tool.form, work.now, work.base}, reach);
  if (status.ok()) status = makeTool(*tool.form, reach, made);
  if (status.ok()) status = made->transformed(work.now, tool.body);
  if (!status.ok()) return status;
  tool.queued->setBody(tool.body);
  m_toolOf[tool.queued.get()].body = tool.body;
  return {};
}

// Takes the tools of components out of those that wait, in the order of the work: queues have none.
std::vector<const ComponentHandler::Tool*> ComponentHandler::takeOwn(Tools& waiting) const {
  std::vector<const Tool*> own;
  Tools others;
  for (const OdDb3dSolidPtr& tool : waiting) {
    const auto found = m_toolOf.find(tool.get());
    if (found == m_toolOf.end()) {
      others.append(tool);
    } else {
      own.push_back(&found->second);
    }
  }
  waiting.swap(others);
  std::ranges::sort(own, {}, [this](const Tool* tool) {
    return std::pair(m_workIndex.at(tool->feature), tool->firstFace);
  });
  return own;
}

bool ComponentHandler::checkTools(const OdDb3dSolidPtr& solid, Tools& waiting, Tools& tools) {
  const std::vector<const Tool*> own = takeOwn(waiting);
  if (own.empty()) return true;
  std::vector<OdDbObjectId> features;
  std::vector<OdModelerBodyPtr> bodies;
  for (const Tool* tool : own) {
    features.push_back(tool->feature);
    bodies.push_back(tool->body);
  }

  // The pieces are taken in before the cuts are made.
  Site& site = siteOf(solid->objectId());
  OdStatus status = site.ledger.takeCuts(solid->body(), features, bodies);
  if (!status.ok()) return fail(features.front(), std::move(status));
  Tools cutting;
  for (const Tool* tool : own) {
    if (site.ledger.find(tool->feature)->hasPiece(ToolKind::kCut)) cutting.append(tool->queued);
  }
  if (cutting.isEmpty()) return true;

  // One operation unites them all.
  bodies.clear();
  for (OdUInt32 i = 1; i < cutting.size(); ++i) bodies.push_back(cutting[i]->body());
  if (!bodies.empty()) status = cutting[0]->booleanOper(OdModelerBooleanKind::kUnite, bodies);
  if (!status.ok()) return fail(features.front(), std::move(status));
  tools.append(cutting[0]);
  return true;
}

}  // namespace vdm_host
