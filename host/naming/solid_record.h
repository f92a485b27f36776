// A binary record in the extension dictionary of a solid.
#pragma once

#include <vector>

#include "platform/filer/object_id.h"
#include "platform/filer/res_buf.h"

namespace vdm_host {

/// What a solid keeps under a key: bytes, and pointers beside them.
struct SolidRecord {
  std::vector<char> bytes;
  OdDbObjectIdArray pointers;  ///< soft

  /// False when there is none.
  [[nodiscard]] bool readFrom(const OdDbObjectId& solid, const wchar_t* key);
  /// Writes nothing that is there already, nor for a null id or a solid that cannot be opened for
  /// write.
  void writeTo(const OdDbObjectId& solid, const wchar_t* key) const;
};

}  // namespace vdm_host
