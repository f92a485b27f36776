// Which ids of a list are filed, when some of the objects are erased.
#pragma once

#include "platform/filer/dwg_filer.h"
#include "platform/filer/object_id.h"

/// The rule of all lists that keep ids of erased objects, so that unerasing brings them back:
///
/// 1. Undo and page filers get every id.
/// 2. A file gets every id but those that are known to be gone for good. What is erased and still
///    in memory may come back after the save, and the list is not written again then; so its id
///    stays in the file, names nothing there, and is left out by the next session that writes the
///    list. Nothing is looked up in the file to find this out.
/// 3. Copies, clones and walks over references get the ids of objects that are not erased.
inline bool oddbIsFiled(const OdDbDwgFiler* filer, const OdDbObjectId& id) {
  constexpr OdUInt32 kGone = OdDbIdRecord::kErased | OdDbIdRecord::kAbsent;
  switch (filer->filerType()) {
    case OdDbDwgFiler::kUndoFiler:
    case OdDbDwgFiler::kPageFiler:
      return true;
    case OdDbDwgFiler::kFileFiler:
      return !id.isNull() && !id.idRecord()->has(OdDbIdRecord::kUnappended) &&
             (id.isResident() || !id.idRecord()->has(kGone));
    default:
      return !id.isErased();
  }
}
