// Findings of a check as text, JSON and SARIF.
#include "host/cli/audit_output.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>

#include "host/cli/text_output.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kSchema =
    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/sarif-schema-2.1.0.json";
using vdm_host::AuditLevel;
using vdm_host::DrawingFinding;

std::string handleText(OdUInt64 handle) { return handle == 0 ? "" : str(OdDbHandle(handle)); }

const char* levelText(AuditLevel level) { return level == AuditLevel::kError ? "error" : "note"; }

std::vector<std::string> alikeHandles(const DrawingFinding& finding) {
  std::vector<std::string> handles;
  for (const OdUInt64 handle : finding.alike) handles.push_back(handleText(handle));
  return handles;
}

std::string alikeText(const DrawingFinding& finding) {
  std::string text;
  for (const std::string& handle : alikeHandles(finding)) {
    text += (text.empty() ? ", and so is " : ", ") + handle;
  }
  return text;
}

/// RFC 3986: what is neither unreserved nor a slash is written as its bytes.
std::string uriOf(const std::string& path) {
  std::string uri;
  for (const char byte : path) {
    const auto code = static_cast<unsigned char>(byte);
    if (std::isalnum(code) != 0 || std::string_view("-._~/").find(byte) != std::string_view::npos) {
      uri += byte;
      continue;
    }
    std::array<char, 4> escape{};
    std::snprintf(escape.data(), escape.size(), "%%%02X", static_cast<unsigned>(code));
    uri += escape.data();
  }
  return uri;
}

Json location(const std::string& uri, OdUInt64 handle) {
  Json place{{"physicalLocation", {{"artifactLocation", {{"uri", uri}}}}}};
  if (handle != 0) {
    place["logicalLocations"] = Json::array({{{"name", handleText(handle)}, {"kind", "object"}}});
  }
  return place;
}

Json result(const DrawingFinding& finding, std::size_t ruleIndex, const std::string& uri) {
  Json places = Json::array({location(uri, finding.handle)});
  for (const OdUInt64 handle : finding.alike) places.push_back(location(uri, handle));
  return {{"ruleId", str(finding.code)},
          {"ruleIndex", ruleIndex},
          {"level", levelText(finding.level)},
          {"message", {{"text", str(finding.text)}}},
          {"locations", std::move(places)},
          {"properties", {{"fix", str(finding.remedy)}, {"mended", finding.mended}}}};
}

}  // namespace

std::string findingLine(const DrawingFinding& finding) {
  std::string line = str(finding.text) + alikeText(finding);
  if (!finding.remedy.isEmpty()) {
    line += ", " + str(finding.remedy) + (finding.mended ? " is set" : " would be set");
  }
  return line + " [" + str(finding.code) + "]";
}

Json findingsJson(const std::vector<DrawingFinding>& findings) {
  Json list = Json::array();
  for (const DrawingFinding& finding : findings) {
    list.push_back({{"code", str(finding.code)},
                    {"level", levelText(finding.level)},
                    {"handle", handleText(finding.handle)},
                    {"text", str(finding.text)},
                    {"fix", str(finding.remedy)},
                    {"mended", finding.mended},
                    {"alike", alikeHandles(finding)}});
  }
  return list;
}

Json findingsSarif(const std::vector<DrawingFinding>& findings, const std::string& input) {
  const std::string uri = uriOf(input);
  std::map<std::string, std::size_t> ruleIndices;
  for (const DrawingFinding& finding : findings) ruleIndices[str(finding.code)] = 0;
  Json rules = Json::array();
  for (auto& [code, index] : ruleIndices) {
    index = rules.size();
    rules.push_back({{"id", code}});
  }
  Json results = Json::array();
  for (const DrawingFinding& finding : findings) {
    results.push_back(result(finding, ruleIndices.at(str(finding.code)), uri));
  }
  const Json driver{{"name", "vdm"}, {"version", VDM_VERSION}, {"rules", std::move(rules)}};
  return {{"$schema", kSchema},
          {"version", "2.1.0"},
          {"runs", Json::array({{{"tool", {{"driver", driver}}},
                                 {"artifacts", Json::array({{{"location", {{"uri", uri}}}}})},
                                 {"results", std::move(results)}}})}};
}

}  // namespace cli
