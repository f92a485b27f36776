// Pages and rows of a SQLite table tree.
//
// Every offset, size and count comes from the page and may be wrong. Each is compared with the
// bytes that are there before it is used, and views never reach beyond their page or payload:
// whatever the bytes are, reading them gives a row or false.
#include "platform/storage/btree_page.h"

#include <array>
#include <limits>

#include "platform/storage/bytes.h"
#include "platform/storage/file_header.h"
#include "platform/storage/record_checksum.h"

namespace odstorage {

namespace {

constexpr std::uint8_t kInteriorType = 0x05;
constexpr std::uint8_t kLeafType = 0x0D;
constexpr std::size_t kInteriorHeaderBytes = 12;
constexpr std::size_t kLeafHeaderBytes = 8;

/// Most and least of a payload that stays in a leaf when the rest overflows.
constexpr std::uint64_t kMaxLocal = kPageSize - 35;
constexpr std::uint64_t kMinLocal = (kPageSize - 12) * 32 / 255 - 23;

const std::uint8_t* bytesOf(std::string_view view) {
  return reinterpret_cast<const std::uint8_t*>(view.data());
}

/// Big-endian base 128, at most nine bytes, the ninth with all its bits.
bool takeVarint(std::string_view& source, std::uint64_t& value) {
  value = 0;
  for (std::size_t i = 0; i < 9 && i < source.size(); ++i) {
    const auto byte = static_cast<std::uint8_t>(source[i]);
    if (i == 8) {
      value = (value << 8U) | byte;
    } else {
      value = (value << 7U) | (byte & 0x7FU);
    }
    if (i < 8 && (byte & 0x80U) != 0) continue;
    source.remove_prefix(i + 1);
    return true;
  }
  return false;
}

std::uint64_t localSize(std::uint64_t payloadSize) {
  if (payloadSize <= kMaxLocal) return payloadSize;
  const std::uint64_t fitting = kMinLocal + (payloadSize - kMinLocal) % kOverflowBytes;
  return fitting <= kMaxLocal ? fitting : kMinLocal;
}

// ---- Columns

struct Column {
  std::uint64_t type = 0;
  std::string_view bytes;

  [[nodiscard]] bool isNull() const { return type == 0; }
  [[nodiscard]] bool isInteger() const {
    return (type >= 1 && type <= 6) || type == 8 || type == 9;
  }
  [[nodiscard]] bool isBlob() const { return type >= 12 && type % 2 == 0; }
  [[nodiscard]] bool isText() const { return type >= 13 && type % 2 == 1; }
  [[nodiscard]] std::uint64_t integer() const;
};

/// Stored integers are signed; 8 and 9 are the constants 0 and 1.
std::uint64_t Column::integer() const {
  if (type >= 8) return type - 8;
  std::uint64_t value = bigEndian(bytesOf(bytes), bytes.size());
  const std::size_t bits = bytes.size() * 8;
  if (bits < 64 && (value >> (bits - 1)) != 0) value |= ~std::uint64_t{0} << bits;
  return value;
}

constexpr std::uint64_t columnSize(std::uint64_t type) {
  constexpr std::array<std::uint64_t, 12> kFixed = {0, 1, 2, 3, 4, 6, 8, 8, 0, 0, 0, 0};
  return type < kFixed.size() ? kFixed[type] : (type - 12) / 2;
}

constexpr std::size_t kMaxColumns = 5;

/// Number of columns, 0 when the payload is not sound.
std::size_t takeColumns(std::string_view payload, std::array<Column, kMaxColumns>& columns) {
  std::string_view head = payload;
  std::uint64_t headSize = 0;
  if (!takeVarint(head, headSize) || headSize > payload.size()) return 0;
  const std::size_t sizeBytes = payload.size() - head.size();
  if (headSize < sizeBytes) return 0;
  head = payload.substr(sizeBytes, static_cast<std::size_t>(headSize) - sizeBytes);
  std::string_view body = payload.substr(static_cast<std::size_t>(headSize));
  std::size_t count = 0;
  while (!head.empty()) {
    if (count == kMaxColumns) return 0;
    Column& column = columns[count++];
    if (!takeVarint(head, column.type)) return 0;
    const std::uint64_t size = columnSize(column.type);
    if (size > body.size()) return 0;
    column.bytes = body.substr(0, static_cast<std::size_t>(size));
    body.remove_prefix(static_cast<std::size_t>(size));
  }
  return body.empty() ? count : 0;
}

}  // namespace

// ---- TreePage

TreePage::TreePage(const std::uint8_t* bytes, std::uint32_t number)
    : m_bytes(bytes), m_start(number == 1 ? kFileHeaderBytes : 0) {
  const std::uint8_t type = bytes[m_start];
  if (type != kInteriorType && type != kLeafType) return;
  m_headerSize = type == kLeafType ? kLeafHeaderBytes : kInteriorHeaderBytes;
  m_cellCount = static_cast<std::size_t>(bigEndian(bytes + m_start + 3, 2));
  if (m_start + m_headerSize + m_cellCount * 2 > kPageSize) return;
  m_kind = type == kLeafType ? PageKind::kLeaf : PageKind::kInterior;
}

std::uint32_t TreePage::rightChild() const {
  return static_cast<std::uint32_t>(bigEndian(m_bytes + m_start + 8, 4));
}

/// From the cell's start to the end of the page; empty when the start is not in the page.
std::string_view TreePage::cellBytes(std::size_t index) const {
  const auto offset =
      static_cast<std::size_t>(bigEndian(m_bytes + m_start + m_headerSize + index * 2, 2));
  if (offset < m_start + m_headerSize || offset >= kPageSize) return {};
  return {reinterpret_cast<const char*>(m_bytes) + offset, kPageSize - offset};
}

bool TreePage::interiorCell(std::size_t index, InteriorCell& cell) const {
  std::string_view bytes = cellBytes(index);
  if (bytes.size() < 5) return false;
  cell.child = static_cast<std::uint32_t>(bigEndian(bytesOf(bytes), 4));
  bytes.remove_prefix(4);
  std::uint64_t key = 0;
  if (!takeVarint(bytes, key)) return false;
  cell.key = static_cast<std::int64_t>(key);
  return true;
}

bool TreePage::leafCell(std::size_t index, LeafCell& cell) const {
  std::string_view bytes = cellBytes(index);
  std::uint64_t key = 0;
  if (!takeVarint(bytes, cell.payloadSize) || !takeVarint(bytes, key)) return false;
  cell.key = static_cast<std::int64_t>(key);
  const std::uint64_t local = localSize(cell.payloadSize);
  const bool overflows = local < cell.payloadSize;
  if (local + (overflows ? 4U : 0U) > bytes.size()) return false;
  cell.local = bytes.substr(0, static_cast<std::size_t>(local));
  bytes.remove_prefix(static_cast<std::size_t>(local));
  cell.overflow = overflows ? static_cast<std::uint32_t>(bigEndian(bytesOf(bytes), 4)) : 0;
  return true;
}

// ---- Rows

bool decodeRow(std::int64_t key, std::string_view payload, StoredRow& row) {
  std::array<Column, kMaxColumns> columns;
  const std::size_t count = takeColumns(payload, columns);
  if (count < 3 || !columns[0].isNull() || !columns[count - 1].isBlob() ||
      !columns[count - 2].isInteger()) {
    return false;
  }
  row = {};
  row.key = key;
  row.sum = columns[count - 2].integer();
  row.content = columns[count - 1].bytes;
  if (count == 3) {
    row.table = StoredRow::Table::kClasses;
    return true;
  }
  if (count == 4) {
    row.table = StoredRow::Table::kVariables;
    row.name = columns[1].bytes;
    return columns[1].isText();
  }
  row.table = StoredRow::Table::kObjects;
  row.classId = columns[1].integer();
  row.owner = columns[2].integer();
  return columns[1].isInteger() && columns[2].isInteger();
}

bool StoredRow::isIntact() const {
  constexpr std::uint64_t kMaxId = std::numeric_limits<std::uint32_t>::max();
  switch (table) {
    case Table::kVariables:
      return sum == variableChecksum(key, name, content);
    case Table::kClasses:
      return key >= 1 && static_cast<std::uint64_t>(key) <= kMaxId &&
             sum == classChecksum(static_cast<std::uint32_t>(key), content);
    case Table::kObjects:
      break;
  }
  if (classId > kMaxId) return false;
  OdDbRecordView record;
  record.handle = static_cast<OdUInt64>(key);
  record.classId = static_cast<OdUInt32>(classId);
  record.owner = owner;
  record.data = bytesOf(content);
  record.size = content.size();
  return sum == recordChecksum(record);
}

}  // namespace odstorage
