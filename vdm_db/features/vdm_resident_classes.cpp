// Features in memory, by class.
#include "vdm_db/features/vdm_resident_classes.h"

#include <algorithm>

#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/references/vdm_indexed_ids.h"

namespace {

bool isOneOf(const OdRxClass* cls, std::initializer_list<OdRxClass*> classes) {
  return std::any_of(classes.begin(), classes.end(),
                     [cls](const OdRxClass* wanted) { return cls->isDerivedFrom(wanted); });
}

}  // namespace

void VdmResidentClasses::find(const VdmIndexedIds& features,
                              std::initializer_list<OdRxClass*> classes, OdDbObjectIdArray& found) {
  forgetWhatEnded(features);
  OdUInt32 numWanted = 0;
  for (Row& row : m_rows) {
    row.isWanted = isOneOf(row.cls, classes);
    if (row.isWanted) numWanted += row.numSeen;
  }
  found.reserve(numWanted);
  const OdDbObjectIdArray& ids = features.ids();
  m_seen.resize(ids.size());
  constexpr OdUInt32 kAhead = 24;  // records that are under way from memory
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    if (i + kAhead < ids.size()) __builtin_prefetch(&ids[i + kAhead].idRecord()->object);
    const OdDbIdRecord* idRecord = ids[i].idRecord();
    if (idRecord == nullptr || idRecord->object == nullptr) continue;
    if (idRecord->has(OdDbIdRecord::kErased)) continue;
    Seen& seen = m_seen[i];
    const bool isKnown = seen.carrier == idRecord->object;
    if (isKnown ? m_rows[seen.row].isWanted : isWanted(idRecord->object, seen, classes)) {
      found.append(ids[i]);
    }
  }
}

// A class may have ended with its module, and another one may lie in its place.
void VdmResidentClasses::forgetWhatEnded(const VdmIndexedIds& features) {
  const bool isSame = m_stamp == features.stamp() && m_numEnded == VdmDbFeatureData::numEnded() &&
                      std::all_of(m_rows.begin(), m_rows.end(), [](const Row& row) {
                        return odrxClassDictionary()->getAt(row.name) == row.cls;
                      });
  if (isSame) return;
  m_stamp = features.stamp();
  m_numEnded = VdmDbFeatureData::numEnded();
  m_seen.clear();
  m_rows.clear();
}

// Another object than a carrier, or one that has no feature yet, is not remembered.
bool VdmResidentClasses::isWanted(const OdDbObject* object, Seen& seen, Classes classes) {
  if (object->isA() != VdmDbFeatureData::desc()) return false;
  const VdmFeature* feature = static_cast<const VdmDbFeatureData*>(object)->adapter();
  const OdRxClass* cls = feature == nullptr ? OdRxObject::desc() : feature->isA();
  if (cls == nullptr) return false;
  if (feature == nullptr) return isOneOf(cls, classes);
  seen = {object, rowOf(cls, classes)};
  ++m_rows[seen.row].numSeen;
  return m_rows[seen.row].isWanted;
}

OdUInt32 VdmResidentClasses::rowOf(const OdRxClass* cls, Classes classes) {
  const auto found =
      std::find_if(m_rows.begin(), m_rows.end(), [cls](const Row& row) { return row.cls == cls; });
  const auto row = static_cast<OdUInt32>(found - m_rows.begin());
  if (found == m_rows.end()) m_rows.push_back({cls->name(), cls, isOneOf(cls, classes)});
  return row;
}
