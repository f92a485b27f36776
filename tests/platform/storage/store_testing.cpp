// Helpers for tests of the drawing file.
#include "tests/platform/storage/store_testing.h"

#include <sqlite3.h>

#include <random>

namespace storetest {

std::string noise(std::size_t size, std::uint32_t seed) {
  std::minstd_rand generator(seed + 1);
  std::string text(size, '\0');
  for (char& byte : text) byte = static_cast<char>(generator() >> 8U);
  return text;
}

Content makeContent(std::size_t count, std::size_t size, std::uint32_t seed) {
  Content content;
  content.classes = {{1, "first class"}, {2, noise(60, seed)}};
  content.variables = {{"seed", std::to_string(count)}, {"units", "mm"}};
  for (std::size_t i = 1; i <= count; ++i) {
    const auto salt = static_cast<std::uint32_t>(i) * 7919U + seed;
    content.records[i] = {1 + salt % 2, i / 4, noise(size / 2 + salt % (size + 1), salt)};
  }
  return content;
}

OdDbRecordView viewOf(std::uint64_t handle, const Record& record) {
  return {handle, record.classId, record.owner,
          reinterpret_cast<const OdUInt8*>(record.data.data()), record.data.size()};
}

Record recordOf(const OdDbRecordView& view) {
  Record record{view.classId, view.owner, {}};
  if (view.size > 0) record.data.assign(reinterpret_cast<const char*>(view.data), view.size);
  return record;
}

/// Puts and removes what leads from `before` to `after` into the running save.
static OdStatus putChanges(OdDbRecordStore& store, const Content& before, const Content& after) {
  OdStatus status;
  for (const auto& [key, value] : after.variables) {
    if (status.ok()) status = store.putSetting({key, value});
  }
  for (const auto& [id, value] : after.classes) {
    if (status.ok()) status = store.putClass({id, value});
  }
  for (const auto& [handle, record] : after.records) {
    const auto old = before.records.find(handle);
    const bool isNew = old == before.records.end() || old->second != record;
    if (status.ok() && isNew) status = store.putRecord(viewOf(handle, record));
  }
  for (const auto& [handle, record] : before.records) {
    if (status.ok() && !after.records.contains(handle)) status = store.removeRecord(handle);
  }
  return status;
}

OdStatus putAll(OdDbRecordStore& store, const Content& content) {
  return putChanges(store, {}, content);
}

OdStatus saveChanges(OdDbRecordStore& store, const Content& before, const Content& after) {
  OdStatus status = store.beginSave();
  if (status.ok()) status = putChanges(store, before, after);
  if (status.ok()) return store.commitSave();
  store.rollbackSave();
  return status;
}

OdStatus writeFile(OdDbRecordStoreFactory& factory, const std::string& path,
                   const Content& content) {
  std::unique_ptr<OdDbRecordStore> store;
  OdStatus status = factory.create(path, store);
  if (status.ok()) status = putAll(*store, content);
  if (status.ok()) status = store->commitSave();
  return status;
}

std::optional<Content> readAll(OdDbRecordStore& store, OdStatus* reason) {
  Content content;
  for (const OdDbStoredClass& item : store.classes()) content.classes[item.id] = item.value;
  for (const OdDbStoredSetting& item : store.settings()) content.variables[item.key] = item.value;
  const OdStatus status = store.readAll([&](const OdDbRecordView& record) {
    content.records[record.handle] = recordOf(record);
    return true;
  });
  if (reason != nullptr) *reason = status;
  return status.ok() ? std::optional(content) : std::nullopt;
}

std::optional<Content> readFile(OdDbRecordStoreFactory& factory, const std::string& path,
                                OdStatus* reason) {
  std::unique_ptr<OdDbRecordStore> store;
  const OdStatus status = factory.open(path, OdDbStoreOpenMode::kReadOnly, store);
  if (reason != nullptr) *reason = status;
  return status.ok() ? readAll(*store, reason) : std::nullopt;
}

void executeSql(const std::string& path, const std::string& sql) {
  sqlite3* connection = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &connection), SQLITE_OK);
  char* message = nullptr;
  EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, &message), SQLITE_OK)
      << sql << ": " << (message != nullptr ? message : "");
  sqlite3_free(message);
  sqlite3_close(connection);
}

}  // namespace storetest
