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
/// found when its checksum is right; of two versions of a row the one in the tree is taken, then
/// the one on a page that is not listed as free. Time and memory grow with the file's size only,
/// whatever its pages claim.
class PageScavenger {
 public:
  using Report = std::function<void(const std::string&)>;

  /// `file` is open and need not be configured; nothing is read through SQL.
  PageScavenger(const Connection& file, Report report);

  /// Phase 1: the rows that the trees of the three tables reach.
  void walkTrees();
  /// Phase 2: intact rows of pages that are neither in a tree nor free. Fills what phase 1 missed.
  void searchLostPages();
  /// Phase 3, for a file that lacks rows after the first two: what the trees lost and a free page
  /// has.
  void searchFreePages();
  /// Visits all rows that were found: variables, classes, then objects in rising unsigned order of
  /// handles. A row is valid during the call only. May be called after any phase.
  void emit(const std::function<void(const StoredRow&)>& visit);

  [[nodiscard]] std::size_t rowCount() const { return m_rows.size(); }

 private:
  /// Where a row was found; of several versions of a row the earliest origin wins.
  enum class Origin : std::uint8_t { kTree, kLostPage, kFreePage };
  struct Place {
    StoredRow::Table table;
    std::uint64_t key;
    std::uint64_t sum;
    std::uint32_t page;
    std::uint16_t cell;
    Origin origin;
  };
  struct KeySpan {
    std::int64_t first;
    std::int64_t last;
  };
  struct LostRows {
    StoredRow::Table table;
    KeySpan keys;
  };
  using Page = std::array<std::uint8_t, kPageSize>;

  void walkPage(std::uint32_t number, std::size_t depth, KeySpan keys);
  void walkInterior(const TreePage& page, std::uint32_t number, std::size_t depth, KeySpan keys);
  void collectTreeLeaf(const TreePage& page, std::uint32_t number, KeySpan keys);
  bool collectCell(const TreePage& page, std::uint32_t number, std::size_t index, Origin origin);
  bool readPayload(const TreePage::LeafCell& cell);
  void searchPages(const std::vector<std::uint32_t>& numbers, Origin origin);
  [[nodiscard]] std::vector<std::uint32_t> listFreePages() const;
  void sortLostRows();
  [[nodiscard]] bool isLost(const StoredRow& row) const;
  void sortRows();
  void lostSpan(std::uint32_t number, const char* why, KeySpan keys);
  [[nodiscard]] bool readPage(std::uint32_t number, Page& page) const;
  [[nodiscard]] bool isPage(std::uint32_t number) const {
    return number >= 1 && number <= m_pageCount;
  }

  const Connection& m_file;
  Report m_report;
  std::uint32_t m_pageCount;
  std::uint64_t m_overflowBudget;     ///< overflow pages that may still be read while searching
  std::vector<bool> m_visited;        ///< by page number
  std::vector<std::uint32_t> m_free;  ///< pages of a sound free list that no tree reaches
  std::vector<LostRows> m_lost;       ///< what the trees lost
  StoredRow::Table m_table = StoredRow::Table::kVariables;  ///< of the tree that is walked
  std::vector<std::uint32_t> m_chain;
  std::vector<char> m_overflowed;
  std::string_view m_payload;
  std::vector<Place> m_rows;
};

}  // namespace odstorage
