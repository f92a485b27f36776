// Fuzz target: STEP files.
//
// The text is read in this process by the code that finds out what it declares; for one input in
// sixteen the whole import then runs behind the wall, as hosts may run it, since the modeller's
// reader ends its process on some files.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/modeler_occt/step_strings.h"
#include "platform/modeler_wall/walled_modeler.h"

namespace {

namespace fs = std::filesystem;

OdModeler& modeler() {
  static const std::shared_ptr<OdModeler> modeler =
      odCreateWalledModeler(odCreateOcctModeler(),
                            OdWallSettings{.budget = {.seconds = 10, .bytes = OdUInt64{1} << 30U}});
  return *modeler;
}

std::string path() {
  static const std::string path =
      (fs::temp_directory_path() / ("fuzz_step_" + std::to_string(::getpid()) + ".stp")).string();
  return path;
}

// The reader does without the contexts of products.
bool isProductData(std::string_view type) {
  return type.starts_with("PRODUCT") || type == "APPLICATION_PROTOCOL_DEFINITION";
}

bool isSoundText(const od_occt::StepText& file) {
  if (!file.repeated().empty()) return false;
  for (const od_occt::StepInstance& instance : file.instances()) {
    if (isProductData(file.types(instance).front())) continue;
    for (const OdUInt64 id : file.references(instance)) {
      if (file.find(id) == nullptr) return false;
    }
  }
  return true;
}

// What the modeller's reader gets to see has no reference into nothing, and every text comes back.
void readText(const std::string& text) {
  const od_occt::StepText file(text);
  const od_occt::StepStrings strings(file, {});
  std::vector<od_occt::StepEdit> edits = od_occt::stepRepairs(file, "DOCUMENT_FILE");
  const od_occt::StepText repaired(od_occt::edited(file.text(), edits));
  fuzzRequire(isSoundText(repaired), "a repaired file is not sound");
  for (const od_occt::StepEdit& key : strings.keys()) {
    const OdString wanted = strings.decode(file.text().substr(key.at, key.length));
    fuzzRequire(strings.restored(OdString(key.replacement)) == wanted, "a key gives another text");
  }
}

void import(const std::string& text) {
  { std::ofstream(path(), std::ios::binary) << text; }
  OdModelerAssembly assembly;
  const OdStatus status = modeler().importStep(OdString(path()), assembly);
  fs::remove(path());
  if (status.ok()) {
    fuzzRequire(assembly.check().ok() && !assembly.roots.empty(), "an assembly is not sound");
  } else {
    fuzzRequire(!status.text.isEmpty() && assembly.roots.empty(), "a failure says nothing");
  }
}

std::string exported(const OdModelerAssembly& assembly) {
  fuzzRequire(modeler().exportStep(OdString(path()), assembly).ok(), "the corpus cannot be made");
  std::ifstream file(path(), std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(file), {});
  fs::remove(path());
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  readText(text);
  if (std::hash<std::string>()(text) % 16 == 0) import(text);
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  OdModelerBodyPtr box;
  OdModelerBodyPtr cylinder;
  const bool made = modeler().box(10, 20, 30, box).ok() && modeler().cylinder(4, 40, cylinder).ok();
  fuzzRequire(made, "the corpus cannot be made");
  OdModelerAssembly assembly;
  assembly.products = {
      {L"unit", L"unit", {}, {{1, {}, L"a", {}}, {2, {}, L"b", {}}}},
      {L"B\xFC"
       L"chse",
       L"bush",
       {cylinder},
       {}},
      {L"block", L"block", {box}, {}},
  };
  assembly.products[1].layers = {L"turned"};
  assembly.roots = {{0, {}, L"", {}}};
  const std::string text = exported(assembly);
  return {FuzzInput(text.begin(), text.end())};
}
