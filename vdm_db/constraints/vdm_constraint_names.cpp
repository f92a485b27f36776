// Names of constraints, and numbered names that are unique.
#include "vdm_db/constraints/vdm_constraint_names.h"

#include "platform/base/case_compare.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"

namespace vdmu {

void getConstraintNamesSet(VdmDbConstraintManager* manager, std::set<OdString>& names) {
  for (const VdmConstraintPtr& constraint : manager->constraints()) {
    names.insert(odToUpper(constraint->name()));
  }
}

OdString takeNumberedName(const OdString& base, std::set<OdString>& taken, int& number) {
  while (true) {
    const OdString name = OdString().format(L"%ls_%d", base.c_str(), number);
    if (taken.insert(odToUpper(name)).second) return name;
    ++number;
  }
}

OdString generateUniqueName(const OdString& base, std::set<OdString>& taken, int start,
                            bool tryBase) {
  if (tryBase && !taken.contains(odToUpper(base))) return base;
  return takeNumberedName(base, taken, start);
}

OdString removeNumericSuffix(const OdString& name) {
  int length = name.getLength();
  while (length > 0 && name[length - 1] >= L'0' && name[length - 1] <= L'9') --length;
  if (length > 0 && name[length - 1] == L'_') --length;
  return name.left(length);
}

OdString uniqueNameNumericSuffix(const OdString& name, std::set<OdString>& taken) {
  if (taken.insert(odToUpper(name)).second) return name;
  return generateUniqueName(removeNumericSuffix(name), taken, static_cast<int>(taken.size()),
                            /*tryBase=*/false);
}

}  // namespace vdmu
