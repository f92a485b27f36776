// The seed of a random test: from the environment, or a new one.
#pragma once

#include <cstdlib>
#include <random>
#include <string>

/// VDM_RANDOM_SEED plays a run again. The caller puts the seed into SCOPED_TRACE, so that a failure
/// prints it.
inline unsigned randomSeed() {
  const char* wanted = std::getenv("VDM_RANDOM_SEED");
  return wanted == nullptr ? std::random_device()() : static_cast<unsigned>(std::stoul(wanted));
}
