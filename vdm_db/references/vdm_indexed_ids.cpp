// Lists of ids with hashed look-up.
//
// The array is the list; the hash set beside it only answers whether an id is listed. The set is
// made when it is first needed, for lists of kIndexedFrom ids and more, and from then on each edit
// changes both. So while m_isIndexed is true the set holds exactly the ids of the array. Code that
// fills the array from outside calls replaced(), which marks the set as out of date.
//
// An edit is a list of rising positions with the ids at them. Taking out closes the gaps in one
// walk from the first position on; putting in merges the kept ids and the new ones in one walk, so
// that an edit costs the length of the list, however many ids it concerns. The two are the inverse
// of each other with the same positions, which is why an undo record needs no more than these.
#include "vdm_db/references/vdm_indexed_ids.h"

#include <algorithm>
#include <utility>

#include "platform/filer/dwg_filer.h"

namespace {

// Below this a walk is faster than a look-up table.
constexpr OdUInt32 kIndexedFrom = 16;

// The shortest form of a position.
constexpr OdUInt32 kMinPositionBytes = 1;

void record(OdDbDwgFiler* undo, bool putIn, const OdArray<OdUInt32>& positions) {
  if (undo == nullptr) return;
  undo->wrBool(putIn);
  undo->wrInt32(static_cast<OdInt32>(positions.size()));
  for (const OdUInt32 position : positions) undo->wrInt32(static_cast<OdInt32>(position));
}

}  // namespace

void VdmIndexedIds::replaced() {
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

// ---- Edits

void VdmIndexedIds::append(const OdDbObjectIdArray& ids, OdDbDwgFiler* undo) {
  if (ids.isEmpty()) return;
  if (undo != nullptr) {
    OdArray<OdUInt32> positions(ids.size());
    for (OdUInt32 i = 0; i < ids.size(); ++i) positions.append(m_ids.size() + i);
    record(undo, /*putIn=*/false, positions);
  }
  m_ids.append(ids);
  if (m_isIndexed) m_index.insert(ids.begin(), ids.end());
}

void VdmIndexedIds::takeOut(const OdArray<OdUInt32>& positions, OdDbDwgFiler* undo) {
  if (positions.isEmpty()) return;
  record(undo, /*putIn=*/true, positions);
  OdDbObjectId* ids = m_ids.asArrayPtr();
  OdUInt32 kept = positions[0];
  const OdUInt32* next = std::as_const(positions).begin();
  const OdUInt32* end = std::as_const(positions).end();
  for (OdUInt32 i = kept; i < m_ids.size(); ++i) {
    if (next == end || *next != i) {
      ids[kept++] = ids[i];
      continue;
    }
    if (undo != nullptr) undo->wrSoftPointerId(ids[i]);
    if (m_isIndexed) m_index.erase(ids[i]);
    ++next;
  }
  m_ids.resize(kept);
}

void VdmIndexedIds::putIn(const OdArray<OdUInt32>& positions, const OdDbObjectIdArray& ids,
                          OdDbDwgFiler* undo) {
  record(undo, /*putIn=*/false, positions);
  if (m_isIndexed) m_index.insert(ids.begin(), ids.end());
  if (ids.size() == 1) return m_ids.insertAt(std::min(positions[0], m_ids.size()), ids[0]);
  const OdDbObjectIdArray before = m_ids;
  OdDbObjectIdArray after(before.size() + ids.size());
  OdUInt32 old = 0;
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    while (after.size() < positions[i] && old < before.size()) after.append(before[old++]);
    after.append(ids[i]);
  }
  while (old < before.size()) after.append(before[old++]);
  m_ids = after;
}

void VdmIndexedIds::applyUndo(OdDbDwgFiler* record, OdDbDwgFiler* inverse) {
  const bool puts = record->rdBool();
  const OdUInt32 count = record->rdCount(kMinPositionBytes);
  OdArray<OdUInt32> positions(count);
  for (OdUInt32 i = 0; i < count; ++i) {
    positions.append(static_cast<OdUInt32>(record->rdInt32()));
  }
  if (!puts) return takeOut(positions, inverse);
  OdDbObjectIdArray ids(count);
  for (OdUInt32 i = 0; i < count; ++i) ids.append(record->rdSoftPointerId());
  putIn(positions, ids, inverse);
}
