// The results folder of a batch.
#include "host/cli/batch_records.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/cli/cli_error.h"
#include "host/cli/json_text.h"
#include "host/cli/text_output.h"
#include "host/rendering/whole_file.h"

namespace cli {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

std::string recordPath(const BatchPlan& plan, const BatchRow& row) {
  return plan.folder + "/" + fileNameOf(row.name) + ".json";
}

/// What the file holds; null when it is not there or no JSON.
Json readJson(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return Json::parse(bytes.str(), /*cb=*/nullptr, /*allow_exceptions=*/false);
}

void writeJson(const std::string& path, const Json& json) {
  const std::string failure = rendering::writeWholeFile(path, jsonText(json));
  if (!failure.empty()) throw CliError(failure);
}

bool isThere(const Json& file) {
  if (!file.contains("path") || !file["path"].is_string() || !file.contains("bytes")) return false;
  std::error_code failure;
  const std::uintmax_t size = fs::file_size(file["path"].get<std::string>(), failure);
  return !failure && file["bytes"] == size;
}

}  // namespace

BatchRecords::BatchRecords(const BatchPlan& plan) : m_plan(plan) {
  std::error_code failure;
  fs::create_directories(plan.folder, failure);
  if (!fs::is_directory(plan.folder)) {
    throw CliError("results " + quote(plan.folder) + ": the folder cannot be made" +
                   (failure ? ": " + failure.message() : ""));
  }
  const int refused = m_claim.emplace(planPath()).take();
  if (refused == EADDRINUSE) {
    throw CliError("results " + quote(plan.folder) + ": another batch is writing them");
  }
  if (refused != 0) {
    throw CliError("results " + quote(plan.folder) + ": " + std::strerror(refused));
  }
  m_begun = readJson(planPath());
  if (!m_begun.is_object()) m_begun = Json::object();
}

std::string BatchRecords::planPath() const { return m_plan.folder + "/.batch.json"; }

std::optional<Json> BatchRecords::find(const BatchRow& row) const {
  Json record = readJson(recordPath(m_plan, row));
  if (!record.is_object() || record.value("inputs", Json()) != row.inputs) return std::nullopt;
  const Json files = record.value("files", Json());
  if (!files.is_array() || !record.contains("status")) return std::nullopt;
  if (!std::ranges::all_of(files, isThere)) return std::nullopt;
  return record;
}

bool BatchRecords::hasBegun(const BatchRow& row) const {
  const Json begun = m_begun.value(row.name, Json());
  constexpr const char* kOfFiles[] = {"drawing", "configuration", "values", "export", "render"};
  return begun.is_object() && std::ranges::all_of(kOfFiles, [&](const char* key) {
           return begun.value(key, Json()) == row.inputs[key];
         });
}

void BatchRecords::begin(const std::vector<std::size_t>& rows) {
  for (const std::size_t row : rows) m_begun[m_plan.rows[row].name] = m_plan.rows[row].inputs;
  writeJson(planPath(), m_begun);
}

void BatchRecords::write(const BatchPlan& plan, const BatchRow& row, Json record) {
  Json whole{{"row", row.name}, {"inputs", row.inputs}};
  whole.update(record);
  writeJson(recordPath(plan, row), whole);
}

void removeFiles(const BatchRow& row) {
  for (const std::string& path : {row.exportTo, row.renderTo, row.tile}) {
    std::error_code failure;
    if (!path.empty()) fs::remove(path, failure);
  }
}

Json writtenFiles(const BatchRow& row) {
  Json files = Json::array();
  for (const std::string& path : {row.exportTo, row.renderTo, row.tile}) {
    std::error_code failure;
    const std::uintmax_t size = path.empty() ? 0 : fs::file_size(path, failure);
    if (!path.empty() && !failure) files.push_back({{"path", path}, {"bytes", size}});
  }
  return files;
}

}  // namespace cli
