// Names of constraints, and numbered names that are unique.
#pragma once

#include <set>

#include "platform/base/string.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbConstraintManager;

/// Sets of names in use hold them in upper case: names that differ in case alone are equal.
namespace vdmu {

/// Adds the names of all constraints of the manager.
VDM_DB_EXPORT void getConstraintNamesSet(VdmDbConstraintManager* manager,
                                         std::set<OdString>& names);
/// "<base>_<number>" with the first number from `start` on that is not taken; it is taken then.
/// With `tryBase` the base itself where it is free; the set is unchanged then.
[[nodiscard]] VDM_DB_EXPORT OdString generateUniqueName(const OdString& base,
                                                        std::set<OdString>& taken, int start,
                                                        bool tryBase);
/// The same, counting in `number`: it is the number that was used afterwards.
[[nodiscard]] VDM_DB_EXPORT OdString takeNumberedName(const OdString& base,
                                                      std::set<OdString>& taken, int& number);
/// Without the digits at its end, and then without one "_".
[[nodiscard]] VDM_DB_EXPORT OdString removeNumericSuffix(const OdString& name);
/// The name itself when it is free, otherwise one of the same base, counted from the number of
/// names that are taken. It is taken then.
[[nodiscard]] VDM_DB_EXPORT OdString uniqueNameNumericSuffix(const OdString& name,
                                                             std::set<OdString>& taken);

}  // namespace vdmu
