// Names of objects that outlive their drawings.
#include "vdm_db/references/vdm_database_handles.h"

#include "platform/db/database.h"

namespace vdmu {

DatabaseHandleReactor& DatabaseHandleReactor::instance() {
  struct Instance : OdStaticRxObject<DatabaseHandleReactor> {};
  static Instance reactor;
  return reactor;
}

DatabaseHandleReactor::~DatabaseHandleReactor() {
  for (const auto& [handle, database] : m_byHandle) database->removeReactor(this);
}

OdUInt64 DatabaseHandleReactor::handleOf(OdDbDatabase* database) {
  if (database == nullptr) return 0;
  if (database == m_lastNamed) return m_lastName;
  const auto known = m_byDatabase.find(database);
  const OdUInt64 handle = known != m_byDatabase.end() ? known->second : add(database);
  m_lastNamed = database;
  m_lastName = handle;
  return handle;
}

OdUInt64 DatabaseHandleReactor::add(OdDbDatabase* database) {
  const OdUInt64 handle = ++m_counter;
  database->addReactor(this);
  m_byDatabase[database] = handle;
  m_byHandle[handle] = database;
  // The number may have been looked up before it was given out.
  m_lastHandle = handle;
  m_lastDatabase = database;
  return handle;
}

OdDbDatabase* DatabaseHandleReactor::databaseOf(OdUInt64 handle) {
  if (handle != m_lastHandle) {
    const auto known = m_byHandle.find(handle);
    m_lastDatabase = known == m_byHandle.end() ? nullptr : known->second;
    m_lastHandle = handle;
  }
  return m_lastDatabase;
}

void DatabaseHandleReactor::goodbye(const OdDbDatabase* database) {
  const auto known = m_byDatabase.find(database);
  if (known == m_byDatabase.end()) return;
  m_byHandle.erase(known->second);
  m_byDatabase.erase(known);
  m_lastHandle = 0;
  m_lastDatabase = nullptr;
  m_lastNamed = nullptr;
  m_lastName = 0;
}

std::pair<OdDbHandle, OdDbHandle> make_handle(OdDbObjectId id) {
  const OdUInt64 database = DatabaseHandleReactor::instance().handleOf(id.originalDatabase());
  return {OdDbHandle(database), database == 0 ? OdDbHandle() : id.getHandle()};
}

OdDbObjectId objectId(const std::pair<OdDbHandle, OdDbHandle>& handle) {
  const OdDbDatabase* database = DatabaseHandleReactor::instance().databaseOf(handle.first);
  return database == nullptr ? OdDbObjectId::kNull : database->getOdDbObjectId(handle.second);
}

}  // namespace vdmu
