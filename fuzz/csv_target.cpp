// Fuzz target: files of comma-separated values, and the units of their columns.
//
// Input: the bytes of a file.
#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "host/parameters/table_file.h"
#include "host/parameters/table_units.h"

namespace {

using vdm_host::TableSheet;

void requireWhole(const TableSheet& sheet) {
  fuzzRequire(sheet.cells.size() == std::uint64_t{sheet.rows} * sheet.columns, "cells are missing");
  fuzzRequire(sheet.lines.size() == sheet.rows, "a row without a line");
  for (unsigned row = 1; row < sheet.rows; ++row) {
    fuzzRequire(sheet.lines[row - 1] < sheet.lines[row], "rows out of order");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzzStart();
  TableSheet sheet;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const OdStatus status = vdm_host::readTable(bytes, sheet);
  fuzzRequire(status.ok() || !status.text.isEmpty(), "a refusal without words");
  if (!status.ok()) return 0;
  requireWhole(sheet);
  TableSheet again;
  fuzzRequire(vdm_host::readTable(vdm_host::writeTable(sheet), again).ok(),
              "a written table is refused");
  fuzzRequire(again.cells == sheet.cells && again.rows == sheet.rows,
              "a written table is not the same");
  VdmStringArray cells;
  vdm_host::TableUnits units;
  std::vector<OdString> problems;
  const bool isRead =
      vdm_host::toBaseUnits(sheet, OdDb::kUnitsMillimeters, cells, units, problems).ok();
  fuzzRequire(isRead == problems.empty(), "a refusal without a problem, or the reverse");
  fuzzRequire(cells.size() == sheet.cells.size(), "cells are lost");
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  const std::string files[] = {
      "Name,Width [mm],Material\r\nA,1e3,Steel\r\nB,1/2 in,\"iron, \"\"grey\"\"\"\r\n",
      "\xEF\xBB\xBFk;w [cm]\nA;1,5\nB;1,250\n",
      "k\tw\n\"two\nlines\"\t3\n\n",
      std::string("\xFF\xFEk\0,\0w\0\n\0A\0,\0"
                  "1\0",
                  16),
  };
  std::vector<FuzzInput> corpus;
  for (const std::string& file : files) corpus.emplace_back(file.begin(), file.end());
  return corpus;
}
