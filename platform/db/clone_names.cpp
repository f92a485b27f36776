// Names of cloned records.
#include "platform/db/clone_names.h"

#include "platform/base/case_compare.h"
#include "platform/base/error.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/db/clone_state.h"
#include "platform/db/dictionary.h"
#include "platform/db/symbol_table.h"

OdString oddbRecordName(const OdDbObject* source) {
  const OdDbSymbolTableRecordPtr record = OdDbSymbolTableRecord::cast(source);
  if (!record.isNull()) return record->getName();
  const OdDbDictionaryPtr dictionary = source->ownerId().openAs<OdDbDictionary>();
  return dictionary.isNull() ? OdString() : dictionary->nameAt(source->objectId());
}

bool oddbListsByName(const OdDbObject* owner) {
  return owner->isKindOf(OdDbDictionary::desc()) || owner->isKindOf(OdDbSymbolTable::desc());
}

OdDbObjectId oddbEntryAt(const OdDbObject* owner, const OdString& name) {
  const OdDbDictionaryPtr dictionary = OdDbDictionary::cast(owner);
  if (!dictionary.isNull()) return dictionary->getAt(name);
  const OdDbSymbolTablePtr table = OdDbSymbolTable::cast(owner);
  return table.isNull() ? OdDbObjectId::kNull : table->getAt(name);
}

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

void oddbListWithOwner(OdDbObject* clone, OdDbObject* owner, const OdString& name) {
  const bool isEntity = clone->isKindOf(OdDbEntity::desc());
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::cast(owner);
  if (isEntity && !block.isNull()) {
    block->upgradeOpen();
    block->appendOdDbEntity(OdDbEntity::cast(clone));
    block->downgradeOpen();
    return;
  }
  const OdDbDictionaryPtr dictionary = OdDbDictionary::cast(owner);
  if (!dictionary.isNull()) {
    dictionary->upgradeOpen();
    dictionary->setAt(name, clone);
    dictionary->downgradeOpen();
    return;
  }
  const OdDbSymbolTablePtr table = OdDbSymbolTable::cast(owner);
  if (table.isNull()) return;
  const OdDbSymbolTableRecordPtr record = OdDbSymbolTableRecord::cast(clone);
  if (record.isNull()) {
    throw OdError(eWrongObjectType,
                  clone->isA()->name() + L" is no record of table " + owner->isA()->name());
  }
  table->upgradeOpen();
  table->add(record);
  table->downgradeOpen();
}
