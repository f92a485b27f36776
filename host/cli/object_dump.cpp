// One object as text lines.
#include "host/cli/object_dump.h"

#include <array>
#include <cstdio>
#include <string_view>

#include "host/cli/cli_error.h"
#include "host/cli/find_object.h"
#include "host/cli/property_home.h"
#include "host/cli/property_text.h"
#include "host/cli/text_output.h"
#include "platform/base/error.h"
#include "platform/db/proxy_object.h"
#include "platform/filer/one_way_filer.h"

namespace cli {

namespace {

/// Longer runs of bytes are shown by their size and a hash.
constexpr OdUInt32 kShownBytes = 32;

/// FNV-1a, 64 bits: the published offset basis and prime.
std::string hashText(const unsigned char* bytes, OdUInt32 size) {
  OdUInt64 hash = 0xcbf29ce484222325u;
  for (OdUInt32 i = 0; i < size; ++i) hash = (hash ^ bytes[i]) * 0x100000001b3u;
  std::array<char, 20> text{};
  std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(hash));
  return text.data();
}

std::string numbers(std::initializer_list<double> values) {
  std::string text;
  for (const double value : values) text += (text.empty() ? "" : " ") + exactNumber(value);
  return text;
}

/// Turns every primitive into a line, ids besides into references.
class DumpFiler : public OdStaticRxObject<OdDbWriteOnlyFiler> {
 public:
  DumpFiler(OdDbDatabase* database, ObjectDump& dump) : m_database(database), m_dump(dump) {}

  [[nodiscard]] FilerType filerType() const override { return kFileFiler; }
  [[nodiscard]] OdDbDatabase* database() const override { return m_database; }
  [[nodiscard]] OdUInt64 tell() const override { return m_dump.fields.size(); }

  void wrBool(bool value) override { put("bool", value ? "true" : "false"); }
  void wrString(const OdString& value) override { put("string", oneLine(value.utf8())); }
  void wrBytes(const void* buffer, OdUInt32 size) override {
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    put("bytes", size <= kShownBytes ? hexText(VdmBlob(bytes, bytes + size))
                                     : std::to_string(size) + " hash " + hashText(bytes, size));
  }
  void wrInt8(OdInt8 value) override { put("int8", std::to_string(value)); }
  void wrUInt8(OdUInt8 value) override { put("uint8", std::to_string(value)); }
  void wrInt16(OdInt16 value) override { put("int16", std::to_string(value)); }
  void wrInt32(OdInt32 value) override { put("int32", std::to_string(value)); }
  void wrInt64(OdInt64 value) override { put("int64", std::to_string(value)); }
  void wrDouble(double value) override { put("double", exactNumber(value)); }
  void wrDbHandle(const OdDbHandle& value) override { put("handle", str(value)); }
  void wrSoftOwnershipId(const OdDbObjectId& value) override { putId("soft-owner", value); }
  void wrHardOwnershipId(const OdDbObjectId& value) override { putId("hard-owner", value); }
  void wrSoftPointerId(const OdDbObjectId& value) override { putId("soft-pointer", value); }
  void wrHardPointerId(const OdDbObjectId& value) override { putId("hard-pointer", value); }
  void wrPoint2d(const OdGePoint2d& value) override { put("point", numbers({value.x, value.y})); }
  void wrPoint3d(const OdGePoint3d& value) override {
    put("point", numbers({value.x, value.y, value.z}));
  }
  void wrVector2d(const OdGeVector2d& value) override {
    put("vector", numbers({value.x, value.y}));
  }
  void wrVector3d(const OdGeVector3d& value) override {
    put("vector", numbers({value.x, value.y, value.z}));
  }
  void wrScale3d(const OdGeScale3d& value) override {
    put("scale", numbers({value.sx, value.sy, value.sz}));
  }

 private:
  void put(const char* kind, std::string value) {
    m_dump.fields.emplace_back(kind, std::move(value));
  }
  void putId(const char* kind, const OdDbObjectId& id) {
    put(kind, str(id.getHandle()));
    if (!id.isNull()) m_dump.references.emplace_back(kind, id.getHandle());
  }

  OdDbDatabase* m_database;
  ObjectDump& m_dump;
};

void addProperties(const OdDbObjectPtr& object, ObjectDump& dump) {
  const VdmProperties properties = PropertyHome(object).read();
  for (const auto& [key, data] : properties) {
    dump.properties.emplace_back(str(key), toNode(data.get()));
  }
}

}  // namespace

ObjectDump dumpObject(const OdDbObjectId& id) {
  ObjectDump dump;
  dump.handle = id.getHandle();
  dump.owner = id.ownerId().getHandle();
  try {
    const OdDbObjectPtr object = id.safeOpenObject();
    dump.className = classNameOf(*object);
    dump.proxy = object->isKindOf(OdDbProxyObject::desc());
    DumpFiler filer(id.database(), dump);
    object->dwgOutFields(&filer);
    addProperties(object, dump);
  } catch (const OdError& error) {
    dump.fault = str(error.description());
  } catch (const CliError& error) {
    dump.fault = error.what();
  }
  return dump;
}

}  // namespace cli
