// The examples in bytes of a page of stored forms, and objects as such bytes.
#include "tests/support/stored_page.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/db/database.h"
#include "platform/db/db_object.h"
#include "platform/filer/file_filer.h"

namespace {

bool isByte(const std::string& word) {
  return word.size() == 2 && word.find_first_not_of("0123456789ABCDEF") == std::string::npos;
}

std::string bytesOfLine(const std::string& line) {
  std::istringstream words(line);
  std::string bytes;
  std::string last;
  for (std::string word; words >> word;) {
    if (isByte(word)) {
      last = word + ' ';
      bytes += last;
      continue;
    }
    std::string times;
    if (word[0] != '(' || !(words >> times) || times != "times)") break;
    for (int count = std::atoi(word.c_str() + 1); count > 1; --count) bytes += last;
  }
  return bytes;
}

}  // namespace

std::vector<std::string> storedRecordsOf(const std::string& page, const std::string& section) {
  std::ifstream file(page);
  std::vector<std::string> records;
  std::string record;
  bool isInSection = false;
  bool isInBlock = false;
  const auto finish = [&] {
    if (!record.empty()) records.push_back(record);
    record.clear();
  };
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("## ")) isInSection = line == "## " + section;
    if (line == "```") isInBlock = !isInBlock;
    if (line.empty() || line == "```") finish();
    if (isInSection && isInBlock) record += bytesOfLine(line);
  }
  return records;
}

std::string storedRecordOf(const OdDbObject& object) {
  OdDbFileWriter filer(object.database());
  object.dwgOutFields(&filer);
  std::vector<OdUInt8> bytes;
  filer.assemble(bytes);
  std::string text;
  for (const OdUInt8 byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02X ", byte);
    text += digits;
  }
  return text;
}
