// Checksums of rows, and the digest that guards the set of rows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/db/record_store.h"
#include "platform/storage/storage_format.h"

namespace odstorage {

/// Checksum (XXH3, 64 bits) of an object row: handle, class, owner, size and data.
[[nodiscard]] std::uint64_t recordChecksum(const OdDbRecordView& record);
/// Checksum of a class row: id, size and record.
[[nodiscard]] std::uint64_t classChecksum(std::uint32_t id, std::string_view record);
/// Checksum of a header row: row id, key, size and value.
[[nodiscard]] std::uint64_t variableChecksum(std::int64_t id, std::string_view key,
                                             std::string_view value);

/// Number of rows and the sum of their checksums modulo 2^64: independent of their order, and
/// kept up to date row by row.
struct RowSetDigest {
  std::uint64_t count = 0;
  std::uint64_t sum = 0;

  void add(std::uint64_t checksum) {
    ++count;
    sum += checksum;
  }
  void remove(std::uint64_t checksum) {
    --count;
    sum -= checksum;
  }
  friend bool operator==(const RowSetDigest&, const RowSetDigest&) = default;
};

/// Content of the state row. Stored little-endian:
///
///   0  u32  oldest reader version that understands the file
///   4  u32  zero
///   8  u64  number of objects
///  16  u64  sum of the checksums of the objects
///  24  u64  number of classes and variables
///  32  u64  sum of the checksums of classes and variables
struct StoreState {
  std::uint32_t minReaderVersion = kMinReaderVersion;
  RowSetDigest objects;
  RowSetDigest names;

  [[nodiscard]] std::array<std::uint8_t, kStateRowBytes> encode() const;
  /// False when `bytes` is not a state row. Longer rows are of newer formats: their head is read.
  [[nodiscard]] bool decode(std::string_view bytes);
  friend bool operator==(const StoreState&, const StoreState&) = default;
};

}  // namespace odstorage
