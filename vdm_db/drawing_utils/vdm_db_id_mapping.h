// VdmDbIdMapping: from one id to another.
#pragma once

#include <unordered_map>

#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"

/// From one id to another, such as from a block to its clone.
class VDM_DB_EXPORT VdmDbIdMapping {
  using Values = std::unordered_map<OdDbObjectId, OdDbObjectId, vdmu::OdDbObjectIdHash>;

 public:
  /// False, with the first value kept, when the key is there.
  bool add(OdDbObjectId key, OdDbObjectId value);
  /// Null without the key.
  [[nodiscard]] OdDbObjectId find(OdDbObjectId key) const;
  /// Pairs of key and value, in no order.
  [[nodiscard]] Values::const_iterator begin() const { return m_values.begin(); }
  [[nodiscard]] Values::const_iterator end() const { return m_values.end(); }

 private:
  Values m_values;
};
