// Which variables a clone operation has made.
#include "vdm_db/cloning/vdm_assoc_variable_cloning_watcher.h"

#include "platform/assoc/assoc_variable.h"
#include "platform/db/database.h"
#include "vdm_db/cloning/vdm_clone_utils.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/parameters/vdm_variable_walks.h"

namespace vdmu {

OD_RX_DEFINE(AssocVariableCloningWatcher, OdDbDatabaseReactor, L"vdmu::AssocVariableCloningWatcher")

AssocVariableCloningWatcher::AssocVariableCloningWatcher() = default;
AssocVariableCloningWatcher::~AssocVariableCloningWatcher() { stopWatching(); }

void AssocVariableCloningWatcher::setMasterVariables(const OdDbObjectIdArray& variables) {
  m_masters = variables;
}

// ---- Watching

void AssocVariableCloningWatcher::startWatching(OdDbDatabase* database) {
  stopWatching();
  m_database = database;
  if (m_database != nullptr) m_database->addReactor(this);
}

void AssocVariableCloningWatcher::stopWatching() {
  if (m_database != nullptr) m_database->removeReactor(this);
  m_database = nullptr;
}

void AssocVariableCloningWatcher::goodbye(const OdDbDatabase* database) {
  if (database != m_database) return;
  m_database = nullptr;
  m_appended.clear();
}

void AssocVariableCloningWatcher::objectAppended(const OdDbDatabase* database,
                                                 const OdDbObject* object) {
  if (database == m_database && object->isA() == OdDbAssocVariable::desc()) {
    m_appended.insert(object->objectId());
  }
}

// ---- An operation

void AssocVariableCloningWatcher::cloningStarted(OdDbIdMapping& mapping) {
  m_appended.clear();
  OdDbDatabase* database = mapping.destDb();
  if (database == nullptr && !m_masters.isEmpty()) database = m_masters.first().database();
  startWatching(database);
}

void AssocVariableCloningWatcher::cloningEnded(OdDbIdMapping& mapping) {
  populateFromMap(mapping);
  stopWatching();
}

void AssocVariableCloningWatcher::populateFromMap(OdDbIdMapping& mapping) {
  OdArray<OdDbIdPair> pairs;
  getClonedObjectsByExactType(mapping, OdDbAssocVariable::desc(), pairs);
  for (const OdDbIdPair& pair : pairs) m_appended.insert(pair.value());
}

OdDbObjectIdArray AssocVariableCloningWatcher::getClonedWithMasterVars(
    OdDbIdMapping& mapping) const {
  OdDbObjectIdArray clones;
  std::unordered_set<OdDbObjectId, OdDbObjectIdHash> seen;
  for (const OdDbObjectId& master : m_masters) {
    const OdDbObjectId clone = findClone(mapping, master);
    const bool isVariable = clone.objectClass() == OdDbAssocVariable::desc();
    if (isVariable && seen.insert(clone).second) clones.append(clone);
  }
  OdDbObjectIdArray made;
  for (const OdDbObjectId& id : getDefiningVariables(clones)) {
    if (isVariableClone(id)) made.append(id);
  }
  return made;
}

}  // namespace vdmu
