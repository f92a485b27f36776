// OdDbBlockTable: layouts and anonymous names.
#include "platform/db/block_table.h"

#include <algorithm>
#include <string>

#include "platform/base/error.h"
#include "platform/db/database.h"

OD_RX_DEFINE_DB(OdDbBlockTable, OdDbSymbolTable, L"OdDbBlockTable", 0, 0, 0, L"BLOCK_TABLE",
                OdString())

namespace {

// "*U": an asterisk and one letter.
bool isNumberless(const OdString& name) {
  return name.getLength() == 2 && name.getAt(0) == L'*' && name.getAt(1) != L'|';
}

// The number after the prefix; 0 when there is none.
OdUInt64 numberBehind(const OdString& prefix, const OdString& name) {
  constexpr OdUInt64 kLimit = 1'000'000'000'000'000;
  OdUInt64 number = 0;
  for (int i = prefix.getLength(); i < name.getLength(); ++i) {
    const wchar_t digit = name.getAt(i);
    if (digit < L'0' || digit > L'9' || number > kLimit) return 0;
    number = number * 10 + static_cast<OdUInt64>(digit - L'0');
  }
  return number;
}

}  // namespace

OdDbObjectId OdDbBlockTable::getModelSpaceId() const { return getAt(OdString(kModelSpaceName)); }
OdDbObjectId OdDbBlockTable::getPaperSpaceId() const { return getAt(OdString(kPaperSpaceName)); }

OdUInt64 OdDbBlockTable::nextNumber(const OdString& prefix) const {
  for (auto& [known, greatest] : m_numbers) {
    if (known.iEquals(prefix)) return ++greatest;
  }
  OdUInt64 greatest = 0;
  const OdDbNamedIds::Entries& entries = records().entries();
  for (auto at = entries.lowerBound(prefix); !entries.isEnd(at); entries.advance(at)) {
    const OdString& name = entries.item(at).name;
    if (!name.left(prefix.getLength()).iEquals(prefix)) break;
    greatest = std::max(greatest, numberBehind(prefix, name));
  }
  m_numbers.emplace_back(prefix, ++greatest);
  return greatest;
}

OdDbObjectId OdDbBlockTable::add(OdDbSymbolTableRecord* record) {
  if (record == nullptr || !isNumberless(record->getName())) return OdDbSymbolTable::add(record);
  const OdString prefix = record->getName();
  OdString name;
  do {
    name = prefix + OdString(std::to_string(nextNumber(prefix)));
  } while (!getAt(name, /*getErased=*/true).isNull());
  record->setName(name);
  return OdDbSymbolTable::add(record);
}
