// What could not be read of the file of a drawing.
#include "platform/db/read_faults.h"

#include <algorithm>
#include <string>

#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"

namespace {

/// Handles that a line about missing records names at most.
constexpr std::size_t kShownHandles = 10;

OdString handlesText(const std::vector<OdUInt64>& handles) {
  OdString text;
  for (std::size_t i = 0; i < handles.size() && i < kShownHandles; ++i) {
    if (i > 0) text += L", ";
    text += OdDbHandle(handles[i]).ascii();
  }
  if (handles.size() > kShownHandles) {
    text += OdString(" and " + std::to_string(handles.size() - kShownHandles) + " more");
  }
  return text;
}

void addLines(OdDbDatabase* database, const OdString& file, OdStringArray& lines) {
  database->impl().checkMissing();
  for (const OdString& line : database->loadErrors()) {
    const bool names = file.isEmpty() || line.find(file) >= 0;
    lines.append(names ? line : file + L": " + line);
  }
  for (const OdDbDatabasePtr& external : database->impl().xrefs.databases()) {
    addLines(external.get(), external->getFilename(), lines);
  }
}

}  // namespace

OdStringArray oddbReadFaults(OdDbDatabase* database) {
  OdStringArray lines;
  addLines(database, OdString(), lines);
  return lines;
}

void oddbNoteReadFault(const OdDbObject* object, const OdString& line) {
  OdDbDatabase* database = object->database();
  if (database != nullptr) database->impl().noteContentFault(object->getDbHandle(), line);
}

OdStringArray oddbFileFaults(const OdDbDatabase* database) { return database->impl().fileFaults(); }

int oddbFormatVersion(const OdDbDatabase* database) {
  const std::unique_ptr<OdDbRecordStore>& store = database->impl().store;
  return store ? store->formatVersion() : 0;
}

void OdDbDatabaseImpl::addLoadError(OdUInt64 handle, const OdString& line) {
  loadErrors.append(line);
  m_loadErrorHandles.push_back(handle);
}

OdString OdDbDatabaseImpl::faultOf(OdUInt64 handle) const {
  const auto found = std::ranges::find(m_loadErrorHandles, handle);
  if (found == m_loadErrorHandles.end()) return {};
  return loadErrors[static_cast<OdUInt32>(found - m_loadErrorHandles.begin())];
}

OdStringArray OdDbDatabaseImpl::fileFaults() const {
  OdStringArray lines;
  for (OdUInt32 i = 0; i < loadErrors.size(); ++i) {
    if (m_loadErrorHandles[i] == 0) lines.append(loadErrors[i]);
  }
  return lines;
}

void OdDbDatabaseImpl::noteAbsent(OdDbIdRecord* idRecord) {
  if (!idRecord->has(OdDbIdRecord::kAbsent) && store) m_missing.push_back(idRecord->handle);
  idRecord->set(OdDbIdRecord::kAbsent);
}

void OdDbDatabaseImpl::noteContentFault(OdUInt64 handle, const OdString& line) {
  if (m_contentFaults.insert(handle).second) addLoadError(handle, line);
}

// A drawing that is open for writing has records in memory that its file lacks, or the reverse.
void OdDbDatabaseImpl::checkMissing() {
  if (m_missing.empty() || !store || !readOnly) return;
  const OdStatus status =
      store->listRecords([](OdUInt64, OdUInt32, OdUInt64, std::size_t) { return true; });
  if (!status.ok()) {
    addLoadError(0, status.text + L"; looked for in vain: " + handlesText(m_missing));
  }
  m_missing.clear();
}
