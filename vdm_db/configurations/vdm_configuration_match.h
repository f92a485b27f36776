// VdmConfigurationMatch: which rows of a table agree with given values.
#pragma once

#include <optional>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "vdm_db/configurations/vdm_configuration_cells.h"

/// What one column is asked for.
struct VdmConfigurationRule {
  OdUInt32 column;
  const OdString* text;  ///< of a column of texts
  double number;         ///< of a column of numbers
  bool isRequired;       ///< a row that disagrees is out; otherwise the disagreement is counted
};

/// The cells of a table, arranged for comparing whole columns. It is made from the cells and is
/// valid until they change.
class VdmConfigurationMatch {
 public:
  explicit VdmConfigurationMatch(const VdmConfigurationCells& cells);

  /// The rows that agree with every required rule, or that row alone of them: first those with the
  /// fewest other disagreements, and rows of the same number by position. `cells` are those of the
  /// constructor. Time grows with rows times rules.
  [[nodiscard]] OdArray<unsigned> rowsThatFit(const VdmConfigurationCells& cells,
                                              const std::vector<VdmConfigurationRule>& rules,
                                              const std::optional<OdUInt32>& onlyRow) const;

 private:
  struct Column {
    std::vector<double> values;  // the numbers of the cells, or their classes
    std::vector<OdUInt32>
        firstOfClass;  // of a column of texts: a row of each class, sorted by text
  };
  [[nodiscard]] static Column arrangeTexts(const VdmConfigurationCells& cells, OdUInt32 column);
  [[nodiscard]] double soughtValue(const VdmConfigurationCells& cells,
                                   const VdmConfigurationRule& rule) const;

  std::vector<Column> m_columns;
};
