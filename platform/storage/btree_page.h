// Pages and rows of a SQLite table tree, read straight from the file's bytes and trusting none.
//
// Offsets and rules are those of SQLite's published database file format, restricted to what a
// drawing has: 4096-byte pages without reserved bytes, table trees only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/storage/storage_format.h"

namespace odstorage {

inline constexpr std::size_t kOverflowBytes = kPageSize - 4;  ///< content of one overflow page

enum class PageKind { kInterior, kLeaf, kOther };

/// A page of a table tree. Borrows the page's kPageSize bytes.
class TreePage {
 public:
  /// The page with number `number` (from 1; the first one starts after the file header).
  TreePage(const std::uint8_t* bytes, std::uint32_t number);

  /// kOther also when the page's own counts do not fit into it.
  [[nodiscard]] PageKind kind() const { return m_kind; }
  [[nodiscard]] std::size_t cellCount() const { return m_cellCount; }

  struct InteriorCell {
    std::uint32_t child = 0;
    std::int64_t key = 0;  ///< largest key below the child
  };
  struct LeafCell {
    std::int64_t key = 0;
    std::uint64_t payloadSize = 0;
    std::string_view local;      ///< the part of the payload in this page
    std::uint32_t overflow = 0;  ///< page with the rest, 0 when there is none
  };
  /// False when the cell does not lie within the page.
  [[nodiscard]] bool interiorCell(std::size_t index, InteriorCell& cell) const;
  [[nodiscard]] bool leafCell(std::size_t index, LeafCell& cell) const;
  /// Last child of an interior page.
  [[nodiscard]] std::uint32_t rightChild() const;

 private:
  [[nodiscard]] std::string_view cellBytes(std::size_t index) const;

  const std::uint8_t* m_bytes;
  std::size_t m_start;
  std::size_t m_headerSize = 0;
  std::size_t m_cellCount = 0;
  PageKind m_kind = PageKind::kOther;
};

/// A row of one of the drawing's tables. Views borrow the payload.
struct StoredRow {
  enum class Table { kVariables, kClasses, kObjects };
  Table table = Table::kObjects;
  std::int64_t key = 0;
  std::uint64_t classId = 0;  ///< objects only
  std::uint64_t owner = 0;    ///< objects only
  std::string_view name;      ///< variables only
  std::uint64_t sum = 0;
  std::string_view content;

  /// True when the checksum is that of the other columns.
  [[nodiscard]] bool isIntact() const;
};

/// Takes a payload apart. False when it is not a row of a drawing.
[[nodiscard]] bool decodeRow(std::int64_t key, std::string_view payload, StoredRow& row);

}  // namespace odstorage
