// The primitives of stored records: little-endian numbers and varints of seven bits a byte.
#pragma once

#include <bit>
#include <utility>
#include <vector>

#include "platform/base/types.h"

namespace vdm_host {

/// Appends to bytes of its own.
class ByteWriter {
 public:
  /// Keeps room for that many bytes.
  explicit ByteWriter(std::size_t size = 0) { m_bytes.reserve(size); }

  void byte(OdUInt64 value) { m_bytes.push_back(static_cast<char>(value & 0xFFU)); }
  void fixed(OdUInt64 value, std::size_t count) {
    char bytes[sizeof(value)];
    for (std::size_t i = 0; i < count; ++i, value >>= 8U) {
      bytes[i] = static_cast<char>(value & 0xFFU);
    }
    m_bytes.insert(m_bytes.end(), bytes, bytes + count);
  }
  void varint(OdUInt64 value) {
    for (; value >= 0x80U; value >>= 7U) byte(value | 0x80U);
    byte(value);
  }
  void real(double value) { fixed(std::bit_cast<OdUInt64>(value), 8); }
  template <class Xyz>
  void xyz(const Xyz& v) {
    for (const double value : {v.x, v.y, v.z}) real(value);
  }
  [[nodiscard]] std::vector<char> take() { return std::move(m_bytes); }

 private:
  std::vector<char> m_bytes;
};

/// Reads from bytes that outlive it; zeros where they do not suffice, and then good() is false for
/// good. So a reader is asked once, after the last field.
class ByteReader {
 public:
  ByteReader(const char* bytes, std::size_t count) : m_bytes(bytes), m_count(count) {}

  [[nodiscard]] bool good() const { return m_good; }
  [[nodiscard]] bool atEnd() const { return m_good && m_next == m_count; }
  OdUInt8 byte() {
    if (m_next < m_count) return static_cast<OdUInt8>(m_bytes[m_next++]);
    m_good = false;
    return 0;
  }
  OdUInt64 fixed(std::size_t count) {
    if (m_count - m_next < count) {
      m_next = m_count;
      m_good = false;
      return 0;
    }
    OdUInt64 value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      value |= OdUInt64{static_cast<OdUInt8>(m_bytes[m_next + i])} << (8U * i);
    }
    m_next += count;
    return value;
  }
  OdUInt64 varint() {
    OdUInt64 value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const OdUInt64 part = byte();
      value |= (part & 0x7FU) << shift;
      if ((part & 0x80U) == 0) return value;
    }
    m_good = false;
    return 0;
  }
  OdUInt32 number() {
    const OdUInt64 value = varint();
    m_good &= value <= 0xFFFFFFFFU;
    return static_cast<OdUInt32>(value);
  }
  double real() { return std::bit_cast<double>(fixed(8)); }
  template <class Xyz>
  void xyz(Xyz& v) {
    v.x = real();
    v.y = real();
    v.z = real();
  }

 private:
  const char* m_bytes;
  std::size_t m_count;
  std::size_t m_next = 0;
  bool m_good = true;
};

}  // namespace vdm_host
