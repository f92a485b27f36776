// The external drawings that a host drawing has loaded.
#include "platform/db/xref_registry.h"

void OdDbXrefRegistry::add(const OdDbObjectId& block, const OdDbDatabasePtr& database) {
  m_databases[block.getHandle()] = database;
}

OdDbDatabasePtr OdDbXrefRegistry::find(const OdDbObjectId& block) const {
  const auto found = m_databases.find(block.getHandle());
  return found == m_databases.end() ? OdDbDatabasePtr() : found->second;
}

void OdDbXrefRegistry::remove(const OdDbObjectId& block) { m_databases.erase(block.getHandle()); }

std::vector<OdDbDatabasePtr> OdDbXrefRegistry::databases() const {
  std::vector<OdDbDatabasePtr> all;
  for (const auto& [block, database] : m_databases) all.push_back(database);
  return all;
}
