// Names of objects that outlive their drawings: a number for the drawing, and the object's handle.
#pragma once

#include <atomic>
#include <map>
#include <utility>

#include "platform/base/handle.h"
#include "platform/db/database_reactor.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Number of the id's drawing, given out at its first request and never again in this process, and
/// the handle. Two null handles for an id without a drawing. Where an OdDbObjectId would dangle
/// once its drawing is closed, the pair gives a null id.
[[nodiscard]] VDM_DB_EXPORT std::pair<OdDbHandle, OdDbHandle> make_handle(OdDbObjectId id);

/// The id that the pair names; null when the drawing is closed, the number was never given out, or
/// the drawing has no such object.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId objectId(const std::pair<OdDbHandle, OdDbHandle>& handle);

/// The numbers of all open drawings. Attaches itself to each drawing that it gives a number and
/// forgets it when it is destroyed. One instance serves the process; used from the thread that owns
/// the drawings.
class DatabaseHandleReactor : public OdDbDatabaseReactor {
 public:
  /// Made on first use.
  static DatabaseHandleReactor& instance();
  /// Leaves the drawings that are still open.
  ~DatabaseHandleReactor() override;

  /// 0 for a null pointer.
  [[nodiscard]] OdUInt64 handleOf(OdDbDatabase* database);
  /// Null for a number that no open drawing has.
  [[nodiscard]] OdDbDatabase* databaseOf(OdUInt64 handle);

  void goodbye(const OdDbDatabase* database) override;

 protected:
  DatabaseHandleReactor() = default;

 private:
  OdUInt64 add(OdDbDatabase* database);

  std::map<OdUInt64, OdDbDatabase*> m_byHandle;
  std::map<const OdDbDatabase*, OdUInt64> m_byDatabase;
  // The last look-up in each direction.
  OdUInt64 m_lastHandle = 0;
  OdDbDatabase* m_lastDatabase = nullptr;
  const OdDbDatabase* m_lastNamed = nullptr;
  OdUInt64 m_lastName = 0;
  std::atomic<OdUInt64> m_counter{0};
};

}  // namespace vdmu
