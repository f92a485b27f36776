// RandomSource: numbers that are the same on every machine for the same seed.
#pragma once

#include <cstddef>
#include <cstdint>

/// The splitmix64 sequence. A plain value.
class RandomSource {
 public:
  explicit RandomSource(std::uint64_t seed) : m_state(seed) {}

  std::uint64_t next() {
    std::uint64_t value = (m_state += 0x9E3779B97F4A7C15u);
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
    return value ^ (value >> 31);
  }
  /// 0 to limit - 1; the limit is not 0.
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }
  bool chance(unsigned percent) { return next() % 100 < percent; }
  /// -1000 to 1000 in steps of 1/1024.
  double coordinate() { return static_cast<double>(next() % 2048001) / 1024.0 - 1000.0; }

 private:
  std::uint64_t m_state;
};
