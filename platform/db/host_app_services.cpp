// Where drawings come from: new, from a file, from what is left of one.
#include "platform/db/host_app_services.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>

#include "platform/base/error.h"
#include "platform/db/audit_info.h"
#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/default_content.h"

namespace {

/// Keeps what a recovery finds until all of it is known.
class RecoveredItems : public OdDbRecoverySink {
 public:
  struct Item {
    OdUInt32 classId;
    OdUInt64 owner;
    std::vector<OdUInt8> data;
  };

  explicit RecoveredItems(OdStringArray& report) : m_report(report) {}

  void classFound(const OdDbStoredClass& item) override { classes.push_back(item); }
  void settingFound(const OdDbStoredSetting& item) override { variables.push_back(item); }
  void recordFound(const OdDbRecordView& record) override {
    records[record.handle] = {record.classId, record.owner,
                              std::vector<OdUInt8>(record.data, record.data + record.size)};
  }
  void lost(const OdString& line) override { m_report.append(line); }

  std::vector<OdDbStoredClass> classes;
  std::vector<OdDbStoredSetting> variables;
  std::map<OdUInt64, Item> records;

 private:
  OdStringArray& m_report;
};

}  // namespace

OdDbHostAppServices::OdDbHostAppServices(std::shared_ptr<OdDbRecordStoreFactory> storeFactory)
    : m_factory(std::move(storeFactory)) {}

OdDbHostAppServices::~OdDbHostAppServices() = default;

OdDbDatabasePtr OdDbHostAppServices::makeEmpty() {
  struct Creatable : OdRxObjectImpl<OdDbDatabase> {};
  OdDbDatabasePtr database(new Creatable, kOdRxObjAttach);
  database->m_impl = std::make_unique<OdDbDatabaseImpl>(database.get(), this);
  return database;
}

OdDbDatabasePtr OdDbHostAppServices::createDatabase() {
  OdDbDatabasePtr database = makeEmpty();
  oddbMakeDefaultContent(database.get());
  OdDbDatabaseImpl& impl = database->impl();
  impl.savedChanges = impl.changes;
  impl.undo.setEnabled(true);
  return database;
}

OdDbDatabasePtr OdDbHostAppServices::readFile(const OdString& path, OdStatus& status,
                                              const OdDbReadOptions& options) {
  status = {};
  if (!m_factory) {
    status = {eFileAccess, OdString("the host has no drawing files")};
    return OdDbDatabasePtr();
  }
  std::unique_ptr<OdDbRecordStore> store;
  status = m_factory->open(path, options.mode, store);
  if (!status.ok()) return OdDbDatabasePtr();
  OdDbDatabasePtr database = makeEmpty();
  status = database->impl().openStore(std::move(store));
  if (!status.ok()) return OdDbDatabasePtr();
  database->impl().undo.setEnabled(options.withUndo);
  return database;
}

OdDbDatabasePtr OdDbHostAppServices::recoverFile(const OdString& path, OdStringArray& report,
                                                 OdStatus& status) {
  status = {};
  if (!m_factory) {
    status = {eFileAccess, OdString("the host has no drawing files")};
    return OdDbDatabasePtr();
  }
  RecoveredItems items(report);
  status = m_factory->recover(path, items);
  if (!status.ok()) return OdDbDatabasePtr();
  OdDbDatabasePtr database = makeEmpty();
  OdDbDatabaseImpl& impl = database->impl();
  for (const OdDbStoredClass& item : items.classes) {
    if (!impl.classes.read(item)) {
      report.append(OdString("class " + std::to_string(item.id) + " is damaged"));
    }
  }
  for (const OdDbStoredSetting& item : items.variables) impl.adoptSetting(item);
  for (const auto& [handle, item] : items.records) {
    impl.seed = std::max(impl.seed, handle + 1);
    OdDbIdRecord* idRecord = impl.ids.findOrCreate(handle);
    if (impl.load(idRecord, {handle, item.classId, item.owner, item.data.data(),
                             item.data.size()}) == nullptr) {
      report.append(impl.loadErrors.last());
      continue;
    }
    impl.markDirty(idRecord);
  }
  for (OdDbClassEntry& entry : impl.classes.entries()) entry.inFile = false;
  oddbMakeDefaultContent(database.get());
  OdDbAuditInfo audit;
  audit.setFixErrors(true);
  database->audit(&audit);
  for (const OdString& line : std::as_const(audit).lines()) report.append(line);
  impl.undo.setEnabled(true);
  return database;
}

OdString OdDbHostAppServices::findFile(const OdString& name, const OdDbDatabase* database) {
  namespace fs = std::filesystem;
  std::error_code failure;
  fs::path path(std::string(name.utf8()));
  if (!path.is_absolute()) {
    if (database == nullptr || database->getFilename().isEmpty()) return OdString();
    path = fs::path(std::string(database->getFilename().utf8())).parent_path() / path;
  }
  return fs::is_regular_file(path, failure) ? OdString(path.string()) : OdString();
}

bool OdDbHostAppServices::isReadyForDisplay(const OdDbDatabase*) { return true; }

void OdDbHostAppServices::message(const OdString& line) {
  std::fprintf(stderr, "%s\n", static_cast<const char*>(line));
}
