// The generated models, by family.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/naming/stage.h"

namespace naming_bench {

struct Model {
  std::string family;
  std::string name;
  Part part;
};

/// Generated models, `perFamily` of each family, or of the only one that is wanted. The same seed
/// gives the same models.
[[nodiscard]] std::vector<Model> generateModels(std::size_t perFamily, std::uint64_t seed,
                                                const std::string& onlyFamily = {});

}  // namespace naming_bench
