// VdmConfigurationFeature: applies the rows of a configuration table to the variables of a model.
#pragma once

#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/configurations/vdm_db_config_var_reactor.h"
#include "vdm_db/configurations/vdm_db_configuration_table.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_impl.h"

class OdDbAssocVariable;
class VdmuIReporter;

/// The configurations of a model: a VdmDbConfigurationTable, which the feature owns, and one
/// VdmDbConfigVarReactor for each column that is linked to a variable. The link of the key column
/// has a variable of texts that shows the name of the selected configuration.
///
/// 1. One configuration is selected: a row of the table, or the free one, whose name says that no
///    row applies. Selecting a row writes its values to the linked variables.
/// 2. When somebody changes a linked variable, the feature selects the row that has the new value
///    and agrees with most of the others, the first of several, and writes that row; without such
///    a row it selects the free configuration and writes no values.
/// 3. A variable with an expression is driven by something else: it takes no part in finding a
///    row, and its changes select nothing. A row that is selected ends the expression.
/// 4. The column follows when its variable is renamed, unless another column has that name. The
///    feature has the name of the key column; renaming the feature renames that and its variable.
/// 5. Names compare without regard to case.
///
/// Results are eOk; 4 without a key link or a table, 5 for an unknown name and bad input, 27 for a
/// key that exists, 417 for a variable that does not open. Readers raise OdError 61, writers as
/// VdmFeature says.
class VDM_DB_EXPORT VdmConfigurationFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmConfigurationFeature)

  using VdmFeature::init;
  /// Replaces the references to geometry, and sets the status StatusInitialized.
  void init(const OdDbFullSubentPathArray& paths);

  // ---- The table

  /// Loads a sheet, as VdmDbConfigurationTable::load. Links of columns that are there still remain,
  /// others are erased, and columns without a link get one: to the variable of the block that has
  /// the name of the column and no link yet, for a column of numbers, otherwise with
  /// `createVariables` to a new one. The row that agrees with the variables is selected, which also
  /// gives new variables their values; without one the free configuration, and new variables get
  /// the values of the first row. A sheet that is refused changes nothing.
  OdResult setConfigurationTable(OdDbObjectId block, const VdmStringArray& cells, unsigned rows,
                                 unsigned cols, VdmuIReporter& reporter, bool createVariables,
                                 bool promoteSingleColumn);
  /// The table as a sheet; 4 without a table.
  OdResult getConfigurationTable(VdmStringArray& cells, unsigned& rows, unsigned& cols) const;
  [[nodiscard]] OdDbObjectId configTableId() const;
  /// The carrier is to own the table.
  void setConfigTableId(OdDbObjectId table);

  // ---- Selecting

  OdResult setConfiguration(const OdString& name);
  [[nodiscard]] OdString getConfiguration() const;
  /// All names of rows, and that of the selected configuration.
  OdResult getConfiguration(VdmStringArray& names, OdString& selected) const;
  /// A new row with the present values of the variables, which is selected. 5 for an empty name and
  /// that of the free configuration.
  OdResult saveConfiguration(const OdString& name);
  /// The free configuration is selected afterwards if that one was.
  OdResult removeConfiguration(const OdString& name);
  /// What the key variable says where no row has that name, otherwise "<key column>_<number>".
  [[nodiscard]] OdString generateConfigurationName() const;
  [[nodiscard]] OdString freeConfiguration() const;
  [[nodiscard]] OdString selectedConfiguration() const;
  /// Only notes the name.
  void setSelectedConfiguration(OdString name);
  [[nodiscard]] OdString description() const;
  void setDescription(const OdString& description);

  /// The row that law 2 gives after a change in the column.
  OdResult determineConfiguration(const OdString& column, unsigned& row) const;
  /// A linked variable was changed or renamed: laws 2 to 4. `value` is its number.
  OdResult onPropertyModified(const OdString& column, double value) override;

  // ---- Links

  /// Null and empty without a key link.
  [[nodiscard]] OdDbObjectId keyVariable() const;
  [[nodiscard]] OdString keyVariableName() const;
  /// The value columns that have links, and those that have none, in the order of the table.
  OdResult getColumnNames(VdmStringArray& linked, VdmStringArray& unlinked) const;
  /// Links a variable to a column without a link, the key column included, and gives it the value
  /// of the selected row. What the column holds decides whether it is one of texts; `isString` is
  /// not needed. 5 for a variable that has a link.
  OdResult linkColumn(OdDbObjectId variable, const OdString& column, bool isString);
  /// 5 without such a link.
  OdResult unlinkColumn(const OdString& column);
  OdResult unlinkColumn(OdDbObjectId variable);
  /// A link to the variable of the block that has the name of the column; a column of texts gets a
  /// new one.
  OdResult linkColumnToVariable(OdDbObjectId block, const OdString& column, bool isString);
  /// The same with a choice. Without `createNew` 417 for a name that no variable has, and 5 for a
  /// variable that has a link and for every column of texts.
  OdResult linkColumnToVariable(OdDbObjectId block, const OdString& column, bool isString,
                                OdDbObjectId& reactor, bool createNew, bool isKey);
  /// The different values of a column in the order of their rows; the keys for the key column.
  OdResult getValueList(const OdString& column, VdmStringArray& values) const;
  OdResult getValueList(OdDbObjectId variable, VdmStringArray& values) const;
  /// Removes the expressions of all linked variables, which keep their values.
  void resetExpressions();

  // ---- The link of a variable, which is the first among its persistent reactors

  [[nodiscard]] static bool isLinked(const OdDbAssocVariable* variable, bool nonKeyOnly);
  [[nodiscard]] static bool isKey(const OdDbAssocVariable* variable);
  [[nodiscard]] static bool isStringType(const OdDbAssocVariable* variable);
  [[nodiscard]] static OdSmartPtr<VdmConfigurationFeature> getFeature(
      const OdDbAssocVariable* variable, OdDb::OpenMode mode);
  static OdResult getValueList(const OdDbAssocVariable* variable, VdmStringArray& values);
  /// 5 for a variable that is not one of texts.
  static OdResult getStringValue(const OdDbAssocVariable* variable, OdString& text);
  /// With `select` the feature then selects a row by law 2, as after an edit by a user.
  static OdResult setStringValue(OdDbAssocVariable* variable, const OdString& text, bool select);
  /// The text of a variable that is linked to a column of texts, or refers to nothing but such a
  /// variable, over any number of steps. 5 for any other and for null, 417 for one that does not
  /// open.
  static OdResult evaluateStringValue(OdDbObjectId variable, OdString& text);
  /// The same with a variable of the block by its name.
  static OdResult evaluateStringValue(OdDbObjectId block, const OdString& name, OdString& text);

  // ---- What the class is

  OdResult setName(const OdString& name) override;
  [[nodiscard]] const OdArray<int>& masks() const override;
  /// True in a clone of the feature's block, or of one of its variables.
  [[nodiscard]] bool mustBeCloned(const OdDbIdMapping& mapping) const override;
  /// False: neither the loss of geometry nor that of a variable ends the table.
  [[nodiscard]] bool isRequiredDependency(int mask, int tag) override;
  void subMapProperties(VdmProperties& bag) override;
  [[nodiscard]] OdDbObjectIdArray ownedObjects() const override;

 private:
  friend class VdmDbConfigVarReactor;
  using RowMap = VdmDbConfigurationTable::RowMap;
  using LinkPtr = VdmDbConfigVarReactorPtr;
  using TablePtr = VdmDbConfigurationTablePtr;
  class Applying;

  [[nodiscard]] TablePtr openTable(OdDb::OpenMode mode = OdDb::kForRead) const;
  template <class Visit>
  void forEachLink(OdDb::OpenMode mode, const Visit& visit) const;
  template <class Matches>
  [[nodiscard]] LinkPtr findLinkWhere(const Matches& matches) const;
  [[nodiscard]] LinkPtr findLink(const OdString& column) const;
  [[nodiscard]] LinkPtr findKeyLink() const;
  /// Of the columns that are linked and not driven by an expression, without the key.
  [[nodiscard]] RowMap presentValues() const;

  // Loading.
  OdResult loadTable(const VdmStringArray& cells, unsigned rows, unsigned cols,
                     VdmuIReporter& reporter, bool promoteSingleColumn);
  void dropStaleLinks(const VdmDbConfigurationTable& table);
  OdResult linkNewColumns(const OdDbObjectId& block, const VdmDbConfigurationTable& table,
                          bool createVariables, OdDbObjectIdArray& links);
  OdResult selectFittingRow(const OdDbObjectIdArray& newLinks);
  template <class Attach>
  OdResult makeLink(OdDbObjectId& id, const Attach& attach);

  // Selecting.
  OdResult selectRow(unsigned row, const OdString& changedColumn);
  OdResult writeRow(unsigned row, const OdString& changedColumn, const OdDbObjectIdArray* links);
  OdResult noteSelected(const OdString& name, bool writeName);
  void followRename(VdmDbConfigVarReactor& link);

  OdDbObjectId m_table;
  OdString m_selected;
  OdString m_description;
  OdString m_free;
  bool m_isApplying = false;  // values of a row are being written
};
using VdmConfigurationFeaturePtr = OdSmartPtr<VdmConfigurationFeature>;

// ---- Definitions

template <class Visit>
void VdmConfigurationFeature::forEachLink(OdDb::OpenMode mode, const Visit& visit) const {
  const OdDbObjectIdArray ids = reactors();  // links may be made and erased meanwhile
  for (const OdDbObjectId& id : ids) {
    if (id.objectClass() != VdmDbConfigVarReactor::desc()) continue;
    const LinkPtr link = id.openAs<VdmDbConfigVarReactor>(mode);
    if (!link.isNull() && link->ownerId() == objectId()) visit(*link);
  }
}

template <class Matches>
VdmDbConfigVarReactorPtr VdmConfigurationFeature::findLinkWhere(const Matches& matches) const {
  LinkPtr found;
  forEachLink(OdDb::kForRead, [&](VdmDbConfigVarReactor& link) {
    if (found.isNull() && matches(link)) found = LinkPtr(&link);
  });
  return found;
}
