// Lists of ids with hashed look-up.
//
// The array is the list; the hash set beside it only answers whether an id is listed. The set is
// made when it is first needed, for lists of kIndexedFrom ids and more, and from then on each edit
// changes both. So while m_isIndexed is true the set holds exactly the ids of the array. Code that
// fills the array from outside calls replaced(), which marks the set as out of date.
//
// An edit takes out runs, each a piece of the list between two ids that stay, or puts them in. Both
// are one walk over the list, however many ids they concern. An edit and its undo see the same list
// unless it was read from a file between them; then ids may be missing, but the others keep their
// order. So a run that is put back between its neighbours comes to its old place, and one whose
// neighbours are both lost has none that would be more right than the end.
#include "vdm_db/references/vdm_indexed_ids.h"

#include <algorithm>
#include <atomic>
#include <numeric>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/filer/dwg_filer.h"

/// A piece of the list with its neighbours; null before the first and after the last id.
struct VdmIndexedIds::Run {
  OdDbObjectId before;
  OdDbObjectId after;
  OdDbObjectIdArray ids;

  // How well the run fits between two ids that follow each other.
  enum Fit { kNone, kAfter, kBefore, kBoth };
  [[nodiscard]] Fit fit(OdDbObjectId left, OdDbObjectId right) const {
    if (left == before) return right == after ? kBoth : kBefore;
    return right == after ? kAfter : kNone;
  }
};

namespace {

// Below this a walk is faster than a look-up table.
constexpr OdUInt32 kIndexedFrom = 16;

// The shortest forms of an id and of a run.
constexpr OdUInt32 kMinIdBytes = 1;
constexpr OdUInt32 kMinRunBytes = 3;

void writeIds(OdDbDwgFiler* filer, const OdDbObjectIdArray& ids) {
  filer->wrInt32(static_cast<OdInt32>(ids.size()));
  for (const OdDbObjectId& id : ids) filer->wrSoftPointerId(id);
}

OdDbObjectIdArray readIds(OdDbDwgFiler* filer) {
  const OdUInt32 count = filer->rdCount(kMinIdBytes);
  OdDbObjectIdArray ids(count);
  for (OdUInt32 i = 0; i < count; ++i) ids.append(filer->rdSoftPointerId());
  return ids;
}

}  // namespace

OdUInt64 VdmIndexedIds::nextStamp() {
  static std::atomic<OdUInt64> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

void VdmIndexedIds::replaced() {
  m_stamp = nextStamp();
  const auto last = std::remove(m_ids.begin(), m_ids.end(), OdDbObjectId::kNull);
  m_ids.resize(static_cast<OdUInt32>(last - m_ids.begin()));
  m_isIndexed = false;
}

void VdmIndexedIds::makeIndex() const {
  m_index.clear();
  m_index.insert(m_ids.begin(), m_ids.end());
  m_isIndexed = true;
}

bool VdmIndexedIds::contains(OdDbObjectId id) const {
  if (m_ids.size() < kIndexedFrom) return m_ids.contains(id);
  if (!m_isIndexed) makeIndex();
  return m_index.count(id) != 0;
}

OdDbObjectIdArray VdmIndexedIds::notListed(const OdDbObjectIdArray& ids) const {
  OdDbObjectIdArray fresh;
  std::unordered_set<OdDbObjectId> met;
  for (const OdDbObjectId id : ids) {
    if (id.isNull() || contains(id)) continue;
    if (ids.size() > 1 && !met.insert(id).second) continue;
    fresh.append(id);
  }
  return fresh;
}

OdArray<OdUInt32> VdmIndexedIds::positionsOf(const OdDbObjectIdArray& ids) const {
  if (ids.size() == 1) {
    const OdDbObjectId wanted = ids[0];  // a file may list it several times
    if (!contains(wanted)) return {};
    return positionsWhere([wanted](OdDbObjectId id) { return id == wanted; });
  }
  const std::unordered_set<OdDbObjectId> wanted(ids.begin(), ids.end());
  return positionsWhere([&wanted](OdDbObjectId id) { return wanted.count(id) != 0; });
}

// From the end: what is taken back was mostly appended.
OdArray<OdUInt32> VdmIndexedIds::lastPositionsOf(const OdDbObjectIdArray& ids) const {
  std::unordered_map<OdDbObjectId, OdUInt32> wanted;
  if (ids.size() > 1) {
    for (const OdDbObjectId& id : ids) ++wanted[id];
  }
  const auto isWanted = [&](const OdDbObjectId& id) {
    if (ids.size() == 1) return id == ids[0];
    const auto found = wanted.find(id);
    return found != wanted.end() && found->second-- > 0;
  };
  OdArray<OdUInt32> positions;
  for (OdUInt32 i = m_ids.size(); i > 0 && positions.size() < ids.size(); --i) {
    if (isWanted(m_ids[i - 1])) positions.append(i - 1);
  }
  std::reverse(positions.begin(), positions.end());
  return positions;
}

// ---- Edits

void VdmIndexedIds::append(const OdDbObjectIdArray& ids, OdDbDwgFiler* undo) {
  if (ids.isEmpty()) return;
  if (undo != nullptr) {
    undo->wrBool(false);
    writeIds(undo, ids);
  }
  m_ids.append(ids);
  if (m_isIndexed) m_index.insert(ids.begin(), ids.end());
}

OdArray<VdmIndexedIds::Run> VdmIndexedIds::runsAt(const OdArray<OdUInt32>& positions) const {
  OdArray<Run> runs;
  for (OdUInt32 i = 0; i < positions.size();) {
    const OdUInt32 first = positions[i];
    Run run;
    if (first > 0) run.before = m_ids[first - 1];
    while (i < positions.size() && positions[i] == first + run.ids.size()) {
      run.ids.append(m_ids[positions[i++]]);
    }
    const OdUInt32 next = first + run.ids.size();
    if (next < m_ids.size()) run.after = m_ids[next];
    runs.append(run);
  }
  return runs;
}

void VdmIndexedIds::takeOut(const OdArray<OdUInt32>& positions, OdDbDwgFiler* undo) {
  if (undo != nullptr) {
    const OdArray<Run> runs = runsAt(positions);
    undo->wrBool(true);
    undo->wrInt32(static_cast<OdInt32>(runs.size()));
    for (const Run& run : runs) {
      undo->wrSoftPointerId(run.before);
      undo->wrSoftPointerId(run.after);
      writeIds(undo, run.ids);
    }
  }
  if (positions.isEmpty()) return;
  m_stamp = nextStamp();
  OdDbObjectId* ids = m_ids.asArrayPtr();
  // With an id in several places the table does not tell whether one is left.
  if (m_index.size() != m_ids.size()) m_isIndexed = false;
  OdUInt32 kept = positions[0];
  const OdUInt32* next = std::as_const(positions).begin();
  const OdUInt32* end = std::as_const(positions).end();
  for (OdUInt32 i = kept; i < m_ids.size(); ++i) {
    if (next == end || *next != i) {
      ids[kept++] = ids[i];
      continue;
    }
    if (m_isIndexed) m_index.erase(ids[i]);
    ++next;
  }
  m_ids.resize(kept);
}

// Of several places that fit equally well the last one.
OdArray<OdUInt32> VdmIndexedIds::placesOf(const OdArray<Run>& runs) const {
  const OdUInt32 end = m_ids.size();
  const auto left = [this](OdUInt32 place) {
    return place == 0 ? OdDbObjectId() : m_ids[place - 1];
  };
  const auto right = [this, end](OdUInt32 place) {
    return place == end ? OdDbObjectId() : m_ids[place];
  };
  OdArray<OdUInt32> places(runs.size());
  places.resize(runs.size(), end);
  std::vector<Run::Fit> fits(runs.size(), Run::kNone);
  const auto consider = [&](OdUInt32 i, OdUInt32 place) {
    const Run::Fit fit = runs[i].fit(left(place), right(place));
    if (fit == Run::kNone || fit < fits[i]) return;
    fits[i] = fit;
    places.setAt(i, place);
  };
  if (runs.size() == 1) {
    for (OdUInt32 place = 0; place <= end; ++place) consider(0, place);
    return places;
  }
  std::unordered_multimap<OdDbObjectId, OdUInt32> byNeighbour;
  for (OdUInt32 i = 0; i < runs.size(); ++i) {
    byNeighbour.emplace(runs[i].before, i);
    if (runs[i].after != runs[i].before) byNeighbour.emplace(runs[i].after, i);
  }
  for (OdUInt32 place = 0; place <= end; ++place) {
    for (const OdDbObjectId& neighbour : {left(place), right(place)}) {
      const auto [first, last] = byNeighbour.equal_range(neighbour);
      for (auto entry = first; entry != last; ++entry) consider(entry->second, place);
    }
  }
  return places;
}

void VdmIndexedIds::putIn(const OdArray<Run>& runs, OdDbDwgFiler* undo) {
  const OdArray<OdUInt32> places = placesOf(runs);
  std::vector<OdUInt32> order(runs.size());
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin(), order.end(),
                   [&places](OdUInt32 a, OdUInt32 b) { return places[a] < places[b]; });
  const OdDbObjectIdArray before = m_ids;
  OdDbObjectIdArray after;
  OdDbObjectIdArray added;
  OdUInt32 next = 0;
  for (const OdUInt32 i : order) {
    while (next < places[i]) after.append(before[next++]);
    after.append(runs[i].ids);
    added.append(runs[i].ids);
  }
  while (next < before.size()) after.append(before[next++]);
  m_ids = after;
  m_stamp = nextStamp();
  if (m_isIndexed) m_index.insert(added.begin(), added.end());
  if (undo == nullptr) return;
  undo->wrBool(false);
  writeIds(undo, added);
}

void VdmIndexedIds::applyUndo(OdDbDwgFiler* record, OdDbDwgFiler* inverse) {
  if (!record->rdBool()) return takeOut(lastPositionsOf(readIds(record)), inverse);
  OdArray<Run> runs;
  for (OdUInt32 count = record->rdCount(kMinRunBytes); count > 0; --count) {
    Run run;
    run.before = record->rdSoftPointerId();
    run.after = record->rdSoftPointerId();
    run.ids = readIds(record);
    runs.append(run);
  }
  putIn(runs, inverse);
}
