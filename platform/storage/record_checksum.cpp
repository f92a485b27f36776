// Checksums of rows and the state row.
#include "platform/storage/record_checksum.h"

#include <xxhash.h>

#include "platform/storage/bytes.h"

namespace odstorage {

namespace {

/// The kind enters the checksum, so that a row found in the wrong table is not taken for a row of
/// it.
enum class RowKind : std::uint64_t { kObject = 1, kClass = 2, kVariable = 3 };

/// The content is hashed by itself and enters the row's hash with the columns beside it.
std::uint64_t rowChecksum(RowKind kind, std::uint64_t id, std::uint64_t second, std::uint64_t third,
                          const void* data, std::size_t size) {
  const std::array<std::uint64_t, 6> columns = {
      static_cast<std::uint64_t>(kind), id, second, third, size, XXH3_64bits(data, size)};
  return XXH3_64bits(columns.data(), sizeof columns);
}

}  // namespace

std::uint64_t recordChecksum(const OdDbRecordView& record) {
  return rowChecksum(RowKind::kObject, record.handle, record.classId, record.owner, record.data,
                     record.size);
}

std::uint64_t classChecksum(std::uint32_t id, std::string_view record) {
  return rowChecksum(RowKind::kClass, id, 0, 0, record.data(), record.size());
}

std::uint64_t variableChecksum(std::int64_t id, std::string_view key, std::string_view value) {
  return rowChecksum(RowKind::kVariable, static_cast<std::uint64_t>(id), key.size(),
                     XXH3_64bits(key.data(), key.size()), value.data(), value.size());
}

std::array<std::uint8_t, kStateRowBytes> StoreState::encode() const {
  std::array<std::uint8_t, kStateRowBytes> bytes = {};
  std::uint8_t* target = bytes.data();
  target = putInteger(target, minReaderVersion);
  target = putInteger(target, std::uint32_t{0});
  for (const RowSetDigest& digest : {objects, names}) {
    target = putInteger(target, digest.count);
    target = putInteger(target, digest.sum);
  }
  return bytes;
}

bool StoreState::decode(std::string_view bytes) {
  if (bytes.size() < kStateRowBytes) return false;
  const auto* source = reinterpret_cast<const std::uint8_t*>(bytes.data());
  minReaderVersion = takeInteger<std::uint32_t>(source);
  source += sizeof(std::uint32_t);
  for (RowSetDigest* digest : {&objects, &names}) {
    digest->count = takeInteger<std::uint64_t>(source);
    digest->sum = takeInteger<std::uint64_t>(source);
  }
  return true;
}

}  // namespace odstorage
