// OdDbXrefRegistry: the external drawings that a host drawing has loaded.
#pragma once

#include <map>
#include <vector>

#include "platform/db/database.h"
#include "platform/filer/object_id.h"

/// Owned by the host database; keeps one reference to each external drawing, by the handle of its
/// block record. Dropping an entry closes the drawing, and all its ids die, once nobody else holds
/// it.
class OdDbXrefRegistry {
 public:
  void add(const OdDbObjectId& block, const OdDbDatabasePtr& database);
  /// Null when the block has no loaded drawing.
  [[nodiscard]] OdDbDatabasePtr find(const OdDbObjectId& block) const;
  void remove(const OdDbObjectId& block);
  /// In rising order of the handles of their blocks.
  [[nodiscard]] std::vector<OdDbDatabasePtr> databases() const;
  void clear() { m_databases.clear(); }
  [[nodiscard]] bool empty() const { return m_databases.empty(); }

 private:
  std::map<OdUInt64, OdDbDatabasePtr> m_databases;
};
