// Decides what the references of a solid stand for in its new body.
#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include "host/naming/body_match.h"
#include "host/naming/read_ahead.h"
#include "host/naming/reference_update_impl.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {

namespace {

Reference referenceOf(const VdmDbObjectDependency& dependency) {
  const OdDbSubentId& subent = dependency.subentId();
  Reference reference;
  reference.dependency = dependency.objectId();
  reference.old.type = static_cast<OdModelerSubentType>(subent.type());
  if (!isUnresolvedIndex(subent.index())) {
    reference.old.index = static_cast<OdUInt32>(subent.index());
  }
  reference.isPlain = dependency.compoundId().isSimpleObjectId();
  return reference;
}

Decision decisionFor(const Reference& reference, LineageCause cause) {
  Decision decision;
  static_cast<Reference&>(decision) = reference;
  decision.cause = cause;
  return decision;
}

// Dependencies lie anywhere in memory: all that writing them will need is looked at in one go, so
// that the processor waits for it together.
void readPortion(std::span<const OdDbObjectId> ids, std::vector<Reference>& references) {
  references.clear();
  readAhead(ids);
  for (const OdDbObjectId& id : ids) {
    const VdmDbObjectDependencyPtr dependency = openDependency(id);
    if (dependency.isNull() || dependency->subentId().type() == OdDb::kNullSubentType) continue;
    references.push_back(referenceOf(*dependency));
    (void)dependency->hasPersistentReactor(id);
  }
}

LineageCause causeOf(const BodyTrace& trace) {
  return trace.blends ? LineageCause::kBlend : LineageCause::kBoolean;
}

}  // namespace

/// What decideByLineage() works with.
struct ReferenceUpdate::Impl::LineageWork {
  LineageWork(Solid& changed, const BodyTrace& way, std::span<const FaceRespawn> told)
      : solid(changed),
        trace(way),
        lineage(changed.before, changed.now, way),
        respawn(told, *changed.before, *changed.now, lineage),
        claims(*changed.now),
        moves(changed.id) {}

  Solid& solid;
  const BodyTrace& trace;
  LineageMatcher lineage;
  RespawnMatcher respawn;
  Claims claims;
  LinkMoves moves;
};

// In portions, which are written while they are still at hand: nearly all references only get
// another number.
void ReferenceUpdate::Impl::decideByLineage(Solid& solid, const BodyTrace& trace) {
  constexpr std::size_t kPortion = 256;
  const auto rows = respawns.find(solid.id);
  const std::span<const FaceRespawn> told =
      rows == respawns.end() ? std::span<const FaceRespawn>() : rows->second;
  LineageWork work(solid, trace, told);
  // Nothing but a motion: the numbers stay, and nothing can have come back.
  if (trace.operations == 0 && told.empty()) return;
  const OdDbObjectIdArray& ids = std::as_const(solid.dependencies);
  const std::span<const OdDbObjectId> all(ids.begin(), ids.size());
  std::vector<Reference> portion;
  for (std::size_t i = 0; i < all.size(); i += kPortion) {
    readPortion(all.subspan(i, std::min(kPortion, all.size() - i)), portion);
    for (const Reference& reference : portion) {
      if (!isOnlyRenumbered(work, reference)) decideOne(work, reference);
    }
    work.moves.carryOut();
  }
}

// Most references: nothing touched what they lead to, there is no more to it than a number.
bool ReferenceUpdate::Impl::isOnlyRenumbered(LineageWork& work, const Reference& reference) {
  if (reference.old.index == 0 || work.respawn.touches(reference.old)) return false;
  const OdUInt32 image = work.lineage.untouched(reference.old);
  if (image == 0) return false;
  claim(work, reference.dependency, {reference.old.type, image});
  renumber(work.moves, reference, image);
  return true;
}

void ReferenceUpdate::Impl::decideOne(LineageWork& work, const Reference& reference) {
  Decision decision = decisionFor(reference, causeOf(work.trace));
  if (reference.old.index == 0) {
    comeBack(work, decision);
    if (decision.match.images.empty()) return;
  } else {
    goOn(work, decision);
  }
  for (const OdUInt32 image : decision.match.images)
    claim(work, reference.dependency, {reference.old.type, image});
  const bool stays = decision.match.grade == ReferenceGrade::kExact &&
                     decision.match.images.front() == decision.old.index;
  if (!stays) work.solid.decisions.push_back(std::move(decision));
}

// Who claims what another one of a manager's has already comes to mean the same. Managers merge
// what meets; dependencies of constraints are owned otherwise and stay apart.
void ReferenceUpdate::Impl::claim(LineageWork& work, const OdDbObjectId& dependency,
                                  OdModelerSubent subentNow) {
  if (!isManaged(dependency)) return;
  const OdDbObjectId other = work.claims.claim(subentNow, dependency);
  if (!other.isNull()) noteMeeting(other, dependency, work.solid.id, subentNow);
}

bool ReferenceUpdate::Impl::isManaged(const OdDbObjectId& dependency) {
  const OdDbObjectId owner = dependency.ownerId();
  if (owner != m_lastOwner) {
    m_lastOwner = owner;
    m_lastIsManager = !owner.openAs<VdmDbPersIdManager>().isNull();
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

void ReferenceUpdate::Impl::goOn(LineageWork& work, Decision& decision) const {
  decision.feature = m_feature;
  if (std::optional<RespawnMatch> found = work.respawn.match(decision.old)) {
    decision.match = std::move(found->match);
    decision.birth = found->birth;
    decision.feature = found->birth.feature;
    decision.cause = found->closed ? LineageCause::kHealed : LineageCause::kRespawned;
  } else {
    decision.match = work.lineage.match(decision.old);
  }
}

// A reference that led nowhere: its opening was cut again, or what it stood for is there again.
void ReferenceUpdate::Impl::comeBack(LineageWork& work, Decision& decision) {
  ReferenceRecord record;
  const VdmDbObjectDependencyPtr dependency = openDependency(decision.dependency);
  if (dependency.isNull() || !record.readFrom(*dependency)) return;
  const SubentSignature wanted =
      record.signature.movedBy(work.trace.motion * work.solid.stamp.frame);
  if (std::optional<RespawnMatch> found = work.respawn.comeBack(record.birth, wanted)) {
    decision.match = std::move(found->match);
    decision.cause = LineageCause::kRespawned;
    decision.feature = found->birth.feature;
    return;
  }
  decision.match = work.lineage.findNew(wanted);
  decision.cause = LineageCause::kFoundAgain;
  if (!decision.match.images.empty()) decision.match.grade = ReferenceGrade::kBySignature;
}

// References into a subentity, each with the beginning of a decision.
template <class Visit>
void ReferenceUpdate::Impl::forEachSubent(const Solid& solid, const Visit& visit) {
  for (const OdDbObjectId& id : solid.dependencies) {
    const VdmDbObjectDependencyPtr dependency = openDependency(id);
    if (dependency.isNull() || dependency->subentId().type() == OdDb::kNullSubentType) continue;
    visit(*dependency, decisionFor(referenceOf(*dependency), LineageCause::kReplaced));
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
