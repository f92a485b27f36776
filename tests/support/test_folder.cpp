// Files of a test.
#include "tests/support/test_folder.h"

#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>

namespace fs = std::filesystem;

/// In memory where the machine has such a folder: a test of saves does not measure a disk.
TestFolder::TestFolder() {
  const bool hasMemory = ::access("/dev/shm", W_OK) == 0;
  const fs::path base = hasMemory ? fs::path("/dev/shm") : fs::temp_directory_path();
  std::string name = (base / "vdm_test.XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("no folder for the test: " + name);
  }
  m_path = fs::canonical(name);
}

TestFolder::~TestFolder() {
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
}

std::string TestFolder::listing() const {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(m_path)) names.insert(entry.path().filename());
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

std::string readBytes(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
}
