// From one id to another.
#include "vdm_db/drawing_utils/vdm_db_id_mapping.h"

bool VdmDbIdMapping::add(OdDbObjectId key, OdDbObjectId value) {
  return m_values.emplace(key, value).second;
}

OdDbObjectId VdmDbIdMapping::find(OdDbObjectId key) const {
  const auto found = m_values.find(key);
  return found == m_values.end() ? OdDbObjectId::kNull : found->second;
}
