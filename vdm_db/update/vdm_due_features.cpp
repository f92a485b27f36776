// The features that an update pass has to look at.
//
// A feature takes part for one of these reasons (docs/update-pass.md): a reactor tells changes; one
// of its dependencies was replaced or cloned; an entity in a dependency was moved or changed, or
// the insert of its opening was moved; its dependencies lead to several entities or to none. The
// first and the last are traits of features. The others have an id in the pass's input, which is a
// key in the index. So the due features are those with the traits and those at the keys: as many
// look-ups as the input has ids, whatever the number of features.
#include "vdm_db/update/vdm_due_features.h"

#include <algorithm>

#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_update_context.h"

using Look = VdmFeatureLook;

namespace {

const VdmUpdateHost* hostWithChanges(const VdmUpdateContext& context) {
  return context.host != nullptr && context.host->hasChangedEntities() ? context.host : nullptr;
}

}  // namespace

VdmDueFeatures::VdmDueFeatures(const VdmDbFeatureManager* manager,
                               const VdmDependenciesReplacementMap& map,
                               const VdmUpdateContext& context)
    : m_map(map),
      m_context(context),
      m_ids(manager->featureIds()),
      m_index(manager->currentIndex()),
      m_isAll(m_index == nullptr) {
  if (m_index == nullptr) return;
  m_notes.emplace(manager->database());
  m_generation = m_index->generation();
  m_numLiving = m_index->numLiving();
  findDue();
}

// ---- At the start

void VdmDueFeatures::findDue() {
  if (numLookUps() > m_index->numSlots()) return takeAllFromHere();
  findByOwnTraits();
  findByMap();
  takeInChangedEntities();
  std::sort(m_due.begin(), m_due.end());
  m_due.erase(std::unique(m_due.begin(), m_due.end()), m_due.end());
}

std::size_t VdmDueFeatures::numLookUps() const {
  const VdmUpdateHost* host = hostWithChanges(m_context);
  return m_map.numReplaced() + m_map.clones().size() + m_map.numTransformed() +
         (host == nullptr ? 0 : host->numChangedEntities().value_or(0));
}

void VdmDueFeatures::findByOwnTraits() {
  OdUInt32 traits = m_context.isFollowUp ? OdUInt32{0} : OdUInt32{Look::kSeveral};
  if (m_context.constraintsWereCalculated) {
    traits |= Look::kAsked | Look::kChanged | Look::kRecalculated;
  }
  if (m_map.hasTransformedObjects()) traits |= Look::kMovable;
  m_index->forEachWith(traits, [this](VdmFeatureIndex::Slot slot) { addSlot(slot); });
}

void VdmDueFeatures::findByMap() {
  m_map.forEachReplaced([this](const OdDbObjectId& id) { addAt(id); });
  for (const OdDbObjectId& id : m_map.clones()) addAt(id);
  m_map.forEachTransformed([this](const OdDbObjectId& id, const auto& data) {
    if (!data.isMarked) addAt(id);
  });
}

// A host that keeps no list may mean any entity.
void VdmDueFeatures::takeInChangedEntities() {
  const VdmUpdateHost* host = hostWithChanges(m_context);
  if (host == nullptr) return;
  const std::optional<std::size_t> count = host->numChangedEntities();
  if (!count.has_value()) return takeAllFromHere();
  for (; m_numChanged < *count; ++m_numChanged) addAt(host->changedEntity(m_numChanged));
}

void VdmDueFeatures::addAt(const OdDbObjectId& id) {
  m_index->forEachAt(id, [this](VdmFeatureIndex::Slot slot) { addSlot(slot); });
}

void VdmDueFeatures::addSlot(VdmFeatureIndex::Slot slot) {
  const OdUInt32 place = m_index->place(slot);
  if (place < m_nextPlace || place >= m_ids.size()) return;
  if (m_isStarted) {
    m_late.insert(place);
  } else {
    m_due.push_back(place);
  }
}

// ---- Later

// A pass within this one may have brought the index up to date with another list: then the places
// are not those of the start.
void VdmDueFeatures::addLate() {
  if (m_generation != m_index->generation()) return takeAllFromHere();
  takeInChangedEntities();
  const auto add = [this](const OdDbObjectId& noted) {
    m_index->forEachConcerned(noted, [this](VdmFeatureIndex::Slot slot) { addSlot(slot); });
  };
  if (m_notes->hasNews() && !m_notes->readNews(add)) takeAllFromHere();
}

OdUInt32 VdmDueFeatures::nextDuePlace() {
  while (m_nextDue < m_due.size() && m_due[m_nextDue] < m_nextPlace) ++m_nextDue;
  m_late.erase(m_late.begin(), m_late.lower_bound(m_nextPlace));
  const OdUInt32 due = m_nextDue < m_due.size() ? m_due[m_nextDue] : m_ids.size();
  return m_late.empty() ? due : std::min(due, *m_late.begin());
}

OdDbObjectId VdmDueFeatures::next() {
  if (!m_isAll && m_isStarted) addLate();
  m_isStarted = true;
  const OdUInt32 place = m_isAll ? m_nextPlace : nextDuePlace();
  if (place >= m_ids.size()) return {};
  m_nextPlace = place + 1;
  return m_ids[place];
}

OdUInt32 VdmDueFeatures::numPassedOver(OdUInt32 numOpened) const {
  return m_numLiving > numOpened ? m_numLiving - numOpened : 0;
}
