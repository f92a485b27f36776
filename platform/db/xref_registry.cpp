// The external drawings that a host drawing has loaded.
#include "platform/db/xref_registry.h"

#include <atomic>

namespace {

std::atomic<OdUInt64> g_generation{0};

void raiseGeneration() { g_generation.fetch_add(1, std::memory_order_relaxed); }

}  // namespace

OdUInt64 OdDbXrefRegistry::generation() { return g_generation.load(std::memory_order_relaxed); }

void OdDbXrefRegistry::add(const OdDbObjectId& block, const OdDbDatabasePtr& database) {
  raiseGeneration();
  m_databases[block.getHandle()] = database;
}

OdDbDatabasePtr OdDbXrefRegistry::find(const OdDbObjectId& block) const {
  const auto found = m_databases.find(block.getHandle());
  return found == m_databases.end() ? OdDbDatabasePtr() : found->second;
}

void OdDbXrefRegistry::remove(const OdDbObjectId& block) {
  if (m_databases.erase(block.getHandle()) != 0) raiseGeneration();
}

std::vector<OdDbDatabasePtr> OdDbXrefRegistry::databases() const {
  std::vector<OdDbDatabasePtr> all;
  for (const auto& [block, database] : m_databases) all.push_back(database);
  return all;
}

void OdDbXrefRegistry::clear() {
  if (m_databases.empty()) return;
  m_databases.clear();
  raiseGeneration();
}
