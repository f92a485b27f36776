// `vdm props`: the typed properties of an object.
#include "host/cli/props_command.h"

#include <nlohmann/json.hpp>

#include "host/cli/find_object.h"
#include "host/cli/new_name.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "host/cli/property_home.h"
#include "host/cli/property_json.h"
#include "host/cli/property_text.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Access = DrawingSession::Access;

/// The drawing and the object of a command line.
class OpenedHome {
 public:
  OpenedHome(const SessionSettings& settings, const PropsOptions& options, Access access)
      : m_drawing(settings, options.input, access),
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
  OpenedDrawing m_drawing;
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
PropertyKind wantedKind(const PropsOptions& options, const std::optional<PropertyKind>& present) {
  if (options.type.empty()) {
    return present ? *present : PropertyKind{VdmPropertyType::kString, {}, {}};
  }
  const PropertyKind kind = parseKind(options.type);
  const bool open = (kind.type == VdmPropertyType::kArray || kind.type == VdmPropertyType::kMap) &&
                    kind.element == VdmPropertyType{};
  return open && present && present->type == kind.type ? *present : kind;
}

PropertyNode newValue(const PropsOptions& options, const std::optional<PropertyKind>& present,
                      const OdDbDatabase& drawing) {
  if (options.jsonValue) return parseTypedJson(*options.jsonValue, drawing);
  const PropertyKind kind = wantedKind(options, present);
  const bool listed = kind.type == VdmPropertyType::kArray || kind.type == VdmPropertyType::kMap;
  return listed ? parseBareJson(kind, *options.value, drawing)
                : parseScalar(kind.type, *options.value, drawing);
}

void checkForm(const PropsOptions& options) {
  // The stored form skips an empty key and keeps its version under the other one.
  if (options.key.empty() || options.key == "_ver") {
    throw CliError("key " + quote(options.key) + " cannot be set, it means something to the file",
                   kWrongUsage);
  }
  requireUtf8("key", options.key);
  if (options.value) requireUtf8("value", *options.value);
  if (options.jsonValue) requireUtf8("value", *options.jsonValue);
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
  if (!options.type.empty()) static_cast<void>(parseKind(options.type));
}

void checkValue(const PropertyHome& home, const std::string& key, const PropertyNode& value,
                const std::optional<PropertyKind>& present) {
  const std::string what = "property " + quote(key) + " of object " + home.name();
  if (present && *present != value.kind) {
    throw CliError(what + " is of type " + kindText(*present) + ", not " + kindText(value.kind));
  }
  if (holdsIds(value) && !home.keepsIds()) {
    throw CliError(what + " cannot be of type " + kindText(value.kind) +
                   ": ids in extended data read back as null, use type handle");
  }
}

/// What an edit did to one property; null where there was none or is none.
struct PropertyChange {
  std::string handle;
  std::string key;
  const PropertyNode* before = nullptr;
  const PropertyNode* after = nullptr;
};

Json changeJson(const PropertyChange& change) {
  const auto valueOf = [](const PropertyNode* node) { return node ? typedJson(*node) : Json(); };
  return {{"handle", change.handle},
          {"key", change.key},
          {"before", valueOf(change.before)},
          {"after", valueOf(change.after)}};
}

std::string changeText(const PropertyChange& change) {
  std::string line = oneLine(change.key) + " of " + change.handle + ": ";
  if (change.after == nullptr) {
    line += "removed, was " + nodeText(*change.before);
  } else {
    if (change.before != nullptr) line += nodeText(*change.before) + " -> ";
    line += nodeText(*change.after);
  }
  const PropertyNode& shown = change.after != nullptr ? *change.after : *change.before;
  const std::string type = " (" + kindText(shown.kind) + ")";
  return shortened(line, kTextWidth - columnsOf(type)) + type + "\n";
}

void printChange(const SessionSettings& settings, const PropertyChange& change) {
  printResult(
      settings, [&] { return changeJson(change); }, [&] { return changeText(change); });
}

Json propertiesJson(const PropertyHome& home) {
  Json values = Json::object();
  for (const auto& [key, data] : home.read()) values[str(key)] = typedJson(toNode(data.get()));
  return {{"handle", home.name()},
          {"class", classNameOf(*home.object())},
          {"properties", std::move(values)}};
}

std::string propertiesText(const PropertyHome& home) {
  TextTable table({{"KEY", TextTable::Align::kLeft},
                   {"TYPE", TextTable::Align::kLeft},
                   {"VALUE", TextTable::Align::kLeft}});
  for (const auto& [key, data] : home.read()) {
    const PropertyNode node = toNode(data.get());
    table.addRow({oneLine(key.utf8()), kindText(node.kind), nodeText(node)});
  }
  return table.isEmpty() ? "object " + home.name() + " has no properties\n" : table.text();
}

}  // namespace

int runPropsList(const SessionSettings& settings, const PropsOptions& options) {
  OpenedHome opened(settings, options, Access::kRead);
  printResult(
      settings, [&] { return propertiesJson(opened.home()); },
      [&] { return propertiesText(opened.home()); });
  return kDone;
}

int runPropsGet(const SessionSettings& settings, const PropsOptions& options) {
  OpenedHome opened(settings, options, Access::kRead);
  const PropertyNode node = nodeAt(opened.home(), opened.home().read(), options.key);
  printResult(
      settings, [&] { return typedJson(node); }, [&] { return plainText(node) + "\n"; });
  return kDone;
}

int runPropsSet(const SessionSettings& settings, const PropsOptions& options) {
  checkForm(options);
  OpenedHome opened(settings, options, Access::kWrite);
  const std::string handle = opened.home().name();
  VdmProperties properties = opened.home().read();
  const OdString key(options.key);
  const VdmPropertyDataPtr present = properties.getProperty(key);
  const bool isNew = present.isNull();
  const PropertyNode before = toNode(present.get());
  const std::optional<PropertyKind> kind =
      isNew ? std::nullopt : std::optional<PropertyKind>(before.kind);
  PropertyNode after;
  try {
    after = newValue(options, kind, opened.drawing());
  } catch (const CliError& error) {
    throw CliError("property " + quote(options.key) + ": " + error.what(), error.code());
  }
  checkValue(opened.home(), options.key, after, kind);
  properties.setProperty(key, toProperty(after));
  after = toNode(properties.getProperty(key).get());  // maps in their own order
  opened.save(properties);
  printChange(settings, {handle, options.key, isNew ? nullptr : &before, &after});
  return kDone;
}

int runPropsRemove(const SessionSettings& settings, const PropsOptions& options) {
  OpenedHome opened(settings, options, Access::kWrite);
  const std::string handle = opened.home().name();
  VdmProperties properties = opened.home().read();
  const PropertyNode before = nodeAt(opened.home(), properties, options.key);
  properties.removeProperty(OdString(options.key));
  opened.save(properties);
  printChange(settings, {handle, options.key, &before, nullptr});
  return kDone;
}

}  // namespace cli
