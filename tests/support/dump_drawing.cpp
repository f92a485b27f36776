// The state of a drawing as text, for tests that compare drawings.
#include "tests/support/dump_drawing.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "platform/db/database.h"
#include "platform/db/db_object.h"
#include "platform/db/drawing_settings.h"
#include "platform/filer/file_filer.h"

namespace {

void appendSettings(const OdDbDatabase* database, std::string& dump) {
  for (const OdDbSettingRow& row : OdDbDrawingSettings::rows()) {
    const OdResBufPtr value = database->getSysVar(OdString(row.name));
    char text[64];
    std::snprintf(text, sizeof text, " %.17g\n",
                  value->restype() == 40 ? value->getDouble()
                  : value->restype() == 5
                      ? static_cast<double>(static_cast<OdUInt64>(value->getHandle()))
                  : value->restype() == 70 ? value->getInt16()
                                           : static_cast<int>(value->getBool()));
    dump += row.name;
    dump += text;
  }
}

void appendHex(const std::vector<OdUInt8>& bytes, std::string& dump) {
  static constexpr char kDigits[] = "0123456789abcdef";
  for (const OdUInt8 byte : bytes) {
    dump += kDigits[byte >> 4];
    dump += kDigits[byte & 15];
  }
}

/// Writes what a copy would get. A file may name erased objects that could still come back.
class LiveWriter : public OdDbFileWriter {
 public:
  using OdDbFileWriter::OdDbFileWriter;
  [[nodiscard]] FilerType filerType() const override { return kCopyFiler; }
};

std::string_view lineAt(const std::string& text, std::size_t position) {
  const std::size_t begin = position == 0 ? 0 : text.rfind('\n', position - 1) + 1;
  return std::string_view(text).substr(begin, text.find('\n', begin) - begin);
}

}  // namespace

std::string dumpDrawing(OdDbDatabase* database, DumpScope scope) {
  std::string dump;
  appendSettings(database, dump);
  OdDbFileWriter fileWriter(database);
  LiveWriter liveWriter(database);
  OdDbFileWriter& writer = scope == DumpScope::kInFile ? liveWriter : fileWriter;
  std::vector<OdUInt8> record;
  database->forEachId([&](OdDbObjectId id) {
    if (scope == DumpScope::kInFile && id.isEffectivelyErased()) return true;
    const OdDbObjectPtr object = id.openObject();
    dump += id.getHandle().ascii().utf8();
    dump += ' ';
    dump += object.isNull() ? std::string_view("unreadable") : object->isA()->name().utf8();
    dump += ' ';
    dump += id.ownerId().getHandle().ascii().utf8();
    dump += ' ';
    if (!object.isNull()) {
      writer.clear();
      object->dwgOutFields(&writer);
      record.clear();
      writer.assemble(record);
      appendHex(record, dump);
    }
    dump += '\n';
    return true;
  });
  return dump;
}

std::string firstDifference(const std::string& expected, const std::string& actual) {
  if (expected == actual) return {};
  const auto [left, right] =
      std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  const auto position = static_cast<std::size_t>(left - expected.begin());
  return "expected \"" + std::string(lineAt(expected, position)) + "\", found \"" +
         std::string(lineAt(actual, position)) + "\"";
}
