// Where drawings come from: new, from a file, from what is left of one.
#include "platform/db/host_app_services.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <utility>

#include "platform/base/error.h"
#include "platform/db/audit_info.h"
#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/default_content.h"

namespace fs = std::filesystem;

namespace {

constexpr OdInt16 kMaxParameterCopyMode = 4;

fs::path pathOf(const OdString& text) { return fs::path(std::string(text.utf8())); }

OdString fileAt(const fs::path& path) {
  std::error_code failure;
  return fs::is_regular_file(path, failure) ? OdString(path.string()) : OdString();
}

// One spelling per folder.
fs::path folderOf(const OdString& text) {
  const fs::path path = pathOf(text).lexically_normal();
  return path.has_filename() ? path : path.parent_path();
}

// From the folder that it is relative to.
bool leadsOut(const fs::path& path) {
  return std::ranges::find(path, fs::path("..")) != path.end();
}

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
  if (name.isEmpty()) return OdString();
  const fs::path path = pathOf(name);
  if (path.is_absolute()) return fileAt(path);
  if (database != nullptr && !database->getFilename().isEmpty()) {
    const OdString beside = fileAt(pathOf(database->getFilename()).parent_path() / path);
    if (!beside.isEmpty()) return beside;
  }
  if (leadsOut(path)) return OdString();
  for (const OdString& folder : std::as_const(m_searchFolders)) {
    const OdString found = fileAt(pathOf(folder) / path);
    if (!found.isEmpty()) return found;
  }
  return OdString();
}

void OdDbHostAppServices::addSearchFolder(const OdString& folder) {
  const fs::path path = folderOf(folder);
  if (!path.is_absolute()) {
    throw OdError(eInvalidInput, L"search folder \"" + folder + L"\": not an absolute path");
  }
  std::error_code failure;
  if (!fs::is_directory(path, failure)) {
    throw OdError(eFileNotFound, L"search folder \"" + folder + L"\": no such folder");
  }
  const OdString normal(path.string());
  if (!m_searchFolders.contains(normal)) m_searchFolders.append(normal);
}

bool OdDbHostAppServices::removeSearchFolder(const OdString& folder) {
  return m_searchFolders.remove(OdString(folderOf(folder).string()));
}

void OdDbHostAppServices::setParameterCopyMode(OdInt16 mode) {
  if (mode < 0 || mode > kMaxParameterCopyMode) {
    throw OdError(eInvalidInput, "parameter copy mode " + std::to_string(mode) +
                                     ", expected 0 to " + std::to_string(kMaxParameterCopyMode));
  }
  m_parameterCopyMode = mode;
}

bool OdDbHostAppServices::isReadyForDisplay(const OdDbDatabase*) { return true; }

void OdDbHostAppServices::message(const OdString& line) {
  std::fprintf(stderr, "%s\n", static_cast<const char*>(line));
}
