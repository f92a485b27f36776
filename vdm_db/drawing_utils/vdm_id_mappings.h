// VdmDbIdMapping and VdmDbReverseIdMapping: look-ups that cloning needs beside OdDbIdMapping.
#pragma once

#include <unordered_map>
#include <vector>

#include "platform/cloning/id_mapping.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"

/// From one id to another, such as from a block to its clone.
class VDM_DB_EXPORT VdmDbIdMapping {
 public:
  /// False, with the first value kept, when the key is there.
  bool add(OdDbObjectId key, OdDbObjectId value);
  /// Null without the key.
  [[nodiscard]] OdDbObjectId find(OdDbObjectId key) const;

 private:
  std::unordered_map<OdDbObjectId, OdDbObjectId, vdmu::OdDbObjectIdHash> m_values;
};

/// From clones back to their sources: the pairs of a mapping as it was when this was made.
class VDM_DB_EXPORT VdmDbReverseIdMapping {
 public:
  explicit VdmDbReverseIdMapping(OdDbIdMapping& mapping);

  /// `pair` becomes the first pair with the clone as value. False when there is none; `pair` then
  /// has the clone as value and is otherwise unchanged.
  bool compute(OdDbObjectId clone, OdDbIdPair& pair) const;
  /// There is a pair, and its value was made by cloning.
  [[nodiscard]] bool isCloned(OdDbObjectId clone) const;

 private:
  std::vector<OdDbIdPair> m_pairs;  // by value
};
