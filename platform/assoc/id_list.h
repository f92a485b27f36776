// Filing of lists of ids that stay while their objects are erased.
#pragma once

#include "platform/db/list_filing.h"
#include "platform/filer/object_id.h"

/// An array of ids for OdDbFieldFiling; which ids are filed is oddbIsFiled's rule.
template <class Array>
struct OdDbAssocIdList {
  Array& ids;

  template <class Visit>
  void forEach(Visit&& visit) {
    const OdDbObjectIdArray& present = ids;
    for (const OdDbObjectId& id : present) visit(id);
  }
  static bool isFiled(const OdDbDwgFiler* filer, const OdDbObjectId& id) {
    return oddbIsFiled(filer, id);
  }
  static bool isFiledAtAll(const OdDbDwgFiler*) { return true; }
  void clear() { ids.clear(); }
  void reserve(OdUInt32 count) { ids.reserve(count); }
  void add(const OdDbObjectId& id) { ids.append(id); }
};

template <class Array>
OdDbAssocIdList(Array&) -> OdDbAssocIdList<Array>;
