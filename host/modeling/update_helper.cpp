// UpdateHelper: the helper of the passes of this host.
#include "host/modeling/update_helper.h"

#include <algorithm>

#include "host/modeling/model_update_context.h"
#include "host/naming/reference_update.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_feature_subents_to_remove.h"
#include "vdm_db/update/vdm_feature_update_data.h"

namespace vdm_host {

UpdateHelper::UpdateHelper(VdmFeatureUpdateData& data)
    : VdmFeatureUpdateDataHelper(data),
      m_context(dynamic_cast<ModelUpdateContext*>(data.context().host)) {
  m_journal = m_context != nullptr ? &m_context->journal : &m_ownJournal.emplace();
  m_journalStart = m_journal->mark();
}

UpdateHelper::~UpdateHelper() = default;

// ---- What handlers share

std::span<const OdSolidChange> UpdateHelper::changes() const {
  return m_journal->changes().subspan(m_journalStart);
}

bool UpdateHelper::failed() const {
  return m_failed || (m_context != nullptr && !m_context->recorder.failure().ok());
}

bool UpdateHelper::fail(const OdDbObjectId& feature, OdStatus status) {
  m_failed = true;
  if (m_context != nullptr) m_context->recorder.noteFailure(feature, std::move(status));
  return false;
}

void UpdateHelper::noteStep(const OdDbObjectId& feature, const OdDbObjectId& solid,
                            SolidAction action) const {
  if (m_context != nullptr) m_context->recorder.noteStep(feature, solid, action);
}

void UpdateHelper::addGrossTool(const OdDbObjectId& feature, const OdDbObjectId& solid,
                                ToolKind kind, OdDb3dSolid* tool) {
  appendSolid(feature, solid, tool,
              kind == ToolKind::kCut ? subtractorsOnLayers() : unitersOnLayers());
}

// ---- For one feature: by its class

// Null for a class without handler.
FeatureHandler* UpdateHelper::handlerOf(const OdDbObjectId& feature) {
  const VdmFeaturePtr object = VdmFeature::open(feature);
  const MakeFeatureHandler make = object.isNull() ? nullptr : featureHandlerOf(object->isA());
  if (make == nullptr) return nullptr;
  const auto known = std::ranges::find(m_handlers, make, &HandlerRow::make);
  if (known != m_handlers.end()) return known->handler.get();
  m_handlers.push_back({make, make(*this)});
  return m_handlers.back().handler.get();
}

bool UpdateHelper::getMatchingFaces(VdmUpdateFeatureInterface* /*updateInterface*/,
                                    OdDbObjectId feature,
                                    const VdmFeatureUpdateDataUtils::OpeningIds& /*opening*/,
                                    VdmFeatureUpdateDataUtils::FeatureArgs& args) {
  FeatureHandler* handler = handlerOf(feature);
  return handler != nullptr && handler->matchFaces(feature, args);
}

bool UpdateHelper::addCopiesToUpdateData(VdmUpdateFeatureInterface* /*updateInterface*/,
                                         OdDbObjectId feature, VdmOpeningEntities& entities) {
  FeatureHandler* handler = handlerOf(feature);
  return handler != nullptr && handler->addTools(feature, entities);
}

void UpdateHelper::addGrossData(VdmUpdateFeatureInterface* /*updateInterface*/,
                                const OdDbObjectId& feature, OdSmartPtr<OdDbBlockReference> insert,
                                OdSmartPtr<OdDb3dSolid> solid) {
  FeatureHandler* handler = handlerOf(feature);
  if (handler != nullptr) handler->addGrossTools(feature, *insert, solid->objectId());
}

bool UpdateHelper::worked(const OdDbObjectId& feature) const {
  return !failed() && std::ranges::any_of(m_handlers, [&](const HandlerRow& row) {
    return row.handler->worked(feature);
  });
}

// ---- For entities and solids: every handler

void UpdateHelper::collectForEntity(const OdDbObjectId& /*entity*/, const IdSet& /*features*/) {}
void UpdateHelper::collectDependentsForEntity(const OdDbObjectId& /*entity*/,
                                              const IdSet& /*features*/) {}
bool UpdateHelper::clearEntity(OdSmartPtr<OdDbEntity>& /*entity*/) { return false; }

bool UpdateHelper::removeSubents(const OdDbObjectId& entityId, OdSmartPtr<OdDbEntity>& /*entity*/,
                                 VdmFeatureSubentsToRemove& record, bool /*flag*/) {
  const bool isTaken = std::ranges::any_of(
      m_handlers, [&](const HandlerRow& row) { return row.handler->takesOver(entityId); });
  if (isTaken) record.subents.clear();
  return isTaken;
}

bool UpdateHelper::prepareForSubtract() {
  return !m_failed && std::ranges::all_of(m_handlers, [](const HandlerRow& row) {
    return row.handler->prepareSolids();
  });
}

bool UpdateHelper::checkTools(OdSmartPtr<OdDb3dSolid>& solid, Tools& tools) {
  Tools waiting;
  waiting.swap(tools);
  for (const HandlerRow& row : m_handlers) {
    if (!row.handler->checkTools(solid, waiting, tools)) return false;
  }
  tools.append(waiting);
  return !tools.isEmpty();
}

// ---- The outcome

// What features store is written before the solids are kept: both change or none.
bool UpdateHelper::acceptSolids() {
  if (failed()) return false;
  const bool isSettled =
      std::ranges::all_of(m_handlers, [](const HandlerRow& row) { return row.handler->settle(); });
  m_numSettled = changes().size();
  return isSettled;
}

void UpdateHelper::solidsAborted(VdmUpdatePhase phase, const OdString& text) {
  const bool isKnown = failed();
  m_failed = true;
  if (isKnown || m_context == nullptr || text.isEmpty()) return;
  m_context->recorder.noteFailure({}, {eModelerError, toText(phase) + L" of the solids: " + text});
}

void UpdateHelper::withdrawFeature(const OdDbObjectId& feature) {
  VdmFeatureUpdateDataHelper::withdrawFeature(feature);
  for (const HandlerRow& row : m_handlers) row.handler->withdraw(feature);
}

void UpdateHelper::prepareInit() {
  if (failed()) return;
  for (const OdDbObjectId& feature : m_condemned) updateData().appendFeatureToRemove(feature);
  if (m_context == nullptr) settleRest();
}

// References follow what features did to solids in their own updates; with a context its owner sees
// to that.
void UpdateHelper::settleRest() {
  const auto rest = changes().subspan(m_numSettled);
  if (rest.empty()) return;
  VdmDependenciesReplacementMap replaced;
  ReferenceUpdate update(replaced);
  (void)update.settle(rest);
}

}  // namespace vdm_host
