// Fuzz target: property bags from flat bytes and from records.
//
// Input: one byte, even for the flat form and odd for a record; then the bag.
#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "platform/base/error.h"
#include "platform/db/db_object.h"
#include "vdm_db/properties/vdm_db_extension_data.h"
#include "vdm_db/properties/vdm_flat_filer.h"

namespace {

OdDbDatabase* drawing() {
  static const OdDbDatabasePtr drawing = fuzzDrawing(11, 60);
  return drawing.get();
}

FuzzInput writeFlat(const VdmProperties& bag) {
  VdmFlatFiler filer;
  bag.dwgOutFields(filer.clear());
  const std::vector<char> bytes = filer.getBinaryData();
  return FuzzInput(bytes.begin(), bytes.end());
}

bool readFlat(VdmProperties& bag, const std::uint8_t* data, std::size_t size) {
  VdmFlatFiler filer;
  filer.setBinaryData(reinterpret_cast<const char*>(data), static_cast<unsigned int>(size));
  return bag.dwgInFields(&filer) == eOk;
}

FuzzInput writeRecord(const VdmProperties& bag) {
  OdDbFileWriter writer(drawing());
  bag.dwgOutFields(&writer);
  FuzzInput record;
  writer.assemble(record);
  return record;
}

bool readRecord(VdmProperties& bag, const std::uint8_t* data, std::size_t size) {
  OdDbFileReader reader(data, size, drawing(), &fuzzResolve, drawing());
  return bag.dwgInFields(&reader) == eOk;
}

struct Form {
  FuzzInput (*write)(const VdmProperties&);
  bool (*read)(VdmProperties&, const std::uint8_t*, std::size_t);
};
constexpr Form kForms[] = {{writeFlat, readFlat}, {writeRecord, readRecord}};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  drawing();
  const Form& form = kForms[data[0] & 1];
  VdmProperties bag;
  try {
    if (!form.read(bag, data + 1, size - 1)) return 0;
  } catch (const OdError&) {
    return 0;
  }
  const FuzzInput first = form.write(bag);
  VdmProperties again;
  fuzzRequire(form.read(again, first.data(), first.size()), "a bag that was written is refused");
  fuzzRequire(form.write(again) == first, "a bag is not stable");
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  std::vector<FuzzInput> corpus;
  drawing()->forEachId([&corpus](OdDbObjectId id) {
    const VdmDbExtensionDataPtr object = id.openAs<VdmDbExtensionData>();
    if (object.isNull()) return true;
    for (std::uint8_t form = 0; form < 2; ++form) {
      FuzzInput input{form};
      const FuzzInput bag = kForms[form].write(object->properties());
      input.insert(input.end(), bag.begin(), bag.end());
      corpus.push_back(input);
    }
    return true;
  });
  return corpus;
}
