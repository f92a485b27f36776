// What SARIF 2.1.0 requires of a log: each object kind is a row of its properties.
#include "tests/host/cli/sarif_check.h"

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

namespace cli_testing {

namespace {

using Json = nlohmann::json;

struct Property {
  const char* name;
  const char* kind;  ///< of a text, "index", "bag", "text", "uri", a fixed text, or a row below
  bool isRequired = false;
  bool isArray = false;
};

/// The object kinds of the standard (sections 3.13 to 3.52) that a log of findings has, with those
/// of their properties that name something.
const std::map<std::string, std::vector<Property>>& kinds() {
  static const std::map<std::string, std::vector<Property>> rows = {
      {"sarifLog", {{"$schema", "uri"}, {"version", "=2.1.0", true}, {"runs", "run", true, true}}},
      {"run",
       {{"tool", "tool", true},
        {"artifacts", "artifact", false, true},
        {"results", "result", false, true}}},
      {"tool", {{"driver", "toolComponent", true}}},
      {"toolComponent",
       {{"name", "text", true}, {"version", "text"}, {"rules", "rule", false, true}}},
      {"rule", {{"id", "text", true}, {"shortDescription", "message"}, {"helpUri", "uri"}}},
      {"artifact", {{"location", "artifactLocation"}}},
      {"artifactLocation", {{"uri", "uri"}, {"index", "index"}}},
      {"result",
       {{"ruleId", "text"},
        {"ruleIndex", "index"},
        {"level", "level"},
        {"message", "message", true},
        {"locations", "location", false, true},
        {"properties", "bag"}}},
      {"message", {{"text", "text", true}}},
      {"location",
       {{"physicalLocation", "physicalLocation"},
        {"logicalLocations", "logicalLocation", false, true}}},
      {"physicalLocation", {{"artifactLocation", "artifactLocation", true}}},
      {"logicalLocation", {{"name", "text"}, {"kind", "text"}}},
  };
  return rows;
}

bool isUri(const std::string& text) {
  constexpr std::string_view kOthers = "-._~:/?#[]@!$&'()*+,;=%";
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte > 0x7E || (std::isalnum(byte) == 0 && kOthers.find(text[i]) == kOthers.npos)) {
      return false;
    }
    const auto isHex = [&](std::size_t at) {
      return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])) != 0;
    };
    if (text[i] == '%' && !(isHex(i + 1) && isHex(i + 2))) return false;
  }
  return !text.empty();
}

class Check {
 public:
  std::vector<std::string> faults;

  void value(const Json& json, const std::string& kind, const std::string& at) {
    static const std::set<std::string> levels = {"none", "note", "warning", "error"};
    const auto row = kinds().find(kind);
    if (row != kinds().end()) return object(json, row->second, at);
    if (kind == "bag") return require(json.is_object(), at, "is no property bag");
    if (kind == "index") return require(json.is_number_unsigned(), at, "is no index");
    if (!json.is_string()) return require(false, at, "is no text");
    const auto text = json.get<std::string>();
    if (kind == "text") require(!text.empty(), at, "is empty");
    if (kind == "uri") require(isUri(text), at, "is no URI reference: " + text);
    if (kind == "level") require(levels.contains(text), at, "is no level: " + text);
    if (kind[0] == '=') require(text == kind.substr(1), at, "is " + text);
  }

  /// Indices lead to what has the same name; what an array must not have twice.
  void relations(const Json& run, const std::string& at) {
    const Json rules = run["tool"]["driver"].value("rules", Json::array());
    std::set<std::string> ids;
    for (const Json& rule : rules) {
      require(ids.insert(rule["id"]).second, at, "rule twice: " + rule["id"].dump());
    }
    require(run.contains("results"), at, "has no results: the tool did not run to its end");
    for (const Json& result : run.value("results", Json::array())) {
      const std::size_t index = result.value("ruleIndex", rules.size());
      require(index < rules.size() && rules[index]["id"] == result.value("ruleId", ""), at,
              "a result does not lead to its rule: " + result.dump());
      require(!result.value("locations", Json::array()).empty(), at, "a result without a place");
    }
  }

 private:
  void require(bool holds, const std::string& at, const std::string& what) {
    if (!holds) faults.push_back(at + " " + what);
  }
  void object(const Json& json, const std::vector<Property>& properties, const std::string& at) {
    if (!json.is_object()) return require(false, at, "is no object");
    std::set<std::string> known;
    for (const Property& property : properties) {
      known.insert(property.name);
      const std::string place = at + "." + property.name;
      const auto found = json.find(property.name);
      if (found == json.end()) {
        require(!property.isRequired, place, "is missing");
      } else if (!property.isArray) {
        value(*found, property.kind, place);
      } else if (!found->is_array()) {
        require(false, place, "is no array");
      } else {
        for (std::size_t i = 0; i < found->size(); ++i) {
          value((*found)[i], property.kind, place + "[" + std::to_string(i) + "]");
        }
      }
    }
    for (const auto& item : json.items()) {
      require(known.contains(item.key()), at, "has the unknown property " + item.key());
    }
  }
};

}  // namespace

std::vector<std::string> sarifFaults(const Json& log) {
  Check check;
  check.value(log, "sarifLog", "$");
  if (!check.faults.empty()) return check.faults;
  for (const Json& run : log["runs"]) check.relations(run, "$.runs");
  return check.faults;
}

}  // namespace cli_testing
