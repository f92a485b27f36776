// The records of ids, in pages of handles.
#include "platform/db/id_table.h"

#include <algorithm>

const OdDbIdTable::Page* OdDbIdTable::findFarPage(OdUInt64 number) const {
  const auto found = m_far.find(number);
  return found == m_far.end() ? nullptr : found->second.get();
}

OdDbIdTable::Page& OdDbIdTable::makePage(OdUInt64 number) {
  if (number >= kDirectPages) {
    std::unique_ptr<Page>& page = m_far[number];
    if (!page) page = std::make_unique<Page>();
    return *page;
  }
  const auto index = static_cast<std::size_t>(number);
  if (index >= m_direct.size()) {
    m_direct.reserve(std::max(index + 1, m_direct.size() * 2));
    m_direct.resize(index + 1);
  }
  if (!m_direct[index]) m_direct[index] = std::make_unique<Page>();
  return *m_direct[index];
}

OdDbIdRecord* OdDbIdTable::findOrCreate(OdUInt64 handle) {
  const Page* existing = findPage(handle / kPageSize);
  Page& page = existing != nullptr ? const_cast<Page&>(*existing) : makePage(handle / kPageSize);
  OdDbIdRecord& idRecord = page[handle % kPageSize];
  if (idRecord.handle == 0) {
    idRecord.handle = handle;
    idRecord.database = m_database;
  }
  return &idRecord;
}
