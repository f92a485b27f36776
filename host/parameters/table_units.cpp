// Units of table columns.
#include "host/parameters/table_units.h"

#include <algorithm>
#include <optional>

#include "host/parameters/unit_text.h"
#include "vdm_db/configurations/vdm_db_configuration_table.h"
#include "vdm_db/parameters/vdm_variable_values.h"
#include "vdm_db/properties/vdm_properties.h"

namespace vdm_host {
namespace {

constexpr const wchar_t* kUnitsKey = L"ColumnUnits";

OdString trimmed(OdString text) { return text.trimLeft().trimRight(); }

/// "length [mm]" as "length" and "mm".
struct Header {
  OdString name;
  OdString unit;
};
Header parseHeader(const OdString& text) {
  const OdString whole = trimmed(text);
  const int open = whole.find(L'[');
  const bool hasUnit = open > 0 && whole.getAt(whole.getLength() - 1) == L']';
  if (!hasUnit) return {whole, {}};
  return {trimmed(whole.left(open)), trimmed(whole.mid(open + 1, whole.getLength() - open - 2))};
}

bool isDigit(wchar_t ch) { return ch >= L'0' && ch <= L'9'; }

/// Reads along a text.
class Scan {
 public:
  explicit Scan(const OdString& text) : m_text(text) {}

  [[nodiscard]] wchar_t next() const {
    return m_at < m_text.getLength() ? m_text.getAt(m_at) : L'\0';
  }
  bool takeAny(const wchar_t* characters) {
    const bool isThere = next() != L'\0' && OdString(characters).find(next()) >= 0;
    if (isThere) ++m_at;
    return isThere;
  }
  bool takeDigits() {
    const int before = m_at;
    while (isDigit(next())) ++m_at;
    return m_at > before;
  }
  void goBack(int place) { m_at = place; }
  [[nodiscard]] int place() const { return m_at; }

 private:
  const OdString& m_text;
  int m_at = 0;
};

/// What a cell looks like: a number ("-1.5e3"), a number or fraction with a unit ("1 1/2 in"), or
/// anything else. "3/4", "10-20" and formulas are texts.
enum class CellForm { kText, kNumber, kMeasure };

CellForm formOf(const OdString& text) {
  Scan scan(text);
  static_cast<void>(scan.takeAny(L"+-"));
  const bool hasWhole = scan.takeDigits();
  const bool hasPart = scan.takeAny(L".") && scan.takeDigits();
  if (!hasWhole && !hasPart) return CellForm::kText;
  if (const int place = scan.place(); scan.takeAny(L"eE")) {
    static_cast<void>(scan.takeAny(L"+-"));
    if (!scan.takeDigits()) scan.goBack(place);
  }
  if (scan.next() == L'\0') return CellForm::kNumber;
  // A fraction: right after the number, or after a blank.
  if (const int place = scan.place(); !scan.takeAny(L"/") || !scan.takeDigits()) {
    scan.goBack(place);
    const bool isMixed =
        scan.takeAny(L" ") && scan.takeDigits() && scan.takeAny(L"/") && scan.takeDigits();
    if (!isMixed) scan.goBack(place);
  }
  while (scan.takeAny(L" ")) {
  }
  const bool hasUnit = scan.next() != L'\0' && OdString(L"+-*/^(),.;<>=?").find(scan.next()) < 0;
  return hasUnit ? CellForm::kMeasure : CellForm::kText;
}

/// The comma between the digits of a number, and how many digits follow it.
struct Comma {
  int place;
  int digits;
};
std::optional<Comma> decimalComma(const OdString& text) {
  const int place = text.find(L',');
  if (place <= 0 || !isDigit(text.getAt(place - 1))) return {};
  int digits = 0;
  while (place + 1 + digits < text.getLength() && isDigit(text.getAt(place + 1 + digits))) ++digits;
  const bool isAlone = text.find(L'.') < 0 && text.mid(place + 1).find(L',') < 0;
  return digits > 0 && isAlone ? std::optional(Comma{place, digits}) : std::nullopt;
}

class Converter {
 public:
  Converter(const TableSheet& sheet, OdDb::UnitsValue lengthUnit, VdmStringArray& cells,
            std::vector<OdString>& problems)
      : m_sheet(sheet), m_lengthUnit(lengthUnit), m_cells(cells), m_problems(problems) {}

  OdString convert(unsigned column, bool hasNumbers) {
    const Header header = parseHeader(m_sheet.at(0, column));
    m_cells.setAt(column, header.name);
    double factor = 1.0;
    OdExpression::Dimension dimension;
    OdString error;
    const bool isUnit = header.unit.isEmpty() ||
                        readConstant(L"1 " + header.unit, m_lengthUnit, factor, dimension, error);
    if (!isUnit) note(0, column, L"unit [" + header.unit + L"]: " + error);
    if (isUnit && hasNumbers) convertCells(column, header.unit, factor);
    return header.unit;
  }

 private:
  void note(unsigned row, unsigned column, const OdString& text) {
    m_problems.push_back(
        OdString().format(L"line %u, column %u: ", m_sheet.lines[row], column + 1) + text);
  }

  /// With a point for a decimal comma; nothing for one that may separate thousands.
  std::optional<OdString> withPoint(const OdString& text) const {
    constexpr int kThousands = 3;
    const std::optional<Comma> comma = decimalComma(text);
    if (m_sheet.separator == ',' || !comma) return text;
    OdString changed(text);
    changed.setAt(comma->place, L'.');
    if (formOf(changed) == CellForm::kText) return text;  // "plate 1,250"
    if (comma->digits == kThousands) return std::nullopt;
    return changed;
  }

  /// The value of one cell in base units; nothing for a text.
  std::optional<double> valueOf(const OdString& text, double factor) const {
    double value = 0;
    OdExpression::Dimension dimension;
    OdString error;
    if (formOf(text) == CellForm::kText ||
        !readConstant(text, m_lengthUnit, value, dimension, error)) {
      return std::nullopt;
    }
    return dimension == OdExpression::Dimension::plain() ? value * factor : value;
  }

  void convertCells(unsigned column, const OdString& unit, double factor) {
    std::vector<OdString> values;
    for (unsigned row = 1; row < m_sheet.rows; ++row) {
      const OdString text = trimmed(m_sheet.at(row, column));
      const std::optional<OdString> pointed = withPoint(text);
      if (!pointed) {
        note(row, column, text + L" may be a fraction or thousands: write a point, or no comma");
        return;
      }
      if (factor == 1.0 && formOf(*pointed) == CellForm::kNumber) {
        values.push_back(*pointed);  // the table reads it as it is
        continue;
      }
      const std::optional<double> value = valueOf(*pointed, factor);
      if (!value && !unit.isEmpty()) {
        note(row, column, L"\"" + text + L"\" is no value in " + unit);
      }
      if (!value) return;  // a column of texts
      values.push_back(vdmu::getConstExpression(*value));
    }
    for (unsigned row = 1; row < m_sheet.rows; ++row) {
      m_cells.setAt(row * m_sheet.columns + column, values[row - 1]);
    }
  }

  const TableSheet& m_sheet;
  const OdDb::UnitsValue m_lengthUnit;
  VdmStringArray& m_cells;
  std::vector<OdString>& m_problems;
};

}  // namespace

OdStatus toBaseUnits(const TableSheet& sheet, OdDb::UnitsValue lengthUnit, VdmStringArray& cells,
                     TableUnits& units, std::vector<OdString>& problems) {
  const std::size_t before = problems.size();
  cells = sheet.cells;
  units.clear();
  Converter converter(sheet, lengthUnit, cells, problems);
  for (unsigned column = 0; sheet.rows > 0 && column < sheet.columns; ++column) {
    units.push_back(converter.convert(column, column > 0 || sheet.columns == 1));
  }
  if (problems.size() == before) return {};
  return {eInvalidInput, OdString().format(L"the table has %u problems",
                                           static_cast<unsigned>(problems.size() - before))};
}

void storeUnits(const OdDbObjectId& id, const TableUnits& units) {
  const auto table = id.safeOpenAs<VdmDbConfigurationTable>(OdDb::kForWrite);
  VdmProperties bag;
  bag.readFromDbObject(table.get());
  bag.removeProperty(OdString(kUnitsKey));
  const bool hasAny =
      std::ranges::any_of(units, [](const OdString& unit) { return !unit.isEmpty(); });
  if (hasAny) {
    VdmStringArray texts;
    for (const OdString& unit : units) texts.append(unit);
    // The table of a promoted column has a key column more.
    if (units.size() == 1) texts.insertAt(0, OdString());
    bag.setProperty(OdString(kUnitsKey), texts);
  }
  bag.writeToDbObject(table.get());
}

void fromBaseUnits(const VdmDbConfigurationTable& table, OdDb::UnitsValue lengthUnit,
                   TableSheet& sheet) {
  VdmProperties bag;
  VdmStringArray units;
  if (!bag.readFromDbObject(&table) || !bag.getProperty(OdString(kUnitsKey), units)) return;
  for (unsigned column = 0; column < sheet.columns; ++column) {
    const auto at = table.findColumn(sheet.at(0, column), column);
    const OdUInt32 place = at ? *at + 1 : 0;
    if (place >= units.size() || units[place].isEmpty()) continue;
    double factor = 1.0;
    OdExpression::Dimension dimension;
    OdString error;
    if (!readConstant(L"1 " + units[place], lengthUnit, factor, dimension, error)) continue;
    sheet.cells.setAt(column, sheet.at(0, column) + L" [" + units[place] + L"]");
    if (!at || factor == 1.0) continue;
    for (unsigned row = 1; row < sheet.rows; ++row) {
      const double number = table.cells().numbers[table.cells().rowStart(row - 1) + *at];
      sheet.cells.setAt(row * sheet.columns + column, vdmu::getConstExpression(number / factor));
    }
  }
}

}  // namespace vdm_host
