// Units of table columns: headers "length [mm]", and cells that are values with units.
#pragma once

#include <vector>

#include "host/parameters/table_file.h"
#include "platform/db/db_enums.h"
#include "platform/filer/object_id.h"

class VdmDbConfigurationTable;

namespace vdm_host {

/// The unit in the header of each column of the sheet, in order; empty for none.
using TableUnits = std::vector<OdString>;

/// Turns a sheet into what a table of configurations loads: headers without units, numbers of
/// columns with a unit in base units. A column without a unit whose cells all are values with units
/// becomes one of numbers. A decimal comma is read where the file separates cells by something else
/// and it cannot separate thousands. `problems` gets a line for each cell and header that cannot be
/// read; the status is not ok then.
[[nodiscard]] OdStatus toBaseUnits(const TableSheet& sheet, OdDb::UnitsValue lengthUnit,
                                   VdmStringArray& cells, TableUnits& units,
                                   std::vector<OdString>& problems);

/// The units stay with the table, for exporting it; the key column has the first one.
void storeUnits(const OdDbObjectId& table, const TableUnits& units);
/// The other way: the sheet is what the table exports.
void fromBaseUnits(const VdmDbConfigurationTable& table, OdDb::UnitsValue lengthUnit,
                   TableSheet& sheet);

}  // namespace vdm_host
