// What came of a batch: a line for each row, for people, spreadsheets and programs.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace cli {

/// Records of rows, in the order of the report.
using BatchResults = std::vector<nlohmann::ordered_json>;

[[nodiscard]] bool isSoundRow(const nlohmann::ordered_json& record);

/// A table of one line a row, then what is wrong with rows. At most some dozens of each.
[[nodiscard]] std::string batchText(const BatchResults& results);
/// {"rows": [...]} with all that the records have, but for what they were computed from.
[[nodiscard]] nlohmann::ordered_json batchJson(const BatchResults& results);
/// Comma-separated values; headers have the units.
[[nodiscard]] std::string batchCsv(const BatchResults& results);

/// Calls writeContactSheet() with the small pictures of the rows.
void writeSheet(const std::string& path, const std::vector<std::string>& pictures,
                const BatchResults& results);

}  // namespace cli
