// Seeds of random tests.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <random>

/// The seed that the environment variable VDM_RANDOM_SEED asks for; nothing without it.
inline std::optional<std::uint64_t> requestedSeed() {
  const char* text = std::getenv("VDM_RANDOM_SEED");
  if (text == nullptr) return {};
  return std::strtoull(text, nullptr, 10);
}

/// The requested seed, otherwise a fresh one. Prints it, so that a failure can be played again.
inline std::uint32_t freshSeed() {
  const auto seed = static_cast<std::uint32_t>(requestedSeed().value_or(std::random_device{}()));
  std::cout << "VDM_RANDOM_SEED=" << seed << '\n';
  return seed;
}
