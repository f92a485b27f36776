// ReferenceUpdate: what the references of a solid mean in its new body.
//
// The idea: for each reference the strongest evidence that there is decides, and only that: its
// births and the history, then (for a replaced body) the geometry of both bodies, then the
// signature in its record. Weaker evidence never overrules a stronger one, so a reference that the
// history calls lost is not rescued by something that merely looks like it.
//
// Deciding changes nothing but numbers. In a large solid nearly every reference only gets another
// number: that is done at once, in portions. All else is collected in Solid::decisions and carried
// out afterwards, since splits and merges make and erase references while this walks over them.
//
// Two references that a manager owns and that come to mean the same subentity are noted as a
// meeting; the merge is the manager's work.
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

// Reads a portion of references. Those that are renumbered will be written soon afterwards; what
// that needs is fetched here (read_ahead.h).
void readPortion(std::span<const OdDbObjectId> ids, std::vector<Reference>& references) {
  references.clear();
  readAhead(ids);
  for (const OdDbObjectId& id : ids) {
    const VdmDbObjectDependencyPtr dependency = openDependency(id);
    if (dependency.isNull() || dependency->subentId().type() == OdDb::kNullSubentType) continue;
    references.push_back(referenceOf(*dependency));
    readReactorsAhead(*dependency);
  }
}

LineageCause causeOf(const BodyTrace& trace) {
  return trace.blends ? LineageCause::kBlend : LineageCause::kBoolean;
}

}  // namespace

/// What decideByLineage() works with.
struct ReferenceUpdate::Impl::LineageWork {
  LineageWork(Solid& changed, const BodyTrace& way, std::span<const FaceRespawn> rows)
      : solid(changed),
        trace(way),
        lineage(changed.before, changed.now, way),
        history(changed.id, changed.births, *changed.before, *changed.now, way, lineage, rows),
        births(*changed.before, *changed.now, history, lineage),
        claims(*changed.now),
        moves(changed.id) {}

  Solid& solid;
  const BodyTrace& trace;
  LineageMatcher lineage;
  BirthHistory history;
  BirthMatcher births;
  Claims claims;
  LinkMoves moves;
};

OdDbObjectId ReferenceUpdate::Impl::Claims::claim(OdModelerSubent subent, const OdDbObjectId& id) {
  std::vector<OdUInt32>& row = m_rows[static_cast<std::size_t>(subent.type) - 1];
  if (row.empty()) row.resize(std::size_t{m_body.numSubents(subent.type)} + 1);
  if (subent.index >= row.size()) return {};
  OdUInt32& claimant = row[subent.index];
  if (claimant != 0) return m_claimants[claimant - 1];
  m_claimants.push_back(id);
  claimant = static_cast<OdUInt32>(m_claimants.size());
  return {};
}

// In portions, which are renumbered while they are in the processor's caches.
void ReferenceUpdate::Impl::decideByLineage(Solid& solid, const BodyTrace& trace) {
  constexpr std::size_t kPortion = 256;
  const auto rows = respawns.find(solid.id);
  const std::span<const FaceRespawn> openings =
      rows == respawns.end() ? std::span<const FaceRespawn>() : rows->second;
  // Nothing but a motion: the numbers stay, and nothing can have come back.
  if (trace.operations == 0 && openings.empty()) {
    solid.births.fingerprint = solid.now->fingerprint();
    return;
  }
  LineageWork work(solid, trace, openings);
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

// Most references: nothing touched what they lead to, only the number can have changed.
bool ReferenceUpdate::Impl::isOnlyRenumbered(LineageWork& work, const Reference& reference) {
  if (reference.old.index == 0) return false;
  const OdUInt32 image = work.lineage.untouched(reference.old);
  if (image == 0 || !work.births.isSteady(reference.old, image)) return false;
  claim(work, reference.dependency, {reference.old.type, image});
  renumber(work.moves, reference, image);
  return true;
}

void ReferenceUpdate::Impl::decideOne(LineageWork& work, const Reference& reference) {
  Decision decision = decisionFor(reference, causeOf(work.trace));
  decideByBirths(work, decision);
  if (reference.old.index == 0 && decision.match.images.empty()) return;
  for (const OdUInt32 image : decision.match.images) {
    claim(work, reference.dependency, {reference.old.type, image});
  }
  const bool stays = decision.match.grade == ReferenceGrade::kExact &&
                     decision.match.images.front() == decision.old.index;
  if (!stays) work.solid.decisions.push_back(std::move(decision));
}

// Managers merge their references that lead to the same subentity. Dependencies of constraints are
// owned otherwise and stay apart.
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
  }
}

// What a reference remembers of its births. A record of older rules has none: they are those of
// what it leads to, or of the one face of a tool that it names.
BornReference ReferenceUpdate::Impl::bornReference(LineageWork& work, const Reference& reference) {
  BornReference born;
  born.old = reference.old;
  ReferenceRecord record;
  const VdmDbObjectDependencyPtr dependency = openDependency(reference.dependency);
  if (!dependency.isNull()) (void)record.readFrom(*dependency);
  born.births = std::move(record.births);
  if (!born.births.empty()) {
    work.births.addLateBirths(born);
  } else if (reference.old.index != 0) {
    born.births = work.births.birthsBefore(reference.old);
  }
  FaceBirth maker = work.births.redoneBirth(born.births);
  if (born.births.empty() && record.birth.isOfTool()) {
    maker = {work.solid.births.makerOf(work.solid.id, record.birth.feature), record.birth.toolFace};
    if (reference.old.type == Type::kFace) born.births = {{maker}};
  }
  if (reference.old.index == 0 && record.signature.type != Type::kNull) {
    born.record =
        record.signature.movedBy(work.history.motionOf(maker.maker) * work.solid.stamp.frame);
  }
  return born;
}

void ReferenceUpdate::Impl::decideByBirths(LineageWork& work, Decision& decision) const {
  const BornReference born = bornReference(work, decision);
  decision.feature = m_feature;
  decision.match = work.births.match(born);
  const bool isFoundAgain = decision.match.grade == ReferenceGrade::kBySignature;
  decision.births = isFoundAgain
                        ? work.births.birthsNow({decision.old.type, decision.match.images.front()})
                        : born.births;
  if (isFoundAgain || decision.old.index == 0) decision.cause = LineageCause::kFoundAgain;
  const FaceBirth redone = work.births.redoneBirth(born.births);
  if (redone.maker == 0) return;
  const OdDbHandle feature = work.solid.births.featureOf(redone.maker);
  decision.birth = LineageBirth{feature, redone.key};
  decision.feature = feature;
  decision.cause = decision.match.images.empty() ? LineageCause::kHealed : LineageCause::kRespawned;
}

// Calls visit(dependency, decision) for each reference to a subentity; nothing is decided yet.
template <class Visit>
void ReferenceUpdate::Impl::forEachSubent(const Solid& solid, const Visit& visit) {
  for (const OdDbObjectId& id : solid.dependencies) {
    const VdmDbObjectDependencyPtr dependency = openDependency(id);
    if (dependency.isNull() || dependency->subentId().type() == OdDb::kNullSubentType) continue;
    visit(*dependency, decisionFor(referenceOf(*dependency), LineageCause::kReplaced));
  }
}

// A replaced body ends all births, and its faces get new ones. What an opening left in the old body
// may be the part's own in the new one, or be cut again: a reference to it remembers both.
void ReferenceUpdate::Impl::noteNewBirths(const Solid& solid, Decision& decision) {
  if (decision.match.images.size() != 1) return;
  ReferenceRecord record;
  const VdmDbObjectDependencyPtr dependency = openDependency(decision.dependency);
  if (!dependency.isNull()) (void)record.readFrom(*dependency);
  decision.births =
      birthsAt(*solid.now, solid.births.faces, {decision.old.type, decision.match.images.front()});
  if (decision.old.type != Type::kFace || record.births.size() != 1) return;
  for (const FaceBirth& birth : record.births.front()) {
    if (birth.maker != 0) addBirths(decision.births.front(), {&birth, 1});
  }
}

void ReferenceUpdate::Impl::decideBySignature(Solid& solid) {
  const BodyMatch match = matchBySignature(*solid.before, *solid.now);
  m_report.readings.push_back({solid.id, match.motion, match.readings});
  solid.stamp.frame = match.motion.matrix * solid.stamp.frame;
  solid.births.begin(*solid.now);
  // The old body says nothing of references that led nowhere in it: these go by their records.
  std::vector<Decision> unresolved;
  std::vector<SubentSignature> wanted;
  forEachSubent(solid, [&](const VdmDbObjectDependency& dependency, Decision decision) {
    if (decision.old.index != 0) {
      decision.match = match.of(decision.old);
      noteNewBirths(solid, decision);
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
    noteNewBirths(solid, unresolved[i]);
    solid.decisions.push_back(std::move(unresolved[i]));
  }
}

// The old body is not there: each reference is looked for by the signature in its record.
void ReferenceUpdate::Impl::decideByRecords(Solid& solid) {
  solid.births.begin(*solid.now);
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
    noteNewBirths(solid, solid.decisions[i]);
  }
  // A reference that stays unresolved keeps its record.
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
