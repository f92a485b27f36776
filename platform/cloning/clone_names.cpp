// Names of cloned records.
#include "platform/cloning/clone_names.h"

#include "platform/base/case_compare.h"
#include "platform/cloning/clone_state.h"
#include "platform/db/block_table.h"
#include "platform/db/db_object.h"
#include "platform/db/owner_listing.h"

OdString oddbAnonymousBlockName(const OdString& name) {
  if (name.getLength() < 2 || name.getAt(0) != L'*') return OdString();
  const bool isLayout = odStrIEqual(name, OdDbBlockTable::kModelSpaceName) ||
                        odStrIEqual(name, OdDbBlockTable::kPaperSpaceName);
  return isLayout ? OdString(L"*U") : name.left(2);
}

// Numbers that were tried are remembered, so that many clones of one name stay linear.
OdString oddbMangledName(OdDbCloneState& state, const OdDbObject* owner, const OdString& prefix,
                         const OdString& name) {
  OdUInt32& number =
      state.nameCounters[owner->getDbHandle().ascii() + L"/" + prefix + L"/" + odCaseFold(name)];
  for (;; ++number) {
    OdString mangled;
    mangled.format(L"%ls$%u$%ls", prefix.c_str(), number, name.c_str());
    if (oddbEntryAt(owner, mangled).isNull()) return mangled;
  }
}

OdString oddbUnmangledName(const OdString& name) {
  const int first = name.find(L'$');
  if (first < 0) return name;
  const int second = name.find(L'$', first + 1);
  if (second <= first + 1 || second + 1 >= name.getLength()) return name;
  for (int i = first + 1; i < second; ++i) {
    const wchar_t digit = name.getAt(i);
    if (digit < L'0' || digit > L'9') return name;
  }
  return name.mid(second + 1);
}
