// Brings the persistent references of solids up to date after their bodies changed.
#include "host/naming/reference_update.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "host/naming/body_lineage.h"
#include "host/naming/body_match.h"
#include "host/naming/lineage_match.h"
#include "host/naming/respawn_match.h"
#include "platform/db/block_table_record.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/references/vdm_db_object.h"
#include "vdm_db/references/vdm_db_object_dependency.h"
#include "vdm_db/references/vdm_db_pers_id_manager.h"

namespace vdm_host {

namespace {

using Type = OdModelerSubentType;
using ReplacementMap = VdmDependenciesReplacementMap;

/// Measuring a face takes the modeller about 0.05 ms for each of its edges. A face with more than
/// this many keeps the signature that it has: one edge more or less is no matter for it.
constexpr std::size_t kMaxMeasuredEdges = 64;

VdmDbObjectDependencyPtr openDependency(const OdDbObjectId& id,
                                        OdDb::OpenMode mode = OdDb::kForRead) {
  return VdmDbObjectDependency::cast(id.openObject(mode));
}

OdDbObjectId leafOf(const VdmDbObjectDependency& dependency) {
  if (dependency.compoundId().isSimpleObjectId()) return dependency.compoundId().topId();
  const OdDbFullSubentPath path = dependency.getLinkObject(/*openErased=*/false);
  return path.objectIds().isEmpty() ? OdDbObjectId::kNull : path.objectIds().last();
}

// Block references through which the entity is seen, at any depth.
void collectReferences(const OdDbObjectId& block, std::unordered_set<OdDbObjectId>& found) {
  const OdDbBlockTableRecordPtr record = OdDbBlockTableRecord::cast(block.openObject());
  if (record.isNull() || !record->hasBlockReferences()) return;
  for (const OdDbObjectId& reference : record->getBlockReferenceIds()) {
    if (found.insert(reference).second) collectReferences(reference.ownerId(), found);
  }
}

OdDbObjectIdArray dependenciesOf(const OdDbObjectId& top) {
  const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(top);
  return object.isNull() ? OdDbObjectIdArray() : object->persIdDependencies();
}

LineageCause causeOf(const BodyTrace& trace) {
  return trace.blends ? LineageCause::kBlend : LineageCause::kBoolean;
}

}  // namespace

OdDbObjectIdArray dependenciesInto(const OdDbObjectId& entity) {
  OdDbObjectIdArray ids = dependenciesOf(entity);
  std::unordered_set<OdDbObjectId> references;
  collectReferences(entity.ownerId(), references);
  for (const OdDbObjectId& reference : references) {
    for (const OdDbObjectId& id : dependenciesOf(reference)) {
      const VdmDbObjectDependencyPtr dependency = openDependency(id);
      if (!dependency.isNull() && leafOf(*dependency) == entity) ids.append(id);
    }
  }
  if (!references.empty()) {
    std::sort(ids.begin(), ids.end(), [](const OdDbObjectId& a, const OdDbObjectId& b) {
      return OdUInt64(a.getHandle()) < OdUInt64(b.getHandle());
    });
  }
  return ids;
}

void ReferenceUpdateReport::add(ReferenceUpdateReport other) {
  looked += other.looked;
  renumbered += other.renumbered;
  lost += other.lost;
  ambiguous += other.ambiguous;
  changes.insert(changes.end(), std::make_move_iterator(other.changes.begin()),
                 std::make_move_iterator(other.changes.end()));
}

/// What was decided for one reference.
struct Decision {
  OdDbObjectId dependency;
  OdModelerSubent old;  ///< index 0 when it was unresolved
  SubentMatch match;
  LineageCause cause = LineageCause::kBoolean;
  OdDbHandle feature;
  std::optional<LineageBirth> birth;
};

class ReferenceUpdate::Impl {
 public:
  explicit Impl(ReplacementMap& map) : m_map(map) {}

  ReferenceUpdateReport settle(std::span<const OdSolidChange> changes);
  ReferenceUpdateReport settleByStamp(const OdDbObjectId& solid);

  std::unordered_map<const OdModelerBody*, OdDbHandle> toolFeatures;
  std::unordered_map<OdDbObjectId, std::vector<FaceRespawn>> respawns;
  bool isSecondPass = false;

 private:
  /// The work on one solid.
  struct Solid {
    OdDbObjectId id;
    OdModelerBodyPtr before;
    OdModelerBodyPtr now;
    SolidStamp stamp;
    OdDbObjectIdArray dependencies;
    std::vector<Decision> decisions;  ///< those that change something
  };
  /// A reference that leads where another one leads, too.
  struct Meeting {
    OdDbObjectId dependency;
    OdDbObjectId solid;
    OdModelerSubent subent;
  };
  /// Who was first to claim each subentity of the new body, by type and index.
  class Claims {
   public:
    explicit Claims(const OdModelerBody& body) {
      for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
        row(type).resize(std::size_t{body.numSubents(type)} + 1);
      }
    }
    /// The earlier claimant, null when there is none.
    OdDbObjectId claim(OdModelerSubent subent, const OdDbObjectId& id) {
      std::vector<OdDbObjectId>& list = row(subent.type);
      if (subent.index >= list.size()) return {};
      if (list[subent.index].isNull()) {
        list[subent.index] = id;
        return {};
      }
      return list[subent.index];
    }

   private:
    std::vector<OdDbObjectId>& row(Type type) { return m_rows[static_cast<std::size_t>(type) - 1]; }
    std::array<std::vector<OdDbObjectId>, 3> m_rows;
  };

  void settleSolid(const OdDbObjectId& id, const BodyLineage& lineage);
  void decideByLineage(Solid& solid, const BodyTrace& trace);
  void decideBySignature(Solid& solid);
  void decideByRecords(Solid& solid);
  void decideLost(Solid& solid);
  OdDbHandle featureOf(const OdDbObjectId& solid, const BodyLineage& lineage) const;
  Decision decide(const OdDbObjectId& id, OdModelerSubent old, LineageMatcher& lineage,
                  RespawnMatcher& respawn, LineageCause cause) const;
  Decision comeBack(const VdmDbObjectDependency& dependency, LineageMatcher& lineage,
                    RespawnMatcher& respawn, const Solid& solid, const BodyTrace& trace) const;

  void noteMeeting(const OdDbObjectId& first, const OdDbObjectId& other, const OdDbObjectId& solid,
                   OdModelerSubent subent);
  void apply(Solid& solid);
  void setLinks(const Solid& solid);
  void writeRecords(Solid& solid);
  void writeSplit(Solid& solid, const Decision& decision);
  void writeRecord(const OdDbObjectId& id, const Decision& decision, const ReferenceRecord& from,
                   OdUInt32 image, const Solid& solid) const;
  void tell(const Solid& solid, const Decision& decision, ReferenceGrade before);
  void finish();
  void writeMerged();
  static OdDbFullSubentPath pathTo(const OdDbObjectId& dependency, const OdDbSubentId& subent);

  ReplacementMap& m_map;
  ReferenceUpdateReport m_report;
  OdDbHandle m_feature;
  std::map<OdUInt64, OdDbObjectId> m_managers;  // touched and to be finished, by handle
  std::vector<Meeting> m_meetings;
};

// ---- Deciding

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
  for (const OdSolidChange& change : lineage.changes()) {
    if (change.solid != solid) continue;
    for (const OdModelerBodyPtr& tool : change.tools) {
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
  m_report.looked += solid.dependencies.size();
  m_map.appendModifiedEnt(id);
  const bool numbersHold = solid.before && (solid.stamp.fingerprint == 0 ||
                                            solid.stamp.fingerprint == solid.before->fingerprint());
  const std::optional<BodyTrace> trace = lineage.trace(solid.before, solid.now);
  if (!solid.now) {
    decideLost(solid);
  } else if (numbersHold && trace) {
    solid.stamp.operations += trace->operations;
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
}

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
    const OdDbSubentId& subent = dependency->subentId();
    const auto type = static_cast<Type>(subent.type());
    Decision decision;
    if (isUnresolvedIndex(subent.index())) {
      decision = comeBack(*dependency, lineage, respawn, solid, trace);
      if (decision.match.images.empty()) continue;
    } else {
      const OdModelerSubent old{type, static_cast<OdUInt32>(subent.index())};
      decision = decide(id, old, lineage, respawn, cause);
    }
    decision.dependency = id;
    for (const OdUInt32 image : decision.match.images) {
      const OdModelerSubent subentNow{type, image};
      const OdDbObjectId other = claims.claim(subentNow, id);
      if (!other.isNull()) noteMeeting(other, id, solid.id, subentNow);
    }
    const bool stays = decision.match.grade == ReferenceGrade::kExact &&
                       decision.match.images.front() == decision.old.index;
    if (!stays) solid.decisions.push_back(std::move(decision));
  }
}

void ReferenceUpdate::Impl::noteMeeting(const OdDbObjectId& first, const OdDbObjectId& other,
                                        const OdDbObjectId& solid, OdModelerSubent subent) {
  for (const OdDbObjectId& id : {first, other}) {
    m_meetings.push_back({id, solid, subent});
    m_managers[id.ownerId().getHandle()] = id.ownerId();
  }
}

Decision ReferenceUpdate::Impl::decide(const OdDbObjectId& id, OdModelerSubent old,
                                       LineageMatcher& lineage, RespawnMatcher& respawn,
                                       LineageCause cause) const {
  Decision decision;
  decision.dependency = id;
  decision.old = old;
  decision.cause = cause;
  decision.feature = m_feature;
  if (std::optional<RespawnMatch> found = respawn.match(old)) {
    decision.match = std::move(found->match);
    decision.birth = found->birth;
    decision.feature = found->birth.feature;
    decision.cause = found->closed ? LineageCause::kHealed : LineageCause::kRespawned;
  } else {
    decision.match = lineage.match(old);
  }
  return decision;
}

// A reference that led nowhere: its opening was cut again, or what it stood for is there again.
Decision ReferenceUpdate::Impl::comeBack(const VdmDbObjectDependency& dependency,
                                         LineageMatcher& lineage, RespawnMatcher& respawn,
                                         const Solid& solid, const BodyTrace& trace) const {
  Decision decision;
  decision.old.type = static_cast<Type>(dependency.subentId().type());
  ReferenceRecord record;
  if (!record.readFrom(dependency)) return decision;
  const SubentSignature wanted =
      record.signature.movedBy(trace.motion * solid.stamp.frame);
  if (std::optional<RespawnMatch> found = respawn.comeBack(record.birth, wanted)) {
    decision.match = std::move(found->match);
    decision.cause = LineageCause::kRespawned;
    decision.feature = found->birth.feature;
    return decision;
  }
  decision.match = lineage.findNew(wanted);
  decision.cause = LineageCause::kFoundAgain;
  if (!decision.match.images.empty()) decision.match.grade = ReferenceGrade::kBySignature;
  return decision;
}

void ReferenceUpdate::Impl::decideBySignature(Solid& solid) {
  const BodyMatch match = matchBySignature(*solid.before, *solid.now);
  for (const OdDbObjectId& id : solid.dependencies) {
    const VdmDbObjectDependencyPtr dependency = openDependency(id);
    if (dependency.isNull() || dependency->subentId().type() == OdDb::kNullSubentType) continue;
    const OdDbSubentId& subent = dependency->subentId();
    if (isUnresolvedIndex(subent.index())) continue;
    Decision decision;
    decision.dependency = id;
    decision.old = {static_cast<Type>(subent.type()), static_cast<OdUInt32>(subent.index())};
    decision.match = match.of(decision.old);
    decision.cause = LineageCause::kReplaced;
    solid.decisions.push_back(std::move(decision));
  }
  solid.stamp.frame = match.motion * solid.stamp.frame;
}

// Nothing is left of the body that the numbers were of: each reference goes by what it remembers.
void ReferenceUpdate::Impl::decideByRecords(Solid& solid) {
  std::vector<SubentSignature> wanted;
  for (const OdDbObjectId& id : solid.dependencies) {
    const VdmDbObjectDependencyPtr dependency = openDependency(id);
    if (dependency.isNull() || dependency->subentId().type() == OdDb::kNullSubentType) continue;
    ReferenceRecord record;
    const bool hasRecord = record.readFrom(*dependency);
    const OdDbSubentId& subent = dependency->subentId();
    Decision decision;
    decision.dependency = id;
    decision.old.type = static_cast<Type>(subent.type());
    if (!isUnresolvedIndex(subent.index())) {
      decision.old.index = static_cast<OdUInt32>(subent.index());
    }
    decision.cause = LineageCause::kReplaced;
    solid.decisions.push_back(std::move(decision));
    wanted.push_back(hasRecord ? record.signature.movedBy(solid.stamp.frame) : SubentSignature());
  }
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
  for (const OdDbObjectId& id : solid.dependencies) {
    const VdmDbObjectDependencyPtr dependency = openDependency(id);
    if (dependency.isNull() || dependency->subentId().type() == OdDb::kNullSubentType) continue;
    const OdDbSubentId& subent = dependency->subentId();
    if (isUnresolvedIndex(subent.index())) continue;
    Decision decision;
    decision.dependency = id;
    decision.old = {static_cast<Type>(subent.type()), static_cast<OdUInt32>(subent.index())};
    decision.cause = LineageCause::kReplaced;
    solid.decisions.push_back(std::move(decision));
  }
}

ReferenceUpdateReport ReferenceUpdate::Impl::settleByStamp(const OdDbObjectId& id) {
  m_report = {};
  const OdDb3dSolidPtr entity = OdDb3dSolid::cast(id.openObject());
  if (entity.isNull()) return {};
  Solid solid;
  solid.id = id;
  solid.stamp = SolidStamp::read(id);
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
  finish();
  return std::move(m_report);
}

// ---- Carrying out

OdDbFullSubentPath ReferenceUpdate::Impl::pathTo(const OdDbObjectId& dependency,
                                                 const OdDbSubentId& subent) {
  const VdmDbObjectDependencyPtr opened = openDependency(dependency);
  OdDbFullSubentPath path = opened->getLinkObject(/*openErased=*/true);
  path.subentId() = subent;
  return path;
}

void ReferenceUpdate::Impl::apply(Solid& solid) {
  if (solid.decisions.empty()) return;
  setLinks(solid);
  writeRecords(solid);
}

// One image, or none: the reference itself goes there, all of a manager in one call.
void ReferenceUpdate::Impl::setLinks(const Solid& solid) {
  struct Pairs {
    OdDbObjectIdArray ids;
    OdDbFullSubentPathArray paths;
  };
  std::map<OdUInt64, std::pair<OdDbObjectId, Pairs>> byManager;
  OdDbObjectIdArray direct;
  direct.append(solid.id);
  for (const Decision& decision : solid.decisions) {
    if (decision.match.images.size() > 1) continue;
    const VdmDbObjectDependencyPtr dependency = openDependency(decision.dependency);
    const auto type = static_cast<OdDb::SubentType>(decision.old.type);
    const OdInt64 index = decision.match.images.empty() ? unresolvedIndexOf(decision.dependency)
                                                        : OdInt64{decision.match.images.front()};
    if (dependency->subentId() == OdDbSubentId(type, index)) continue;
    const OdDbObjectId manager = decision.dependency.ownerId();
    auto& [managerId, pairs] = byManager[manager.getHandle()];
    managerId = manager;
    const bool isPlain = dependency->compoundId().isSimpleObjectId();
    pairs.ids.append(decision.dependency);
    pairs.paths.append(isPlain ? OdDbFullSubentPath(direct, OdDbSubentId(type, index))
                               : pathTo(decision.dependency, OdDbSubentId(type, index)));
    m_report.renumbered += decision.match.images.size() == 1 ? 1U : 0U;
  }
  for (auto& [handle, row] : byManager) {
    const VdmDbPersIdManagerPtr manager =
        VdmDbPersIdManager::cast(row.first.openObject(OdDb::kForWrite));
    if (!manager.isNull()) manager->updatePairs(row.second.ids, row.second.paths);
  }
}

void ReferenceUpdate::Impl::writeRecords(Solid& solid) {
  for (const Decision& decision : solid.decisions) {
    if (decision.match.images.size() > 1) {
      writeSplit(solid, decision);
      continue;
    }
    // Nothing was decided: no more than the number changed.
    if (decision.match.grade == ReferenceGrade::kExact) continue;
    const VdmDbObjectDependencyPtr dependency = openDependency(decision.dependency);
    ReferenceRecord record;
    const bool hasRecord = record.readFrom(*dependency);
    const ReferenceGrade before = hasRecord ? record.grade : ReferenceGrade::kExact;
    const OdUInt32 image = decision.match.images.empty() ? 0 : decision.match.images.front();
    writeRecord(decision.dependency, decision, record, image, solid);
    tell(solid, decision, before);
  }
}

void ReferenceUpdate::Impl::writeRecord(const OdDbObjectId& id, const Decision& decision,
                                        const ReferenceRecord& from, OdUInt32 image,
                                        const Solid& solid) const {
  ReferenceRecord record = from;
  record.addStep({decision.cause, decision.match.grade, decision.old.index, image,
                  static_cast<OdUInt32>(decision.match.images.size()), decision.feature});
  if (decision.birth) record.birth = *decision.birth;
  record.lastIndex = image != 0 ? image : decision.old.index;
  const bool isDear = record.signature.type != Type::kNull &&
                      decision.old.type == Type::kFace && image != 0 &&
                      solid.now->edgesOfFace(image).size() > kMaxMeasuredEdges;
  if (image != 0 && !isDear && !solid.stamp.frame.isSingular()) {
    record.signature = signatureOf(*solid.now, {decision.old.type, image})
                           .movedBy(solid.stamp.frame.inverse());
  }
  const VdmDbObjectDependencyPtr dependency = openDependency(id, OdDb::kForWrite);
  if (!dependency.isNull()) record.writeTo(*dependency);
}

// Several images: clones take the place of the reference. One that nobody watches goes to the
// largest part, since nobody would follow the clones.
void ReferenceUpdate::Impl::writeSplit(Solid& solid, const Decision& decision) {
  const auto type = static_cast<OdDb::SubentType>(decision.old.type);
  OdDbFullSubentPathArray paths;
  for (const OdUInt32 image : decision.match.images) {
    paths.append(pathTo(decision.dependency, OdDbSubentId(type, image)));
  }
  const VdmDbObjectDependencyPtr dependency = openDependency(decision.dependency);
  ReferenceRecord record;
  const bool hasRecord = record.readFrom(*dependency);
  const ReferenceGrade before = hasRecord ? record.grade : ReferenceGrade::kExact;
  const OdDbObjectId managerId = decision.dependency.ownerId();
  const VdmDbPersIdManagerPtr manager =
      VdmDbPersIdManager::cast(managerId.openObject(OdDb::kForWrite));
  if (manager.isNull()) return;
  const OdDbObjectIdArray ids = manager->split(decision.dependency, paths, m_map);
  Decision part = decision;
  part.match.grade = ReferenceGrade::kSplit;
  part.cause = decision.birth ? decision.cause : LineageCause::kSplit;
  if (ids.size() == decision.match.images.size()) {
    m_managers[managerId.getHandle()] = managerId;
    for (OdUInt32 i = 0; i < ids.size(); ++i) {
      writeRecord(ids[i], part, record, decision.match.images[i], solid);
    }
  } else {
    const auto sizeOf = [&](OdUInt32 image) {
      return signatureOf(*solid.now, {decision.old.type, image}).size;
    };
    const OdUInt32 largest = *std::ranges::max_element(
        decision.match.images, [&](OdUInt32 a, OdUInt32 b) { return sizeOf(a) < sizeOf(b); });
    manager->updatePairs(OdDbObjectIdArray{decision.dependency},
                         OdDbFullSubentPathArray{
                             pathTo(decision.dependency, OdDbSubentId(type, OdInt64{largest}))});
    writeRecord(decision.dependency, part, record, largest, solid);
  }
  tell(solid, part, before);
}

void ReferenceUpdate::Impl::tell(const Solid& solid, const Decision& decision,
                                 ReferenceGrade before) {
  ReferenceChange change;
  change.dependency = decision.dependency;
  change.solid = solid.id;
  change.type = decision.old.type;
  change.from = decision.old.index;
  change.to = decision.match.images.empty() ? 0 : decision.match.images.front();
  change.gradeBefore = before;
  change.grade = decision.match.grade;
  change.cause = decision.cause;
  change.feature = decision.feature;
  if (m_map.contains(decision.dependency)) {
    change.replacedBy = m_map.getReplacedWith(decision.dependency);
  }
  if (change.grade != before) {
    m_report.lost += change.grade == ReferenceGrade::kLost ? 1U : 0U;
    m_report.ambiguous += change.grade == ReferenceGrade::kAmbiguous ? 1U : 0U;
  }
  m_report.changes.push_back(std::move(change));
}

// ---- Splits and merges are finished, manager by manager

void ReferenceUpdate::Impl::finish() {
  for (const auto& [handle, id] : m_managers) {
    const VdmDbPersIdManagerPtr manager =
        VdmDbPersIdManager::cast(id.openObject(OdDb::kForWrite));
    if (manager.isNull()) continue;
    if (isSecondPass) {
      manager->finishRemap2(m_map);
    } else {
      manager->finishRemap(m_map);
    }
  }
  writeMerged();
  m_managers.clear();
  m_meetings.clear();
}

// The new object that stands for several goes on with the memory of the first of them.
void ReferenceUpdate::Impl::writeMerged() {
  const auto sameReference = [](const Meeting& a, const Meeting& b) {
    return a.dependency == b.dependency;
  };
  std::ranges::stable_sort(m_meetings, [](const Meeting& a, const Meeting& b) {
    return OdUInt64(a.dependency.getHandle()) < OdUInt64(b.dependency.getHandle());
  });
  m_meetings.erase(std::unique(m_meetings.begin(), m_meetings.end(), sameReference),
                   m_meetings.end());
  std::unordered_map<OdDbObjectId, OdUInt32> parts;  // references behind each new object
  for (const Meeting& meeting : m_meetings) {
    if (!m_map.contains(meeting.dependency)) continue;
    for (const OdDbObjectId& by : m_map.getReplacedWith(meeting.dependency)) ++parts[by];
  }
  std::unordered_set<OdDbObjectId> written;
  for (const Meeting& meeting : m_meetings) {
    if (!m_map.contains(meeting.dependency)) continue;
    const OdDbObjectIdArray by = m_map.getReplacedWith(meeting.dependency);
    if (by.size() != 1 || parts[by[0]] < 2) continue;
    const bool isFirst = written.insert(by[0]).second;
    const VdmDbObjectDependencyPtr old = VdmDbObjectDependency::cast(
        meeting.dependency.openObject(OdDb::kForRead, /*openErased=*/true));
    ReferenceRecord record;
    if (old.isNull() || !record.readFrom(*old)) continue;
    const ReferenceGrade before = record.grade;
    const OdUInt32 image = meeting.subent.index;
    if (isFirst) {
      record.addStep(
          {LineageCause::kMerged, ReferenceGrade::kMerged, image, image, parts[by[0]], m_feature});
      if (const VdmDbObjectDependencyPtr fresh = openDependency(by[0], OdDb::kForWrite);
          !fresh.isNull()) {
        record.writeTo(*fresh);
      }
    }
    ReferenceChange change;
    change.dependency = meeting.dependency;
    change.solid = meeting.solid;
    change.type = meeting.subent.type;
    change.from = change.to = image;
    change.gradeBefore = before;
    change.grade = ReferenceGrade::kMerged;
    change.cause = LineageCause::kMerged;
    change.replacedBy = by;
    m_report.changes.push_back(std::move(change));
  }
}

// ---- The interface

ReferenceUpdate::ReferenceUpdate(ReplacementMap& map) : m_impl(std::make_unique<Impl>(map)) {}
ReferenceUpdate::~ReferenceUpdate() = default;

void ReferenceUpdate::nameTool(const OdModelerBodyPtr& tool, OdDbHandle feature) {
  if (tool) m_impl->toolFeatures[tool.get()] = feature;
}

void ReferenceUpdate::addRespawn(const OdDbObjectId& solid, FaceRespawn respawn) {
  m_impl->respawns[solid].push_back(std::move(respawn));
}

void ReferenceUpdate::setSecondPass(bool isSecond) { m_impl->isSecondPass = isSecond; }

ReferenceUpdateReport ReferenceUpdate::settle(std::span<const OdSolidChange> changes) {
  return m_impl->settle(changes);
}

ReferenceUpdateReport ReferenceUpdate::settleByStamp(const OdDbObjectId& solid) {
  return m_impl->settleByStamp(solid);
}

}  // namespace vdm_host
