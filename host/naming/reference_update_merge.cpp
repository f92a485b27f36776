// ReferenceUpdate: references that came to mean the same, and the end of a run.
//
// Managers do the merging: finishRemap() replaces references of one manager that lead to the same
// subentity by a new one and notes it in the replacement map. What remains here is the memory. The
// new reference continues the record of the first that it replaces, "first" by handles, so that the
// same edit gives the same records.
//
// Not every meeting ends in a merge: a manager leaves references apart that nothing watches. Only
// what the map says was replaced by the same object is written as merged.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/naming/reference_update_impl.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {

void ReferenceUpdate::Impl::finish() {
  for (const auto& [handle, id] : m_managers) {
    const VdmDbPersIdManagerPtr manager = id.openAs<VdmDbPersIdManager>(OdDb::kForWrite);
    if (!manager.isNull()) manager->finishRemap(m_map);
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
  sortMeetings();
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
