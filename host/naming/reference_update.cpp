// Brings the persistent references of solids up to date after their bodies changed.
#include "host/naming/reference_update.h"

#include <iterator>
#include <optional>
#include <utility>

#include "host/naming/dependencies_into.h"
#include "host/naming/reference_update_impl.h"
#include "platform/modeler/db_3d_solid.h"

namespace vdm_host {

void ReferenceUpdateReport::add(ReferenceUpdateReport other) {
  looked += other.looked;
  renumbered += other.renumbered;
  lost += other.lost;
  ambiguous += other.ambiguous;
  changes.insert(changes.end(), std::make_move_iterator(other.changes.begin()),
                 std::make_move_iterator(other.changes.end()));
  readings.insert(readings.end(), other.readings.begin(), other.readings.end());
}

// ---- The run

ReferenceUpdateReport ReferenceUpdate::Impl::settle(std::span<const OdSolidChange> changes) {
  m_report = {};
  const BodyLineage lineage(changes);
  for (const OdDbObjectId& id : lineage.solids()) {
    m_feature = featureOf(id, lineage);
    settleSolid(id, lineage);
  }
  finish();
  respawns.clear();
  return std::move(m_report);
}

// The one feature whose tools took part in the solid's changes; null for none and for several.
OdDbHandle ReferenceUpdate::Impl::featureOf(const OdDbObjectId& solid,
                                            const BodyLineage& lineage) const {
  OdDbHandle found;
  for (const std::size_t change : lineage.changesOf(solid)) {
    for (const OdModelerBodyPtr& tool : lineage.changes()[change].tools) {
      const auto row = toolFeatures.find(tool.get());
      if (row == toolFeatures.end()) return {};
      if (OdUInt64(found) != 0 && OdUInt64(found) != OdUInt64(row->second)) return {};
      found = row->second;
    }
  }
  return found;
}

void ReferenceUpdate::Impl::settleSolid(const OdDbObjectId& id, const BodyLineage& lineage) {
  Solid solid;
  solid.id = id;
  solid.dependencies = dependenciesInto(id);
  if (solid.dependencies.isEmpty() || id.isErased()) return;
  solid.before = lineage.bodyBefore(id);
  solid.now = lineage.bodyAfter(id);
  solid.stamp = SolidStamp::read(id);
  solid.births = SolidBirths::read(id);
  m_report.looked += solid.dependencies.size();
  m_map.appendModifiedEnt(id);
  // References are settled against the body that they were settled against before, or not at all.
  const bool numbersHold = solid.before && (solid.stamp.fingerprint == 0 ||
                                            solid.stamp.fingerprint == solid.before->fingerprint());
  const std::optional<BodyTrace> trace = lineage.trace(solid.before, solid.now);
  // From most to least that is known: a history, the old body, the records alone.
  if (!solid.now) {
    decideLost(solid);
  } else if (numbersHold && trace) {
    solid.stamp.operations += trace->operations;
    if (!solid.births.areOf(*solid.before)) solid.births.begin(*solid.before);
    decideByLineage(solid, *trace);
    solid.stamp.frame = trace->motion * solid.stamp.frame;
  } else if (numbersHold) {
    ++solid.stamp.operations;
    decideBySignature(solid);
  } else {
    ++solid.stamp.operations;
    if (trace) solid.stamp.frame = trace->motion * solid.stamp.frame;
    decideByRecords(solid);
  }
  if (solid.now) solid.stamp.fingerprint = solid.now->fingerprint();
  apply(solid);
  solid.stamp.write(id);
  if (solid.now) solid.births.write(id);
}

ReferenceUpdateReport ReferenceUpdate::Impl::settleByStamp(const OdDbObjectId& id) {
  m_report = {};
  const OdDb3dSolidPtr entity = id.openAs<OdDb3dSolid>();
  if (entity.isNull()) return {};
  Solid solid;
  solid.id = id;
  solid.stamp = SolidStamp::read(id);
  solid.births = SolidBirths::read(id);
  if (solid.stamp.fingerprint == 0) return {};
  if (!entity->getBody(solid.now).ok()) return {};
  if (solid.now && solid.now->fingerprint() == solid.stamp.fingerprint) return {};
  solid.dependencies = dependenciesInto(id);
  m_report.looked = solid.dependencies.size();
  if (solid.now) {
    decideByRecords(solid);
    solid.stamp.fingerprint = solid.now->fingerprint();
  } else {
    decideLost(solid);
  }
  ++solid.stamp.operations;
  m_map.appendModifiedEnt(id);
  apply(solid);
  solid.stamp.write(id);
  if (solid.now) solid.births.write(id);
  finish();
  return std::move(m_report);
}

// ---- The interface

ReferenceUpdate::ReferenceUpdate(VdmDependenciesReplacementMap& map)
    : m_impl(std::make_unique<Impl>(map)) {}
ReferenceUpdate::~ReferenceUpdate() = default;

void ReferenceUpdate::nameTool(const OdModelerBodyPtr& tool, OdDbHandle feature) {
  if (tool) m_impl->toolFeatures[tool.get()] = feature;
}

void ReferenceUpdate::addRespawn(const OdDbObjectId& solid, FaceRespawn respawn) {
  m_impl->respawns[solid].push_back(std::move(respawn));
}

ReferenceUpdateReport ReferenceUpdate::settle(std::span<const OdSolidChange> changes) {
  return m_impl->settle(changes);
}

ReferenceUpdateReport ReferenceUpdate::settleByStamp(const OdDbObjectId& solid) {
  return m_impl->settleByStamp(solid);
}

}  // namespace vdm_host
