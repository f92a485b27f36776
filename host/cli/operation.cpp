// Edits of a drawing as data.
#include "host/cli/operation.h"

#include <charconv>
#include <cmath>

#include "host/cli/cli_error.h"
#include "host/cli/text_output.h"
#include "platform/modeler/reach.h"

namespace cli {

namespace {

[[noreturn]] void refuse(const std::string& name, const std::string& value, const char* wanted) {
  throw CliError(name + " is " + quote(value) + ", it must be " + wanted, kWrongUsage);
}

/// Lengths, places and angles alike: nothing that a modeller works with is larger.
void requireReach(const std::string& name, const std::string& value, const OdGePoint3d& point) {
  if (odIsWithinReach(point)) return;
  throw CliError(
      name + " is " + quote(value) + ", numbers are at most " + roundedNumber(kOdModelerReach),
      kWrongUsage);
}

std::vector<Operation> collectOperations() {
  std::vector<Operation> all;
  for (const auto family :
       {referenceOperations(), componentOperations(), entityOperations(), featureOperations(),
        paramOperations(), bindingOperations(), configOperations()}) {
    all.insert(all.end(), family.begin(), family.end());
  }
  return all;
}

}  // namespace

std::optional<double> parseNumber(std::string_view text) {
  double value = 0.0;
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return {};
  return value;
}

std::optional<OdGePoint3d> parsePoint(std::string_view text) {
  double parts[3];
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t comma = text.find(',');
    if ((comma == std::string_view::npos) != (i == 2)) return {};
    std::string_view part = text.substr(0, comma);
    while (part.starts_with(' ')) part.remove_prefix(1);
    while (part.ends_with(' ')) part.remove_suffix(1);
    const std::optional<double> value = parseNumber(part);
    if (!value) return {};
    parts[i] = *value;
    text.remove_prefix(i == 2 ? text.size() : comma + 1);
  }
  return OdGePoint3d(parts[0], parts[1], parts[2]);
}

std::string Arguments::text(const std::string& name) const {
  const std::vector<std::string>& values = texts(name);
  return values.empty() ? std::string() : values.front();
}

const std::vector<std::string>& Arguments::texts(const std::string& name) const {
  static const std::vector<std::string> kNone;
  const auto found = m_values.find(name);
  return found == m_values.end() ? kNone : found->second;
}

double Arguments::number(const std::string& name) const {
  const std::optional<double> value = parseNumber(text(name));
  if (!value) refuse(name, text(name), "a finite number");
  requireReach(name, text(name), {*value, 0.0, 0.0});
  return *value;
}

std::optional<double> Arguments::optionalNumber(const std::string& name) const {
  return has(name) ? std::optional<double>(number(name)) : std::nullopt;
}

OdGePoint3d Arguments::point(const std::string& name) const {
  const std::optional<OdGePoint3d> value = parsePoint(text(name));
  if (!value) refuse(name, text(name), "three finite numbers x,y,z");
  requireReach(name, text(name), *value);
  return *value;
}

OdGeVector3d Arguments::vector(const std::string& name) const {
  const std::string value = text(name);
  if (value == "x") return OdGeVector3d::kXAxis;
  if (value == "y") return OdGeVector3d::kYAxis;
  if (value == "z") return OdGeVector3d::kZAxis;
  const std::optional<OdGePoint3d> point = parsePoint(value);
  if (!point) refuse(name, value, "three finite numbers x,y,z, or one of x, y and z");
  requireReach(name, value, *point);
  return {point->x, point->y, point->z};
}

OdModelerReadOptions stepOptionsOf(const Arguments& arguments) {
  OdModelerReadOptions options;
  options.encoding = OdString(arguments.text(kEncodingParameter.name));
  return options;
}

std::span<const Operation> operations() {
  static const std::vector<Operation> kAll = collectOperations();
  return kAll;
}

const Operation* findOperation(std::string_view name) {
  for (const Operation& operation : operations()) {
    if (name == operation.name) return &operation;
  }
  return nullptr;
}

void requireEdited(const vdm_host::EditResult& result) {
  if (result.ok()) return;
  std::string line = str(result.status.text);
  if (line.empty()) line = odResultText(result.status.code);
  for (const vdm_host::FeatureReport& feature : result.report.features) {
    if (feature.outcome != vdm_host::FeatureOutcome::kFailed) continue;
    const std::string why = str(feature.text);
    const std::string name = quote(feature.name.utf8());
    if (line.find(name) != std::string::npos && line.find(why) != std::string::npos) continue;
    line += "; feature " + name + " failed" + (why.empty() ? "" : ": " + why);
  }
  throw CliError(line);
}

}  // namespace cli
