// The same part another way: through files, or with its faces in another order.
#pragma once

#include <string>
#include <vector>

#include "bench/naming/plan.h"

namespace naming_bench {

/// Written to a STEP file and read back. Raises when it does not come back as one body.
[[nodiscard]] OdModelerBodyPtr throughStep(const OdModelerBodyPtr& body);
/// Written to the modeller's stored form and read back.
[[nodiscard]] OdModelerBodyPtr throughBytes(const OdModelerBodyPtr& body);
/// A copy of the geometry whose faces come in a random order.
[[nodiscard]] OdModelerBodyPtr reordered(const OdModelerBodyPtr& body, Random& random);
/// The same numbers, all surfaces and curves as splines.
[[nodiscard]] OdModelerBodyPtr splined(const OdModelerBodyPtr& body);
/// The same numbers, larger by a factor about the origin.
[[nodiscard]] OdModelerBodyPtr scaled(const OdModelerBodyPtr& body, double factor);

/// The bodies of one solid in the STEP files of a folder, with their file names; in file order.
struct FileBody {
  std::string name;
  OdModelerBodyPtr body;
};
[[nodiscard]] std::vector<FileBody> readStepFolder(const std::string& folder);

}  // namespace naming_bench
