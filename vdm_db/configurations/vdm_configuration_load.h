// Loading a configuration table from a sheet of texts.
#pragma once

#include "platform/base/result.h"
#include "vdm_db/configurations/vdm_configuration_cells.h"

class VdmuIReporter;

/// Checks a sheet and makes the content of a table of it. The sheet is row by row and has the
/// names of the columns in its first row and the keys in its first column; rows and columns count
/// from 1 in messages. Every problem of the sheet is reported, in the order of reading, and
/// `result` is set only without one. With `promoteSingleColumn` a sheet of one column that has
/// numbers alone becomes an anonymous key column and a column of values.
/// eOk; 5 for a sheet that is refused, or the code with which the expression parser refuses a name.
[[nodiscard]] OdResult vdmLoadConfigurations(const VdmStringArray& sheet, OdUInt32 rows,
                                             OdUInt32 columns, VdmuIReporter& reporter,
                                             bool promoteSingleColumn,
                                             VdmConfigurationCells& result);
