// `vdm dump`: every object of a drawing as text that can be compared.
#include "host/cli/dump_command.h"

#include <nlohmann/json.hpp>

#include "host/cli/object_dump.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "host/cli/property_json.h"
#include "host/cli/property_text.h"
#include "platform/db/drawing_settings.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

/// What is collected before it is written.
constexpr std::size_t kChunkBytes = 1 << 16;

std::string numberOf(const OdResBuf& value) {
  switch (OdResBuf::kindOf(value.restype())) {
    case OdResBuf::Kind::kDouble:
      return exactNumber(value.getDouble());
    case OdResBuf::Kind::kBool:
      return value.getBool() ? "true" : "false";
    case OdResBuf::Kind::kHandle:
      return str(value.getHandle());
    default:
      return std::to_string(value.getInt16());
  }
}

/// Where dumped objects go; they come in rising handle order.
class Writer {
 public:
  virtual ~Writer() = default;
  virtual void variable(const std::string& name, const std::string& value) = 0;
  virtual void object(const ObjectDump& dump) = 0;
  virtual void end() = 0;
};

/// One line for each value. It holds no path and no time, so that two dumps differ exactly where
/// the drawings do.
class TextWriter : public Writer {
 public:
  void variable(const std::string& name, const std::string& value) override {
    put("variable " + name + " = " + value + "\n");
  }

  void object(const ObjectDump& dump) override {
    std::string text = "\nobject " + str(dump.handle) + " " + oneLine(dump.className) +
                       (dump.proxy ? " (proxy)" : "") + "\n";
    text += "  owner " + str(dump.owner) + "\n";
    for (const auto& [type, handle] : dump.references) {
      text += "  reference " + type + " " + str(handle) + "\n";
    }
    for (const auto& [kind, value] : dump.fields) text += "  " + kind + " " + value + "\n";
    for (const auto& [key, node] : dump.properties) {
      text +=
          "  property " + oneLine(key) + " = " + kindText(node.kind) + " " + nodeText(node) + "\n";
    }
    if (!dump.fault.empty()) text += "  unreadable: " + oneLine(dump.fault) + "\n";
    put(text);
  }

  void end() override { printOut(m_pending); }

 private:
  void put(const std::string& text) {
    m_pending += text;
    if (m_pending.size() < kChunkBytes) return;
    printOut(m_pending);
    m_pending.clear();
  }

  std::string m_pending;
};

class JsonWriter : public Writer {
 public:
  void variable(const std::string& name, const std::string& value) override {
    m_variables[name] = value;
  }

  void object(const ObjectDump& dump) override {
    Json json{{"handle", str(dump.handle)},  {"class", dump.className},
              {"proxy", dump.proxy},         {"owner", str(dump.owner)},
              {"references", Json::array()}, {"fields", Json::array()},
              {"properties", Json::object()}};
    for (const auto& [type, handle] : dump.references) {
      json["references"].push_back({{"type", type}, {"handle", str(handle)}});
    }
    for (const auto& [kind, value] : dump.fields) {
      json["fields"].push_back({{"type", kind}, {"value", value}});
    }
    for (const auto& [key, node] : dump.properties) json["properties"][key] = typedJson(node);
    if (!dump.fault.empty()) json["fault"] = dump.fault;
    m_objects.push_back(std::move(json));
  }

  void end() override {
    printOut(jsonText({{"variables", std::move(m_variables)}, {"objects", std::move(m_objects)}}));
  }

 private:
  Json m_variables = Json::object();
  Json m_objects = Json::array();
};

}  // namespace

int runDump(const SessionSettings& settings, const DumpOptions& options) {
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead);
  TextWriter text;
  JsonWriter json;
  Writer& writer = settings.json ? static_cast<Writer&>(json) : text;
  for (const OdDbSettingRow& row : OdDbDrawingSettings::rows()) {
    writer.variable(row.name, numberOf(*drawing->getSysVar(OdString(row.name))));
  }
  bool sound = true;
  drawing->forEachId([&](OdDbObjectId id) {
    const ObjectDump dump = dumpObject(id);
    sound = sound && dump.fault.empty();
    writer.object(dump);
    return true;
  });
  writer.end();
  return exitCodeFor(sound);
}

}  // namespace cli
