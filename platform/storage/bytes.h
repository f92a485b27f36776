// Little-endian integers in byte buffers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace odstorage {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "stored integers are little-endian");

/// Writes `value` at `target` and returns the position after it.
template <typename T>
std::uint8_t* putInteger(std::uint8_t* target, T value) {
  std::memcpy(target, &value, sizeof(T));
  return target + sizeof(T);
}

/// Reads a value at `source` and moves `source` after it.
template <typename T>
T takeInteger(const std::uint8_t*& source) {
  T value;
  std::memcpy(&value, source, sizeof(T));
  source += sizeof(T);
  return value;
}

/// Big-endian integer of `size` bytes, as SQLite stores its own.
inline std::uint64_t bigEndian(const std::uint8_t* source, std::size_t size) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < size; ++i) value = (value << 8U) | source[i];
  return value;
}

}  // namespace odstorage
