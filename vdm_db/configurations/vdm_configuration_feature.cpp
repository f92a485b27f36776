// Configuration features: state, table, links. vdm_configuration_feature_selection.cpp has the
// selection of rows, vdm_configuration_feature_variables.cpp the questions about one variable.
#include "vdm_db/configurations/vdm_configuration_feature.h"

#include <algorithm>

#include "platform/assoc/assoc_variable.h"
#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/database.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/configurations/vdm_configuration_results.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/parameters/vdm_variable_names.h"

VDM_DEFINE_FEATURE_CLASS(VdmConfigurationFeature, VdmFeature, L"VdmConfigurationFeature")

namespace {

constexpr const wchar_t* kFreeName = L"Custom";

}  // namespace

// ---- What the class is

void VdmConfigurationFeature::subMapProperties(VdmProperties& bag) {
  bag.mapProperty(kVdmConfigTable, &m_table, OdDb::kHardOwnershipRef);
  bag.mapProperty<OdString>(kVdmLastKeyValue, &m_selected);
  bag.mapProperty<OdString>(kVdmConfigDescription, &m_description);
  bag.mapProperty<OdString>(kVdmFreeConfig, &m_free);
}

const OdArray<int>& VdmConfigurationFeature::masks() const { return singleEntityMasks(); }

bool VdmConfigurationFeature::isRequiredDependency(int /*mask*/, int /*tag*/) { return false; }

OdDbObjectIdArray VdmConfigurationFeature::ownedObjects() const {
  return m_table.isNull() ? OdDbObjectIdArray() : OdDbObjectIdArray{m_table};
}

bool VdmConfigurationFeature::mustBeCloned(const OdDbIdMapping& mapping) const {
  const auto isMapped = [&mapping](const OdDbObjectId& id) {
    OdDbIdPair pair(id);
    return !id.isNull() && mapping.compute(pair);
  };
  const VdmDbFeatureManagerPtr manager = featureManagerId().openAs<VdmDbFeatureManager>();
  if (!manager.isNull() && isMapped(manager->blockId())) return true;
  const OdDbObjectIdArray variables = getVariables();
  return std::any_of(variables.begin(), variables.end(), isMapped);
}

void VdmConfigurationFeature::init(const OdDbFullSubentPathArray& paths) {
  assertWritable();
  OdArray<VdmFeatureGroupFaces> groups;
  groups.append(VdmFeatureGroupFaces(/*groupMask=*/-1, paths, /*groupTag=*/-1));
  VdmFeature::init(groups);
  setStatus(StatusInitialized);
}

// The variable announces its new name, and the rest follows from that. What is renamed while it is
// cloned has links of another feature in its list.
OdResult VdmConfigurationFeature::setName(const OdString& name) {
  assertWritable();
  if (const LinkPtr link = findKeyLink(); !link.isNull()) {
    const OdDbAssocVariablePtr variable =
        link->variable().openAs<OdDbAssocVariable>(OdDb::kForWrite);
    const bool isNew = !variable.isNull() && variable->name() != name;
    const OdResult result =
        isNew ? variable->setName(name, /*updateReferencingExpressions=*/true) : eOk;
    if (result != eOk) return result;
  }
  return VdmFeature::setName(name);
}

// ---- State

OdDbObjectId VdmConfigurationFeature::configTableId() const {
  assertReadable();
  return m_table;
}

void VdmConfigurationFeature::setConfigTableId(OdDbObjectId table) {
  assertWritable();
  m_table = table;
}

OdString VdmConfigurationFeature::freeConfiguration() const {
  assertReadable();
  return m_free;
}

OdString VdmConfigurationFeature::selectedConfiguration() const {
  assertReadable();
  return m_selected;
}

OdString VdmConfigurationFeature::getConfiguration() const { return selectedConfiguration(); }

void VdmConfigurationFeature::setSelectedConfiguration(OdString name) {
  assertReadable();
  if (name == m_selected) return;
  assertWritable();
  m_selected = std::move(name);
}

OdString VdmConfigurationFeature::description() const {
  assertReadable();
  return m_description;
}

void VdmConfigurationFeature::setDescription(const OdString& description) {
  assertWritable();
  m_description = description;
}

VdmDbConfigurationTablePtr VdmConfigurationFeature::openTable(OdDb::OpenMode mode) const {
  return configTableId().openAs<VdmDbConfigurationTable>(mode);
}

// ---- Loading a table

OdResult VdmConfigurationFeature::setConfigurationTable(OdDbObjectId block,
                                                        const VdmStringArray& cells, unsigned rows,
                                                        unsigned cols, VdmuIReporter& reporter,
                                                        bool createVariables,
                                                        bool promoteSingleColumn) {
  assertReadable();
  OdDbDatabase* database = getDbObject()->database();
  if (database == nullptr) return eNoDatabase;
  assertWritable();
  // A feature without a table is in its free configuration, also when the first one is refused.
  if (m_free.isEmpty()) m_selected = m_free = kFreeName;
  OdDbTransaction transaction(database);
  OdResult result = loadTable(cells, rows, cols, reporter, promoteSingleColumn);
  if (result != eOk) return result;
  OdDbObjectIdArray newLinks;
  {
    const TablePtr table = openTable();
    dropStaleLinks(*table);
    result = linkNewColumns(block, *table, createVariables, newLinks);
  }
  if (result == eOk) result = selectFittingRow(newLinks);
  return result == eOk ? transaction.commit() : result;
}

OdResult VdmConfigurationFeature::loadTable(const VdmStringArray& cells, unsigned rows,
                                            unsigned cols, VdmuIReporter& reporter,
                                            bool promoteSingleColumn) {
  TablePtr table = openTable(OdDb::kForWrite);
  const bool isNew = table.isNull();
  if (isNew) table = VdmDbConfigurationTable::createObject();
  const OdResult result = table->load(cells, rows, cols, reporter, promoteSingleColumn);
  if (result != eOk) return result;
  if (isNew) m_table = getDbObject()->database()->addOdDbObject(table, objectId());
  return eOk;
}

// A link remains while its column is there and holds what it held.
void VdmConfigurationFeature::dropStaleLinks(const VdmDbConfigurationTable& table) {
  OdDbObjectIdArray stale;
  forEachLink(OdDb::kForRead, [&](const VdmDbConfigVarReactor& link) {
    const OdLong type =
        link.isStringType() ? VdmConfigurationCells::kString : VdmConfigurationCells::kNumeric;
    const bool isThere = link.isKey() ? odStrICmp(table.keyColumnName(), link.name()) == 0
                                      : table.getColumnType(link.name()) == type;
    if (!isThere || link.variable().isNull()) stale.append(link.objectId());
  });
  for (const OdDbObjectId& id : stale) removeReactor(id, /*eraseReactor=*/true);
}

OdResult VdmConfigurationFeature::linkNewColumns(const OdDbObjectId& block,
                                                 const VdmDbConfigurationTable& table,
                                                 bool createVariables, OdDbObjectIdArray& links) {
  const VdmConfigurationCells& content = table.cells();
  OdDbObjectId made;
  const bool hasKeys = !content.keyName.isEmpty() && content.keyName.getAt(0) != L'*';
  if (hasKeys && findKeyLink().isNull()) {
    const OdResult result = linkColumnToVariable(block, content.keyName, /*isString=*/true, made,
                                                 /*createNew=*/true, /*isKey=*/true);
    if (result != eOk) return result;
  }
  if (hasKeys) VdmFeature::setName(content.keyName);
  for (OdUInt32 i = 0; i < content.columns(); ++i) {
    const OdString& column = content.columnNames[i];
    const bool isString = content.columnTypes[i] == VdmConfigurationCells::kString;
    if (!findLink(column).isNull()) continue;
    const OdResult found = linkColumnToVariable(block, column, isString, made,
                                                /*createNew=*/false, /*isKey=*/false);
    if (found == eOk || !createVariables) continue;
    const OdResult result = linkColumnToVariable(block, column, isString, made,
                                                 /*createNew=*/true, /*isKey=*/false);
    if (result != eOk) return result;
    links.append(made);
  }
  return eOk;
}

// The variables that were there decide. Rows that differ in nothing else are distinguished by the
// key variable, where that says one of them.
OdResult VdmConfigurationFeature::selectFittingRow(const OdDbObjectIdArray& newLinks) {
  RowMap present = presentValues();
  for (const OdDbObjectId& id : newLinks) {
    present.erase(id.safeOpenAs<VdmDbConfigVarReactor>()->name());
  }
  OdArray<unsigned> rows;
  std::optional<unsigned> shown;
  bool isEmpty = false;
  {
    const TablePtr table = openTable();
    table->determineConfigIndex(present, {}, rows);
    const LinkPtr key = findKeyLink();
    if (!key.isNull()) shown = table->findKey(key->stringValue());
    isEmpty = table->getRowCount() == 0;
  }
  if (isEmpty) return noteSelected(m_free, /*writeName=*/true);
  const bool fits = !rows.isEmpty();
  const bool isShown = shown && rows.contains(*shown);
  const unsigned row = isShown ? *shown : (fits ? rows.first() : 0);
  const OdResult result = writeRow(row, OdString(), &newLinks);
  if (result != eOk) return result;
  return noteSelected(fits ? openTable()->cells().keys[row] : m_free, /*writeName=*/true);
}

OdResult VdmConfigurationFeature::getConfigurationTable(VdmStringArray& cells, unsigned& rows,
                                                        unsigned& cols) const {
  const TablePtr table = openTable();
  return table.isNull() ? kVdmTableEmpty : table->exportTable(cells, rows, cols);
}

// ---- Links

VdmDbConfigVarReactorPtr VdmConfigurationFeature::findLink(const OdString& column) const {
  return findLinkWhere(
      [&column](const VdmDbConfigVarReactor& link) { return odStrICmp(link.name(), column) == 0; });
}

VdmDbConfigVarReactorPtr VdmConfigurationFeature::findKeyLink() const {
  return findLinkWhere([](const VdmDbConfigVarReactor& link) { return link.isKey(); });
}

OdDbObjectId VdmConfigurationFeature::keyVariable() const {
  const LinkPtr link = findKeyLink();
  return link.isNull() ? OdDbObjectId::kNull : link->variable();
}

OdString VdmConfigurationFeature::keyVariableName() const {
  const LinkPtr link = findKeyLink();
  return link.isNull() ? OdString() : link->variableName();
}

OdResult VdmConfigurationFeature::getColumnNames(VdmStringArray& linked,
                                                 VdmStringArray& unlinked) const {
  linked.clear();
  unlinked.clear();
  const TablePtr table = openTable();
  if (table.isNull()) return kVdmTableEmpty;
  for (const OdString& column : table->cells().columnNames) {
    (findLink(column).isNull() ? unlinked : linked).append(column);
  }
  return eOk;
}

// A link that cannot be attached is erased again.
template <class Attach>
OdResult VdmConfigurationFeature::makeLink(OdDbObjectId& id, const Attach& attach) {
  id = addReactor(VdmDbConfigVarReactor::desc(), /*mask=*/-1);
  OdResult result = eOk;
  {
    const LinkPtr link = id.safeOpenAs<VdmDbConfigVarReactor>(OdDb::kForWrite);
    result = attach(*link);
  }
  if (result == eOk) return eOk;
  removeReactor(id, /*eraseReactor=*/true);
  id.setNull();
  return result;
}

OdResult VdmConfigurationFeature::linkColumnToVariable(OdDbObjectId block, const OdString& column,
                                                       bool isString) {
  OdDbObjectId reactor;
  return linkColumnToVariable(block, column, isString, reactor, /*createNew=*/isString,
                              /*isKey=*/false);
}

OdResult VdmConfigurationFeature::linkColumnToVariable(OdDbObjectId block, const OdString& column,
                                                       bool isString, OdDbObjectId& reactor,
                                                       bool createNew, bool isKey) {
  reactor.setNull();
  OdDbObject* carrier = assertWritable();
  if (createNew) {
    return makeLink(reactor, [&](VdmDbConfigVarReactor& link) {
      return link.attachToNewVariable(block, carrier, column, isKey, isString);
    });
  }
  const OdDbAssocVariablePtr variable =
      vdmu::getAssocVariable(block, column, /*create=*/false, L"1").openAs<OdDbAssocVariable>();
  if (variable.isNull()) return kVdmNoVariable;
  if (isString || isLinked(variable, /*nonKeyOnly=*/false)) return kVdmNotFound;
  return makeLink(reactor, [&](VdmDbConfigVarReactor& link) {
    return link.attachToVariable(block, carrier, column);
  });
}

OdResult VdmConfigurationFeature::linkColumn(OdDbObjectId variable, const OdString& column,
                                             bool /*isString*/) {
  assertWritable();
  const TablePtr table = openTable();
  if (table.isNull() || !table->hasColumn(column) || !findLink(column).isNull()) {
    return kVdmNotFound;
  }
  const bool isKey = odStrICmp(table->keyColumnName(), column) == 0;
  const bool isString = isKey || table->getColumnType(column) == VdmConfigurationCells::kString;
  {
    const OdDbAssocVariablePtr opened = variable.openAs<OdDbAssocVariable>();
    if (opened.isNull()) return kVdmNoVariable;
    if (isLinked(opened, /*nonKeyOnly=*/false)) return kVdmNotFound;
  }
  OdDbObjectId made;
  const OdResult result = makeLink(made, [&](VdmDbConfigVarReactor& link) {
    link.setName(column);
    return link.attachToVariable(variable, isKey, isString);
  });
  if (result != eOk) return result;
  if (isKey) {
    return made.safeOpenAs<VdmDbConfigVarReactor>(OdDb::kForWrite)->setVariableValue(m_selected);
  }
  const std::optional<unsigned> row = table->findKey(m_selected);
  const OdDbObjectIdArray links{made};
  return row ? writeRow(*row, OdString(), &links) : eOk;
}

OdResult VdmConfigurationFeature::unlinkColumn(const OdString& column) {
  assertWritable();
  const LinkPtr link = findLink(column);
  if (link.isNull()) return kVdmNotFound;
  removeReactor(link->objectId(), /*eraseReactor=*/true);
  return eOk;
}

OdResult VdmConfigurationFeature::unlinkColumn(OdDbObjectId variable) {
  assertWritable();
  const LinkPtr link = findLinkWhere([&](const VdmDbConfigVarReactor& candidate) {
    return !variable.isNull() && candidate.variable() == variable;
  });
  if (link.isNull()) return kVdmNotFound;
  removeReactor(link->objectId(), /*eraseReactor=*/true);
  return eOk;
}

void VdmConfigurationFeature::resetExpressions() {
  assertWritable();
  forEachLink(OdDb::kForWrite, [](VdmDbConfigVarReactor& link) { link.setIsEnabled(true); });
}
