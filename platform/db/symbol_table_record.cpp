// OdDbSymbolTableRecord: names, their rules, and the table that has to agree.
#include "platform/db/symbol_table_record.h"

#include <string_view>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/field_list.h"
#include "platform/db/symbol_table.h"

OD_RX_DEFINE_ABSTRACT(OdDbSymbolTableRecord, OdDbObject, L"OdDbSymbolTableRecord")

namespace {

constexpr std::wstring_view kForbidden = L"|*\\:;<>?\",=";

bool isPlainName(std::wstring_view name) {
  if (name.empty()) return false;
  for (const wchar_t character : name) {
    const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
    if (isControl || kForbidden.find(character) != std::wstring_view::npos) return false;
  }
  return true;
}

bool isLetter(wchar_t character) {
  return (character >= L'A' && character <= L'Z') || (character >= L'a' && character <= L'z');
}

}  // namespace

bool odDbIsValidRecordName(const OdString& name) {
  std::wstring_view rest(name.c_str());
  const std::size_t bar = rest.find(L'|');
  if (bar != std::wstring_view::npos) {
    if (!isPlainName(rest.substr(0, bar))) return false;
    rest.remove_prefix(bar + 1);
  }
  if (!rest.empty() && rest.front() == L'*') {
    rest.remove_prefix(1);
    return !rest.empty() && isLetter(rest.front()) && isPlainName(rest);
  }
  return isPlainName(rest);
}

// ---- Names

OdString OdDbSymbolTableRecord::getName() const { return read(m_name); }

void OdDbSymbolTableRecord::setName(const OdString& name) {
  if (name == m_name) return;
  const OdSmartPtr<OdDbSymbolTable> table =
      database() == nullptr ? OdSmartPtr<OdDbSymbolTable>()
                            : ownerId().openAs<OdDbSymbolTable>(OdDb::kForWrite);
  if (table.isNull() || !table->has(objectId())) return storeName(name);
  if (isFixed()) {
    throw OdError(eInvalidInput,
                  OdString("fixed record '") + m_name + "', new name '" + name + "'");
  }
  if (!odDbIsValidRecordName(name)) {
    throw OdError(eInvalidKey, OdString("record name '") + name + "' for '" + m_name + "'");
  }
  table->checkFree(name, objectId());
  const OdString oldName = m_name;
  storeName(name);
  table->rename(oldName, name, objectId());
}

void OdDbSymbolTableRecord::storeName(const OdString& name) {
  assertWriteEnabled();
  m_name = name;
}

bool OdDbSymbolTableRecord::isFixed() const {
  const OdUInt64 handle = getDbHandle();
  return handle != 0 && handle < OdDbRootHandles::kFirstFree;
}

bool OdDbSymbolTableRecord::isDependent() const {
  assertReadEnabled();
  return m_name.find(L'|') > 0;
}

bool OdDbSymbolTableRecord::isResolved() const { return read(m_resolved); }

void OdDbSymbolTableRecord::setResolved(bool resolved) { assign(m_resolved, resolved); }

OdResult OdDbSymbolTableRecord::subErase(bool erasing) {
  if (erasing && isFixed()) return eInvalidInput;
  const OdResult result = OdDbObject::subErase(erasing);
  if (result != eOk || erasing || isUndoing()) return result;
  const OdSmartPtr<OdDbSymbolTable> table = ownerId().openAs<OdDbSymbolTable>(OdDb::kForWrite);
  if (table.isNull()) return eOk;
  const OdDbObjectId present = table->getAt(m_name);
  if (!present.isNull() && present != objectId()) return eDuplicateRecordName;
  table->relist(m_name, objectId());
  return eOk;
}

// ---- Filing
//
//   field       binary   groups
//   version     uint8             1
//   name        string   2
//   resolved    bool     290      of a record that depends on an external reference

template <class Fields, class Self>
void OdDbSymbolTableRecord::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(2, self.m_name);
  fields.value(290, self.m_resolved);
}

OD_DB_DEFINE_FILING(OdDbSymbolTableRecord, OdDbObject)

std::size_t OdDbSymbolTableRecord::approximateSize() const {
  return OdDbObject::approximateSize() + m_name.utf8().size();
}
