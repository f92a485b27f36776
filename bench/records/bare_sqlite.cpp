// What a durable single-row commit costs without anything of ours around it.
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <vector>

#include "bench/records/record_values.h"
#include "bench/records/tasks.h"

namespace {

constexpr int kCommits = 30;
constexpr int kRowBytes = 400;  // about what a record of the drawing file takes

void run(sqlite3* database, const char* sql) {
  if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(std::string(sql) + ": " + sqlite3_errmsg(database));
  }
}

void putRow(sqlite3* database, sqlite3_stmt* statement, sqlite3_int64 key, int fill) {
  const std::vector<unsigned char> bytes(kRowBytes, static_cast<unsigned char>(fill));
  sqlite3_bind_int64(statement, 1, key);
  sqlite3_bind_blob(statement, 2, bytes.data(), kRowBytes, SQLITE_TRANSIENT);
  if (sqlite3_step(statement) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(database));
  sqlite3_reset(statement);
}

}  // namespace

double bareSqliteCommit(const std::string& path, std::size_t count) {
  sqlite3* database = nullptr;
  if (sqlite3_open(path.c_str(), &database) != SQLITE_OK) throw std::runtime_error(path);
  run(database, "PRAGMA synchronous=OFF; CREATE TABLE t(k INTEGER PRIMARY KEY, v BLOB); BEGIN");
  sqlite3_stmt* put = nullptr;
  sqlite3_prepare_v2(database, "INSERT OR REPLACE INTO t VALUES(?1,?2)", -1, &put, nullptr);
  for (std::size_t i = 0; i < count; ++i) putRow(database, put, static_cast<sqlite3_int64>(i), 1);
  run(database, "COMMIT; PRAGMA synchronous=FULL");
  RandomIndex index(count);
  std::vector<double> costs;
  for (int i = 0; i < kCommits; ++i) {
    const auto start = std::chrono::steady_clock::now();
    run(database, "BEGIN");
    putRow(database, put, static_cast<sqlite3_int64>(index.next()), i);
    run(database, "COMMIT");
    costs.push_back(
        std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
            .count());
  }
  sqlite3_finalize(put);
  sqlite3_close(database);
  std::nth_element(costs.begin(), costs.begin() + kCommits / 2, costs.end());
  return costs[kCommits / 2];
}
