// Helpers for tests of the drawing file.
#include "tests/storage/store_testing.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace storetest {

namespace fs = std::filesystem;

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

namespace {

OdDbRecordView viewOf(std::uint64_t handle, const Record& record) {
  OdDbRecordView view;
  view.handle = handle;
  view.classId = record.classId;
  view.owner = record.owner;
  view.data = reinterpret_cast<const OdUInt8*>(record.data.data());
  view.size = record.data.size();
  return view;
}

Record recordOf(const OdDbRecordView& view) {
  return {view.classId, view.owner,
          view.size == 0 ? std::string()
                         : std::string(reinterpret_cast<const char*>(view.data), view.size)};
}

OdDbStoreStatus putNames(OdDbRecordStore& store, const Content& content) {
  for (const auto& [key, value] : content.variables) {
    if (OdDbStoreStatus status = store.putVariable({key, value}); !status.ok()) return status;
  }
  for (const auto& [id, value] : content.classes) {
    if (OdDbStoreStatus status = store.putClass({id, value}); !status.ok()) return status;
  }
  return {};
}

}  // namespace

OdDbStoreStatus putAll(OdDbRecordStore& store, const Content& content) {
  OdDbStoreStatus status = putNames(store, content);
  for (const auto& [handle, record] : content.records) {
    if (!status.ok()) break;
    status = store.putRecord(viewOf(handle, record));
  }
  return status;
}

OdDbStoreStatus saveChanges(OdDbRecordStore& store, const Content& before, const Content& after) {
  OdDbStoreStatus status = store.beginSave();
  if (status.ok()) status = putNames(store, after);
  for (const auto& [handle, record] : after.records) {
    const auto old = before.records.find(handle);
    if (!status.ok()) break;
    if (old == before.records.end() || old->second != record) {
      status = store.putRecord(viewOf(handle, record));
    }
  }
  for (const auto& [handle, record] : before.records) {
    if (status.ok() && !after.records.contains(handle)) status = store.removeRecord(handle);
  }
  if (status.ok()) return store.commitSave();
  store.rollbackSave();
  return status;
}

OdDbStoreStatus writeFile(OdDbRecordStoreFactory& factory, const std::string& path,
                          const Content& content) {
  std::unique_ptr<OdDbRecordStore> store;
  OdDbStoreStatus status = factory.create(path, store);
  if (status.ok()) status = putAll(*store, content);
  if (status.ok()) status = store->commitSave();
  return status;
}

std::optional<Content> readAll(OdDbRecordStore& store, OdDbStoreStatus& status) {
  Content content;
  for (const OdDbStoredClass& item : store.classes()) content.classes[item.id] = item.value;
  for (const OdDbStoredVariable& item : store.variables()) content.variables[item.key] = item.value;
  status = store.readAll([&](const OdDbRecordView& record) {
    content.records[record.handle] = recordOf(record);
    return true;
  });
  if (!status.ok()) return {};
  return content;
}

std::optional<Content> readFile(OdDbRecordStoreFactory& factory, const std::string& path,
                                OdDbStoreStatus& status) {
  std::unique_ptr<OdDbRecordStore> store;
  status = factory.open(path, OdDbStoreOpenMode::kReadOnly, store);
  return status.ok() ? readAll(*store, status) : std::nullopt;
}

void CollectingSink::recordFound(const OdDbRecordView& record) {
  isRising = isRising && record.handle > m_last;
  m_last = record.handle;
  content.records[record.handle] = recordOf(record);
}

void CollectingSink::lost(const OdString& line) {
  lines += static_cast<const char*>(line);
  lines += '\n';
}

std::string textOf(const OdDbStoreStatus& status) {
  return std::string(odResultName(status.code)) + " " + static_cast<const char*>(status.text);
}

std::string readBytes(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
}

/// A folder in memory where there is one: thousands of saves need no real disk to be judged.
static fs::path baseFolder() {
  const fs::path memory = "/dev/shm";
  return ::access(memory.c_str(), W_OK) == 0 ? memory : fs::temp_directory_path();
}

FolderTest::FolderTest() {
  std::string name = (baseFolder() / "storetest.XXXXXX").string();
  const char* made = ::mkdtemp(name.data());
  if (made == nullptr) throw std::runtime_error("no folder for the test: " + name);
  m_folder = fs::canonical(made).string();
}

FolderTest::~FolderTest() {
  std::error_code ignored;
  fs::remove_all(m_folder, ignored);
}

std::string FolderTest::listing() const {
  std::map<std::string, int> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
    names[entry.path().filename().string()] = 1;
  }
  std::string text;
  for (const auto& [name, one] : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

}  // namespace storetest
