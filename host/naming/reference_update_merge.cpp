// ReferenceUpdate: references that came to mean the same, and the end of a run.
//
// References that lead to one subentity and have different births stay apart: where openings have
// merged, each must find its own when they part. Those of the same births become one.
//
// Where all that meet in a manager have the same births, the manager does the merging:
// finishRemap() replaces references of one manager that lead to the same subentity by a new one and
// notes it in the replacement map. It would merge the others, too, so where there are some, the
// first reference of each births replaces the rest of these here. What remains is the memory. The
// new reference continues the record of the first that it replaces, "first" by handles, so that the
// same edit gives the same records.
//
// Not every meeting ends in a merge: a manager leaves references apart that nothing watches. Only
// what the map says was replaced by the same object is written as merged.
#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/naming/reference_update_impl.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {

namespace {

/// Watched references of a manager that lead to one subentity, by their births.
class Meetings {
 public:
  explicit Meetings(const VdmDbPersIdManager& manager) {
    const OdDbObjectIdArray ids = manager.objectDependencyIds();
    for (const OdDbObjectId& id : ids) {
      const VdmDbObjectDependencyPtr dependency = openDependency(id);
      if (dependency.isNull() || isUnresolvedIndex(dependency->subentId().index())) continue;
      const OdDbSubentId& subent = dependency->subentId();
      const Place place{dependency->getInsertId(), static_cast<int>(subent.type()), subent.index()};
      m_places[place].push_back(id);
    }
    std::erase_if(m_places, [](const auto& row) { return row.second.size() < 2; });
    for (const auto& [place, members] : m_places) addGroups(members);
  }

  /// All that meet have the same births.
  [[nodiscard]] bool areSame() const { return m_areSame; }
  /// References of one path and the same births, in the order of the manager.
  [[nodiscard]] const std::vector<OdDbObjectIdArray>& groups() const { return m_groups; }

 private:
  using Place = std::tuple<OdDbObjectId, int, OdInt64>;

  void addGroups(const std::vector<OdDbObjectId>& members) {
    struct Row {
      OdDbFullSubentPath path;
      std::vector<BirthSet> births;
      OdDbObjectIdArray ids;
    };
    std::vector<Row> rows;
    for (const OdDbObjectId& id : members) {
      const VdmDbObjectDependencyPtr dependency = openDependency(id);
      Row row;
      ReferenceRecord record;
      if (!dependency->isWatched() ||
          dependency->getLinkObject(row.path, /*openErased=*/false) != vdmu::ePathOk) {
        continue;
      }
      if (record.readFrom(*dependency)) row.births = record.births;
      const auto isOnPath = [&](const Row& other) { return other.path == row.path; };
      const auto isEqual = [&](const Row& other) {
        return isOnPath(other) && other.births == row.births;
      };
      const auto same = std::ranges::find_if(rows, isEqual);
      if (same != rows.end()) {
        same->ids.append(id);
        continue;
      }
      m_areSame &= std::ranges::none_of(rows, isOnPath);
      row.ids.append(id);
      rows.push_back(std::move(row));
    }
    for (Row& row : rows) {
      if (row.ids.size() > 1) m_groups.push_back(std::move(row.ids));
    }
  }

  std::map<Place, std::vector<OdDbObjectId>> m_places;
  std::vector<OdDbObjectIdArray> m_groups;
  bool m_areSame = true;
};

}  // namespace

void ReferenceUpdate::Impl::finishManager(VdmDbPersIdManager& manager) {
  const Meetings meetings(manager);
  if (meetings.areSame()) {
    manager.finishRemap(m_map);
    return;
  }
  for (const OdDbObjectIdArray& group : meetings.groups()) {
    for (OdUInt32 i = 1; i < group.size(); ++i) m_map.append(group[i], {group[0]});
  }
  OdDbObjectIdArray replaced;
  for (const OdDbObjectId& id : manager.objectDependencyIds()) {
    const ReplacementMap::IdSet* by = m_map.find(id);
    if (by != nullptr && by->count(id) == 0) replaced.append(id);
  }
  manager.removeDependencies(replaced);
}

// Managers in which references of the same births have met. Those of different births meet anew in
// each run, which costs a look at their records.
void ReferenceUpdate::Impl::noteMerges() {
  sortMeetings();
  std::map<std::pair<OdDbObjectId, OdModelerSubent>, std::vector<std::vector<BirthSet>>> met;
  for (const Meeting& meeting : m_meetings) {
    const VdmDbObjectDependencyPtr dependency = openDependency(meeting.dependency);
    ReferenceRecord record;
    if (dependency.isNull()) continue;
    (void)record.readFrom(*dependency);
    std::vector<std::vector<BirthSet>>& births = met[{meeting.solid, meeting.subent}];
    if (std::ranges::find(births, record.births) != births.end()) {
      m_managers[meeting.dependency.ownerId().getHandle()] = meeting.dependency.ownerId();
    }
    births.push_back(std::move(record.births));
  }
}

void ReferenceUpdate::Impl::finish() {
  noteMerges();
  for (const auto& [handle, id] : m_managers) {
    const VdmDbPersIdManagerPtr manager = id.openAs<VdmDbPersIdManager>(OdDb::kForWrite);
    if (!manager.isNull()) finishManager(*manager);
  }
  writeMerged();
  m_managers.clear();
  m_meetings.clear();
}

// Each reference once, in order of handles.
void ReferenceUpdate::Impl::sortMeetings() {
  const auto handleOf = [](const Meeting& meeting) {
    return OdUInt64(meeting.dependency.getHandle());
  };
  const auto sameReference = [](const Meeting& a, const Meeting& b) {
    return a.dependency == b.dependency;
  };
  std::ranges::stable_sort(m_meetings, std::ranges::less(), handleOf);
  m_meetings.erase(std::unique(m_meetings.begin(), m_meetings.end(), sameReference),
                   m_meetings.end());
}

void ReferenceUpdate::Impl::writeMerged() {
  std::erase_if(m_meetings, [this](const Meeting& m) { return !m_map.contains(m.dependency); });
  std::unordered_map<OdDbObjectId, OdUInt32> parts;  // references that each new object replaces
  for (const Meeting& meeting : m_meetings) {
    for (const OdDbObjectId& by : m_map.getReplacedWith(meeting.dependency)) ++parts[by];
  }
  std::unordered_set<OdDbObjectId> written;
  for (const Meeting& meeting : m_meetings) {
    const OdDbObjectIdArray by = m_map.getReplacedWith(meeting.dependency);
    if (by.size() != 1 || parts[by[0]] < 2) continue;
    // The old reference is erased by the merge, but its record is still there.
    const VdmDbObjectDependencyPtr old =
        meeting.dependency.openAs<VdmDbObjectDependency>(OdDb::kForRead, /*openErased=*/true);
    const bool isFirst = written.insert(by[0]).second;
    ReferenceRecord record;
    if (old.isNull() || !record.readFrom(*old)) continue;
    reportMerged(meeting, by, record.grade);
    if (isFirst) writeMergedRecord(meeting, by[0], parts[by[0]], record);
  }
}

void ReferenceUpdate::Impl::writeMergedRecord(const Meeting& meeting, const OdDbObjectId& fresh,
                                              OdUInt32 parts, ReferenceRecord record) const {
  const OdUInt32 index = meeting.subent.index;
  record.addStep({LineageCause::kMerged, ReferenceGrade::kMerged, index, index, parts, m_feature});
  const VdmDbObjectDependencyPtr dependency = openDependency(fresh, OdDb::kForWrite);
  if (!dependency.isNull()) record.writeTo(*dependency);
}

void ReferenceUpdate::Impl::reportMerged(const Meeting& meeting, const OdDbObjectIdArray& by,
                                         ReferenceGrade before) {
  ReferenceChange change;
  change.dependency = meeting.dependency;
  change.solid = meeting.solid;
  change.type = meeting.subent.type;
  change.from = change.to = meeting.subent.index;
  change.gradeBefore = before;
  change.grade = ReferenceGrade::kMerged;
  change.cause = LineageCause::kMerged;
  change.replacedBy = by;
  m_report.changes.push_back(std::move(change));
}

}  // namespace vdm_host
