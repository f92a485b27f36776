// Configuration features: the selected configuration and how it follows the variables.
//
// Every selection is one path. Choosing a configuration writes its name to the key variable and
// handles that as a change of that variable; a change of any linked variable finds a row, or none,
// and writes what follows from that to the others. Writing announces changes, which come back
// through the links. They end there: a link is deaf while it writes, and the feature is while it
// writes a row, so that one edit makes one selection.
#include <utility>

#include "platform/base/non_copyable.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/configurations/vdm_configuration_results.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"

namespace {

bool isSame(const OdString& a, const OdString& b) { return odStrICmp(a, b) == 0; }

}  // namespace

/// The feature is deaf while this lives.
class VdmConfigurationFeature::Applying : OdNonCopyable {
 public:
  explicit Applying(bool& isApplying) : m_isApplying(isApplying), m_before(isApplying) {
    m_isApplying = true;
  }
  ~Applying() { m_isApplying = m_before; }

 private:
  bool& m_isApplying;
  bool m_before;
};

// ---- Finding

VdmDbConfigurationTable::RowMap VdmConfigurationFeature::presentValues() const {
  RowMap values;
  forEachLink(OdDb::kForRead, [&](const VdmDbConfigVarReactor& link) {
    if (link.isKey() || !link.isEnabled()) return;
    OdString text;
    double number = 0;
    if (link.getVariableValue(text, number) != eOk) return;
    if (number < 0) text.empty();
    values.try_emplace(link.name(), text, number);
  });
  return values;
}

OdResult VdmConfigurationFeature::determineConfiguration(const OdString& column,
                                                         unsigned& row) const {
  const TablePtr table = openTable();
  if (table.isNull()) return kVdmNotFound;
  RowMap required;
  RowMap optional;
  if (isSame(column, table->keyColumnName())) {
    const LinkPtr key = findKeyLink();
    if (key.isNull()) return kVdmNotFound;
    // The key alone decides, so the other values are not asked for.
    required.try_emplace(table->keyColumnName(), key->stringValue(), 0.0);
  } else {
    optional = presentValues();
    auto changed = optional.extract(column);
    if (changed.empty()) return kVdmNotFound;
    required.insert(std::move(changed));
  }
  OdArray<unsigned> rows;
  if (table->determineConfigIndex(required, optional, rows) != eOk) return kVdmNotFound;
  row = rows.first();
  return eOk;
}

// ---- Selecting

// Writes the values of a row to the given links, or to all, except that of the changed column.
OdResult VdmConfigurationFeature::writeRow(unsigned row, const OdString& changedColumn,
                                           const OdDbObjectIdArray* links) {
  const Applying applying(m_isApplying);
  const TablePtr table = openTable();
  const VdmConfigurationCells& cells = table->cells();
  OdResult result = eOk;
  OdUInt32 next = 0;  // links are mostly in the order of their columns
  forEachLink(OdDb::kForWrite, [&](VdmDbConfigVarReactor& link) {
    if (links != nullptr && !links->contains(link.objectId())) return;
    const OdString column = link.name();
    if (isSame(column, changedColumn)) return;
    OdResult written = eOk;
    if (link.isKey()) {
      if (link.stringValue() != cells.keys[row]) written = link.setVariableValue(cells.keys[row]);
    } else if (const std::optional<OdUInt32> found = table->findColumn(column, next)) {
      if (!cells.hasCells()) return;
      next = *found + 1;
      const OdUInt32 at = cells.rowStart(row) + *found;
      if (!link.isStringType()) {
        written = link.setVariableValue(cells.numbers[at]);
      } else if (!link.isEnabled() || link.stringValue() != cells.texts[at]) {
        written = link.setVariableValue(cells.texts[at]);
      }
    }
    if (result == eOk) result = written;
  });
  return result;
}

OdResult VdmConfigurationFeature::selectRow(unsigned row, const OdString& changedColumn) {
  const OdResult result = writeRow(row, changedColumn, /*links=*/nullptr);
  setSelectedConfiguration(openTable()->cells().keys[row]);
  return result;
}

// With `writeName` the key variable shows the name.
OdResult VdmConfigurationFeature::noteSelected(const OdString& name, bool writeName) {
  setSelectedConfiguration(name);
  const LinkPtr key = writeName ? findKeyLink() : LinkPtr();
  if (key.isNull() || key->stringValue() == name) return eOk;
  const Applying applying(m_isApplying);
  const VdmOpenUpgrade upgrade(key);
  return key->setVariableValue(name);
}

OdResult VdmConfigurationFeature::setConfiguration(const OdString& name) {
  assertWritable();
  OdString keyColumn;
  {
    const TablePtr table = openTable();
    if (table.isNull() || !table->findKey(name)) return kVdmNotFound;
    keyColumn = table->keyColumnName();
  }
  const LinkPtr link = findKeyLink();
  if (link.isNull()) return kVdmTableEmpty;
  {
    const VdmOpenUpgrade upgrade(link);
    if (const OdResult result = link->setVariableValue(name); result != eOk) return result;
    if (!link->isEnabled()) link->setIsEnabled(true);
  }
  const OdResult result = onPropertyModified(keyColumn, 0.0);
  // The name may differ from the row's in case; the key shows that of the row.
  return result == eOk ? noteSelected(selectedConfiguration(), /*writeName=*/true) : result;
}

// ---- Following the variables

// A column has the name of its variable, which may be another one from the start, unless another
// column has it.
void VdmConfigurationFeature::followRename(VdmDbConfigVarReactor& link) {
  const OdString name = link.takeVariableName();
  const OdString column = link.name();
  if (name.isEmpty() || name == column) return;
  const TablePtr table = openTable();
  if (table.isNull() || (table->hasColumn(name) && !isSame(column, name))) return;
  {
    const VdmOpenUpgrade upgrade(table);
    table->setColumnName(column, name);
  }
  const VdmOpenUpgrade upgrade(&link);
  link.setName(name);
  if (link.isKey()) VdmFeature::setName(name);
}

OdResult VdmConfigurationFeature::onPropertyModified(const OdString& column, double /*value*/) {
  if (column.isEmpty()) return eOk;
  assertWritable();
  const LinkPtr link = findLink(column);
  if (link.isNull() || m_isApplying) return eOk;
  followRename(*link);
  const OdString changed = link->name();
  const bool isKey = link->isKey();
  {
    const TablePtr table = openTable();
    if (table.isNull() || table->getRowCount() == 0) return eOk;
  }
  if (!isKey && !link->isEnabled()) return eOk;
  unsigned row = 0;
  if (determineConfiguration(changed, row) == eOk) return selectRow(row, changed);
  return isSame(m_selected, m_free) ? eOk : noteSelected(m_free, /*writeName=*/!isKey);
}

// ---- Rows by name

OdResult VdmConfigurationFeature::getConfiguration(VdmStringArray& names,
                                                   OdString& selected) const {
  selected = selectedConfiguration();
  names.clear();
  const TablePtr table = openTable();
  if (table.isNull()) return kVdmTableEmpty;
  table->getKeyColumn(names);
  return eOk;
}

OdString VdmConfigurationFeature::generateConfigurationName() const {
  const TablePtr table = openTable();
  const LinkPtr key = findKeyLink();
  const OdString shown = key.isNull() ? OdString() : key->stringValue();
  const auto isFree = [&](const OdString& name) {
    return table.isNull() || !table->findKey(name).has_value();
  };
  if (!key.isNull() && !isSame(shown, m_free) && isFree(shown)) return shown;
  const OdString base = table.isNull() ? OdString() : table->keyColumnName();
  OdString name;
  unsigned number = table.isNull() ? 0 : table->getRowCount();
  do {
    name.format(L"%ls_%d", base.c_str(), ++number);
  } while (!isFree(name));
  return name;
}

OdResult VdmConfigurationFeature::saveConfiguration(const OdString& name) {
  assertWritable();
  if (name.isEmpty() || isSame(name, m_free)) return kVdmNotFound;
  const RowMap values = presentValues();
  {
    const TablePtr table = openTable(OdDb::kForWrite);
    if (table.isNull()) return kVdmTableEmpty;
    const OdResult result = table->insertRow(table->getRowCount(), name, values);
    if (result != eOk) return result;
  }
  return noteSelected(name, /*writeName=*/true);
}

OdResult VdmConfigurationFeature::removeConfiguration(const OdString& name) {
  assertWritable();
  {
    const TablePtr table = openTable(OdDb::kForWrite);
    if (table.isNull()) return kVdmTableEmpty;
    const OdResult result = table->removeRow(name);
    if (result != eOk) return result;
  }
  return isSame(name, m_selected) ? noteSelected(m_free, /*writeName=*/true) : eOk;
}
