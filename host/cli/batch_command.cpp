// `vdm batch`: all variants of a drawing in one call. runBatch() is the sequence: check, plan, take
// what is finished, compute the rest, report.
#include "host/cli/batch_command.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <thread>

#include "host/batch/row_pool.h"
#include "host/cli/batch_plan.h"
#include "host/cli/batch_records.h"
#include "host/cli/batch_report.h"
#include "host/cli/batch_row.h"
#include "host/cli/cli_error.h"
#include "host/cli/json_text.h"
#include "host/cli/modeler_loading.h"
#include "host/cli/opened_drawing.h"
#include "host/rendering/whole_file.h"

namespace cli {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// ---- Checking

bool endsIn(const std::string& path, const char* extension) {
  std::string its = fs::path(path).extension().string();
  std::ranges::transform(its, its.begin(), [](unsigned char c) { return std::tolower(c); });
  return its == extension;
}

void checkOptions(const BatchOptions& options) {
  const std::string& report = options.report.path;
  if (!report.empty() && !endsIn(report, ".csv") && !endsIn(report, ".json")) {
    throw CliError("report " + quote(report) + " ends in none of .csv and .json", kWrongUsage);
  }
  if (!options.sheet.path.empty() && !endsIn(options.sheet.path, ".png")) {
    throw CliError("contact sheet " + quote(options.sheet.path) + " does not end in .png",
                   kWrongUsage);
  }
  if (!options.renderTo.empty() && rendering::rendererFor(options.renderTo) == nullptr) {
    throw CliError("pictures " + quote(options.renderTo) + " end in none of .png, .svg and .glb",
                   kWrongUsage);
  }
  checkInput(options.input);
}

std::vector<OdNameClaim> claimOutputs(const BatchOptions& options) {
  std::vector<OdNameClaim> claims;
  for (const OutputFile* output : {&options.report, &options.sheet}) {
    if (!output->path.empty()) claims.push_back(claimOutput(*output, {options.input}));
  }
  return claims;
}

/// What an unfinished row would write must not be there, unless this batch wrote it.
void checkFile(const BatchOptions& options, const std::string& path, bool isOurs) {
  std::error_code failure;
  if (path.empty() || !fs::exists(path, failure)) return;
  if (isSameFile(path, options.input)) {
    throw CliError("output " + quote(path) + " is the input itself");
  }
  if (!fs::is_regular_file(path, failure)) {
    throw CliError("output " + quote(path) + " is not a regular file and is not replaced");
  }
  if (isOurs || options.force) return;
  throw CliError("output " + quote(path) + " exists, --force replaces it");
}

void makeFolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  std::error_code failure;
  if (folder.empty() || fs::is_directory(folder, failure)) return;
  fs::create_directories(folder, failure);
  if (failure) {
    throw CliError("output " + quote(path) + ": the folder " + quote(folder.string()) +
                   " cannot be made: " + failure.message());
  }
}

// ---- Computing

std::vector<std::size_t> unfinishedRows(const BatchPlan& plan, const BatchOptions& options,
                                        const BatchResults& results) {
  std::vector<std::size_t> rows;
  for (const std::size_t row : plan.order) {
    const bool isFinished = !results[row].is_null();
    if (!isFinished || (options.retry && !isSoundRow(results[row]))) rows.push_back(row);
  }
  return rows;
}

void prepareFiles(const BatchOptions& options, const BatchPlan& plan,
                  const std::vector<std::size_t>& rows, BatchRecords& records) {
  for (const std::size_t index : rows) {
    const BatchRow& row = plan.rows[index];
    const bool isOurs = records.hasBegun(row);
    for (const std::string& path : {row.exportTo, row.renderTo}) {
      checkFile(options, path, isOurs);
      makeFolderOf(path);
    }
  }
  records.begin(rows);
}

/// "12 of 100 rows" on a terminal, in one line that is written over.
class RowProgress {
 public:
  explicit RowProgress(std::size_t total) : m_total(total), m_isShown(isatty(STDERR_FILENO) != 0) {}
  ~RowProgress() {
    if (m_isShown) std::fputs("\r\x1b[K", stderr);
  }
  RowProgress(const RowProgress&) = delete;
  RowProgress& operator=(const RowProgress&) = delete;

  void add() {
    ++m_done;
    if (m_isShown) std::fprintf(stderr, "\r%zu of %zu rows", m_done, m_total);
  }

 private:
  std::size_t m_total;
  std::size_t m_done = 0;
  bool m_isShown;
};

/// The signal that ended it early; 0 otherwise. Processes of rows find the modeller's library in
/// the memory of this one.
int computeAll(const SessionSettings& settings, const BatchOptions& options, const BatchPlan& plan,
               const std::vector<std::size_t>& rows) {
  if (rows.empty()) return 0;
  const auto modeler = loadModeler();
  RowProgress progress(rows.size());
  batch::PoolEvents events;
  events.open = [&] {
    auto computer = std::make_shared<BatchRowComputer>(settings, options, plan);
    return [computer](std::size_t row) { computer->compute(row); };
  };
  events.finished = [&](std::size_t) { progress.add(); };
  events.died = [&](std::size_t row, const std::string& why) {
    progress.add();
    removeFiles(plan.rows[row]);
    BatchRecords::write(plan, plan.rows[row],
                        {{"status", kRowDied}, {"message", why}, {"files", Json::array()}});
  };
  const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
  const std::size_t jobs = options.jobs == 0 ? processors : options.jobs;
  return batch::computeRows(rows, {std::min(jobs, rows.size()), options.timeout}, events);
}

BatchResults findResults(const BatchPlan& plan, const BatchRecords& records) {
  BatchResults results;
  for (const BatchRow& row : plan.rows) results.push_back(records.find(row).value_or(Json()));
  return results;
}

[[noreturn]] void dieOf(int signal, const BatchPlan& plan, const BatchResults& results) {
  const auto finished =
      results.size() - static_cast<std::size_t>(std::ranges::count(results, Json()));
  printError("interrupted: " + std::to_string(finished) + " of " + counted(results.size(), "row") +
             " are finished in " + quote(plan.folder) + ", the same command continues from there");
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  std::abort();
}

// ---- Reporting

/// Somebody took a record away since it was written.
void nameUnread(const BatchPlan& plan, BatchResults& results) {
  for (std::size_t i = 0; i < results.size(); ++i) {
    if (!results[i].is_null()) continue;
    results[i] = {{"row", plan.rows[i].name},
                  {"status", kRowDied},
                  {"message", "its record in " + quote(plan.folder) + " is not there"}};
  }
}

void writeReports(const BatchOptions& options, const BatchPlan& plan, const BatchResults& results) {
  const std::string& report = options.report.path;
  if (!report.empty()) {
    const std::string failure = rendering::writeWholeFile(
        report, endsIn(report, ".csv") ? batchCsv(results) : jsonText(batchJson(results)));
    if (!failure.empty()) throw CliError(failure);
  }
  if (options.sheet.path.empty()) return;
  std::vector<std::string> pictures;
  for (const BatchRow& row : plan.rows) pictures.push_back(row.tile);
  writeSheet(options.sheet.path, pictures, results);
}

std::string headline(const BatchResults& results, std::size_t computed) {
  const auto sound = static_cast<std::size_t>(std::ranges::count_if(results, isSoundRow));
  std::string text = counted(results.size(), "row") + ": " + std::to_string(sound) + " sound";
  if (computed < results.size()) {
    text += "; " + std::to_string(results.size() - computed) + " finished before, " +
            std::to_string(computed) + " computed now";
  }
  return text + "\n";
}

}  // namespace

int runBatch(const SessionSettings& settings, const BatchOptions& options) {
  checkOptions(options);
  const std::vector<OdNameClaim> claims = claimOutputs(options);
  const BatchPlan plan = planBatch(settings, options);
  BatchRecords records(plan);
  BatchResults results = findResults(plan, records);
  const std::vector<std::size_t> rows = unfinishedRows(plan, options, results);
  if (!rows.empty()) {
    prepareFiles(options, plan, rows, records);
    const int signal = computeAll(settings, options, plan, rows);
    results = findResults(plan, records);
    if (signal != 0) dieOf(signal, plan, results);
  }
  nameUnread(plan, results);
  writeReports(options, plan, results);
  const bool sound = std::ranges::all_of(results, isSoundRow);
  printResult(
      settings,
      [&] {
        Json json{{"file", options.input}, {"results", plan.folder}, {"computed", rows.size()}};
        json.update(batchJson(results));
        return json;
      },
      [&] { return headline(results, rows.size()) + batchText(results); });
  return exitCodeFor(sound);
}

}  // namespace cli
