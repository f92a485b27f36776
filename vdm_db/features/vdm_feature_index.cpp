// The index of a manager's features.
//
// Each feature has an entry with its traits and its keys: the ids under which it can be found. A
// table leads from each key to the entries that have or had it. Links are never taken out one by
// one, for a stale link only makes a pass look at a feature in vain; a feature whose keys change
// gets new keys and links beside the old ones, and once half of the keys are dead the index forgets
// everything and begins anew, so that both lists stay within twice of what is needed. An entry
// stays when its feature leaves the list, for undo brings features back.
//
// Why no feature is missed: a decision of a pass depends on the pass's input and on the states of
// the feature's carrier, its reactors and its dependencies. A feature is known only after a look at
// all of these. Whenever one of them may have changed, its note leads here to the feature: the
// carrier is linked, a reactor belongs to the carrier that owns it, a dependency is a key. Whatever
// that does not cover (objects that do not open or are open for write, reactors and dependencies of
// other owners, classes and drawings) leaves the feature unknown, and every question has the
// unknown ones in its answer.
#include "vdm_db/features/vdm_feature_index.h"

#include <algorithm>
#include <array>

#include "vdm_db/features/vdm_feature_read_ahead.h"
#include "vdm_db/references/vdm_indexed_ids.h"

namespace {

using Look = VdmFeatureLook;

// Below this many dead keys a new beginning is not worth it.
constexpr std::size_t kMinDeadKeys = 1024;

}  // namespace

void VdmFeatureIndex::forgetAll() {
  ++m_generation;
  m_stamp = 0;
  m_numLiving = 0;
  m_list.clear();
  m_entries.clear();
  m_slots.clear();
  m_keys.clear();
  m_numDeadKeys = 0;
  m_firstLinks.clear();
  m_links.clear();
  m_special.clear();
  m_unknown.clear();
}

bool VdmFeatureIndex::bringUpToDate(const VdmIndexedIds& features) {
  if (m_numDeadKeys > kMinDeadKeys && m_numDeadKeys > m_keys.size() / 2) forgetAll();
  takeInNotes();
  if (!takeInList(features)) {
    forgetAll();
    return false;
  }
  for (const OdUInt16 cls : m_look.changedClasses()) {
    for (Slot slot = 0; slot < numSlots(); ++slot) {
      if (m_entries[slot].cls == cls) markUnknown(slot);
    }
  }
  lookAtUnknown();
  return true;
}

// ---- The list

VdmFeatureIndex::Slot VdmFeatureIndex::slotOf(const OdDbObjectId& feature) {
  const auto [found, isNew] = m_slots.try_emplace(feature, numSlots());
  if (isNew) {
    m_entries.push_back({feature});
    markUnknown(found->second);
  }
  return found->second;
}

// Places before the first difference stay. False for a list that has an id twice.
bool VdmFeatureIndex::takeInList(const VdmIndexedIds& features) {
  const OdDbObjectIdArray& ids = features.ids();
  std::size_t kept = m_list.size();
  if (features.stamp() != m_stamp) {
    const std::size_t common = std::min<std::size_t>(kept, ids.size());
    kept = static_cast<std::size_t>(
        std::mismatch(m_list.begin(), m_list.begin() + static_cast<std::ptrdiff_t>(common),
                      ids.begin())
            .first -
        m_list.begin());
  }
  m_stamp = features.stamp();
  if (kept != m_list.size()) ++m_generation;
  for (std::size_t i = kept; i < m_list.size(); ++i) {
    Entry& entry = m_entries[slotOf(m_list[i])];
    entry.place = kNoPlace;
    if ((entry.traits & Look::kLiving) != 0) --m_numLiving;
  }
  m_list.resize(kept);
  for (auto i = static_cast<OdUInt32>(kept); i < ids.size(); ++i) {
    Entry& entry = m_entries[slotOf(ids[i])];
    if (entry.place != kNoPlace) return false;
    entry.place = i;
    if ((entry.traits & Look::kLiving) != 0) ++m_numLiving;
    m_list.push_back(ids[i]);
  }
  return true;
}

// ---- Notes

void VdmFeatureIndex::takeInNotes() {
  const auto take = [this](const OdDbObjectId& id) {
    forEachConcerned(id, [this](Slot slot) { markUnknown(slot); });
  };
  if (!m_notes.readNews(take)) forgetAll();
}

void VdmFeatureIndex::markUnknown(Slot slot) {
  Entry& entry = m_entries[slot];
  if ((entry.traits & Look::kUnknown) != 0) return;
  setTraits(entry, slot, entry.traits | Look::kUnknown);
  m_unknown.push_back(slot);
}

// ---- Looks

// Reading objects from the file makes notes of them: what was just read is known.
void VdmFeatureIndex::lookAtUnknown() {
  std::vector<Slot> unknown;
  unknown.swap(m_unknown);
  std::array<OdDbObjectId, VdmFeatureReadAhead::kPortion> ahead;
  for (std::size_t first = 0; first < unknown.size(); first += ahead.size()) {
    const std::size_t count = std::min(ahead.size(), unknown.size() - first);
    for (std::size_t i = 0; i < count; ++i) ahead[i] = feature(unknown[first + i]);
    VdmFeatureReadAhead::read({ahead.data(), count});
    for (std::size_t i = 0; i < count; ++i) lookAt(unknown[first + i]);
  }
  m_notes.skipNews();
}

void VdmFeatureIndex::lookAt(Slot slot) {
  m_look.at(m_entries[slot].feature);
  Entry& entry = m_entries[slot];
  const OdUInt32 traits = m_look.traits();
  setTraits(entry, slot, traits);
  entry.cls = m_look.classNumber();
  if ((traits & Look::kUnknown) != 0) m_unknown.push_back(slot);
  setKeys(entry, slot);
}

void VdmFeatureIndex::setTraits(Entry& entry, Slot slot, OdUInt32 traits) {
  if (entry.place != kNoPlace) {
    if ((entry.traits & Look::kLiving) != 0) --m_numLiving;
    if ((traits & Look::kLiving) != 0) ++m_numLiving;
  }
  entry.traits = static_cast<OdUInt16>(traits);
  if (traits <= Look::kLiving || entry.isSpecial) return;
  entry.isSpecial = true;
  m_special.push_back(slot);
}

void VdmFeatureIndex::setKeys(Entry& entry, Slot slot) {
  const std::vector<OdDbObjectId>& keys = m_look.keys();
  const auto first = m_keys.begin() + entry.firstKey;
  if (keys.size() == entry.numKeys && std::equal(keys.begin(), keys.end(), first)) return;
  m_numDeadKeys += entry.numKeys;
  entry.firstKey = static_cast<OdUInt32>(m_keys.size());
  entry.numKeys = static_cast<OdUInt32>(keys.size());
  m_keys.insert(m_keys.end(), keys.begin(), keys.end());
  for (const OdDbObjectId& key : keys) link(key, slot);
}

void VdmFeatureIndex::link(const OdDbObjectId& id, Slot slot) {
  const auto [first, isNew] = m_firstLinks.try_emplace(id, kNoPlace);
  if (!isNew && m_links[first->second].slot == slot) return;
  m_links.push_back({slot, first->second});
  first->second = static_cast<OdUInt32>(m_links.size() - 1);
}

std::size_t VdmFeatureIndex::approximateSize() const {
  constexpr std::size_t kNode = 4 * sizeof(void*);  // of a hash table
  return m_list.capacity() * sizeof(OdDbObjectId) + m_entries.capacity() * sizeof(Entry) +
         m_keys.capacity() * sizeof(OdDbObjectId) + m_links.capacity() * sizeof(Link) +
         (m_slots.size() + m_firstLinks.size()) * kNode;
}
