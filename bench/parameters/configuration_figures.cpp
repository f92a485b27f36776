// Measures configuration tables and the selection of rows. The peers run in the same process: a
// SQLite table in memory, with its keys unique and an index on them, for loading a table and for
// finding the row of a state; the label framework of Open CASCADE, one real attribute a variable,
// for selecting a row. Processor time, medians.
//
//   vdm_bench_configurations [--rounds R]
#include <sqlite3.h>

#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <TCollection_AsciiString.hxx>
#include <TDF_Label.hxx>
#include <TDataStd_AsciiString.hxx>
#include <TDataStd_Real.hxx>
#include <TDocStd_Application.hxx>
#include <TDocStd_Document.hxx>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/naming/stopwatch.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/base/non_copyable.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/runtime/runtime_init.h"
#include "platform/rx/dynamic_linker.h"
#include "platform/rx/rx_init.h"
#include "platform/storage/sqlite_record_store.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_utils/vdmu_reporter.h"

namespace {

constexpr unsigned kColumns = 20;  // of values, beside the key
constexpr unsigned kTextColumns = 2;

double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// Medians of what two calls cost, in turn; `times` is how often each is done for one figure.
void compare(const char* work, const char* unit, double factor, int rounds, int times,
             const std::function<void()>& ours, const std::function<void()>& peer) {
  std::vector<double> costs[2];
  for (int round = 0; round < rounds; ++round) {
    for (int side = 0; side < 2; ++side) {
      const naming_bench::Stopwatch watch;
      for (int i = 0; i < times; ++i) (side == 0 ? ours : peer)();
      costs[side].push_back(watch.seconds() * factor / times);
    }
  }
  const double own = medianOf(costs[0]);
  const double other = medianOf(costs[1]);
  std::printf("%-44s %10.4g %10.4g %-3s %8.2f\n", work, own, other, unit, other / own);
  std::fflush(stdout);
}

/// Keys, numbers, of which the first is different in every row, and two columns of texts at the
/// end, when there are as many.
VdmStringArray makeSheet(unsigned rows, bool withTexts) {
  VdmStringArray sheet;
  sheet.append(L"Configuration");
  OdString cell;
  for (unsigned i = 0; i < kColumns; ++i) sheet.append(cell.format(L"Column_%u", i));
  for (unsigned row = 0; row < rows; ++row) {
    sheet.append(cell.format(L"Configuration_%u", row));
    for (unsigned i = 0; i < kColumns; ++i) {
      const bool isText = withTexts && i + kTextColumns >= kColumns;
      sheet.append(
          isText ? cell.format(L"Material %u", (row + i) % 50)
                 : cell.format(L"%.12g", i == 0 ? 1.0 * row : 0.5 * ((row * 7 + i * 13) % 1000)));
    }
  }
  return sheet;
}

// ---- The peer for tables

class SqliteTable : OdNonCopyable {
 public:
  explicit SqliteTable(const VdmStringArray& sheet) : m_sheet(sheet) {
    check(sqlite3_open(":memory:", &m_database));
  }
  ~SqliteTable() {
    sqlite3_finalize(m_find);
    sqlite3_close(m_database);
  }

  void load() {
    sqlite3_finalize(m_find);
    run("drop table if exists t");
    std::string columns = "key text unique collate nocase";
    std::string places = "?";
    for (unsigned i = 0; i < kColumns; ++i) {
      columns += ", c" + std::to_string(i) + (i + kTextColumns >= kColumns ? " text" : " real");
      places += ", ?";
    }
    run("create table t(" + columns + ")");
    run("begin");
    sqlite3_stmt* insert = prepare("insert into t values(" + places + ")");
    for (OdUInt32 at = kColumns + 1; at < m_sheet.size();) {
      for (int i = 1; i <= static_cast<int>(kColumns) + 1; ++i, ++at) {
        const std::string_view cell = m_sheet[at].utf8();
        sqlite3_bind_text(insert, i, cell.data(), static_cast<int>(cell.size()), SQLITE_STATIC);
      }
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    run("commit");
    m_find = prepare("select rowid from t order by " + disagreements() + ", rowid limit 1");
  }
  /// The row with the fewest disagreements.
  sqlite3_int64 find(OdUInt32 row) {
    for (int i = 0; i < static_cast<int>(kColumns); ++i) {
      const std::string_view cell =
          m_sheet[(row + 1) * (kColumns + 1) + 1 + static_cast<OdUInt32>(i)].utf8();
      if (static_cast<unsigned>(i) + kTextColumns >= kColumns) {
        sqlite3_bind_text(m_find, i + 1, cell.data(), static_cast<int>(cell.size()), SQLITE_STATIC);
      } else {
        sqlite3_bind_double(m_find, i + 1, std::strtod(cell.data(), nullptr));
      }
    }
    sqlite3_step(m_find);
    const sqlite3_int64 found = sqlite3_column_int64(m_find, 0);
    sqlite3_reset(m_find);
    return found;
  }

 private:
  static std::string disagreements() {
    std::string sum;
    for (unsigned i = 0; i < kColumns; ++i) {
      const std::string column = "c" + std::to_string(i);
      const std::string value = "?" + std::to_string(i + 1);
      sum += (i == 0 ? "(" : " + (");
      sum += i + kTextColumns >= kColumns ? column + " <> " + value + " collate nocase)"
                                          : "abs(" + column + " - " + value + ") > 1e-10)";
    }
    return sum;
  }
  static void check(int result) {
    if (result != SQLITE_OK) throw std::runtime_error(sqlite3_errstr(result));
  }
  void run(const std::string& text) {
    check(sqlite3_exec(m_database, text.c_str(), nullptr, nullptr, nullptr));
  }
  sqlite3_stmt* prepare(const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(m_database, text.c_str(), -1, &statement, nullptr));
    return statement;
  }

  const VdmStringArray& m_sheet;
  sqlite3* m_database = nullptr;
  sqlite3_stmt* m_find = nullptr;
};

void require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(what);
}

void measureTables(int rounds) {
  for (const unsigned rows : {100U, 10000U}) {
    const VdmStringArray sheet = makeSheet(rows, /*withTexts=*/true);
    SqliteTable peer(sheet);
    const VdmDbConfigurationTablePtr table = VdmDbConfigurationTable::createObject();
    VdmuMessageCollector messages;
    const std::string size = " " + std::to_string(rows) + " rows by 20 columns";
    compare(("load" + size).c_str(), "ms", 1e3, rounds, 1,
            [&] {
              require(table->load(sheet, rows + 1, kColumns + 1, messages, false) == eOk, "load");
            },
            [&] { peer.load(); });

    const unsigned sought = rows * 2 / 3;
    VdmDbConfigurationTable::RowMap state;
    require(table->getRow(sought, state) == eOk, "row");
    OdArray<unsigned> found;
    compare(("row of a state," + size).c_str(), "us", 1e6, rounds, 20,
            [&] {
              require(table->determineConfigIndex({}, state, found) == eOk, "find");
              require(found[0] == sought, "another row");
            },
            [&] { require(peer.find(sought) == sought + 1, "another row of the peer"); });
  }
}

// ---- The peer for selecting

class LabelVariables {
 public:
  LabelVariables() : m_application(new TDocStd_Application) {
    Message::DefaultMessenger()->ChangePrinters().Clear();
    m_application->NewDocument("BinOcaf", m_document);
    m_document->SetUndoLimit(1000000000);
    m_document->NewCommand();
    for (unsigned i = 0; i < kColumns; ++i) {
      TDataStd_Real::Set(m_document->Main().FindChild(static_cast<int>(i) + 1), 0.0);
    }
    TDataStd_AsciiString::Set(m_document->Main(), "");
    m_document->CommitCommand();
  }
  void select(unsigned row) {
    m_document->NewCommand();
    for (unsigned i = 0; i < kColumns; ++i) {
      TDataStd_Real::Set(m_document->Main().FindChild(static_cast<int>(i) + 1),
                         0.5 * ((row * 7 + i * 13) % 1000));
    }
    TDataStd_AsciiString::Set(m_document->Main(),
                              TCollection_AsciiString("Configuration_") + static_cast<int>(row));
    m_document->CommitCommand();
  }

 private:
  Handle(TDocStd_Application) m_application;
  Handle(TDocStd_Document) m_document;
};

void measureSelection(int rounds) {
  OdDbHostAppServices services(createSqliteStoreFactory());
  const OdDbDatabasePtr drawing = services.createDatabase();
  const OdDbObjectId block = drawing->getModelSpaceId();
  const OdDbObjectId manager = VdmDbFeatureManager::getInstance(block, /*create=*/true);
  const OdDbObjectId id =
      manager.safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite)
          ->createFeatureData(VdmConfigurationFeature::desc(), L"Variants", false, false);
  constexpr unsigned kRows = 100;
  const VdmStringArray sheet = makeSheet(kRows, /*withTexts=*/false);
  VdmuMessageCollector messages;
  const auto open = [&id] { return id.safeOpenAs<VdmConfigurationFeature>(OdDb::kForWrite); };
  require(open()->setConfigurationTable(block, sheet, kRows + 1, kColumns + 1, messages, true,
                                        false) == eOk,
          "table");
  LabelVariables peer;
  unsigned row = 0;
  compare(
      "select a row of 20 columns, undoable", "us", 1e6, rounds, 50,
      [&] {
        row = (row + 1) % kRows;
        drawing->startUndoRecord();
        const OdResult result = open()->setConfiguration(sheet[(row + 1) * (kColumns + 1)]);
        require(result == eOk, "selection");
      },
      [&] {
        row = (row + 1) % kRows;
        peer.select(row);
      });
}

}  // namespace

int main(int argc, char** argv) {
  try {
    int rounds = 31;
    if (argc == 3 && std::strcmp(argv[1], "--rounds") == 0) rounds = std::atoi(argv[2]);
    odrxInitialize();
    oddbInitialize();
    odrxDynamicLinker()->loadModule(VDM_MODULE_FILE);
    std::printf("%-44s %10s %10s %-3s %8s\n", "work", "ours", "peer", "", "ratio");
    measureTables(rounds);
    measureSelection(rounds);
    std::fflush(stdout);
    std::_Exit(0);  // taking the documents apart is not measured
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vdm_bench_configurations: %s\n", error.what());
    return 1;
  }
}
