// Values of properties as JSON.
#include "host/cli/property_json.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "host/cli/checked_json.h"
#include "host/cli/cli_error.h"
#include "host/cli/property_text.h"
#include "host/cli/text_output.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

/// Well below what the stored form allows.
constexpr int kMaxNesting = 100;

// Printing.

Json bareJson(const PropertyNode& node);

struct JsonOfScalar {
  Json operator()(std::monostate) const { return nullptr; }
  Json operator()(OdLong value) const { return value; }
  Json operator()(double value) const { return value; }
  Json operator()(bool value) const { return value; }
  Json operator()(signed char value) const { return static_cast<int>(value); }
  template <class T>
  Json operator()(const T& value) const {
    PropertyNode node;
    node.scalar = value;
    return plainText(node);
  }
};

Json itemJson(const PropertyNode& node, VdmPropertyType element) {
  return element == VdmPropertyType::kProperty ? typedJson(node) : bareJson(node);
}

Json mapJson(const PropertyNode& node) {
  const bool byText = node.kind.key == VdmPropertyType::kString;
  Json json = byText ? Json::object() : Json::array();
  for (std::size_t i = 0; i < node.items.size(); ++i) {
    Json item = itemJson(node.items[i], node.kind.element);
    if (byText) {
      json[plainText(node.keys[i])] = std::move(item);
    } else {
      json.push_back(Json::array({bareJson(node.keys[i]), std::move(item)}));
    }
  }
  return json;
}

Json bareJson(const PropertyNode& node) {
  if (node.kind.type == VdmPropertyType::kMap) return mapJson(node);
  if (node.kind.type != VdmPropertyType::kArray) return std::visit(JsonOfScalar(), node.scalar);
  Json json = Json::array();
  for (const PropertyNode& item : node.items) json.push_back(itemJson(item, node.kind.element));
  return json;
}

// Reading.

Json parseText(const std::string& text) {
  return parseJson(
      text, kAnyDepth,
      [&text](const JsonFault& fault) {
        if (fault.kind == JsonFault::Kind::kTwin) return "key " + quote(fault.key) + " comes twice";
        return quote(shortened(text, 40)) + " is not JSON, wrong near character " +
               std::to_string(fault.position);
      },
      kCouldNot);
}

std::string sample(const Json& json) {
  return json.is_string() ? json.get<std::string>()
                          : json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// Makes trees out of JSON values.
class Reader {
 public:
  explicit Reader(const OdDbDatabase& drawing) : m_drawing(drawing) {}

  PropertyNode typed(const Json& json) {
    if (++m_nesting > kMaxNesting) {
      throw CliError("values nest deeper than " + std::to_string(kMaxNesting) + " levels");
    }
    if (!json.is_object() || !json.contains("type") || !json.contains("value")) {
      throw CliError(quote(shortened(sample(json), 40)) +
                     " is not an object with \"type\" and \"value\"");
    }
    PropertyNode node = bare(kindIn(json), json["value"]);
    --m_nesting;
    return node;
  }

  PropertyNode bare(PropertyKind kind, const Json& json) {
    if (kind.type == VdmPropertyType::kArray) return array(kind, json);
    if (kind.type == VdmPropertyType::kMap) return map(kind, json);
    return scalar(kind.type, json);
  }

 private:
  /// The fields "type", "key" and "of" are the parts of a type text.
  static PropertyKind kindIn(const Json& json) {
    std::string text;
    for (const char* field : {"type", "key", "of"}) {
      if (!json.contains(field)) continue;
      if (!json[field].is_string()) {
        throw CliError(std::string("field \"") + field + "\" is not a text but " +
                       shortened(sample(json[field]), 40));
      }
      text += (text.empty() ? "" : ":") + json[field].get<std::string>();
    }
    try {
      return parseKind(text);
    } catch (const CliError& error) {
      throw CliError(error.what());
    }
  }

  PropertyNode item(VdmPropertyType element, const Json& json) {
    return element == VdmPropertyType::kProperty ? typed(json) : scalar(element, json);
  }

  PropertyNode scalar(VdmPropertyType type, const Json& json) {
    if (type == VdmPropertyType::kDouble && json.is_number()) {
      return makeDouble(json.get<double>());
    }
    const bool integerType = type == VdmPropertyType::kLong || type == VdmPropertyType::kInt8;
    if (integerType && json.is_number_integer()) {
      // Beyond 63 bits no type holds it either; the text gives the message its value.
      return json.is_number_unsigned() && json.get<std::uint64_t>() >> 63 != 0
                 ? parseScalar(type, sample(json), m_drawing)
                 : makeInteger(type, json.get<std::int64_t>());
    }
    if (type == VdmPropertyType::kBool && json.is_boolean()) {
      return parseScalar(type, sample(json), m_drawing);
    }
    const bool textType = type == VdmPropertyType::kString || type == VdmPropertyType::kHandle ||
                          type == VdmPropertyType::kTypedId || type == VdmPropertyType::kBlob;
    if (textType && json.is_string()) {
      return parseScalar(type, json.get<std::string>(), m_drawing);
    }
    throw CliError(mismatchText(sample(json), type));
  }

  PropertyNode array(PropertyKind kind, const Json& json) {
    if (!json.is_array()) throw CliError(mismatchText(sample(json), kind.type));
    if (kind.element == VdmPropertyType{}) {
      kind.element = commonType(pointersTo(json));
    }
    PropertyNode node;
    node.kind = kind;
    for (const Json& element : json) node.items.push_back(item(kind.element, element));
    return node;
  }

  PropertyNode map(PropertyKind kind, const Json& json) {
    const bool open = kind.key == VdmPropertyType{};
    const bool byText = open || kind.key == VdmPropertyType::kString;
    if (byText ? !json.is_object() : !json.is_array()) {
      throw CliError(mismatchText(sample(json), kind.type) + " for keys of type " +
                     kindText({open ? VdmPropertyType::kString : kind.key, {}, {}}));
    }
    if (open) {
      kind.key = VdmPropertyType::kString;
      kind.element = commonType(pointersTo(json));
    }
    PropertyNode node;
    node.kind = kind;
    std::set<std::string> keys;
    const auto add = [&](PropertyNode key, const Json& value) {
      if (!keys.insert(plainText(key)).second) {
        throw CliError("key " + quote(plainText(key)) + " comes twice");
      }
      node.keys.push_back(std::move(key));
      node.items.push_back(item(kind.element, value));
    };
    if (byText) {
      for (const auto& entry : json.items()) {
        add(parseScalar(VdmPropertyType::kString, entry.key(), m_drawing), entry.value());
      }
      return node;
    }
    for (const Json& pair : json) {
      if (!pair.is_array() || pair.size() != 2) {
        throw CliError(quote(shortened(sample(pair), 40)) + " is not a pair [key, value]");
      }
      add(scalar(kind.key, pair[0]), pair[1]);
    }
    return node;
  }

  static std::vector<const Json*> pointersTo(const Json& json) {
    std::vector<const Json*> values;
    for (const Json& value : json) values.push_back(&value);
    return values;
  }

  static VdmPropertyType commonType(const std::vector<const Json*>& values) {
    const auto all = [&values](auto holds) {
      return !values.empty() &&
             std::ranges::all_of(values, [&](const Json* value) { return holds(*value); });
    };
    if (all([](const Json& value) { return value.is_string(); })) return VdmPropertyType::kString;
    if (all([](const Json& value) { return value.is_boolean(); })) return VdmPropertyType::kBool;
    if (all([](const Json& value) { return value.is_number_integer(); })) {
      return VdmPropertyType::kLong;
    }
    if (all([](const Json& value) { return value.is_number(); })) return VdmPropertyType::kDouble;
    if (all([](const Json& value) { return value.is_object(); })) {
      return VdmPropertyType::kProperty;
    }
    throw CliError(values.empty()
                       ? "an empty list does not show its element type, give it as in array:double"
                       : "the values are of several kinds, give their type as in array:double");
  }

  const OdDbDatabase& m_drawing;
  int m_nesting = 0;
};

}  // namespace

nlohmann::ordered_json typedJson(const PropertyNode& node) {
  if (node.kind.type == VdmPropertyType{}) return nullptr;
  Json json;
  json["type"] = kindText({node.kind.type, {}, {}});
  if (node.kind.key != VdmPropertyType{}) json["key"] = kindText({node.kind.key, {}, {}});
  if (node.kind.element != VdmPropertyType{}) json["of"] = kindText({node.kind.element, {}, {}});
  json["value"] = bareJson(node);
  return json;
}

PropertyNode parseTypedJson(const std::string& text, const OdDbDatabase& drawing) {
  return Reader(drawing).typed(parseText(text));
}

PropertyNode parseBareJson(const PropertyKind& kind, const std::string& text,
                           const OdDbDatabase& drawing) {
  return Reader(drawing).bare(kind, parseText(text));
}

}  // namespace cli
