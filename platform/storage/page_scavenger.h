// Finds the intact rows of a damaged drawing file, page by page.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/storage/btree_page.h"
#include "platform/storage/sqlite_connection.h"

namespace odstorage {

/// Walks the trees as far as they are sound, then searches the pages that no tree reaches. A row is
/// found when its checksum is right; of two versions of a row the one in the tree is taken. Time
/// and memory grow with the file's size only, whatever its pages claim.
class PageScavenger {
 public:
  using Report = std::function<void(const std::string&)>;

  /// `file` is open and need not be configured; nothing is read through SQL.
  PageScavenger(const Connection& file, Report report);

  /// Phase 1: the rows that the trees of the three tables reach.
  void walkTrees();
  /// Phase 2: intact rows of pages that are neither in a tree nor free. Fills what phase 1 missed.
  void searchLostPages();
  /// Phase 3: visits all rows that were found: variables, classes, then objects in rising unsigned
  /// order of handles. A row is valid during the call only.
  void emit(const std::function<void(const StoredRow&)>& visit);

  [[nodiscard]] std::size_t rowCount() const { return m_rows.size(); }

 private:
  struct Place {
    StoredRow::Table table;
    std::uint64_t key;
    std::uint64_t sum;
    std::uint32_t page;
    std::uint16_t cell;
    bool fromTree;
  };
  struct KeySpan {
    std::int64_t first;
    std::int64_t last;
  };
  using Page = std::array<std::uint8_t, kPageSize>;

  void walkPage(std::uint32_t number, std::size_t depth, KeySpan keys);
  void walkInterior(const TreePage& page, std::uint32_t number, std::size_t depth, KeySpan keys);
  void collectLeaf(const TreePage& page, std::uint32_t number, bool fromTree);
  bool collectCell(const TreePage& page, std::uint32_t number, std::size_t index, bool fromTree);
  bool readPayload(const TreePage::LeafCell& cell);
  void markFreePages();
  void sortRows();
  void lostSpan(std::uint32_t number, const char* why, KeySpan keys);
  [[nodiscard]] bool readPage(std::uint32_t number, Page& page) const;
  [[nodiscard]] bool isPage(std::uint32_t number) const {
    return number >= 1 && number <= m_pageCount;
  }

  const Connection& m_file;
  Report m_report;
  std::uint32_t m_pageCount;
  std::uint64_t m_overflowBudget;  ///< overflow pages that may still be read while searching
  std::vector<bool> m_visited;     ///< by page number
  std::vector<std::uint32_t> m_chain;
  std::vector<char> m_overflowed;
  std::string_view m_payload;
  std::vector<Place> m_rows;
};

}  // namespace odstorage
