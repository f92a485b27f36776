// VdmConfigurationCells: the content of a configuration table as a value.
#pragma once

#include "platform/base/string.h"
#include "platform/base/types.h"
#include "vdm_db/properties/vdm_property_types.h"

/// One key column, which names the configurations, and value columns. Laws:
///
/// 1. `keys` has one element for each row, `columnNames` and `columnTypes` one for each column.
/// 2. `texts` and `numbers` are row by row. They have rows * columns elements, or none.
/// 3. The number of a cell in a column of texts is 0 as it is loaded.
struct VdmConfigurationCells {
  static constexpr OdLong kNumeric = 0;
  static constexpr OdLong kString = 1;

  OdString keyName;
  VdmStringArray keys;
  VdmStringArray columnNames;
  VdmLongArray columnTypes;
  OdLong rowCount = 0;
  OdLong columnCount = 0;
  VdmStringArray texts;
  VdmDoubleArray numbers;

  [[nodiscard]] OdUInt32 rows() const { return static_cast<OdUInt32>(rowCount); }
  [[nodiscard]] OdUInt32 columns() const { return static_cast<OdUInt32>(columnCount); }
  [[nodiscard]] bool hasCells() const { return !texts.isEmpty(); }
  /// Position of the first cell of a row.
  [[nodiscard]] OdUInt32 rowStart(OdUInt32 row) const { return row * columns(); }

  /// Whether laws 1 and 2 hold, which a damaged record may break.
  [[nodiscard]] bool isConsistent() const {
    if (rowCount < 0 || columnCount < 0) return false;
    const auto cells = static_cast<OdUInt64>(rows()) * columns();
    return keys.size() == rows() && columnNames.size() == columns() &&
           columnTypes.size() == columns() && texts.size() == numbers.size() &&
           (texts.isEmpty() || texts.size() == cells);
  }
};
