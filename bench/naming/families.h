// The generated models, by family.
#pragma once

#include <string>
#include <vector>

#include "bench/naming/stage.h"

namespace naming_bench {

struct Model {
  std::string family;
  std::string name;
  Part part;
};

/// All generated models, `perFamily` of each. The same seed gives the same models.
[[nodiscard]] std::vector<Model> generateModels(std::size_t perFamily, std::uint64_t seed);

}  // namespace naming_bench
