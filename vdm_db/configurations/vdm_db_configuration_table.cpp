// Configuration tables: content, columns, finding, filing. vdm_db_configuration_table_rows.cpp has
// the edits and their undo.
#include "vdm_db/configurations/vdm_db_configuration_table.h"

#include <algorithm>

#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/configurations/vdm_configuration_load.h"
#include "vdm_db/configurations/vdm_configuration_results.h"

VDM_DEFINE_DB_CLASS(VdmDbConfigurationTable, OdDbObject, L"VdmDbConfigurationTable",
                    L"VDMDBCONFIGURATIONTABLE", L"configurations data")

// The whole content is properties of the bag:
//
//   key          value
//   "KeyName"    string
//   "KeyValues"  array of strings   one for each row
//   "ColNames"   array of strings   one for each value column
//   "ColTypes"   array of int32     0 numbers, 1 texts
//   "RowNum"     int32
//   "ColNum"     int32              value columns
//   "Values"     array of strings   row by row; all cells or none
//   "DblValues"  array of doubles   likewise
VdmDbConfigurationTable::VdmDbConfigurationTable() {
  VdmProperties& bag = m_impl.properties();
  bag.mapProperty<OdString>(L"KeyName", &m_cells.keyName);
  bag.mapProperty<VdmStringArray>(L"KeyValues", &m_cells.keys);
  bag.mapProperty<VdmStringArray>(L"ColNames", &m_cells.columnNames);
  bag.mapProperty<VdmLongArray>(L"ColTypes", &m_cells.columnTypes);
  bag.mapProperty<OdLong>(L"RowNum", &m_cells.rowCount);
  bag.mapProperty<OdLong>(L"ColNum", &m_cells.columnCount);
  bag.mapProperty<VdmStringArray>(L"Values", &m_cells.texts);
  bag.mapProperty<VdmDoubleArray>(L"DblValues", &m_cells.numbers);
}

VdmDbConfigurationTable::~VdmDbConfigurationTable() = default;

const VdmConfigurationCells& VdmDbConfigurationTable::cells() const { return read(m_cells); }

void VdmDbConfigurationTable::contentChanged() {
  m_keyOrder.reset();
  m_match.reset();
}

const VdmNameOrder& VdmDbConfigurationTable::keyOrder() const {
  if (!m_keyOrder) m_keyOrder.emplace(m_cells.keys);
  return *m_keyOrder;
}

const VdmConfigurationMatch& VdmDbConfigurationTable::match() const {
  if (!m_match) m_match.emplace(m_cells);
  return *m_match;
}

// ---- The table as a whole

OdResult VdmDbConfigurationTable::load(const VdmStringArray& cells, unsigned rows, unsigned cols,
                                       VdmuIReporter& reporter, bool promoteSingleColumn) {
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  VdmConfigurationCells loaded;
  const OdResult result =
      vdmLoadConfigurations(cells, rows, cols, reporter, promoteSingleColumn, loaded);
  if (result != eOk) return result;
  assertWriteEnabled();
  m_cells = std::move(loaded);
  contentChanged();
  return eOk;
}

void VdmDbConfigurationTable::clear() {
  assertWriteEnabled();
  m_cells = {};
  contentChanged();
}

namespace {

bool isExported(const OdString& columnName) {
  return !columnName.isEmpty() && columnName.getAt(0) != L'*';
}

}  // namespace

OdResult VdmDbConfigurationTable::exportTable(VdmStringArray& cells, unsigned& rows,
                                              unsigned& cols) const {
  assertReadEnabled();
  const bool hasKeys = isExported(m_cells.keyName);
  std::vector<OdUInt32> columns;
  for (OdUInt32 column = 0; column < m_cells.columns(); ++column) {
    if (isExported(m_cells.columnNames[column])) columns.push_back(column);
  }
  rows = m_cells.rows() + 1;
  cols = static_cast<unsigned>(columns.size()) + (hasKeys ? 1U : 0U);
  cells.clear();
  if (cols == 0) return kVdmTableEmpty;
  cells.reserve(rows * cols);
  if (hasKeys) cells.append(m_cells.keyName);
  for (const OdUInt32 column : columns) cells.append(m_cells.columnNames[column]);
  for (OdUInt32 row = 0; row < m_cells.rows(); ++row) {
    if (hasKeys) cells.append(m_cells.keys[row]);
    for (const OdUInt32 column : columns) {
      cells.append(m_cells.hasCells() ? m_cells.texts[m_cells.rowStart(row) + column] : OdString());
    }
  }
  return eOk;
}

// ---- Columns

OdString VdmDbConfigurationTable::keyColumnName() const { return cells().keyName; }

std::optional<OdUInt32> VdmDbConfigurationTable::findColumn(const OdString& name,
                                                            OdUInt32 likely) const {
  const VdmStringArray& names = cells().columnNames;
  if (likely < names.size() && odStrICmp(names[likely], name) == 0) return likely;
  const auto* found = std::find_if(names.begin(), names.end(), [&name](const OdString& candidate) {
    return odStrICmp(candidate, name) == 0;
  });
  if (found == names.end()) return std::nullopt;
  return static_cast<OdUInt32>(found - names.begin());
}

bool VdmDbConfigurationTable::hasColumn(const OdString& name) const {
  return odStrICmp(cells().keyName, name) == 0 || findColumn(name).has_value();
}

void VdmDbConfigurationTable::getKeyColumn(VdmStringArray& keys) const { keys = cells().keys; }

void VdmDbConfigurationTable::getColumnNames(VdmStringArray& names) const {
  names = cells().columnNames;
}

void VdmDbConfigurationTable::getColumnTypes(VdmLongArray& types) const {
  types = cells().columnTypes;
}

OdLong VdmDbConfigurationTable::getColumnType(const OdString& name) const {
  assertReadEnabled();
  const std::optional<OdUInt32> column = findColumn(name);
  return column ? m_cells.columnTypes[*column] : -1;
}

OdResult VdmDbConfigurationTable::getColumnValues(const OdString& name, VdmStringArray& texts,
                                                  VdmDoubleArray& numbers) const {
  OdArray<unsigned> rows;
  rows.resize(cells().rows());
  for (OdUInt32 row = 0; row < m_cells.rows(); ++row) rows[row] = row;
  return getColumnValues(name, rows, texts, numbers);
}

OdResult VdmDbConfigurationTable::getColumnValues(const OdString& name,
                                                  const OdArray<unsigned>& rows,
                                                  VdmStringArray& texts,
                                                  VdmDoubleArray& numbers) const {
  assertReadEnabled();
  texts.clear();
  numbers.clear();
  const std::optional<OdUInt32> column = findColumn(name);
  const bool isOutside =
      std::any_of(rows.begin(), rows.end(), [this](unsigned row) { return row >= m_cells.rows(); });
  if (!column || isOutside) return kVdmNotFound;
  if (!m_cells.hasCells()) return eOk;
  for (const unsigned row : rows) {
    texts.append(m_cells.texts[m_cells.rowStart(row) + *column]);
    numbers.append(m_cells.numbers[m_cells.rowStart(row) + *column]);
  }
  return eOk;
}

// ---- Rows

unsigned VdmDbConfigurationTable::getRowCount() const { return cells().rows(); }

std::optional<unsigned> VdmDbConfigurationTable::findKey(const OdString& key) const {
  assertReadEnabled();
  return keyOrder().find(m_cells.keys, key);
}

OdResult VdmDbConfigurationTable::getRow(unsigned row, RowMap& cells) const {
  assertReadEnabled();
  cells.clear();
  if (!m_cells.hasCells() || row >= m_cells.rows()) {
    return m_cells.keys.isEmpty() ? kVdmNotFound : eOk;
  }
  for (OdUInt32 column = 0; column < m_cells.columns(); ++column) {
    const OdUInt32 at = m_cells.rowStart(row) + column;
    const bool isText = m_cells.columnTypes[column] == VdmConfigurationCells::kString;
    // Of columns of one name the first counts.
    cells.try_emplace(m_cells.columnNames[column], isText ? m_cells.texts[at] : OdString(),
                      m_cells.numbers[at]);
  }
  return eOk;
}

OdResult VdmDbConfigurationTable::getRow(const OdString& key, RowMap& cells) const {
  if (const std::optional<unsigned> row = findKey(key)) return getRow(*row, cells);
  cells.clear();
  return kVdmNotFound;
}

// ---- Finding

std::vector<VdmConfigurationRule> VdmDbConfigurationTable::rulesFor(const RowMap& required,
                                                                    const RowMap& optional) const {
  std::vector<VdmConfigurationRule> rules;
  for (OdUInt32 column = 0; column < m_cells.columns(); ++column) {
    auto cell = required.find(m_cells.columnNames[column]);
    const bool isRequired = cell != required.end();
    if (!isRequired) cell = optional.find(m_cells.columnNames[column]);
    if (!isRequired && cell == optional.end()) continue;
    rules.push_back({column, &cell->second.first, cell->second.second, isRequired});
  }
  return rules;
}

OdResult VdmDbConfigurationTable::determineConfigIndex(const RowMap& required,
                                                       const RowMap& optional,
                                                       OdArray<unsigned>& rows) const {
  assertReadEnabled();
  rows.clear();
  if (m_cells.keys.isEmpty()) return kVdmTableEmpty;
  std::optional<OdUInt32> pinned;
  if (const auto key = required.find(m_cells.keyName); key != required.end()) {
    pinned = findKey(key->second.first);
    if (!pinned) return kVdmNotFound;
    if (required.size() == 1) {
      rows.append(*pinned);
      return eOk;
    }
  }
  if (!m_cells.hasCells()) return kVdmTableEmpty;
  rows = match().rowsThatFit(m_cells, rulesFor(required, optional), pinned);
  return rows.isEmpty() ? kVdmNotFound : eOk;
}

std::size_t VdmDbConfigurationTable::approximateSize() const {
  constexpr std::size_t kTextSize = 40;  // a pointer and a buffer of a short text
  const std::size_t texts = m_cells.texts.size() + m_cells.keys.size() + m_cells.columns();
  return OdDbObject::approximateSize() + sizeof(*this) + texts * kTextSize +
         m_cells.numbers.size() * sizeof(double);
}

// ---- Filing: the base's part, then the bag

OdResult VdmDbConfigurationTable::acceptContent(OdResult read) {
  contentChanged();
  if (read != eOk) return read;
  return m_cells.isConsistent() ? eOk : eCorruptData;
}

OdResult VdmDbConfigurationTable::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  const OdResult result = OdDbObject::dwgInFields(filer);
  return acceptContent(result == eOk ? m_impl.dwgInFields(filer) : result);
}

void VdmDbConfigurationTable::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  m_impl.dwgOutFields(filer);
}

OdResult VdmDbConfigurationTable::dxfInFields(OdDbDxfFiler* filer) {
  assertWriteEnabled();
  const OdResult result = OdDbObject::dxfInFields(filer);
  return acceptContent(result == eOk ? m_impl.dxfInFields(filer) : result);
}

void VdmDbConfigurationTable::dxfOutFields(OdDbDxfFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dxfOutFields(filer);
  m_impl.dxfOutFields(filer);
}
