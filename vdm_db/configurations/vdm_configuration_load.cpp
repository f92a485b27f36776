// Loading a configuration table.
//
// One pass reads the sheet: the row of names, then each row with its key and its cells. What can
// only be seen afterwards follows: equal names, equal keys, columns of numbers with a few texts
// among them. Nothing stops at the first problem, so a user sees all of them at once.
#include "vdm_db/configurations/vdm_configuration_load.h"

#include <span>
#include <vector>

#include "platform/assoc/expression_parser.h"
#include "vdm_db/configurations/vdm_cell_number.h"
#include "vdm_db/configurations/vdm_configuration_results.h"
#include "vdm_db/configurations/vdm_name_order.h"
#include "vdm_utils/vdmu_reporter.h"

namespace {

constexpr wchar_t kReserved = L'*';  // begins names that the system makes
// A column of numbers may hold this part of texts, of all rows, before it counts as one of texts.
constexpr double kFewTexts = 0.05;

// "2, 3, 7"
OdString listOf(std::span<const OdUInt32> numbers) {
  OdString list;
  for (const OdUInt32 number : numbers) {
    OdString next;
    list += next.format(list.isEmpty() ? L"%u" : L", %u", number);
  }
  return list;
}

class Loader {
 public:
  Loader(const VdmStringArray& sheet, OdUInt32 rows, OdUInt32 columns, VdmuIReporter& reporter)
      : m_sheet(sheet),
        m_rows(rows),
        m_columns(columns),
        m_fewTexts(static_cast<OdUInt32>(rows * kFewTexts)),
        m_reporter(reporter) {}

  OdResult load(bool promoteSingleColumn, VdmConfigurationCells& result) {
    readNames();
    reportEqual(m_cells.columnNames, /*firstNumber=*/2, eRpt_Fmt_DuplicateColName);
    readRows();
    reportEqual(m_cells.keys, /*firstNumber=*/2, eRpt_Fmt_DuplicateKey);
    warnOfTexts();
    if (promoteSingleColumn && m_columns == 1) promoteKeys();
    if (m_result == eOk) result = std::move(m_cells);
    return m_result;
  }

 private:
  [[nodiscard]] const OdString& at(OdUInt32 row, OdUInt32 column) const {
    return m_sheet[(row - 1) * m_columns + column - 1];
  }

  void readNames() {
    m_cells.keyName = vdmTrimmedCell(at(1, 1));
    if (m_cells.keyName.isEmpty()) {
      refuse(eRpt_Fmt_EmptyCell, 1, 1);
    } else {
      checkName(m_cells.keyName, 1);
    }
    for (OdUInt32 column = 2; column <= m_columns; ++column) {
      const OdString name = vdmTrimmedCell(at(1, column));
      if (name.isEmpty()) {
        refuse(eRpt_Fmt_NamelessColumn, column);
      } else {
        checkName(name, column);
      }
      m_cells.columnNames.append(name);
    }
    m_cells.columnCount = static_cast<OdLong>(m_columns - 1);
    m_cells.columnTypes.resize(m_columns - 1, VdmConfigurationCells::kNumeric);
  }

  void checkName(const OdString& name, OdUInt32 column) {
    if (name.getAt(0) == kReserved) {
      return refuse(eRpt_Fmt_UnexpectedSymbol, static_cast<int>(kReserved), 1, column, name);
    }
    OdExpression::Parser parser;
    const OdResult result = parser.setName(name);
    if (result == eOk) return;
    refuse(eRpt_Fmt_IncorrectColName, column, name, parser.errorMessage());
    m_result = result;
  }

  void readRows() {
    m_cells.rowCount = static_cast<OdLong>(m_rows - 1);
    m_cells.keys.reserve(m_rows - 1);
    const OdUInt32 cells = (m_rows - 1) * (m_columns - 1);
    m_cells.texts.reserve(cells);
    m_cells.numbers.reserve(cells);
    m_textRows.resize(m_columns - 1);
    for (OdUInt32 row = 2; row <= m_rows; ++row) {
      m_cells.keys.append(readCell(row, 1));
      for (OdUInt32 column = 2; column <= m_columns; ++column) readValue(row, column);
    }
  }

  OdString readCell(OdUInt32 row, OdUInt32 column) {
    OdString text = vdmTrimmedCell(at(row, column));
    if (text.isEmpty()) refuse(eRpt_Fmt_EmptyCell, row, column);
    return text;
  }

  void readValue(OdUInt32 row, OdUInt32 column) {
    OdString text = readCell(row, column);
    double number = 0;
    if (!vdmParseCellNumber(text, number)) {
      m_cells.columnTypes.setAt(column - 2, VdmConfigurationCells::kString);
      std::vector<OdUInt32>& rows = m_textRows[column - 2];
      if (rows.size() <= m_fewTexts) rows.push_back(row);
    }
    m_cells.texts.append(std::move(text));
    m_cells.numbers.append(number);
  }

  void reportEqual(const VdmStringArray& names, OdUInt32 firstNumber, VdmuMessageId message) {
    const VdmNameOrder order(names);
    order.forEachGroup(names, [&](std::span<const OdUInt32> equal) {
      if (equal.size() < 2) return;
      std::vector<OdUInt32> numbers(equal.begin(), equal.end());
      for (OdUInt32& number : numbers) number += firstNumber;
      refuse(message, listOf(numbers), names[equal.front()]);
    });
  }

  void warnOfTexts() {
    for (OdUInt32 i = 0; i < m_textRows.size(); ++i) {
      const std::vector<OdUInt32>& rows = m_textRows[i];
      if (rows.empty() || rows.size() > m_fewTexts) continue;
      m_reporter.reportFormat(eRpt_Fmt_StringCellInNumericColumn, listOf(rows), i + 2,
                              m_cells.columnNames[i], at(rows.front(), i + 2));
    }
  }

  void promoteKeys() {
    VdmDoubleArray numbers;
    for (const OdString& key : m_cells.keys) {
      double number = 0;
      if (!vdmParseCellNumber(key, number)) return;
      numbers.append(number);
    }
    if (numbers.isEmpty()) return;
    m_cells.columnCount = 1;
    m_cells.columnNames.append(m_cells.keyName);
    m_cells.columnTypes.append(VdmConfigurationCells::kNumeric);
    m_cells.texts = m_cells.keys;
    m_cells.numbers = numbers;
    m_cells.keyName.insert(0, kReserved);
  }

  template <class... Arguments>
  void refuse(VdmuMessageId message, const Arguments&... arguments) {
    m_reporter.reportFormat(message, arguments...);
    m_result = kVdmNotFound;
  }

  const VdmStringArray& m_sheet;
  const OdUInt32 m_rows;
  const OdUInt32 m_columns;
  const OdUInt32 m_fewTexts;
  VdmuIReporter& m_reporter;
  VdmConfigurationCells m_cells;
  std::vector<std::vector<OdUInt32>> m_textRows;  // of each value column, at most one above the few
  OdResult m_result = eOk;
};

}  // namespace

OdResult vdmLoadConfigurations(const VdmStringArray& sheet, OdUInt32 rows, OdUInt32 columns,
                               VdmuIReporter& reporter, bool promoteSingleColumn,
                               VdmConfigurationCells& result) {
  if (sheet.size() != static_cast<OdUInt64>(rows) * columns) {
    reporter.report(eRpt_InvalidTableSize, OdString());
    return kVdmNotFound;
  }
  if (sheet.isEmpty()) {
    result = {};
    return eOk;
  }
  return Loader(sheet, rows, columns, reporter).load(promoteSingleColumn, result);
}
