// The first 100 bytes of a drawing file.
#include "platform/storage/file_header.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "platform/storage/bytes.h"
#include "platform/storage/status.h"
#include "platform/storage/storage_format.h"

namespace odstorage {

namespace {

constexpr std::string_view kMagic{"SQLite format 3\0", 16};
constexpr std::size_t kUserVersionOffset = 60;
constexpr std::size_t kApplicationIdOffset = 68;
constexpr std::size_t kUnusedOffset = 72;
constexpr std::size_t kUnusedBytes = 20;

struct FixedField {
  std::size_t offset;
  std::size_t size;
  std::uint64_t value;
  const char* name;
};

/// Offsets and meanings are those of the database header in SQLite's published file format.
constexpr FixedField kFixedFields[] = {
    {16, 2, kPageSize, "page size"},
    {18, 1, 1, "write version"},
    {19, 1, 1, "read version"},
    {20, 1, 0, "reserved bytes per page"},
    {21, 1, 64, "largest payload fraction"},
    {22, 1, 32, "smallest payload fraction"},
    {23, 1, 32, "leaf payload fraction"},
    {44, 4, 4, "schema format"},
    {48, 4, 0, "default cache size"},
    {52, 4, 0, "vacuum root page"},
    {56, 4, 1, "text encoding"},
    {64, 4, 0, "incremental vacuum mode"},
};

std::string hex(std::uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(value));
  return text;
}

}  // namespace

OdStatus identify(const FileHeader& header, std::string_view path, int& version) {
  version = 0;
  if (!std::equal(kMagic.begin(), kMagic.end(), header.begin(),
                  [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; })) {
    return failure(eNotADrawing, path, "file is not a drawing: it does not start like one");
  }
  const std::uint64_t applicationId = bigEndian(&header[kApplicationIdOffset], 4);
  if (applicationId != kApplicationId) {
    return failure(eNotADrawing, path,
                   "file is not a drawing: its application id is " + hex(applicationId) +
                       ", a drawing has " + hex(kApplicationId));
  }
  version = static_cast<int>(bigEndian(&header[kUserVersionOffset], 4));
  if (version > kFormatVersion) return newerFormat(path, version);
  if (version < kOldestFormatVersion) {
    return failure(eUnsupportedVersion, path,
                   "format version " + std::to_string(version) + " cannot be read, the oldest is " +
                       std::to_string(kOldestFormatVersion));
  }
  return {};
}

OdStatus newerFormat(std::string_view path, int version) {
  return failure(eNewerFormat, path,
                 "the drawing has format version " + std::to_string(version) +
                     ", this program knows versions up to " + std::to_string(kFormatVersion));
}

OdStatus checkFixedFields(const FileHeader& header, std::string_view path) {
  for (const FixedField& field : kFixedFields) {
    const std::uint64_t found = bigEndian(&header[field.offset], field.size);
    if (found == field.value) continue;
    return failure(eCorruptData, path,
                   std::string("file header is damaged: ") + field.name + " is " +
                       std::to_string(found) + ", expected " + std::to_string(field.value));
  }
  const auto* unused = header.begin() + kUnusedOffset;
  if (std::any_of(unused, unused + kUnusedBytes, [](std::uint8_t byte) { return byte != 0; })) {
    return failure(eCorruptData, path, "file header is damaged: its unused bytes are not zero");
  }
  return {};
}

}  // namespace odstorage
