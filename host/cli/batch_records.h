// The results folder of a batch: a record for each finished row.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/cli/batch_plan.h"
#include "platform/base/new_file.h"

namespace cli {

/// Records are files "NAME.json", each written beside and renamed, so that a batch may end at any
/// instruction. ".batch.json" has the inputs of all rows that were ever begun: what those write
/// is theirs to replace.
class BatchRecords {
 public:
  /// Makes the folder, and has it for this process alone. CliError when that cannot be.
  explicit BatchRecords(const BatchPlan& plan);

  /// The record of a row that has the row's inputs, and whose files are there as they were written.
  [[nodiscard]] std::optional<nlohmann::ordered_json> find(const BatchRow& row) const;
  /// Whether a batch has begun the row before, with the same values and the same files.
  [[nodiscard]] bool hasBegun(const BatchRow& row) const;
  /// Notes the rows as begun.
  void begin(const std::vector<std::size_t>& rows);

  /// Safe to be called by several processes, for different rows. CliError when it cannot be
  /// written.
  static void write(const BatchPlan& plan, const BatchRow& row, nlohmann::ordered_json record);

 private:
  [[nodiscard]] std::string planPath() const;

  const BatchPlan& m_plan;
  std::optional<OdNameClaim> m_claim;
  nlohmann::ordered_json m_begun;  // inputs by row name
};

/// A row that fails must not leave a file of another time for its own.
void removeFiles(const BatchRow& row);
/// The size of each file as the record keeps it, [{"path", "bytes"}].
[[nodiscard]] nlohmann::ordered_json writtenFiles(const BatchRow& row);

}  // namespace cli
