// Finds the intact rows of a damaged drawing file.
//
// The idea. A row carries the checksum of all its columns, so it proves by itself that it is
// intact, wherever it is found. Finding it needs no trust in the pages around it.
//
//   1. walkTrees: from the fixed roots down, as far as pages and their links are sound. This finds
//      the present version of each row. A broken link costs the rows below it, and is reported with
//      the span of their keys.
//   2. searchLostPages: every page that no tree reached is read as a leaf, if it looks like one.
//      This finds the rows below broken links, and may find older versions of rows. Free pages are
//      skipped when the list of them is sound: they hold rows that were erased.
//   3. searchFreePages, when rows are still missing: a list can be sound in form and name a page
//      that is in use. Nothing in a page tells a row that was erased from one that is lost, so only
//      rows are taken whose keys lie where the trees broke, and the report says so.
//   4. emit: of several versions of a row, one from a tree wins, then one from a lost page; the
//      others come in the order of their pages. Chosen rows are read again, since holding them all
//      would need the file's size in memory.
//
// Why it ends, whatever the pages claim: a page counts as visited before its children are walked
// and is never walked twice; chains of overflow pages are limited by the size that the row claims,
// by the number of pages, and over a phase by m_overflowBudget, so that many rows which claim the
// same long chain cannot make the search quadratic. Only a row whose checksum is right marks its
// overflow pages as visited. Time and memory are linear in the size of the file.
#include "platform/storage/page_scavenger.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <tuple>
#include <utility>

#include "platform/storage/bytes.h"
#include "platform/storage/file_header.h"
#include "platform/storage/status.h"

namespace odstorage {

namespace {

/// Tables are made in fixed order in an empty file: `header`, `classes` and `objects` have these
/// root pages in every drawing.
struct Root {
  std::uint32_t page;
  StoredRow::Table table;
};
constexpr Root kRoots[] = {{2, StoredRow::Table::kVariables},
                           {3, StoredRow::Table::kClasses},
                           {4, StoredRow::Table::kObjects}};
/// Deeper than any tree of 2^32 pages.
constexpr std::size_t kMaxDepth = 20;

constexpr std::size_t kFreeTrunkOffset = 32;
constexpr std::size_t kFreeCountOffset = 36;
constexpr std::size_t kMaxTrunkLeaves = kPageSize / 4 - 2;

constexpr std::int64_t kFirstKey = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLastKey = std::numeric_limits<std::int64_t>::max();

std::uint32_t countPages(const Connection& file) {
  const std::int64_t pages = file.fileSize() / static_cast<std::int64_t>(kPageSize);
  return static_cast<std::uint32_t>(
      std::clamp<std::int64_t>(pages, 0, std::numeric_limits<std::uint32_t>::max() - 1));
}

std::string rowName(const StoredRow& row) {
  const auto key = static_cast<OdUInt64>(row.key);
  switch (row.table) {
    case StoredRow::Table::kVariables:
      return "header row " + std::to_string(key);
    case StoredRow::Table::kClasses:
      return "class " + std::to_string(key);
    case StoredRow::Table::kObjects:
      break;
  }
  return "record " + handleText(key);
}

}  // namespace

PageScavenger::PageScavenger(const Connection& file, Report report)
    : m_file(file),
      m_report(std::move(report)),
      m_pageCount(countPages(file)),
      m_overflowBudget(std::uint64_t{m_pageCount} * 8),
      m_visited(std::size_t{m_pageCount} + 1) {}

bool PageScavenger::readPage(std::uint32_t number, Page& page) const {
  const auto offset = static_cast<std::int64_t>(number - 1) * static_cast<std::int64_t>(kPageSize);
  return isPage(number) && m_file.readFile(page.data(), page.size(), offset) == SQLITE_OK;
}

void PageScavenger::lostSpan(std::uint32_t number, const char* why, KeySpan keys) {
  std::string line = "page " + std::to_string(number) + " " + why;
  if (keys.first != kFirstKey || keys.last != kLastKey) {
    line += ", it held the rows from " + handleText(static_cast<OdUInt64>(keys.first)) + " to " +
            handleText(static_cast<OdUInt64>(keys.last));
  }
  m_report(line);
  m_lost.push_back({m_table, keys});
}

// ---- Phase 1: trees

void PageScavenger::walkTrees() {
  for (const Root& root : kRoots) {
    m_table = root.table;
    walkPage(root.page, 0, {kFirstKey, kLastKey});
  }
}

void PageScavenger::walkPage(std::uint32_t number, std::size_t depth, KeySpan keys) {
  if (!isPage(number)) return lostSpan(number, "is not in the file", keys);
  if (m_visited[number] || depth > kMaxDepth) {
    return lostSpan(number, "is claimed twice", keys);
  }
  Page bytes;
  if (!readPage(number, bytes)) return lostSpan(number, "cannot be read", keys);
  const TreePage page(bytes.data(), number);
  if (page.kind() == PageKind::kOther) return lostSpan(number, "is damaged", keys);
  m_visited[number] = true;
  if (page.kind() == PageKind::kLeaf) {
    collectTreeLeaf(page, number, keys);
  } else {
    walkInterior(page, number, depth, keys);
  }
}

void PageScavenger::walkInterior(const TreePage& page, std::uint32_t number, std::size_t depth,
                                 KeySpan keys) {
  std::int64_t first = keys.first;
  for (std::size_t i = 0; i < page.cellCount(); ++i) {
    TreePage::InteriorCell cell;
    if (!page.interiorCell(i, cell)) {
      m_report("page " + std::to_string(number) + " is damaged: entry " + std::to_string(i) +
               " lies outside of it");
      m_lost.push_back({m_table, {first, keys.last}});
      continue;
    }
    walkPage(cell.child, depth + 1, {first, cell.key});
    first = cell.key == kLastKey ? kLastKey : cell.key + 1;
  }
  walkPage(page.rightChild(), depth + 1, {first, keys.last});
}

void PageScavenger::collectTreeLeaf(const TreePage& page, std::uint32_t number, KeySpan keys) {
  for (std::size_t i = 0; i < page.cellCount(); ++i) {
    if (collectCell(page, number, i, Origin::kTree)) continue;
    StoredRow row;
    TreePage::LeafCell cell;
    const bool isNamed =
        page.leafCell(i, cell) && readPayload(cell) && decodeRow(cell.key, m_payload, row);
    m_lost.push_back({m_table, isNamed ? KeySpan{row.key, row.key} : keys});
    m_report((isNamed ? rowName(row) : "row " + std::to_string(i)) + " on page " +
             std::to_string(number) + " is damaged");
  }
}

/// Notes the row of a cell when it is intact; only then its overflow pages count as visited.
bool PageScavenger::collectCell(const TreePage& page, std::uint32_t number, std::size_t index,
                                Origin origin) {
  TreePage::LeafCell cell;
  StoredRow row;
  if (!page.leafCell(index, cell) || !readPayload(cell) || !decodeRow(cell.key, m_payload, row) ||
      !row.isIntact() || (origin == Origin::kFreePage && !isLost(row))) {
    return false;
  }
  for (const std::uint32_t overflow : m_chain) m_visited[overflow] = true;
  m_rows.push_back({row.table, static_cast<std::uint64_t>(row.key), row.sum, number,
                    static_cast<std::uint16_t>(index), origin});
  return true;
}

/// Leaves the whole payload in m_payload and its overflow pages in m_chain.
bool PageScavenger::readPayload(const TreePage::LeafCell& cell) {
  m_chain.clear();
  m_payload = cell.local;
  if (cell.overflow == 0) return cell.local.size() == cell.payloadSize;
  const std::uint64_t rest = cell.payloadSize - cell.local.size();
  const std::uint64_t pages = (rest + kOverflowBytes - 1) / kOverflowBytes;
  if (cell.payloadSize > kMaxRowBytes || pages > m_pageCount) return false;

  m_overflowed.assign(cell.local.begin(), cell.local.end());
  std::uint32_t next = cell.overflow;
  Page bytes;
  for (std::uint64_t left = rest; left > 0;) {
    if (m_overflowBudget == 0 || !readPage(next, bytes)) return false;
    --m_overflowBudget;
    m_chain.push_back(next);
    const std::uint64_t part = std::min<std::uint64_t>(left, kOverflowBytes);
    m_overflowed.insert(m_overflowed.end(), bytes.begin() + 4,
                        bytes.begin() + 4 + static_cast<std::ptrdiff_t>(part));
    next = static_cast<std::uint32_t>(bigEndian(bytes.data(), 4));
    left -= part;
  }
  m_payload = {m_overflowed.data(), m_overflowed.size()};
  return true;
}

// ---- Phase 2: pages without a tree

void PageScavenger::searchLostPages() {
  m_free = listFreePages();
  std::vector<bool> isListed(m_visited.size());
  for (const std::uint32_t number : m_free) isListed[number] = true;
  std::vector<std::uint32_t> lost;
  for (std::uint32_t number = 2; number <= m_pageCount; ++number) {
    if (!isListed[number]) lost.push_back(number);
  }
  searchPages(lost, Origin::kLostPage);
}

void PageScavenger::searchPages(const std::vector<std::uint32_t>& numbers, Origin origin) {
  m_overflowBudget = std::uint64_t{m_pageCount} * 8;
  Page bytes;
  for (const std::uint32_t number : numbers) {
    if (m_visited[number] || !readPage(number, bytes)) continue;
    const TreePage page(bytes.data(), number);
    if (page.kind() != PageKind::kLeaf) continue;
    for (std::size_t i = 0; i < page.cellCount(); ++i) (void)collectCell(page, number, i, origin);
  }
}

/// The pages of the free list. None when it is not sound, since it could hide pages that are
/// needed: when it names a page of a tree, or one twice, or as many as it does not say.
std::vector<std::uint32_t> PageScavenger::listFreePages() const {
  Page bytes;
  if (!readPage(1, bytes)) return {};
  const std::uint64_t expected = bigEndian(&bytes[kFreeCountOffset], 4);
  auto trunk = static_cast<std::uint32_t>(bigEndian(&bytes[kFreeTrunkOffset], 4));
  std::vector<std::uint32_t> free;
  std::vector<bool> isTaken = m_visited;
  const auto take = [&](std::uint32_t number) {
    if (!isPage(number) || isTaken[number]) return false;
    isTaken[number] = true;
    free.push_back(number);
    return true;
  };
  while (trunk != 0) {
    if (!take(trunk) || !readPage(trunk, bytes)) return {};
    const std::uint64_t leaves = bigEndian(&bytes[4], 4);
    if (leaves > kMaxTrunkLeaves) return {};
    for (std::size_t i = 0; i < leaves; ++i) {
      if (!take(static_cast<std::uint32_t>(bigEndian(&bytes[8 + i * 4], 4)))) return {};
    }
    trunk = static_cast<std::uint32_t>(bigEndian(bytes.data(), 4));
  }
  return free.size() == expected ? free : std::vector<std::uint32_t>();
}

// ---- Phase 3: free pages that may be in use

/// Orders what the trees lost, and makes one span of those that overlap.
void PageScavenger::sortLostRows() {
  std::ranges::sort(m_lost, {}, [](const LostRows& lost) {
    return std::tuple(lost.table, lost.keys.first, lost.keys.last);
  });
  std::vector<LostRows> merged;
  for (const LostRows& lost : m_lost) {
    LostRows* previous = merged.empty() ? nullptr : &merged.back();
    if (previous != nullptr && previous->table == lost.table &&
        lost.keys.first <= previous->keys.last) {
      previous->keys.last = std::max(previous->keys.last, lost.keys.last);
    } else {
      merged.push_back(lost);
    }
  }
  m_lost = std::move(merged);
}

bool PageScavenger::isLost(const StoredRow& row) const {
  const auto after = std::ranges::upper_bound(
      m_lost, std::tuple(row.table, row.key), {},
      [](const LostRows& lost) { return std::tuple(lost.table, lost.keys.first); });
  if (after == m_lost.begin()) return false;
  const LostRows& lost = *std::prev(after);
  return lost.table == row.table && row.key <= lost.keys.last;
}

void PageScavenger::searchFreePages() {
  sortLostRows();
  searchPages(m_free, Origin::kFreePage);
  sortRows();
  const auto count = std::ranges::count(m_rows, Origin::kFreePage, &Place::origin);
  if (count == 0) return;
  m_report("rows brought back from pages that are listed as free: " + std::to_string(count) +
           "; some may have been erased before");
}

// ---- What was found

/// Keeps one row per key: the one of the best origin, from the earliest page.
void PageScavenger::sortRows() {
  std::stable_sort(m_rows.begin(), m_rows.end(), [](const Place& a, const Place& b) {
    return std::tie(a.table, a.key, a.origin) < std::tie(b.table, b.key, b.origin);
  });
  std::size_t kept = 0;
  for (const Place& place : m_rows) {
    const Place* previous = kept > 0 ? &m_rows[kept - 1] : nullptr;
    if (previous == nullptr || previous->table != place.table || previous->key != place.key) {
      m_rows[kept++] = place;
      continue;
    }
    if (previous->sum == place.sum || previous->origin != place.origin) continue;
    m_report("two versions of row " + handleText(place.key) + " on pages " +
             std::to_string(previous->page) + " and " + std::to_string(place.page) +
             ", the first one was taken");
  }
  m_rows.resize(kept);
}

void PageScavenger::emit(const std::function<void(const StoredRow&)>& visit) {
  sortRows();
  // Rows that were found are intact: their chains are as long as their contents.
  m_overflowBudget = std::numeric_limits<std::uint64_t>::max();
  Page bytes;
  std::uint32_t inMemory = 0;
  for (const Place& place : m_rows) {
    if (place.page != inMemory && !readPage(place.page, bytes)) continue;
    inMemory = place.page;
    const TreePage page(bytes.data(), place.page);
    TreePage::LeafCell cell;
    StoredRow row;
    if (page.leafCell(place.cell, cell) && readPayload(cell) &&
        decodeRow(cell.key, m_payload, row) && row.isIntact()) {
      visit(row);
    }
  }
}

}  // namespace odstorage
