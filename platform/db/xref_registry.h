// OdDbXrefRegistry: the external drawings that a host drawing has loaded.
#pragma once

#include <map>
#include <vector>

#include "platform/base/export.h"
#include "platform/db/database.h"
#include "platform/filer/object_id.h"

/// Owned by the host database; keeps one reference to each external drawing, by the handle of its
/// block record. Dropping an entry closes the drawing, and all its ids die, once nobody else holds
/// it.
class OdDbXrefRegistry {
 public:
  ~OdDbXrefRegistry() { clear(); }

  /// A number that rises whenever an external drawing of any host is loaded or closed. What was
  /// found by ids of external drawings is outdated when it has risen.
  [[nodiscard]] static OD_API OdUInt64 generation();

  void add(const OdDbObjectId& block, const OdDbDatabasePtr& database);
  /// Null when the block has no loaded drawing.
  [[nodiscard]] OdDbDatabasePtr find(const OdDbObjectId& block) const;
  void remove(const OdDbObjectId& block);
  /// In rising order of the handles of their blocks.
  [[nodiscard]] std::vector<OdDbDatabasePtr> databases() const;
  void clear();
  [[nodiscard]] bool empty() const { return m_databases.empty(); }

 private:
  std::map<OdUInt64, OdDbDatabasePtr> m_databases;
};
