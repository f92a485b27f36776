// Fuzz target: sheets that are loaded as configuration tables.
//
// Input: one byte with the number of columns (low three bits) and whether a lone column may become
// one of values (top bit); then cells, each ended by a zero byte.
#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "vdm_db/configurations/vdm_db_configuration_table.h"
#include "vdm_utils/vdmu_reporter.h"

namespace {

VdmStringArray cellsOf(const std::uint8_t* data, std::size_t size) {
  VdmStringArray cells;
  const auto* text = reinterpret_cast<const char*>(data);
  for (std::size_t first = 0; first < size;) {
    std::size_t end = first;
    while (end < size && text[end] != '\0') ++end;
    cells.append(OdString(text + first, end - first));
    first = end + 1;
  }
  return cells;
}

struct Sheet {
  VdmStringArray cells;
  unsigned rows = 0;
  unsigned columns = 0;
};

Sheet exported(const VdmDbConfigurationTable& table) {
  Sheet sheet;
  fuzzRequire(table.exportTable(sheet.cells, sheet.rows, sheet.columns) == eOk, "no columns");
  return sheet;
}

// Each row answers to its own values, and to its key.
void askForRows(const VdmDbConfigurationTable& table) {
  for (unsigned row = 0; row < table.getRowCount(); ++row) {
    VdmDbConfigurationTable::RowMap values;
    fuzzRequire(table.getRow(row, values) == eOk, "a row cannot be read");
    OdArray<unsigned> rows;
    const bool isFound = table.determineConfigIndex(values, {}, rows) == eOk;
    // Under the name of the key column a value is taken for a key.
    const bool isAsked = !values.empty() && !values.contains(table.keyColumnName());
    fuzzRequire(!isAsked || (isFound && rows.contains(row)), "a row is not found");
    fuzzRequire(table.findKey(table.cells().keys[row]) == row, "a key is not found");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  fuzzStart();
  const unsigned columns = data[0] & 7U;
  const bool promotes = (data[0] & 0x80U) != 0;
  const VdmStringArray cells = cellsOf(data + 1, size - 1);
  const unsigned rows = columns == 0 ? 0 : cells.size() / columns;
  VdmuMessageCollector messages;
  const VdmDbConfigurationTablePtr table = VdmDbConfigurationTable::createObject();
  const bool isLoaded = table->load(cells, rows, columns, messages, promotes) == eOk;
  fuzzRequire(isLoaded != messages.hasErrors(), "a refusal without a message, or the reverse");
  fuzzRequire(table->cells().isConsistent(), "the content is not consistent");
  if (!isLoaded || cells.isEmpty()) return 0;
  askForRows(*table);
  // What is exported loads to the same.
  const Sheet sheet = exported(*table);
  const VdmDbConfigurationTablePtr again = VdmDbConfigurationTable::createObject();
  fuzzRequire(again->load(sheet.cells, sheet.rows, sheet.columns, messages, promotes) == eOk,
              "an exported sheet is refused");
  fuzzRequire(exported(*again).cells == sheet.cells, "an exported sheet is not stable");
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  struct Row {
    std::uint8_t head;
    std::vector<std::string> cells;
  };
  const Row rows[] = {
      {3, {"Name", "Width", "Material", "A", "1e3", "Steel", "B", "-0x1F", " iron "}},
      {2, {"Key", "Value", "k", "inf", "K ", "2.5"}},
      {0x81, {"Width", "10", "20.5"}},
      {1, {"*x"}},
  };
  std::vector<FuzzInput> corpus;
  for (const Row& row : rows) {
    FuzzInput& input = corpus.emplace_back(1, row.head);
    for (const std::string& cell : row.cells) {
      input.insert(input.end(), cell.c_str(), cell.c_str() + cell.size() + 1);
    }
  }
  return corpus;
}
