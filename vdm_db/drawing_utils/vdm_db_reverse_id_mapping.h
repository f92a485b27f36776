// VdmDbReverseIdMapping: from clones back to their sources.
#pragma once

#include <vector>

#include "platform/cloning/id_mapping.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

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
