// Tables in files of comma-separated values.
#pragma once

#include <string>
#include <vector>

#include "platform/base/status.h"
#include "platform/base/string.h"
#include "vdm_db/properties/vdm_property_types.h"

namespace vdm_host {

/// A table as a file has it, row by row. Rows that are shorter than the longest one are filled up
/// with empty cells.
struct TableSheet {
  unsigned rows = 0;
  unsigned columns = 0;
  VdmStringArray cells;
  std::vector<unsigned> lines;  ///< on which line of the file each row begins, from 1
  char separator = ',';

  [[nodiscard]] const OdString& at(unsigned row, unsigned column) const {
    return cells[row * columns + column];
  }
};

/// From the bytes of a file, by RFC 4180: quoted cells may hold separators, line breaks and doubled
/// quotes. The separator is the one of comma, semicolon and tab that the first line has most of,
/// outside quotes. A mark of UTF-8 or UTF-16 is heeded; without one the text is UTF-8. Empty lines
/// are left out. The status names the line of a quote that is out of place, or of bytes that are no
/// text.
[[nodiscard]] OdStatus readTable(const std::string& bytes, TableSheet& sheet);
/// The same table as bytes, UTF-8 without a mark, lines ending in CR LF; cells are quoted where
/// they need it.
[[nodiscard]] std::string writeTable(const TableSheet& sheet);

}  // namespace vdm_host
