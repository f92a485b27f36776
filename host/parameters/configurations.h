// Tables of configurations as users load, select and compare them. Edits are to run within
// ModelEditor::edit(), which rolls back what fails and runs one pass.
#pragma once

#include <vector>

#include "host/parameters/table_file.h"
#include "platform/base/status.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"

namespace vdm_host {

/// The configuration features of a block, in order.
[[nodiscard]] std::vector<OdDbObjectId> configurationsOf(const OdDbObjectId& block);
/// The one of a name, or the only one for an empty name. The status says how many there are.
[[nodiscard]] OdStatus findConfiguration(const OdDbObjectId& block, const OdString& name,
                                         OdDbObjectId& feature);

struct LoadOptions {
  bool createsParameters = true;  ///< columns without a parameter get one
  bool promotesKeys = true;       ///< a lone column of numbers gives its values names
};
/// Loads a sheet into a configuration feature of the block: `feature`, or a new one when that is
/// null, which it becomes. A header "length [mm]" names the column and the unit of its numbers;
/// they are stored in units of the block. A column whose cells all are values with units ("1/2 in")
/// is one of numbers. On failure the table is as it was; `problems` gets a line for each problem of
/// the sheet, and for each warning, with the line of the file.
[[nodiscard]] OdStatus loadConfigurations(const OdDbObjectId& block, const TableSheet& sheet,
                                          const LoadOptions& options, OdDbObjectId& feature,
                                          std::vector<OdString>& problems);
/// The sheet with the headers and units that it was loaded with.
[[nodiscard]] OdStatus exportConfigurations(const OdDbObjectId& feature, TableSheet& sheet);

[[nodiscard]] OdStatus selectConfiguration(const OdDbObjectId& feature, const OdString& name);
/// A row with the present values.
[[nodiscard]] OdStatus saveConfiguration(const OdDbObjectId& feature, const OdString& name);
[[nodiscard]] OdStatus removeConfiguration(const OdDbObjectId& feature, const OdString& name);
[[nodiscard]] OdStatus linkColumn(const OdDbObjectId& feature, const OdString& column,
                                  const OdString& parameter);
[[nodiscard]] OdStatus unlinkColumn(const OdDbObjectId& feature, const OdString& column);

/// A linked column and its parameter.
struct ConfigurationColumn {
  OdString name;
  OdString parameter;     ///< empty without a link
  OdString present;       ///< value of the parameter
  bool isDriven = false;  ///< an expression gives the parameter its value
};
/// A cell that differs from the present value of the column's parameter.
struct CellDifference {
  OdString column;
  OdString cell;
  OdString present;
};
struct ConfigurationRow {
  OdString name;
  std::size_t numDifferences = 0;  ///< in linked columns that nothing else drives
};
struct ConfigurationState {
  OdString selected;  ///< a row, or "Custom" when none applies
  bool isCustom = false;
  std::vector<ConfigurationColumn> columns;  ///< without the key
  std::vector<ConfigurationRow> rows;        ///< in the order of the table
};
[[nodiscard]] ConfigurationState configurationState(const OdDbObjectId& feature);
/// Positions of the rows that are nearest to the present values: those without a difference, or
/// those with the fewest.
[[nodiscard]] std::vector<std::size_t> nearestRows(const ConfigurationState& state);
/// The cells in which a row, by its position, differs from the present values.
[[nodiscard]] std::vector<CellDifference> differencesOf(const OdDbObjectId& feature,
                                                        std::size_t row);

}  // namespace vdm_host
