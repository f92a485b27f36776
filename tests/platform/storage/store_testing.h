// Helpers for tests of the drawing file: content as plain values, files in a folder of their own.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/storage/sqlite_record_store.h"
#include "tests/support/status_testing.h"
#include "tests/support/test_folder.h"

namespace storetest {

struct Record {
  std::uint32_t classId = 0;
  std::uint64_t owner = 0;
  std::string data;
  friend bool operator==(const Record&, const Record&) = default;
};

/// Everything that a drawing file holds, as a plain model.
struct Content {
  std::map<std::uint64_t, Record> records;
  std::map<std::uint32_t, std::string> classes;
  std::map<std::string, std::string> variables;
  friend bool operator==(const Content&, const Content&) = default;
};

/// `count` records of about `size` bytes with handles from 1 on, two classes, two variables.
/// The same `seed` gives the same content.
Content makeContent(std::size_t count, std::size_t size, std::uint32_t seed = 1);

/// Text of `size` bytes that no compression or zero filling would produce.
std::string noise(std::size_t size, std::uint32_t seed);

/// The record as the store takes it; it stays the owner of its bytes.
OdDbRecordView viewOf(std::uint64_t handle, const Record& record);
Record recordOf(const OdDbRecordView& view);
/// Puts all of `content` into the running save of `store`.
OdStatus putAll(OdDbRecordStore& store, const Content& content);
/// Puts and removes what leads from `before` to `after` in a save of its own.
OdStatus saveChanges(OdDbRecordStore& store, const Content& before, const Content& after);
/// Creates the file with `content`; the store is closed afterwards.
OdStatus writeFile(OdDbRecordStoreFactory& factory, const std::string& path,
                   const Content& content);
/// Reads everything, digest included. Empty when anything fails; `reason` takes why.
std::optional<Content> readAll(OdDbRecordStore& store, OdStatus* reason = nullptr);
std::optional<Content> readFile(OdDbRecordStoreFactory& factory, const std::string& path,
                                OdStatus* reason = nullptr);

/// Edits a drawing without the store, so that checksums and digests stay as they are.
void executeSql(const std::string& path, const std::string& sql);

class FolderTest : public testing::Test {
 protected:
  [[nodiscard]] std::string file(const std::string& name) const { return m_folder.file(name); }

  const TestFolder m_folder;
};

}  // namespace storetest
