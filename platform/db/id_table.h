// OdDbIdTable: the records of a database's ids, found by handle.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <vector>

#include "platform/base/types.h"
#include "platform/filer/object_id.h"

/// Records lie in pages of consecutive handles. Handles are given out densely, so that a look-up is
/// two array accesses; handles beyond the direct range (damaged or foreign files) go through a map.
/// A record never moves and is never freed before the table.
class OdDbIdTable {
 public:
  explicit OdDbIdTable(OdDbDatabase* database) : m_database(database) {}

  /// Null when the handle was never seen.
  [[nodiscard]] OdDbIdRecord* find(OdUInt64 handle) const {
    const Page* page = findPage(handle / kPageSize);
    if (page == nullptr) return nullptr;
    const OdDbIdRecord& idRecord = (*page)[handle % kPageSize];
    return idRecord.handle == 0 ? nullptr : const_cast<OdDbIdRecord*>(&idRecord);
  }
  /// `handle` is not 0.
  OdDbIdRecord* findOrCreate(OdUInt64 handle);
  /// All records in rising handle order until `visit` returns false. Records made meanwhile may or
  /// may not be visited.
  template <class Visitor>
  void forEach(Visitor&& visit) const;

 private:
  static constexpr OdUInt64 kPageSize = 64;
  static constexpr OdUInt64 kDirectPages = OdUInt64{1} << 21;  // handles below 2^27
  using Page = std::array<OdDbIdRecord, kPageSize>;

  [[nodiscard]] const Page* findPage(OdUInt64 number) const {
    if (number < m_direct.size()) return m_direct[number].get();
    return number < kDirectPages ? nullptr : findFarPage(number);
  }
  [[nodiscard]] const Page* findFarPage(OdUInt64 number) const;
  Page& makePage(OdUInt64 number);

  OdDbDatabase* m_database;
  std::vector<std::unique_ptr<Page>> m_direct;
  std::map<OdUInt64, std::unique_ptr<Page>> m_far;
};

template <class Visitor>
void OdDbIdTable::forEach(Visitor&& visit) const {
  const auto visitPage = [&visit](Page& page) {
    for (OdDbIdRecord& idRecord : page) {
      if (idRecord.handle != 0 && !visit(&idRecord)) return false;
    }
    return true;
  };
  for (std::size_t i = 0; i < m_direct.size(); ++i) {
    if (m_direct[i] && !visitPage(*m_direct[i])) return;
  }
  for (const auto& [number, page] : m_far) {
    if (!visitPage(*page)) return;
  }
}
