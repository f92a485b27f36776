// Fuzz target: records of a drawing file, read by every registered class.
//
// Input: one byte that chooses the class, then a record.
#include <algorithm>
#include <string>

#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/model_drawing.h"
#include "platform/base/error.h"
#include "platform/db/db_object.h"
#include "platform/rx/rx_class.h"
#include "vdm_db/model/vdm_db_object.h"

namespace {

// The filed classes of which objects can be made.
const std::vector<OdRxClass*>& filedClasses() {
  static const std::vector<OdRxClass*> classes = [] {
    fuzzStart();
    std::vector<OdRxClass*> filed;
    for (OdRxClass* rxClass : odrxClassDictionary()->classes()) {
      if (rxClass->isDerivedFrom(OdDbObject::desc()) && !rxClass->isAbstract()) {
        filed.push_back(rxClass);
      }
    }
    return filed;
  }();
  return classes;
}

OdDbDatabase* drawing() {
  static const OdDbDatabasePtr drawing = [] {
    const OdDbDatabasePtr made = fuzzDrawing(7, 40);
    fuzzAddModel(made);
    return made;
  }();
  return drawing.get();
}

FuzzInput write(const OdDbObjectPtr& object) {
  OdDbFileWriter writer(drawing());
  object->dwgOutFields(&writer);
  FuzzInput record;
  writer.assemble(record);
  return record;
}

// A new object of the class from a record; null for one that is refused.
OdDbObjectPtr read(const OdRxClass* rxClass, const std::uint8_t* data, std::size_t size) {
  OdDbObjectPtr object = OdDbObject::cast(rxClass->create());
  try {
    OdDbFileReader reader(data, size, drawing(), &fuzzResolve, drawing());
    return object->dwgInFields(&reader) == eOk ? object : OdDbObjectPtr();
  } catch (const OdError&) {
    return OdDbObjectPtr();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const OdRxClass* rxClass = filedClasses()[data[0] % filedClasses().size()];
  const OdDbObjectPtr object = read(rxClass, data + 1, size - 1);
  if (object.isNull()) return 0;
  // What is accepted is written in a form that is read back to the same.
  FuzzInput first = write(object);
  OdDbObjectPtr again = read(rxClass, first.data(), first.size());
  // Entries of an index map whose types no writer knows come back as entries without a type, and
  // two may become one: these records are stable from the second reading on.
  if (!again.isNull() && rxClass->isDerivedFrom(VdmDbObject::desc())) {
    first = write(again);
    again = read(rxClass, first.data(), first.size());
  }
  const std::string name(rxClass->name().utf8());
  fuzzRequire(!again.isNull(), ("a record that was written is refused: " + name).c_str());
  fuzzRequire(write(again) == first, ("a record is not stable: " + name).c_str());
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  std::vector<FuzzInput> corpus;
  const auto& classes = filedClasses();
  std::vector<bool> isSeen(classes.size());
  const auto add = [&](std::size_t place, const OdDbObjectPtr& object) {
    FuzzInput input{static_cast<std::uint8_t>(place)};
    const FuzzInput record = write(object);
    input.insert(input.end(), record.begin(), record.end());
    corpus.push_back(input);
    isSeen[place] = true;
  };
  drawing()->forEachId([&](OdDbObjectId id) {
    const auto place = std::find(classes.begin(), classes.end(), id.objectClass());
    if (place != classes.end()) {
      add(static_cast<std::size_t>(place - classes.begin()), id.safeOpenObject());
    }
    return true;
  });
  // Of a class that the drawing has no object of, the record of a new one.
  for (std::size_t place = 0; place < classes.size(); ++place) {
    const OdDbObjectPtr made = OdDbObject::cast(classes[place]->create());
    if (!isSeen[place] && !made.isNull()) add(place, made);
  }
  return corpus;
}
