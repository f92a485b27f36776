// Fuzz target: files beside a drawing, which its reader may take for a journal.
//
// Input: one byte that chooses the name, and the bytes of the file. The drawing is refused or has
// the content that it had, and no other file is touched.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "platform/db/db_object.h"

namespace {

namespace fs = std::filesystem;

/// One folder per process.
const fs::path& folder() {
  static const fs::path path = [] {
    fs::path made = fs::temp_directory_path() / ("vdm_fuzz_journal_" + std::to_string(getpid()));
    fs::create_directories(made);
    return made;
  }();
  return path;
}

const fs::path& drawingPath() {
  static const fs::path path = folder() / "d.vdm";
  return path;
}

std::string bytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void write(const fs::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

const std::string& soundDrawing() {
  static const std::string bytes = [] {
    const OdDbDatabasePtr drawing = fuzzDrawing(3, 20);
    fuzzRequire(drawing->saveAs(OdString(drawingPath().string())).ok(), "no drawing to start from");
    return bytesOf(drawingPath());
  }();
  return bytes;
}

std::size_t objectsIn(OdDbStoreOpenMode mode) {
  OdStatus status;
  OdDbReadOptions options;
  options.mode = mode;
  const OdDbDatabasePtr drawing =
      fuzzServices().readFile(OdString(drawingPath().string()), status, options);
  fuzzRequire(drawing.isNull() != status.ok(), "status and drawing contradict each other");
  if (drawing.isNull() || !drawing->loadAll().ok()) return 0;
  std::size_t count = 0;
  drawing->forEachId([&count](OdDbObjectId id) {
    if (!id.openObject().isNull()) ++count;
    return true;
  });
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  fuzzStart();
  write(drawingPath(), soundDrawing());
  static const std::size_t objects = objectsIn(OdDbStoreOpenMode::kReadOnly);
  constexpr const char* kEndings[] = {"-journal", "-wal", "-shm"};
  const fs::path victim = folder() / "victim";
  write(victim, "precious");
  const fs::path beside = drawingPath().string() + kEndings[data[0] % std::size(kEndings)];
  write(beside, std::string(data + 1, data + size));
  for (const OdDbStoreOpenMode mode :
       {OdDbStoreOpenMode::kReadOnly, OdDbStoreOpenMode::kReadWrite}) {
    const std::size_t found = objectsIn(mode);
    fuzzRequire(found == 0 || found == objects, "a drawing with other content");
  }
  fuzzRequire(bytesOf(victim) == "precious", "a file that the journal names is touched");
  fs::remove(beside);
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  fuzzStart();
  (void)soundDrawing();
  const std::string magic("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8);
  const std::string head = magic + std::string("\0\0\0\1\1\2\3\4\0\0\0\4\0\0\2\0\0\0\x10\0", 20);
  const std::string name = (folder() / "victim").string();
  std::string journal = head;
  journal.resize(512);
  std::string named = journal + std::string(4, '\0') + name;
  std::uint32_t sum = 0;
  for (const char byte : name) sum += static_cast<unsigned char>(byte);
  for (const std::uint32_t value : {static_cast<std::uint32_t>(name.size()), sum}) {
    for (int shift = 24; shift >= 0; shift -= 8) named += static_cast<char>(value >> shift & 0xFF);
  }
  named += magic;
  const std::string page = std::string("\0\0\0\1", 4) + soundDrawing().substr(0, 4096) + "abcd";
  std::vector<FuzzInput> corpus;
  for (const std::string& bytes : {journal, named, journal + page}) {
    for (std::uint8_t ending = 0; ending < 3; ++ending) {
      FuzzInput input{ending};
      input.insert(input.end(), bytes.begin(), bytes.end());
      corpus.push_back(input);
    }
  }
  return corpus;
}
