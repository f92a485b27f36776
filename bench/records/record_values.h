// The record that both subjects store: 12 mixed values, 223 bytes of payload.
#pragma once

#include <array>
#include <cstddef>
#include <string>

/// Values of record `index`; the same for every subject and every run.
///
///   4 strings   26 + 20 + 16 + 40 = 102 bytes
///   4 doubles   32 bytes
///   2 integers   8 bytes
///   1 bool       1 byte
///   1 array of 10 doubles, 80 bytes
struct RecordValues {
  explicit RecordValues(std::size_t index);

  static constexpr std::size_t kPayloadBytes = 223;
  static constexpr std::array<const char*, 12> kKeys = {
      "description", "height",  "length",   "mass",     "material", "name",
      "part_number", "profile", "quantity", "revision", "visible",  "width"};

  std::string description;
  std::string material;
  std::string name;
  std::string partNumber;
  double height;
  double length;
  double mass;
  double width;
  std::array<double, 10> profile;
  int quantity;
  int revision;
  bool visible;
};

/// A permutation-like sequence of record numbers that defeats caches and prefetching.
class RandomIndex {
 public:
  explicit RandomIndex(std::size_t count) : m_count(count) {}
  std::size_t next() {
    m_state = m_state * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<std::size_t>((m_state >> 33) % m_count);
  }

 private:
  std::size_t m_count;
  unsigned long long m_state = 88172645463325252ull;
};
