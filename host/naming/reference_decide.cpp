// Decides what the references of a solid stand for in its new body.
#include <utility>
#include <vector>

#include "host/naming/body_match.h"
#include "host/naming/reference_update_impl.h"
#include "vdm_db/references/vdm_db_pers_id_manager.h"

namespace vdm_host {

namespace {

// The beginning of a decision: where the reference leads so far.
Decision decisionFor(const VdmDbObjectDependency& dependency, LineageCause cause) {
  const OdDbSubentId& subent = dependency.subentId();
  Decision decision;
  decision.dependency = dependency.objectId();
  decision.old.type = static_cast<OdModelerSubentType>(subent.type());
  if (!isUnresolvedIndex(subent.index())) {
    decision.old.index = static_cast<OdUInt32>(subent.index());
  }
  decision.isPlain = dependency.compoundId().isSimpleObjectId();
  decision.cause = cause;
  return decision;
}
LineageCause causeOf(const BodyTrace& trace) {
  return trace.blends ? LineageCause::kBlend : LineageCause::kBoolean;
}

}  // namespace

void ReferenceUpdate::Impl::decideByLineage(Solid& solid, const BodyTrace& trace) {
  LineageMatcher lineage(solid.before, solid.now, trace);
  const auto rows = respawns.find(solid.id);
  const std::span<const FaceRespawn> told =
      rows == respawns.end() ? std::span<const FaceRespawn>() : rows->second;
  RespawnMatcher respawn(told, *solid.before, *solid.now, lineage);
  // Nothing but a motion: the numbers stay, and nothing can have come back.
  if (trace.operations == 0 && respawn.empty()) return;
  const LineageCause cause = causeOf(trace);
  Claims claims(*solid.now);
  for (const OdDbObjectId& id : solid.dependencies) {
    const VdmDbObjectDependencyPtr dependency = openDependency(id);
    if (dependency.isNull() || dependency->subentId().type() == OdDb::kNullSubentType) continue;
    Decision decision = decisionFor(*dependency, cause);
    if (decision.old.index == 0) {
      comeBack(*dependency, lineage, respawn, solid, trace, decision);
      if (decision.match.images.empty()) continue;
    } else {
      decide(lineage, respawn, decision);
    }
    for (const OdUInt32 image : decision.match.images) {
      if (!isManaged(id)) break;
      const OdModelerSubent subentNow{decision.old.type, image};
      const OdDbObjectId other = claims.claim(subentNow, id);
      if (!other.isNull()) noteMeeting(other, id, solid.id, subentNow);
    }
    const bool stays = decision.match.grade == ReferenceGrade::kExact &&
                       decision.match.images.front() == decision.old.index;
    if (!stays) solid.decisions.push_back(std::move(decision));
  }
}

bool ReferenceUpdate::Impl::isManaged(const OdDbObjectId& dependency) {
  const OdDbObjectId owner = dependency.ownerId();
  if (owner != m_lastOwner) {
    m_lastOwner = owner;
    m_lastIsManager = !VdmDbPersIdManager::cast(owner.openObject()).isNull();
  }
  return m_lastIsManager;
}

void ReferenceUpdate::Impl::noteMeeting(const OdDbObjectId& first, const OdDbObjectId& other,
                                        const OdDbObjectId& solid, OdModelerSubent subent) {
  for (const OdDbObjectId& id : {first, other}) {
    m_meetings.push_back({id, solid, subent});
    m_managers[id.ownerId().getHandle()] = id.ownerId();
  }
}

void ReferenceUpdate::Impl::decide(LineageMatcher& lineage, RespawnMatcher& respawn,
                                   Decision& decision) const {
  decision.feature = m_feature;
  if (std::optional<RespawnMatch> found = respawn.match(decision.old)) {
    decision.match = std::move(found->match);
    decision.birth = found->birth;
    decision.feature = found->birth.feature;
    decision.cause = found->closed ? LineageCause::kHealed : LineageCause::kRespawned;
  } else {
    decision.match = lineage.match(decision.old);
  }
}

// A reference that led nowhere: its opening was cut again, or what it stood for is there again.
void ReferenceUpdate::Impl::comeBack(const VdmDbObjectDependency& dependency,
                                     LineageMatcher& lineage, RespawnMatcher& respawn,
                                     const Solid& solid, const BodyTrace& trace,
                                     Decision& decision) const {
  ReferenceRecord record;
  if (!record.readFrom(dependency)) return;
  const SubentSignature wanted = record.signature.movedBy(trace.motion * solid.stamp.frame);
  if (std::optional<RespawnMatch> found = respawn.comeBack(record.birth, wanted)) {
    decision.match = std::move(found->match);
    decision.cause = LineageCause::kRespawned;
    decision.feature = found->birth.feature;
    return;
  }
  decision.match = lineage.findNew(wanted);
  decision.cause = LineageCause::kFoundAgain;
  if (!decision.match.images.empty()) decision.match.grade = ReferenceGrade::kBySignature;
}

// References into a subentity, each with the beginning of a decision.
template <class Visit>
void ReferenceUpdate::Impl::forEachSubent(const Solid& solid, const Visit& visit) {
  for (const OdDbObjectId& id : solid.dependencies) {
    const VdmDbObjectDependencyPtr dependency = openDependency(id);
    if (dependency.isNull() || dependency->subentId().type() == OdDb::kNullSubentType) continue;
    visit(*dependency, decisionFor(*dependency, LineageCause::kReplaced));
  }
}

void ReferenceUpdate::Impl::decideBySignature(Solid& solid) {
  const BodyMatch match = matchBySignature(*solid.before, *solid.now);
  solid.stamp.frame = match.motion * solid.stamp.frame;
  std::vector<Decision> unresolved;
  std::vector<SubentSignature> wanted;
  forEachSubent(solid, [&](const VdmDbObjectDependency& dependency, Decision decision) {
    if (decision.old.index != 0) {
      decision.match = match.of(decision.old);
      solid.decisions.push_back(std::move(decision));
      return;
    }
    ReferenceRecord record;
    if (!record.readFrom(dependency)) return;
    wanted.push_back(record.signature.movedBy(solid.stamp.frame));
    unresolved.push_back(std::move(decision));
  });
  if (wanted.empty()) return;
  std::vector<SubentMatch> matches = matchSignatures(wanted, *solid.now);
  for (std::size_t i = 0; i < matches.size(); ++i) {
    if (matches[i].images.empty()) continue;
    unresolved[i].match = std::move(matches[i]);
    solid.decisions.push_back(std::move(unresolved[i]));
  }
}

// Nothing is left of the body that the numbers were of: each reference goes by what it remembers.
void ReferenceUpdate::Impl::decideByRecords(Solid& solid) {
  std::vector<SubentSignature> wanted;
  forEachSubent(solid, [&](const VdmDbObjectDependency& dependency, Decision decision) {
    ReferenceRecord record;
    const bool hasRecord = record.readFrom(dependency);
    wanted.push_back(hasRecord ? record.signature.movedBy(solid.stamp.frame) : SubentSignature());
    solid.decisions.push_back(std::move(decision));
  });
  std::vector<SubentMatch> matches = matchSignatures(wanted, *solid.now);
  for (std::size_t i = 0; i < matches.size(); ++i) {
    solid.decisions[i].match = std::move(matches[i]);
  }
  // What was unresolved and still is stays as it is.
  std::erase_if(solid.decisions, [](const Decision& decision) {
    return decision.old.index == 0 && decision.match.images.empty();
  });
}

void ReferenceUpdate::Impl::decideLost(Solid& solid) {
  forEachSubent(solid, [&](const VdmDbObjectDependency&, Decision decision) {
    if (decision.old.index != 0) solid.decisions.push_back(std::move(decision));
  });
}

}  // namespace vdm_host
