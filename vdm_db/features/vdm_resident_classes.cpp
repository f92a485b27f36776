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

void VdmResidentClasses::find(const OdDbDatabase* database, const VdmIndexedIds& features,
                              Classes classes, OdDbObjectIdArray& found) {
  forgetWhatEnded(database, features);
  unsettleWhatChanged(features);
  OdUInt32 numWanted = 0;
  for (Row& row : m_rows) {
    row.isWanted = isOneOf(row.cls, classes);
    if (row.isWanted) numWanted += row.numSettled;
  }
  const OdDbObjectIdArray& ids = features.ids();
  found.reserve(std::min(numWanted, ids.size()));
  m_rowAt.resize(ids.size(), kUnsettled);
  constexpr OdUInt32 kAhead = 24;  // records that are under way from memory
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    const OdUInt32 ahead = i + kAhead;
    if (ahead < ids.size() && m_rowAt[ahead] == kUnsettled) {
      __builtin_prefetch(&ids[ahead].idRecord()->object);
    }
    OdUInt16& row = m_rowAt[i];
    if (row == kUnsettled ? isWanted(ids[i], row, classes) : m_rows[row].isWanted) {
      found.append(ids[i]);
    }
  }
  if (m_notes) m_notes->skipNews();  // of what was looked at just now
}

// A class may have ended with its module, and another one may lie in its place.
void VdmResidentClasses::forgetWhatEnded(const OdDbDatabase* database,
                                         const VdmIndexedIds& features) {
  const bool isSame = m_database == database && m_stamp == features.stamp() &&
                      m_numEnded == VdmDbFeatureData::numEnded() &&
                      std::all_of(m_rows.begin(), m_rows.end(), [](const Row& row) {
                        return odrxClassDictionary()->getAt(row.name) == row.cls;
                      });
  if (isSame) return;
  if (m_database != database) {
    m_notes.reset();
    if (database != nullptr) m_notes.emplace(database);
    m_database = database;
  }
  m_stamp = features.stamp();
  m_numEnded = VdmDbFeatureData::numEnded();
  m_rowAt.clear();
  m_rows.clear();
}

void VdmResidentClasses::unsettleWhatChanged(const VdmIndexedIds& features) {
  if (m_notes && !m_notes->hasNews()) return;
  OdDbObjectIdArray carriers;
  const bool hasAll = m_notes && m_notes->readNews([&carriers](OdDbObjectId id) {
    if (id.objectClass() == VdmDbFeatureData::desc()) carriers.append(id);
  });
  // Looking up many costs more than looking at all again.
  constexpr OdUInt32 kShare = 8;
  if (!hasAll || carriers.size() > features.ids().size() / kShare) {
    m_rowAt.clear();
    return;
  }
  if (carriers.isEmpty()) return;
  for (const OdUInt32 place : features.positionsOf(carriers)) {
    if (place < m_rowAt.size()) m_rowAt[place] = kUnsettled;
  }
}

// Another object than a carrier, and one whose state may change unheard, stays unsettled.
bool VdmResidentClasses::isWanted(OdDbObjectId id, OdUInt16& row, Classes classes) {
  const OdDbIdRecord* idRecord = id.idRecord();
  if (idRecord == nullptr || idRecord->object == nullptr) return false;
  if (idRecord->has(OdDbIdRecord::kErased)) return false;
  const OdDbObject* object = idRecord->object;
  if (object->isA() != VdmDbFeatureData::desc()) return false;
  const VdmFeature* feature = static_cast<const VdmDbFeatureData*>(object)->adapter();
  if (feature == nullptr) return isOneOf(OdRxObject::desc(), classes);
  const OdRxClass* cls = feature->isA();
  if (cls == nullptr) return false;
  const OdUInt16 its = rowOf(cls, classes);
  if (its == kUnsettled) return isOneOf(cls, classes);
  if (!object->isWriteEnabled()) {
    row = its;
    ++m_rows[its].numSettled;
  }
  return m_rows[its].isWanted;
}

// kUnsettled once there are as many classes as rows can be.
OdUInt16 VdmResidentClasses::rowOf(const OdRxClass* cls, Classes classes) {
  const auto found =
      std::find_if(m_rows.begin(), m_rows.end(), [cls](const Row& row) { return row.cls == cls; });
  if (found == m_rows.end()) {
    if (m_rows.size() == kUnsettled) return kUnsettled;
    m_rows.push_back({cls->name(), cls, isOneOf(cls, classes)});
    return static_cast<OdUInt16>(m_rows.size() - 1);
  }
  return static_cast<OdUInt16>(found - m_rows.begin());
}
