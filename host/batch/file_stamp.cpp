// What a file holds. The digest is FNV-1a with 64 bits over words of eight bytes: it tells versions
// of one file apart, and guards against nothing else.
#include "host/batch/file_stamp.h"

#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace batch {
namespace {

bool ask(const std::string& path, FileStamp& stamp) {
  struct stat facts {};
  if (stat(path.c_str(), &facts) != 0) return false;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  stamp.inode = facts.st_ino;
  stamp.size = static_cast<std::uint64_t>(facts.st_size);
  stamp.changed = facts.st_mtim.tv_sec * kNanoseconds + facts.st_mtim.tv_nsec;
  return true;
}

class Digest {
 public:
  void add(const char* bytes, std::size_t size) {
    for (std::size_t i = 0; i < size; i += sizeof(std::uint64_t)) {
      std::uint64_t word = 0;
      std::memcpy(&word, bytes + i, std::min(sizeof(word), size - i));
      m_value = (m_value ^ word) * 0x100000001b3ULL;
      m_value ^= m_value >> 29;  // the high bits reach the low ones
    }
  }
  [[nodiscard]] std::uint64_t value() const { return m_value; }

 private:
  std::uint64_t m_value = 0xcbf29ce484222325ULL;
};

}  // namespace

bool FileStamp::isUnchanged(const std::string& path) const {
  FileStamp now;
  return ask(path, now) && now.inode == inode && now.size == size && now.changed == changed;
}

OdStatus stampFile(const std::string& path, FileStamp& stamp) {
  const auto refuse = [&path](OdResult code, const char* why) {
    return OdStatus{code, OdString("file '" + path + "' " + why)};
  };
  FileStamp made;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"),
                                                             &std::fclose);
  if (!file || !ask(path, made)) return refuse(eFileAccess, "cannot be read");
  constexpr std::size_t kBlock = std::size_t{1} << 20;  // a multiple of the digest's words
  std::vector<char> block(kBlock);
  Digest digest;
  std::size_t size = 0;
  while ((size = std::fread(block.data(), 1, kBlock, file.get())) != 0) {
    digest.add(block.data(), size);
  }
  if (std::ferror(file.get()) != 0) return refuse(eFileAccess, "cannot be read");
  if (!made.isUnchanged(path)) return refuse(eFileChanged, "is being written");
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%016llx-%llu",
                static_cast<unsigned long long>(digest.value()),
                static_cast<unsigned long long>(made.size));
  made.content = text.data();
  stamp = made;
  return {};
}

}  // namespace batch
