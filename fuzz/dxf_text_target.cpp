// Fuzz target: DXF text, group by group and as the fields of objects.
#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "platform/base/error.h"
#include "platform/db/dictionary.h"
#include "platform/db/xrecord.h"
#include "platform/filer/dxf_text_filer.h"

namespace {

OdDbDatabase* drawing() {
  static const OdDbDatabasePtr drawing = fuzzDrawing(5, 60);
  return drawing.get();
}

OdDbObjectId resolve(void* context, const OdDbHandle& handle) {
  return fuzzResolve(context, static_cast<OdUInt64>(handle));
}

OdDbTextDxfFiler filerOf(const std::string& text) {
  return OdDbTextDxfFiler(text, drawing(), &resolve, drawing());
}

// Reads the present group as what its code holds.
void readGroup(OdDbTextDxfFiler& filer, int code) {
  OdBinaryData bytes;
  switch (OdResBuf::kindOf(code)) {
#define OD_RES_BUF_PRIMITIVE(Name, Type, Argument, text) \
  case OdResBuf::Kind::k##Name:                          \
    filer.rd##Name();                                    \
    break;
#include "platform/filer/res_buf_rows.inc"
    case OdResBuf::Kind::kPoint:
      filer.rdDouble();
      break;
    case OdResBuf::Kind::kHandle:
      filer.rdHandle();
      break;
    case OdResBuf::Kind::kObjectId:
      filer.rdObjectId();
      break;
    case OdResBuf::Kind::kBinary:
      filer.rdBinaryChunk(bytes);
      break;
    case OdResBuf::Kind::kNone:
      break;
  }
}

void readGroups(const std::string& text) {
  try {
    OdDbTextDxfFiler filer = filerOf(text);
    while (!filer.atEOF()) readGroup(filer, filer.nextItem());
  } catch (const OdError&) {
  }
}

template <class T>
void readObject(const std::string& text) {
  const OdSmartPtr<T> object = T::createObject();
  try {
    OdDbTextDxfFiler filer = filerOf(text);
    if (object->dxfInFields(&filer) != eOk) return;
  } catch (const OdError&) {
    return;
  }
  OdDbTextDxfFiler first(drawing());
  object->dxfOutFields(&first);
  const OdSmartPtr<T> again = T::createObject();
  OdDbTextDxfFiler reader = filerOf(first.text());
  fuzzRequire(again->dxfInFields(&reader) == eOk, "groups that were written are refused");
  OdDbTextDxfFiler second(drawing());
  again->dxfOutFields(&second);
  fuzzRequire(second.text() == first.text(), "groups are not stable");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  readGroups(text);
  readObject<OdDbXrecord>(text);
  readObject<OdDbDictionary>(text);
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  std::vector<FuzzInput> corpus;
  drawing()->forEachId([&corpus](OdDbObjectId id) {
    OdDbTextDxfFiler filer(drawing());
    id.safeOpenObject()->dxfOutFields(&filer);
    corpus.emplace_back(filer.text().begin(), filer.text().end());
    return true;
  });
  return corpus;
}
