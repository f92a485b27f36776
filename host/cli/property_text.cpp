// Kinds and values of properties as texts on a command line.
#include "host/cli/property_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "host/cli/cli_error.h"
#include "host/cli/text_output.h"

namespace cli {

namespace {

struct TypeRow {
  VdmPropertyType type;
  std::string_view name;
  std::string_view meaning;
};
constexpr std::array kTypes{
    TypeRow{VdmPropertyType::kProperty, "value", "a typed value"},
    TypeRow{VdmPropertyType::kString, "string", "a text"},
    TypeRow{VdmPropertyType::kLong, "long", "an integer from -2147483648 to 2147483647"},
    TypeRow{VdmPropertyType::kDouble, "double", "a finite number, 0 or at least 2.3e-308 from it"},
    TypeRow{VdmPropertyType::kBool, "bool", "true or false"},
    TypeRow{VdmPropertyType::kInt8, "char", "an integer from -128 to 127"},
    TypeRow{VdmPropertyType::kHandle, "handle", "1 to 16 hexadecimal digits"},
    TypeRow{VdmPropertyType::kTypedId, "id",
            "REFERENCE:HANDLE with soft-pointer, hard-pointer, soft-owner or hard-owner"},
    TypeRow{VdmPropertyType::kArray, "array", "a JSON list"},
    TypeRow{VdmPropertyType::kMap, "map", "a JSON object or a list of pairs"},
    TypeRow{VdmPropertyType::kBlob, "blob", "an even number of hexadecimal digits"},
};

/// By the number of the reference type.
constexpr std::array<std::string_view, 4> kReferences{"soft-pointer", "hard-pointer", "soft-owner",
                                                      "hard-owner"};

const TypeRow& rowOf(VdmPropertyType type) {
  for (const TypeRow& row : kTypes) {
    if (row.type == type) return row;
  }
  return kTypes.front();
}

std::optional<VdmPropertyType> typeOfName(std::string_view name) {
  for (const TypeRow& row : kTypes) {
    if (row.name == name) return row.type;
  }
  return std::nullopt;
}

bool isElement(VdmPropertyType type) {
  return type != VdmPropertyType::kArray && type != VdmPropertyType::kMap;
}
bool isKey(VdmPropertyType type) {
  return isElement(type) && type != VdmPropertyType::kProperty && type != VdmPropertyType::kBlob;
}

template <class T>
std::optional<T> parseNumber(std::string_view text) {
  T value{};
  const std::from_chars_result result =
      std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

template <class T>
PropertyNode scalarNode(VdmPropertyType type, T value) {
  PropertyNode node;
  node.kind.type = type;
  node.scalar = std::move(value);
  return node;
}

std::optional<bool> parseBool(std::string_view text) {
  if (text == "true" || text == "1") return true;
  if (text == "false" || text == "0") return false;
  return std::nullopt;
}

int hexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

std::optional<VdmBlob> parseHex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  VdmBlob bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = hexDigit(text[i]);
    const int low = hexDigit(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes.push_back(static_cast<char>(high * 16 + low));
  }
  return bytes;
}

std::optional<OdDbHandle> parseHandle(const std::string& text) {
  OdDbHandle handle;
  return OdDbHandle::parse(text.c_str(), handle) ? std::optional(handle) : std::nullopt;
}

std::optional<OdDbTypedId> parseId(const std::string& text, const OdDbDatabase& drawing) {
  const std::size_t colon = text.find(':');
  std::size_t reference = 0;
  if (colon != std::string::npos) {
    const std::string_view name = std::string_view(text).substr(0, colon);
    while (reference < kReferences.size() && kReferences[reference] != name) ++reference;
    if (reference == kReferences.size()) return std::nullopt;
  }
  const std::optional<OdDbHandle> handle =
      parseHandle(colon == std::string::npos ? text : text.substr(colon + 1));
  if (!handle) return std::nullopt;
  OdDbObjectId id;
  if (!handle->isNull()) {
    id = drawing.getOdDbObjectId(*handle);
    if (!id.isValid() || id.isErased()) {
      throw CliError("handle " + str(*handle) + " names no object of the drawing");
    }
  }
  return OdDbTypedId(id, static_cast<OdDb::ReferenceType>(reference));
}

struct TextOfScalar {
  std::string operator()(std::monostate) const { return "null"; }
  std::string operator()(const OdString& value) const { return str(value); }
  std::string operator()(OdLong value) const { return std::to_string(value); }
  std::string operator()(double value) const { return exactNumber(value); }
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(signed char value) const { return std::to_string(value); }
  std::string operator()(OdDbHandle value) const { return str(value); }
  std::string operator()(const OdDbTypedId& value) const {
    const auto reference = static_cast<std::size_t>(value.type);
    return std::string(reference < kReferences.size() ? kReferences[reference] : "?") + ":" +
           str(value.id.getHandle());
  }
  std::string operator()(const VdmBlob& value) const { return hexText(value); }
};

/// Strings inside of arrays and maps are quoted, so that their commas are theirs.
std::string itemText(const PropertyNode& node) {
  return node.kind.type == VdmPropertyType::kString ? "'" + nodeText(node) + "'" : nodeText(node);
}

/// The types that a text names, with a colon between them; none when a part names no type.
std::vector<VdmPropertyType> typesIn(const std::string& text) {
  std::vector<VdmPropertyType> types;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find(':', start), text.size());
    const std::optional<VdmPropertyType> type = typeOfName(text.substr(start, end - start));
    if (!type) return {};
    types.push_back(*type);
    start = end + 1;
  }
  return types;
}

/// `array` and `map` may be alone; the types of their elements and keys are open then.
std::optional<PropertyKind> kindOfTypes(const std::vector<VdmPropertyType>& types) {
  if (types.empty() || types.front() == VdmPropertyType::kProperty) return {};
  if (types.size() == 1) return PropertyKind{types.front(), {}, {}};
  const bool isArray = types.front() == VdmPropertyType::kArray;
  const bool isMap = types.front() == VdmPropertyType::kMap;
  if (isArray && types.size() == 2 && isElement(types[1])) {
    return PropertyKind{types[0], types[1], {}};
  }
  if (isMap && types.size() == 3 && isKey(types[1]) && isElement(types[2])) {
    return PropertyKind{types[0], types[2], types[1]};
  }
  return {};
}

}  // namespace

std::string kindText(const PropertyKind& kind) {
  if (kind.type == VdmPropertyType{}) return "null";
  std::string text(rowOf(kind.type).name);
  for (const VdmPropertyType part : {kind.key, kind.element}) {
    if (part != VdmPropertyType{}) text += ":" + std::string(rowOf(part).name);
  }
  return text;
}

PropertyKind parseKind(const std::string& text) {
  if (const auto kind = kindOfTypes(typesIn(text))) return *kind;
  throw CliError("type " + quote(text) + " is none of " + kTypeHelp, kWrongUsage);
}

std::string plainText(const PropertyNode& node) {
  const bool map = node.kind.type == VdmPropertyType::kMap;
  if (!map && node.kind.type != VdmPropertyType::kArray) {
    return std::visit(TextOfScalar(), node.scalar);
  }
  std::string text(1, map ? '{' : '[');
  for (std::size_t i = 0; i < node.items.size(); ++i) {
    if (i != 0) text += ", ";
    if (map) text += itemText(node.keys[i]) + ": ";
    text += itemText(node.items[i]);
  }
  return text + (map ? "}" : "]");
}

std::string nodeText(const PropertyNode& node) { return oneLine(plainText(node)); }

std::string mismatchText(std::string_view text, VdmPropertyType type) {
  const TypeRow& row = rowOf(type);
  return quote(shortened(text, 60)) + " is not of type " + std::string(row.name) + ", " +
         std::string(row.meaning);
}

PropertyNode makeDouble(double value) {
  // The stored form keeps nothing but zero and normal numbers.
  if (value != 0.0 && !std::isnormal(value)) {
    throw CliError(mismatchText(exactNumber(value), VdmPropertyType::kDouble));
  }
  return scalarNode(VdmPropertyType::kDouble, value);
}

PropertyNode makeInteger(VdmPropertyType type, long long value) {
  if (type == VdmPropertyType::kLong && std::in_range<OdLong>(value)) {
    return scalarNode(type, static_cast<OdLong>(value));
  }
  if (type == VdmPropertyType::kInt8 && value >= std::numeric_limits<signed char>::min() &&
      value <= std::numeric_limits<signed char>::max()) {
    return scalarNode(type, static_cast<signed char>(value));
  }
  throw CliError(mismatchText(std::to_string(value), type));
}

PropertyNode parseScalar(VdmPropertyType type, const std::string& text,
                         const OdDbDatabase& drawing) {
  switch (type) {
    case VdmPropertyType::kString:
      return scalarNode(type, OdString(text));
    case VdmPropertyType::kLong:
    case VdmPropertyType::kInt8:
      if (const auto value = parseNumber<long long>(text)) return makeInteger(type, *value);
      break;
    case VdmPropertyType::kDouble:
      if (const auto value = parseNumber<double>(text)) return makeDouble(*value);
      break;
    case VdmPropertyType::kBool:
      if (const auto value = parseBool(text)) return scalarNode(type, *value);
      break;
    case VdmPropertyType::kHandle:
      if (const auto value = parseHandle(text)) return scalarNode(type, *value);
      break;
    case VdmPropertyType::kTypedId:
      if (const auto value = parseId(text, drawing)) return scalarNode(type, *value);
      break;
    case VdmPropertyType::kBlob:
      if (auto value = parseHex(text)) return scalarNode(type, std::move(*value));
      break;
    case VdmPropertyType::kProperty:
    case VdmPropertyType::kArray:
    case VdmPropertyType::kMap:
      break;
  }
  throw CliError(mismatchText(text, type));
}

std::string hexText(const VdmBlob& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    text += kDigits[code >> 4];
    text += kDigits[code & 15u];
  }
  return text;
}

}  // namespace cli
