// VdmDueFeatures: the features that an update pass has to look at.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <vector>

#include "platform/filer/object_id.h"
#include "vdm_db/features/vdm_feature_index.h"
#include "vdm_db/model/vdm_reference_notes.h"

class VdmDbFeatureManager;
class VdmDependenciesReplacementMap;
struct VdmUpdateContext;

/// Gives the features of a manager that a pass may take, one by one and in the order of the
/// manager's list as it is at the start. All others would be skipped, for nothing in the pass's
/// input leads to them and nothing of their own makes them take part. The index of the manager
/// knows them; where it does not, or where looking all of them up would take longer than a walk,
/// all features are given.
///
/// The features prepare one after the other while the pass goes through them, and what one of them
/// changes may give a part to a later one. So before each step it is looked up whom the changes
/// since the last step concern. The replacement map does not change meanwhile.
///
/// The manager is open for read and outlives it, and so do the map and the host of the context.
class VdmDueFeatures {
 public:
  VdmDueFeatures(const VdmDbFeatureManager* manager, const VdmDependenciesReplacementMap& map,
                 const VdmUpdateContext& context);

  /// Null at the end.
  OdDbObjectId next();
  /// How many features that open were not given, when so many of those that were given opened.
  [[nodiscard]] OdUInt32 numPassedOver(OdUInt32 numOpened) const;

 private:
  void findDue();
  void findByOwnTraits();
  void findByMap();
  void addLate();
  void takeInChangedEntities();
  OdUInt32 nextDuePlace();
  void takeAllFromHere() { m_isAll = true; }
  [[nodiscard]] std::size_t numLookUps() const;
  void addSlot(VdmFeatureIndex::Slot slot);
  void addAt(const OdDbObjectId& id);

  const VdmDependenciesReplacementMap& m_map;
  const VdmUpdateContext& m_context;
  const OdDbObjectIdArray m_ids;  // at the start
  VdmFeatureIndex* m_index;       // null: all are given
  std::optional<VdmReferenceNotesReader> m_notes;
  OdUInt64 m_generation = 0;  // of the index at the start
  OdUInt32 m_numLiving = 0;   // likewise
  bool m_isAll = false;

  // Places in m_ids.
  std::vector<OdUInt32> m_due;  // rising
  std::size_t m_nextDue = 0;
  std::set<OdUInt32> m_late;  // due because of changes since the start
  bool m_isStarted = false;
  OdUInt32 m_nextPlace = 0;      // all before it were given or passed over
  std::size_t m_numChanged = 0;  // of the host's changed entities that were looked up
};
