// Configuration tables: edits of names and rows, and their undo.
#include <algorithm>
#include <utility>

#include "platform/base/error.h"
#include "vdm_db/configurations/vdm_cell_number.h"
#include "vdm_db/configurations/vdm_configuration_results.h"
#include "vdm_db/configurations/vdm_db_configuration_table.h"
#include "vdm_db/parameters/vdm_variable_values.h"

// ---- Names

void VdmDbConfigurationTable::rename(std::optional<OdUInt32> column, const OdString& name) {
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  const OdString old = column ? m_cells.columnNames[*column] : m_cells.keyName;
  if (old == name) return;
  assertWriteEnabled(/*autoUndo=*/false);
  recordName(column);
  if (column) {
    m_cells.columnNames.setAt(*column, name);
  } else {
    m_cells.keyName = name;
  }
}

void VdmDbConfigurationTable::setKeyColumnName(const OdString& name) {
  rename(/*column=*/std::nullopt, name);
}

void VdmDbConfigurationTable::setColumnName(const OdString& old, const OdString& name) {
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  if (odStrICmp(m_cells.keyName, old) == 0) return rename(/*column=*/std::nullopt, name);
  if (const std::optional<OdUInt32> column = findColumn(old)) rename(column, name);
}

// ---- Cells

OdResult VdmDbConfigurationTable::writeCell(OdUInt32 row, OdUInt32 column, const OdString& text,
                                            double number) {
  const OdUInt32 at = m_cells.rowStart(row) + column;
  OdString written = vdmTrimmedCell(text);
  double parsed = 0;
  const bool isText = !written.isEmpty() && !vdmParseCellNumber(written, parsed);
  if (isText && m_cells.columnTypes[column] == VdmConfigurationCells::kNumeric) return kVdmNotFound;
  if (written.isEmpty()) written = vdmu::getConstExpression(number);
  m_cells.texts.setAt(at, written);
  m_cells.numbers.setAt(at, number);
  return eOk;
}

OdResult VdmDbConfigurationTable::setRow(unsigned row, const RowMap& cells) {
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  if (row >= m_cells.rows()) return kVdmNotFound;
  if (!m_cells.hasCells()) return eOk;
  assertWriteEnabled(/*autoUndo=*/false);
  recordCells(row);
  m_match.reset();
  OdResult result = eOk;
  for (OdUInt32 column = 0; column < m_cells.columns(); ++column) {
    const auto cell = cells.find(m_cells.columnNames[column]);
    if (cell == cells.end()) continue;
    const auto& [text, number] = cell->second;
    if (writeCell(row, column, text, number) != eOk) result = kVdmNotFound;
  }
  return result;
}

// ---- Rows

void VdmDbConfigurationTable::putRow(OdUInt32 at, const OdString& key, const VdmStringArray& texts,
                                     const VdmDoubleArray& numbers) {
  const auto insert = [](auto& array, OdUInt32 place, const auto& values) {
    array.append(values);
    std::rotate(array.begin() + place, array.end() - values.size(), array.end());
  };
  insert(m_cells.texts, m_cells.rowStart(at), texts);
  insert(m_cells.numbers, m_cells.rowStart(at), numbers);
  m_cells.keys.insertAt(at, key);
  ++m_cells.rowCount;
  if (m_keyOrder) m_keyOrder->inserted(m_cells.keys, at);
  m_match.reset();
}

void VdmDbConfigurationTable::takeRow(OdUInt32 row) {
  if (m_cells.hasCells()) {
    const OdUInt32 first = m_cells.rowStart(row);
    m_cells.texts.removeSubArray(first, first + m_cells.columns() - 1);
    m_cells.numbers.removeSubArray(first, first + m_cells.columns() - 1);
  }
  m_cells.keys.removeAt(row);
  --m_cells.rowCount;
  if (m_keyOrder) m_keyOrder->removed(row);
  m_match.reset();
}

OdResult VdmDbConfigurationTable::insertRow(unsigned at, const OdString& key, const RowMap& cells) {
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  if (at > m_cells.rows()) return kVdmNotFound;
  if (findKey(key)) return kVdmDuplicateKey;
  const OdUInt32 all = m_cells.rows() * m_cells.columns();
  const bool isMissingCells = m_cells.texts.size() != all;
  assertWriteEnabled(/*autoUndo=*/isMissingCells);
  if (isMissingCells) {
    m_cells.texts.resize(all, OdString(L"0"));
    m_cells.numbers.resize(all, 0.0);
  }
  recordInserted(at);
  VdmStringArray texts;
  VdmDoubleArray numbers;
  texts.resize(m_cells.columns(), OdString(L"0"));
  numbers.resize(m_cells.columns(), 0.0);
  putRow(at, key, texts, numbers);
  return setRow(at, cells);
}

OdResult VdmDbConfigurationTable::removeRow(unsigned row) {
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  if (m_cells.keys.isEmpty()) return kVdmTableEmpty;
  if (row >= m_cells.rows()) return kVdmNotFound;
  assertWriteEnabled(/*autoUndo=*/false);
  recordRemoved(row);
  takeRow(row);
  return eOk;
}

OdResult VdmDbConfigurationTable::removeRow(const OdString& key) {
  const std::optional<unsigned> row = findKey(key);
  return row ? removeRow(*row) : kVdmNotFound;
}

// ---- Partial undo. A step, its place, and what was there before:
//
//   step      uint8   place int32          content
//   kName     0       column, -1 the keys  name
//   kCells    1       row                  cells
//   kInserted 2       row                  nothing
//   kRemoved  3       row                  key, cells
//
// Cells are a count (int32), then text and number of each. Steps are applied in the reverse order
// of the edits, and the table is read as a whole, so a place is the same row as it was.

namespace {

enum UndoStep : OdUInt8 { kName, kCells, kInserted, kRemoved };

}  // namespace

OdDbDwgFiler* VdmDbConfigurationTable::beginStep(OdUInt8 step, OdUInt32 place) {
  OdDbDwgFiler* filer = beginPartialUndo(desc());
  if (filer == nullptr) return nullptr;
  filer->wrUInt8(step);
  filer->wrInt32(static_cast<OdInt32>(place));
  return filer;
}

void VdmDbConfigurationTable::writeRow(OdDbDwgFiler* filer, OdUInt32 row) const {
  const OdUInt32 count = m_cells.hasCells() ? m_cells.columns() : 0;
  filer->wrInt32(static_cast<OdInt32>(count));
  for (OdUInt32 i = 0; i < count; ++i) {
    filer->wrString(m_cells.texts[m_cells.rowStart(row) + i]);
    filer->wrDouble(m_cells.numbers[m_cells.rowStart(row) + i]);
  }
}

void VdmDbConfigurationTable::readRow(OdDbDwgFiler* filer, VdmStringArray& texts,
                                      VdmDoubleArray& numbers) const {
  for (OdInt32 count = filer->rdInt32(); count > 0; --count) {
    texts.append(filer->rdString());
    numbers.append(filer->rdDouble());
  }
}

void VdmDbConfigurationTable::recordName(std::optional<OdUInt32> column) {
  OdDbDwgFiler* filer = beginStep(kName, column.value_or(~0U));
  if (filer != nullptr) {
    filer->wrString(column ? m_cells.columnNames[*column] : m_cells.keyName);
  }
}

void VdmDbConfigurationTable::recordCells(OdUInt32 row) {
  if (OdDbDwgFiler* filer = beginStep(kCells, row)) writeRow(filer, row);
}

void VdmDbConfigurationTable::recordInserted(OdUInt32 row) { beginStep(kInserted, row); }

void VdmDbConfigurationTable::recordRemoved(OdUInt32 row) {
  OdDbDwgFiler* filer = beginStep(kRemoved, row);
  if (filer == nullptr) return;
  filer->wrString(m_cells.keys[row]);
  writeRow(filer, row);
}

void VdmDbConfigurationTable::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  const OdUInt8 step = filer->rdUInt8();
  const auto place = static_cast<OdUInt32>(filer->rdInt32());
  VdmStringArray texts;
  VdmDoubleArray numbers;
  switch (step) {
    case kName: {
      const bool isKey = place == ~0U;
      const OdString name = filer->rdString();
      recordName(isKey ? std::nullopt : std::optional(place));
      (isKey ? m_cells.keyName : m_cells.columnNames[place]) = name;
      return;
    }
    case kCells:
      readRow(filer, texts, numbers);
      recordCells(place);
      std::copy(texts.begin(), texts.end(), m_cells.texts.begin() + m_cells.rowStart(place));
      std::copy(numbers.begin(), numbers.end(), m_cells.numbers.begin() + m_cells.rowStart(place));
      m_match.reset();
      return;
    case kInserted:
      recordRemoved(place);
      return takeRow(place);
    case kRemoved: {
      const OdString key = filer->rdString();
      readRow(filer, texts, numbers);
      recordInserted(place);
      return putRow(place, key, texts, numbers);
    }
    default:
      throw OdError(eCorruptData,
                    OdString().format(L"undo step %d of a configuration table", step));
  }
}
