// Files of a test.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/base/non_copyable.h"
#include "platform/base/string.h"

/// An empty folder; its end removes it with all that it holds.
class TestFolder : OdNonCopyable {
 public:
  TestFolder();
  ~TestFolder();

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
  /// The full path of a file in it.
  [[nodiscard]] std::string file(std::string_view name) const { return (m_path / name).string(); }
  [[nodiscard]] OdString odFile(std::string_view name) const { return OdString(file(name)); }
  /// Names of the files in it, in order, with a space between them.
  [[nodiscard]] std::string listing() const;

 private:
  std::filesystem::path m_path;
};

[[nodiscard]] std::string readBytes(const std::string& path);
void writeBytes(const std::string& path, const std::string& bytes);
