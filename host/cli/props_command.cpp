// `vdm props`: the typed properties of an object.
#include "host/cli/props_command.h"

#include <nlohmann/json.hpp>

#include "host/cli/cli_error.h"
#include "host/cli/find_object.h"
#include "host/cli/json_text.h"
#include "host/cli/paths.h"
#include "host/cli/property_home.h"
#include "host/cli/property_json.h"
#include "host/cli/property_text.h"
#include "host/cli/text_output.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Access = DrawingSession::Access;

/// The drawing and the object of a command line.
class OpenedHome {
 public:
  OpenedHome(const SessionOptions& session, const PropsOptions& options, Access access)
      : m_runtime(session),
        m_drawing(openDrawing(options, access)),
        m_home(openByHandle(*m_drawing, options.handle,
                            access == Access::kWrite ? OdDb::kForWrite : OdDb::kForRead)) {}

  PropertyHome& home() { return m_home; }
  OdDbDatabase& drawing() { return *m_drawing; }
  void save(const VdmProperties& properties) {
    m_home.write(properties);
    m_home = PropertyHome(OdDbObjectPtr());
    saveDrawing(*m_drawing);
  }

 private:
  OdDbDatabasePtr openDrawing(const PropsOptions& options, Access access) {
    checkInput(options.input);
    return m_runtime.open(options.input, access);
  }

  DrawingSession m_runtime;
  OdDbDatabasePtr m_drawing;
  PropertyHome m_home;
};

[[noreturn]] void refuseAbsent(const PropertyHome& home, const std::string& key) {
  throw CliError("object " + home.name() + " has no property " + quote(key));
}

PropertyNode nodeAt(const PropertyHome& home, const VdmProperties& properties,
                    const std::string& key) {
  const VdmPropertyDataPtr data = properties.getProperty(OdString(key));
  if (data.isNull()) refuseAbsent(home, key);
  return toNode(data.get());
}

/// The type that a new value is read by. Open parts of `array` and `map` are taken from the present
/// value where that is of the same type.
PropertySpec wantedSpec(const PropsOptions& options, const std::optional<PropertySpec>& present) {
  if (options.type.empty()) {
    return present ? *present : PropertySpec{VdmPropertyType::kString, {}, {}};
  }
  const PropertySpec spec = parseSpec(options.type);
  const bool open = (spec.type == VdmPropertyType::kArray || spec.type == VdmPropertyType::kMap) &&
                    spec.element == VdmPropertyType{};
  return open && present && present->type == spec.type ? *present : spec;
}

PropertyNode newValue(const PropsOptions& options, const std::optional<PropertySpec>& present,
                      const OdDbDatabase& drawing) {
  if (options.jsonValue) return parseTypedJson(*options.jsonValue, drawing);
  const PropertySpec spec = wantedSpec(options, present);
  const bool listed = spec.type == VdmPropertyType::kArray || spec.type == VdmPropertyType::kMap;
  return listed ? parseBareJson(spec, *options.value, drawing)
                : parseScalar(spec.type, *options.value, drawing);
}

void checkForm(const PropsOptions& options) {
  // The stored form skips an empty key and keeps its version under the other one.
  if (options.key.empty() || options.key == "_ver") {
    throw CliError("key " + quote(options.key) + " cannot be set, it means something to the file",
                   kWrongUsage);
  }
  if (options.value.has_value() == options.jsonValue.has_value()) {
    throw CliError(options.value ? "both VALUE and --json-value are given, one is enough"
                                 : "no value is given, name it as VALUE or with --json-value",
                   kWrongUsage);
  }
  if (options.jsonValue && !options.type.empty()) {
    throw CliError(
        "--type " + quote(options.type) + " is given beside --json-value, which has its own type",
        kWrongUsage);
  }
  if (!options.type.empty()) static_cast<void>(parseSpec(options.type));
}

void checkValue(const PropertyHome& home, const std::string& key, const PropertyNode& value,
                const std::optional<PropertySpec>& present) {
  const std::string what = "property " + quote(key) + " of object " + home.name();
  if (present && *present != value.spec) {
    throw CliError(what + " is of type " + specText(*present) + ", not " + specText(value.spec));
  }
  if (holdsIds(value) && !home.keepsIds()) {
    throw CliError(what + " cannot be of type " + specText(value.spec) +
                   ": ids in extended data read back as null, use type handle");
  }
}

void printChange(const SessionOptions& session, const std::string& handle, const std::string& key,
                 const PropertyNode* before, const PropertyNode* after) {
  if (session.json) {
    printOut(jsonText({{"handle", handle},
                       {"key", key},
                       {"before", before != nullptr ? typedJson(*before) : Json()},
                       {"after", after != nullptr ? typedJson(*after) : Json()}}));
    return;
  }
  const PropertyNode& shown = after != nullptr ? *after : *before;
  std::string line = oneLine(key) + " of " + handle + ": ";
  if (after == nullptr) {
    line += "removed, was " + nodeText(*before);
  } else {
    if (before != nullptr) line += nodeText(*before) + " -> ";
    line += nodeText(*after);
  }
  const std::string type = " (" + specText(shown.spec) + ")";
  printOut(shortened(line, kTextWidth - columnsOf(type)) + type + "\n");
}

}  // namespace

int runPropsList(const SessionOptions& session, const PropsOptions& options) {
  OpenedHome opened(session, options, Access::kRead);
  const PropertyHome& home = opened.home();
  const VdmProperties properties = home.read();
  if (session.json) {
    Json values = Json::object();
    for (const auto& [key, data] : properties) values[str(key)] = typedJson(toNode(data.get()));
    printOut(jsonText({{"handle", home.name()},
                       {"class", classNameOf(*home.object())},
                       {"properties", std::move(values)}}));
    return kDone;
  }
  TextTable table({{"KEY", TextTable::Align::kLeft},
                   {"TYPE", TextTable::Align::kLeft},
                   {"VALUE", TextTable::Align::kLeft}});
  for (const auto& [key, data] : properties) {
    const PropertyNode node = toNode(data.get());
    table.addRow({oneLine(key.utf8()), specText(node.spec), nodeText(node)});
  }
  printOut(table.isEmpty() ? "object " + home.name() + " has no properties\n" : table.text());
  return kDone;
}

int runPropsGet(const SessionOptions& session, const PropsOptions& options) {
  OpenedHome opened(session, options, Access::kRead);
  const PropertyNode node = nodeAt(opened.home(), opened.home().read(), options.key);
  printOut(session.json ? jsonText(typedJson(node)) : plainText(node) + "\n");
  return kDone;
}

int runPropsSet(const SessionOptions& session, const PropsOptions& options) {
  checkForm(options);
  OpenedHome opened(session, options, Access::kWrite);
  const std::string handle = opened.home().name();
  VdmProperties properties = opened.home().read();
  const OdString key(options.key);
  const VdmPropertyDataPtr present = properties.getProperty(key);
  const bool isNew = present.isNull();
  const PropertyNode before = toNode(present.get());
  const std::optional<PropertySpec> spec =
      isNew ? std::nullopt : std::optional<PropertySpec>(before.spec);
  PropertyNode after;
  try {
    after = newValue(options, spec, opened.drawing());
  } catch (const CliError& error) {
    throw CliError("property " + quote(options.key) + ": " + error.what(), error.code());
  }
  checkValue(opened.home(), options.key, after, spec);
  properties.setProperty(key, toProperty(after));
  after = toNode(properties.getProperty(key).get());  // maps in their own order
  opened.save(properties);
  printChange(session, handle, options.key, isNew ? nullptr : &before, &after);
  return kDone;
}

int runPropsRemove(const SessionOptions& session, const PropsOptions& options) {
  OpenedHome opened(session, options, Access::kWrite);
  const std::string handle = opened.home().name();
  VdmProperties properties = opened.home().read();
  const PropertyNode before = nodeAt(opened.home(), properties, options.key);
  properties.removeProperty(OdString(options.key));
  opened.save(properties);
  printChange(session, handle, options.key, &before, nullptr);
  return kDone;
}

}  // namespace cli
