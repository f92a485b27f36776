// VdmFeatureIndex: what the features of a manager depend on, so that a pass finds those that are
// due.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "platform/filer/object_id.h"
#include "vdm_db/features/vdm_feature_look.h"
#include "vdm_db/model/vdm_reference_notes.h"

class VdmIndexedIds;

/// Knows of each feature of a manager which dependencies, entities and insert it refers to, and
/// whether it takes part in passes for other reasons; and of each dependency, entity and insert
/// which features refer to it. So a pass looks at the features that its input leads to, and at
/// those that are never left out, instead of at all.
///
/// The index answers with too many features rather than with too few: the pass looks at each of
/// them as if there were no index. It is in memory only, belongs to the manager, and is filled at
/// its first use. It learns of edits in two ways. The manager's list has a stamp; with another one
/// the lists are compared from the first difference on. Carriers, reactors and dependencies note
/// when their state may have changed (VdmReferenceNotes); the features concerned are unknown then
/// and looked at when the index is used next. A feature that cannot be known stays unknown, and is
/// among the answers of every question. The cost of a use is that of what changed since the last.
class VdmFeatureIndex {
 public:
  /// Number of a feature in the index; the same as long as the index lives.
  using Slot = OdUInt32;

  explicit VdmFeatureIndex(const OdDbDatabase* database) : m_notes(database) {}

  /// Takes in what happened since the last call. The questions below are about the state then.
  /// False when the index cannot serve, because the list has an id twice.
  bool bringUpToDate(const VdmIndexedIds& features);
  /// Another number when entries may have got other slots or features other places in the list.
  [[nodiscard]] OdUInt64 generation() const { return m_generation; }

  // ---- Questions

  /// visit(slot) of each feature with one of the traits, unknown ones in any case.
  template <class Visit>
  void forEachWith(OdUInt32 traits, const Visit& visit);
  /// visit(slot) of each feature that refers, or once referred, to the dependency, entity or
  /// insert.
  template <class Visit>
  void forEachAt(const OdDbObjectId& id, const Visit& visit) const;
  /// visit(slot) of each feature whose state may have changed with that of an object that was
  /// noted.
  template <class Visit>
  void forEachConcerned(const OdDbObjectId& noted, const Visit& visit) const;

  [[nodiscard]] OdUInt32 traits(Slot slot) const { return m_entries[slot].traits; }
  [[nodiscard]] const OdDbObjectId& feature(Slot slot) const { return m_entries[slot].feature; }
  /// Where it is in the manager's list; kNoPlace for one that is not listed any more.
  [[nodiscard]] OdUInt32 place(Slot slot) const { return m_entries[slot].place; }
  [[nodiscard]] OdUInt32 numSlots() const { return static_cast<OdUInt32>(m_entries.size()); }
  /// Listed features that open.
  [[nodiscard]] OdUInt32 numLiving() const { return m_numLiving; }
  [[nodiscard]] std::size_t approximateSize() const;

  static constexpr OdUInt32 kNoPlace = 0xFFFFFFFF;

 private:
  struct Entry {
    OdDbObjectId feature;
    OdUInt32 place = kNoPlace;
    OdUInt32 firstKey = 0;  // in m_keys
    OdUInt32 numKeys = 0;
    OdUInt16 traits = 0;
    OdUInt16 cls = 0;
    bool isSpecial = false;  // listed in m_special
  };
  struct Link {
    Slot slot;
    OdUInt32 next;  // in m_links; kNoPlace at the end
  };

  void forgetAll();
  bool takeInList(const VdmIndexedIds& features);
  void takeInNotes();
  void lookAtUnknown();
  void lookAt(Slot slot);
  void setTraits(Entry& entry, Slot slot, OdUInt32 traits);
  void setKeys(Entry& entry, Slot slot);
  void markUnknown(Slot slot);
  void link(const OdDbObjectId& id, Slot slot);
  Slot slotOf(const OdDbObjectId& feature);

  VdmReferenceNotesReader m_notes;
  OdUInt64 m_stamp = 0;  // of the list
  OdUInt64 m_generation = 0;
  OdUInt32 m_numLiving = 0;
  std::vector<OdDbObjectId> m_list;  // as last taken in
  std::vector<Entry> m_entries;
  std::unordered_map<OdDbObjectId, Slot> m_slots;  // by feature
  std::vector<OdDbObjectId> m_keys;  // of the entries, and some that no entry has any more
  std::size_t m_numDeadKeys = 0;
  std::unordered_map<OdDbObjectId, OdUInt32> m_firstLinks;  // by key
  std::vector<Link> m_links;
  std::vector<Slot> m_special;  // those with traits, and some that have lost them
  std::vector<Slot> m_unknown;
  VdmFeatureLook m_look;
};

template <class Visit>
void VdmFeatureIndex::forEachWith(OdUInt32 traits, const Visit& visit) {
  std::size_t kept = 0;
  for (const Slot slot : m_special) {
    Entry& entry = m_entries[slot];
    entry.isSpecial = entry.traits > VdmFeatureLook::kLiving;
    if (!entry.isSpecial) continue;
    m_special[kept++] = slot;
    if ((entry.traits & (traits | VdmFeatureLook::kUnknown)) != 0) visit(slot);
  }
  m_special.resize(kept);
}

template <class Visit>
void VdmFeatureIndex::forEachAt(const OdDbObjectId& id, const Visit& visit) const {
  const auto found = m_firstLinks.find(id);
  if (found == m_firstLinks.end()) return;
  for (OdUInt32 i = found->second; i != kNoPlace; i = m_links[i].next) visit(m_links[i].slot);
}

// Of a reactor the owner leads to the feature.
template <class Visit>
void VdmFeatureIndex::forEachConcerned(const OdDbObjectId& noted, const Visit& visit) const {
  forEachAt(noted, visit);
  for (const OdDbObjectId& id : {noted, noted.ownerId()}) {
    const auto found = m_slots.find(id);
    if (found != m_slots.end()) visit(found->second);
  }
}
