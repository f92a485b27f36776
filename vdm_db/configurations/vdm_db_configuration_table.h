// VdmDbConfigurationTable: all configurations of a model.
#pragma once

#include <map>
#include <optional>
#include <utility>

#include "platform/base/array.h"
#include "platform/base/case_compare.h"
#include "platform/base/string.h"
#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/configurations/vdm_configuration_cells.h"
#include "vdm_db/configurations/vdm_configuration_match.h"
#include "vdm_db/configurations/vdm_name_order.h"
#include "vdm_db/properties/vdm_db_properties_base.h"
#include "vdm_db/properties/vdm_property_types.h"

class VdmuIReporter;

/// The configurations of a model: one row each, one key column that names them, and value columns.
/// It validates and stores cells and finds rows; what a column means is the business of the
/// VdmConfigurationFeature that refers to the table and owns it.
///
/// 1. Names of columns, keys and texts of cells are compared by odStrICmp, so case does not count.
///    Of several equal names the first is meant.
/// 2. A column of numbers has type 0, one of texts type 1. Each cell has a text and a number.
/// 3. A name that begins with "*" is one that the system made; the column is not exported.
/// 4. Readers raise OdError eNotOpenForRead (61), writers as assertWriteEnabled. An operation that
///    fails changes nothing, except where it says so. Row edits record that row alone for undo.
class VDM_DB_EXPORT VdmDbConfigurationTable : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbConfigurationTable)

  struct LessString {
    bool operator()(const OdString& a, const OdString& b) const { return odStrICmp(a, b) < 0; }
  };
  /// Column name to text and number of a cell.
  using RowMap = std::map<OdString, std::pair<OdString, double>, LessString>;

  VdmDbConfigurationTable();
  ~VdmDbConfigurationTable() override;

  // ---- The table as a whole

  /// Replaces the table by a sheet: row by row, names of columns in the first row, keys in the
  /// first column; an empty sheet empties the table. All problems of the sheet are reported, with
  /// rows and columns that count from 1. With `promoteSingleColumn` a lone column of numbers
  /// becomes a value column with an anonymous key column. eOk; 5, or a code of the expression
  /// parser for a name that it refuses.
  OdResult load(const VdmStringArray& cells, unsigned rows, unsigned cols, VdmuIReporter& reporter,
                bool promoteSingleColumn);
  /// The sheet that load() takes, without columns of law 3. 4 when no column is left.
  OdResult exportTable(VdmStringArray& cells, unsigned& rows, unsigned& cols) const;
  void clear();

  // ---- Columns

  [[nodiscard]] OdString keyColumnName() const;
  void setKeyColumnName(const OdString& name);
  /// Renames the key column if it has the old name, otherwise the first value column that has it;
  /// nothing happens without one. The new name may be that of another column: law 1.
  void setColumnName(const OdString& old, const OdString& name);
  [[nodiscard]] bool hasColumn(const OdString& name) const;
  /// Position of a value column; `likely` is looked at first.
  [[nodiscard]] std::optional<OdUInt32> findColumn(const OdString& name, OdUInt32 likely = 0) const;
  void getKeyColumn(VdmStringArray& keys) const;
  void getColumnNames(VdmStringArray& names) const;
  void getColumnTypes(VdmLongArray& types) const;
  /// -1 when there is no value column of that name.
  [[nodiscard]] OdLong getColumnType(const OdString& name) const;
  /// Texts and numbers of a value column; 5 without such a column. A table that has no cells gives
  /// empty arrays.
  OdResult getColumnValues(const OdString& name, VdmStringArray& texts,
                           VdmDoubleArray& numbers) const;
  /// The same at chosen rows, in their order; 5 also for a row beyond the table.
  OdResult getColumnValues(const OdString& name, const OdArray<unsigned>& rows,
                           VdmStringArray& texts, VdmDoubleArray& numbers) const;

  // ---- Rows

  [[nodiscard]] unsigned getRowCount() const;
  /// Position of the first row with the key.
  [[nodiscard]] std::optional<unsigned> findKey(const OdString& key) const;
  /// Cells by column; the text is empty in columns of numbers. 5 for an empty table; a row beyond
  /// the others gives eOk and no cells.
  OdResult getRow(unsigned row, RowMap& cells) const;
  /// 5 when no row has the key.
  OdResult getRow(const OdString& key, RowMap& cells) const;
  /// Writes the cells that the map has. A text that is no number is refused in a column of numbers:
  /// that cell stays, the others are written, and the result is 5. An empty text is written as the
  /// number. 5 and nothing written for a row beyond the table.
  OdResult setRow(unsigned row, const RowMap& cells);
  /// A new row before that at `at`, or at the end; cells that the map lacks are "0". 5 when `at` is
  /// above the number of rows, 27 when the key is there; otherwise the result of setRow().
  OdResult insertRow(unsigned at, const OdString& key, const RowMap& cells);
  /// 4 for an empty table, 5 for a row beyond it.
  OdResult removeRow(unsigned row);
  /// 5 when no row has the key.
  OdResult removeRow(const OdString& key);

  // ---- Finding

  /// The rows that agree with all required values, those that agree with most optional ones first.
  /// Under the name of the key column `required` may have a key, which leaves that row alone; with
  /// nothing else required no value is compared. Numbers agree when they differ by 1e-10 at most. 4
  /// for a table without rows or without cells, 5 when no row is left.
  OdResult determineConfigIndex(const RowMap& required, const RowMap& optional,
                                OdArray<unsigned>& rows) const;

  /// The content, without a copy; valid until the table changes.
  [[nodiscard]] const VdmConfigurationCells& cells() const;

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;
  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  void contentChanged();
  OdResult acceptContent(OdResult read);
  [[nodiscard]] const VdmNameOrder& keyOrder() const;
  [[nodiscard]] const VdmConfigurationMatch& match() const;
  [[nodiscard]] std::vector<VdmConfigurationRule> rulesFor(const RowMap& required,
                                                           const RowMap& optional) const;
  void rename(std::optional<OdUInt32> column, const OdString& name);
  OdResult writeCell(OdUInt32 row, OdUInt32 column, const OdString& text, double number);
  void putRow(OdUInt32 at, const OdString& key, const VdmStringArray& texts,
              const VdmDoubleArray& numbers);
  void takeRow(OdUInt32 row);

  // Partial undo.
  void recordName(std::optional<OdUInt32> column);
  void recordCells(OdUInt32 row);
  void recordInserted(OdUInt32 row);
  void recordRemoved(OdUInt32 row);
  OdDbDwgFiler* beginStep(OdUInt8 step, OdUInt32 place);
  void writeRow(OdDbDwgFiler* filer, OdUInt32 row) const;
  void readRow(OdDbDwgFiler* filer, VdmStringArray& texts, VdmDoubleArray& numbers) const;

  VdmConfigurationCells m_cells;
  VdmDbPropertiesBase m_impl;  // maps m_cells
  // Made at the first use, dropped when the content changes.
  mutable std::optional<VdmNameOrder> m_keyOrder;
  mutable std::optional<VdmConfigurationMatch> m_match;
};
using VdmDbConfigurationTablePtr = OdSmartPtr<VdmDbConfigurationTable>;
