// Fuzz target: whole drawing files, opened, loaded, and brought back as far as they are intact.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "platform/db/audit_info.h"
#include "platform/db/db_object.h"

namespace {

// One file per process, beside the journal that SQLite may leave.
const std::string& filePath() {
  static const std::string path =
      (std::filesystem::temp_directory_path() / ("vdm_fuzz_" + std::to_string(getpid()) + ".vdm"))
          .string();
  return path;
}

void readEverything(OdDbDatabase* drawing) {
  const OdStatus loaded = drawing->loadAll();
  fuzzRequire(loaded.ok() || !loaded.text.isEmpty(), "loading fails without a reason");
  drawing->forEachId([](OdDbObjectId id) {
    const OdDbObjectPtr object = id.openObject();
    fuzzRequire(object.isNull() || object->isReadEnabled(), "an object is not open");
    return true;
  });
  OdDbAuditInfo info;
  drawing->audit(&info);
}

void open() {
  OdStatus status;
  OdDbReadOptions options;
  options.mode = OdDbStoreOpenMode::kReadOnly;
  const OdDbDatabasePtr drawing = fuzzServices().readFile(OdString(filePath()), status, options);
  fuzzRequire(drawing.isNull() != status.ok(), "status and drawing contradict each other");
  if (drawing.isNull()) {
    fuzzRequire(!status.text.isEmpty(), "opening fails without a reason");
  } else {
    readEverything(drawing.get());
  }
}

void recover() {
  OdStringArray report;
  OdStatus status;
  const OdDbDatabasePtr drawing = fuzzServices().recoverFile(OdString(filePath()), report, status);
  if (!drawing.isNull()) readEverything(drawing.get());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzzStart();
  {
    std::ofstream file(filePath(), std::ios::binary);
    file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  open();
  recover();
  std::filesystem::remove(filePath());
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  std::vector<FuzzInput> corpus;
  for (const int edits : {0, 20, 60}) {
    {
      const OdDbDatabasePtr drawing = fuzzDrawing(3, edits);
      fuzzRequire(drawing->saveAs(OdString(filePath())).ok(), "the corpus cannot be saved");
    }
    std::ifstream file(filePath(), std::ios::binary);
    corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    file.close();
    std::filesystem::remove(filePath());
  }
  return corpus;
}
