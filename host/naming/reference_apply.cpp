// Carries out what was decided: links, records, splits and merges, and the report.
#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/naming/reference_update_impl.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {

namespace {

/// Measuring a face takes the modeller about 0.02 ms for each of its edges, and one between lines
/// and circles about 1 us. A face with more than this many keeps the signature that it has until
/// it has an eighth more or fewer of them.
constexpr std::size_t kManyEdges = 64;
constexpr std::size_t kManyParts = 8;

bool isAsLargeAs(std::size_t edges, std::size_t before) {
  const std::size_t difference = edges > before ? edges - before : before - edges;
  return difference * kManyParts <= edges;
}

// The signature of what a reference leads to now; none when the known one does. Both lie where the
// body does.
std::optional<SubentSignature> renewed(const SubentSignature& known, const OdModelerBody& body,
                                       OdModelerSubent subent, LineageCause cause) {
  if (known.type != OdModelerSubentType::kFace) return signatureOf(body, subent);
  const std::size_t edges = body.edgesOfFace(subent.index).size();
  const bool hasMany = edges > kManyEdges;
  const bool isPart = cause == LineageCause::kSplit;
  if (hasMany && !isPart && isAsLargeAs(edges, known.bounds)) return std::nullopt;
  // What an operation leaves of a plane lies in it, with the same side out.
  if (isPart || cause == LineageCause::kBoolean || cause == LineageCause::kBlend) {
    std::optional<SubentSignature> plane = signatureOfPlane(body, subent.index, known);
    if (plane) return plane;
  }
  if (hasMany) return std::nullopt;
  return signatureOf(body, subent);
}

}  // namespace

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

// A dependency that no manager has.
void ReferenceUpdate::Impl::setLink(const OdDbObjectId& id, const OdDbFullSubentPath& path) {
  const VdmDbObjectDependencyPtr dependency = openDependency(id, OdDb::kForWrite);
  if (!dependency.isNull()) dependency->setLinkObject(path);
}

void ReferenceUpdate::Impl::LinkMoves::add(const OdDbObjectId& dependency, bool isPlain,
                                           OdDbSubentId subent) {
  const OdDbObjectId manager = dependency.ownerId();
  if (m_row == nullptr || manager != m_row->manager) {
    m_row = &m_rows[manager.getHandle()];
    m_row->manager = manager;
  }
  m_row->ids.append(dependency);
  m_row->paths.append(isPlain ? OdDbFullSubentPath(m_direct, subent) : pathTo(dependency, subent));
}

void ReferenceUpdate::Impl::LinkMoves::carryOut() {
  for (auto& [handle, row] : m_rows) {
    if (row.ids.isEmpty()) continue;
    const VdmDbPersIdManagerPtr manager = row.manager.openAs<VdmDbPersIdManager>(OdDb::kForWrite);
    if (!manager.isNull()) {
      manager->updatePairs(row.ids, row.paths);
    } else {
      for (OdUInt32 i = 0; i < row.ids.size(); ++i) setLink(row.ids[i], row.paths[i]);
    }
    row.ids.clear();
    row.paths.clear();
  }
}

// The reference leads to another number, or with 0 to none.
void ReferenceUpdate::Impl::renumber(LinkMoves& moves, const Reference& reference, OdUInt32 image) {
  const OdInt64 index = image == 0 ? unresolvedIndexOf(reference.dependency) : OdInt64{image};
  if (index == OdInt64{reference.old.index}) return;
  const auto type = static_cast<OdDb::SubentType>(reference.old.type);
  moves.add(reference.dependency, reference.isPlain, OdDbSubentId(type, index));
  m_report.renumbered += image != 0 ? 1U : 0U;
}

// One image, or none: the reference itself goes there.
void ReferenceUpdate::Impl::setLinks(const Solid& solid) {
  LinkMoves moves(solid.id);
  for (const Decision& decision : solid.decisions) {
    const std::vector<OdUInt32>& images = decision.match.images;
    if (images.size() <= 1) renumber(moves, decision, images.empty() ? 0 : images.front());
  }
  moves.carryOut();
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
  const OdGeMatrix3d& frame = solid.stamp.frame;
  if (image != 0 && !frame.isSingular()) {
    const std::optional<SubentSignature> now = renewed(record.signature.movedBy(frame), *solid.now,
                                                       {decision.old.type, image}, decision.cause);
    if (now) record.signature = now->movedBy(frame.inverse());
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
  const VdmDbPersIdManagerPtr manager = managerId.openAs<VdmDbPersIdManager>(OdDb::kForWrite);
  OdDbObjectIdArray ids;
  if (!manager.isNull()) ids = manager->split(decision.dependency, paths, m_map);
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
    setLink(decision.dependency, pathTo(decision.dependency, OdDbSubentId(type, OdInt64{largest})));
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
    const VdmDbPersIdManagerPtr manager = id.openAs<VdmDbPersIdManager>(OdDb::kForWrite);
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
    const VdmDbObjectDependencyPtr old =
        meeting.dependency.openAs<VdmDbObjectDependency>(OdDb::kForRead, /*openErased=*/true);
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

}  // namespace vdm_host
