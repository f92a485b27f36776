// From clones back to their sources.
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"

#include <algorithm>

VdmDbReverseIdMapping::VdmDbReverseIdMapping(OdDbIdMapping& mapping) {
  const OdDbIdMappingIterPtr it = mapping.newIterator();
  OdDbIdPair pair;
  for (it->start(); !it->done(); it->next()) {
    if (it->getMap(pair)) m_pairs.push_back(pair);
  }
  std::stable_sort(m_pairs.begin(), m_pairs.end(),
                   [](const OdDbIdPair& a, const OdDbIdPair& b) { return a.value() < b.value(); });
}

bool VdmDbReverseIdMapping::compute(OdDbObjectId clone, OdDbIdPair& pair) const {
  pair.setValue(clone);
  const auto found = std::lower_bound(
      m_pairs.begin(), m_pairs.end(), clone,
      [](const OdDbIdPair& entry, OdDbObjectId value) { return entry.value() < value; });
  if (found == m_pairs.end() || found->value() != clone) return false;
  pair = *found;
  return true;
}

bool VdmDbReverseIdMapping::isCloned(OdDbObjectId clone) const {
  OdDbIdPair pair;
  return compute(clone, pair) && pair.isCloned();
}
