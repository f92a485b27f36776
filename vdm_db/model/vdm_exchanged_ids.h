// VdmExchangedIds: other ids in a list for a scope.
#pragma once

#include "platform/base/non_copyable.h"
#include "vdm_db/references/vdm_indexed_ids.h"

/// Puts `ids` in place of a list, and the former ids back at the end of the scope. A manager that
/// is being cloned files its list; with fewer ids in it the base clones fewer of the objects that
/// it owns. The list outlives the guard.
class VdmExchangedIds : OdNonCopyable {
 public:
  VdmExchangedIds(VdmIndexedIds& list, const OdDbObjectIdArray& ids)
      : m_list(list), m_former(list.ids()) {
    m_list.array() = ids;
    m_list.replaced();
  }
  ~VdmExchangedIds() {
    m_list.array() = m_former;
    m_list.replaced();
  }

 private:
  VdmIndexedIds& m_list;
  const OdDbObjectIdArray m_former;
};
