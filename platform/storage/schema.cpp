// The tables of a drawing file.
#include "platform/storage/schema.h"

#include <algorithm>
#include <span>
#include <string>

#include "platform/storage/status.h"
#include "platform/storage/storage_format.h"

namespace odstorage {

namespace {

using UpgradeStep = OdStatus (*)(Connection&);

/// Row i leads from version kOldestFormatVersion + i to the next. Rows are never changed or
/// removed; a new version appends one.
constexpr std::array<UpgradeStep, kFormatVersion - kOldestFormatVersion> kUpgradeSteps = {};

struct SchemaEntry {
  std::string_view type;
  std::string_view name;
  std::string_view sql;
};

const TableRow* findTable(const SchemaEntry& entry) {
  const auto found = std::find_if(kTables.begin(), kTables.end(),
                                  [&](const TableRow& row) { return entry.name == row.name; });
  return found == kTables.end() ? nullptr : &*found;
}

bool isPlain(const SchemaEntry& entry) {
  if (entry.type == "index") return true;
  return entry.type == "table" && entry.sql.substr(0, 13) == "CREATE TABLE ";
}

/// Empty when the entry belongs into a drawing, else what is wrong with it.
std::string objection(const SchemaEntry& entry, bool isNewer) {
  const std::string what = std::string(entry.type) + " \"" + std::string(entry.name) + "\"";
  const TableRow* table = findTable(entry);
  if (table == nullptr) {
    return isNewer && isPlain(entry) ? "" : what + " does not belong into a drawing";
  }
  if (entry.type == "table" && entry.sql == table->sql) return "";
  return what + " is not defined as in a drawing";
}

}  // namespace

OdStatus createSchema(Connection& connection) {
  std::string sql = "PRAGMA application_id=" + std::to_string(kApplicationId) +
                    ";PRAGMA user_version=" + std::to_string(kFormatVersion) + ";";
  for (const TableRow& table : kTables) sql.append(table.sql).append(";");
  return connection.execute(sql.c_str(), "creating the tables");
}

OdStatus checkSchema(Connection& connection, bool isNewer) {
  Statement statement;
  OdStatus status =
      connection.prepare(statement, "SELECT type,name,sql FROM sqlite_master ORDER BY rowid");
  if (!status.ok()) return status;
  std::size_t tables = 0;
  int code = statement.step();
  for (; code == SQLITE_ROW; code = statement.step()) {
    const SchemaEntry entry{statement.bytes(0), statement.bytes(1), statement.bytes(2)};
    const std::string text = objection(entry, isNewer);
    if (!text.empty()) return failure(eCorruptData, connection.path(), text);
    if (findTable(entry) != nullptr) ++tables;
  }
  if (code != SQLITE_DONE) return connection.translate(code, "reading the file's structure");
  if (tables != kTables.size()) {
    return failure(eCorruptData, connection.path(),
                   "the file has " + std::to_string(tables) + " of the " +
                       std::to_string(kTables.size()) + " tables of a drawing");
  }
  return {};
}

OdStatus upgradeSchema(Connection& connection, int version) {
  const auto done = static_cast<std::size_t>(version - kOldestFormatVersion);
  for (const UpgradeStep step : std::span(kUpgradeSteps).subspan(done)) {
    if (OdStatus status = step(connection); !status.ok()) return status;
  }
  return {};
}

}  // namespace odstorage
