// The factory of drawing files on SQLite.
#include <utility>

#include "platform/storage/recovery.h"
#include "platform/storage/sqlite_record_store.h"
#include "platform/storage/sqlite_store.h"
#include "platform/storage/status.h"

namespace odstorage {

namespace {

class SqliteStoreFactory final : public OdDbRecordStoreFactory {
 public:
  explicit SqliteStoreFactory(OdSqliteStoreOptions options) {
    auto environment = std::make_shared<StoreEnvironment>();
    environment->connection = {std::move(options.vfsName), options.lockTimeoutMs, options.cacheKiB};
    environment->readersHoldOneState = options.readersHoldOneState;
    environment->commitTimeoutMs = options.commitTimeoutMs;
    environment->fileOps = options.fileOps != nullptr ? std::move(options.fileOps)
                                                      : std::make_shared<OdPosixFileOps>();
    m_environment = std::move(environment);
  }

  OdStatus open(const OdString& path, OdDbStoreOpenMode mode,
                std::unique_ptr<OdDbRecordStore>& store) override {
    return make(path, store, [&](SqliteStore& made) { return made.openExisting(mode); });
  }

  OdStatus create(const OdString& path, std::unique_ptr<OdDbRecordStore>& store) override {
    return make(path, store, [](SqliteStore& made) { return made.startFresh(TargetLock::kTake); });
  }

  OdStatus recover(const OdString& path, OdDbRecoverySink& sink) override {
    std::string resolved;
    OdStatus status = resolve(path, resolved);
    return status.ok() ? recoverDrawing(m_environment, resolved, sink) : status;
  }

 private:
  /// Links are followed once, here: a drawing that is replaced keeps the link to it.
  OdStatus resolve(const OdString& path, std::string& resolved) const {
    const std::string given = utf8(path);
    if (given.empty()) return failure(eInvalidInput, "drawing", "the path is empty");
    const int error = m_environment->fileOps->resolve(given, resolved);
    return error == 0 ? OdStatus{} : systemFailure(error, given, "finding the file");
  }

  template <typename Start>
  OdStatus make(const OdString& path, std::unique_ptr<OdDbRecordStore>& store,
                const Start& start) const {
    store.reset();
    std::string resolved;
    OdStatus status = resolve(path, resolved);
    if (!status.ok()) return status;
    auto made = std::make_unique<SqliteStore>(m_environment, path, std::move(resolved));
    status = start(*made);
    if (status.ok()) store = std::move(made);
    return status;
  }

  std::shared_ptr<const StoreEnvironment> m_environment;
};

}  // namespace

}  // namespace odstorage

std::unique_ptr<OdDbRecordStoreFactory> createSqliteStoreFactory(OdSqliteStoreOptions options) {
  return std::make_unique<odstorage::SqliteStoreFactory>(std::move(options));
}
