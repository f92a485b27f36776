// Constants of the drawing file: identification, versions and limits, shared by reader and writer.
//
// A drawing file is a SQLite database with a rollback journal and three tables:
//
//   header(id, key, sum, value)              row 1: state row; then one row per drawing setting
//   classes(id, sum, record)                 one row per class
//   objects(handle, class, owner, sum, data) one row per object
//
// Laws of the file:
//  1. `sum` is the checksum of all other columns of its row (record_checksum.h).
//  2. The state row holds the number of rows and the sum (modulo 2^64) of their checksums, once for
//     the objects and once for classes and variables, so that a row that vanished, came back or
//     exists twice is noticed even though every remaining row is sound.
//  3. Handles are unsigned; SQLite stores the same 64 bits as a signed key, so handles from 2^63
//     on come before the others in the tree. Listings start with the non-negative keys.
//  4. A change of the file is one transaction, or a fresh file that is renamed over the old one.
#pragma once

#include <cstddef>
#include <cstdint>

namespace odstorage {

/// "VDM1" in the application id of the SQLite header.
inline constexpr std::uint32_t kApplicationId = 0x56444D31;

/// Version that this code writes, and the oldest one that it still reads.
inline constexpr int kFormatVersion = 1;
inline constexpr int kOldestFormatVersion = 1;
/// Oldest reader that understands a file written by this code.
inline constexpr std::uint32_t kMinReaderVersion = 1;

inline constexpr std::size_t kPageSize = 4096;

/// Limits, checked before anything is allocated for the item.
inline constexpr std::size_t kMaxRecordBytes = std::size_t{512} << 20;
inline constexpr std::size_t kMaxClassBytes = std::size_t{1} << 20;
inline constexpr std::size_t kMaxVariableBytes = std::size_t{16} << 20;
inline constexpr std::size_t kMaxVariableKeyBytes = 255;
inline constexpr std::size_t kMaxClasses = 65535;
inline constexpr std::size_t kMaxVariables = 65535;
/// What SQLite may hold in one value or row: the largest record and the columns beside it.
inline constexpr std::size_t kMaxRowBytes = kMaxRecordBytes + 1024;

/// Key and value size of the state row, the first row of `header`.
inline constexpr std::int64_t kStateRowId = 1;
inline constexpr const char* kStateRowKey = "";
inline constexpr std::size_t kStateRowBytes = 40;

static_assert(kOldestFormatVersion <= kFormatVersion);
static_assert(kMaxClassBytes <= kMaxRecordBytes && kMaxVariableBytes <= kMaxRecordBytes);
static_assert(kMaxRowBytes < std::size_t{1000} * 1000 * 1000, "beyond what SQLite can hold");

}  // namespace odstorage
