// `vdm param`: the parameters of a block.
#include "host/cli/param_command.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/cli/model_lookup.h"
#include "host/cli/opened_drawing.h"
#include "host/modeling/component_query.h"
#include "host/modeling/component_size_feature.h"
#include "host/parameters/parameter_query.h"
#include "platform/assoc/assoc_variable.h"
#include "vdm_db/features/vdm_feature.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Align = TextTable::Align;
using vdm_host::ParameterInfo;
using vdm_host::ParameterLimits;
using vdm_host::ParameterLink;

/// The drawing, and the block in it that the options name.
struct OpenedBlock {
  OpenedBlock(const SessionSettings& settings, const ParamOptions& options)
      : drawing(settings, options.input, DrawingSession::Access::kRead, Modules::kRequired),
        id(findBlock(*drawing, options.block)) {}

  [[nodiscard]] ParameterInfo parameter(const std::string& name) const {
    const OdDbObjectId found = vdm_host::findParameter(id, OdString(name));
    if (found.isNull()) throw CliError("there is no parameter " + quote(name));
    return vdm_host::describeParameter(found);
  }

  OpenedDrawing drawing;
  OdDbObjectId id;
};

std::string joined(const OdStringArray& texts) {
  std::string text;
  for (const OdString& one : texts) text += (text.empty() ? "" : ", ") + str(one);
  return text;
}

// ---- Limits, in the unit in which the value is shown

std::string limitText(const ParameterInfo& parameter) {
  const ParameterLimits& limits = parameter.limits;
  const double factor =
      vdm_host::shownValue(1.0, parameter.dimension, OdDb::kUnitsUndefined).number;
  const auto shown = [factor](double number) { return roundedNumber(number * factor); };
  std::string text;
  if (limits.min) text += shown(*limits.min);
  if (limits.min || limits.max) text += "..";
  if (limits.max) text += shown(*limits.max);
  if (limits.step) text += (text.empty() ? "step " : " step ") + shown(*limits.step);
  for (std::size_t i = 0; i < limits.choices.size(); ++i) {
    text += (i > 0 ? "|" : text.empty() ? "" : " ") + shown(limits.choices[i]);
  }
  return text;
}

Json limitsJson(const ParameterLimits& limits) {
  Json json = Json::object();
  if (limits.min) json["min"] = *limits.min;
  if (limits.max) json["max"] = *limits.max;
  if (limits.step) json["step"] = *limits.step;
  if (!limits.choices.empty()) json["choices"] = limits.choices;
  return json;
}

// ---- One parameter

std::string valueCell(const ParameterInfo& parameter) {
  return parameter.isText ? oneLine(parameter.text.utf8()) : roundedNumber(parameter.shown.number);
}

/// Values in base units, as they are computed with.
Json parameterJson(const ParameterInfo& parameter) {
  Json json{{"name", str(parameter.name)}, {"handle", handleOf(parameter.variable)}};
  if (parameter.isText) {
    json["text"] = str(parameter.text);
  } else {
    json["value"] = parameter.value;
    json["shown"] = parameter.shown.number;
    json["unit"] = str(parameter.shown.unit);
    json["dimension"] = str(parameter.dimension.text());
  }
  json["expression"] = str(parameter.expression);
  json["users"] = Json::array();
  for (const OdString& user : parameter.users) json["users"].push_back(str(user));
  json["exposed"] = parameter.isExposed;
  json["limits"] = limitsJson(parameter.limits);
  json["fault"] = str(parameter.fault);
  return json;
}

Json listJson(const std::string& input, const std::vector<ParameterInfo>& parameters) {
  Json list = Json::array();
  for (const ParameterInfo& parameter : parameters) list.push_back(parameterJson(parameter));
  return {{"file", input}, {"parameters", std::move(list)}};
}

std::string listText(const std::string& input, const std::vector<ParameterInfo>& parameters) {
  TextTable table({{"NAME", Align::kLeft},
                   {"VALUE", Align::kRight},
                   {"UNIT", Align::kLeft},
                   {"EXPRESSION", Align::kLeft},
                   {"LIMITS", Align::kLeft},
                   {"USED BY", Align::kLeft},
                   {"EXPOSED", Align::kLeft}});
  for (const ParameterInfo& parameter : parameters) {
    std::string expression = oneLine(parameter.expression.utf8());
    if (!parameter.fault.isEmpty()) expression += " (" + str(parameter.fault) + ")";
    table.addRow({str(parameter.name), valueCell(parameter), str(parameter.shown.unit), expression,
                  limitText(parameter), joined(parameter.users), parameter.isExposed ? "yes" : ""});
  }
  return table.isEmpty() ? input + " has no parameters\n" : table.text();
}

// ---- Explaining

/// References of a feature, which are what its faces are in the present bodies. A component's sizes
/// reach the faces of all its inserts.
std::vector<std::string> facesOf(const OdDbObjectId& carrier) {
  std::vector<std::string> faces;
  const VdmFeaturePtr feature = VdmFeature::open(carrier);
  if (feature.isNull()) return faces;
  const auto sizes = VdmComponentSizeFeature::cast(feature.get());
  if (!sizes.isNull()) {
    for (const OdDbObjectId& insert : vdm_host::componentsOfBlock(sizes->blockId())) {
      const std::string name = objectText(insert) + ": ";
      for (const std::string& face : facesOf(insert)) faces.push_back(name + face);
    }
  }
  for (const OdDbObjectId& id : feature->getAllDependencies(/*filtered=*/false)) {
    const ReferenceText text = referenceText(id);
    faces.push_back(text.subent + " of " + text.solid + " (" + text.grade + ")");
  }
  return faces;
}

std::string linkText(const ParameterLink& link) {
  std::string text = quote(link.name.utf8());
  return link.property.isEmpty() ? text : "feature " + text + ": " + str(link.property);
}

struct Explanation {
  ParameterInfo parameter;
  std::vector<ParameterLink> definitions;
  std::vector<ParameterLink> dependents;
};

bool isVariable(const OdDbObjectId& id) { return !id.openAs<OdDbAssocVariable>().isNull(); }

void appendLinks(std::string& text, const char* title, const std::vector<ParameterLink>& links) {
  if (links.empty()) return;
  text += std::string("  ") + title + "\n";
  for (const ParameterLink& link : links) {
    const std::string indent(static_cast<std::size_t>(2 + 2 * link.depth), ' ');
    if (isVariable(link.object)) {
      const auto info = vdm_host::describeParameter(link.object, vdm_host::ParameterDetail::kValue);
      text += indent + str(info.name) + " = " + str(valueText(info));
      if (!info.expression.isEmpty()) text += ", " + oneLine(info.expression.utf8());
      text += "\n";
      continue;
    }
    text += indent + linkText(link) + "\n";
    for (const std::string& face : facesOf(link.object)) text += indent + "  " + face + "\n";
  }
}

std::string explainText(const Explanation& explanation) {
  const ParameterInfo& parameter = explanation.parameter;
  std::string text = str(parameter.name) + " = " + str(valueText(parameter)) + "\n";
  if (!parameter.expression.isEmpty()) {
    text += "  expression  " + oneLine(parameter.expression.utf8()) + "\n";
  }
  if (!parameter.isText) text += "  measures    " + str(parameter.dimension.text()) + "\n";
  if (const std::string limits = limitText(parameter); !limits.empty()) {
    text += "  limits      " + limits + "\n";
  }
  appendLinks(text, "defined by", explanation.definitions);
  appendLinks(text, "drives", explanation.dependents);
  return text;
}

Json linksJson(const std::vector<ParameterLink>& links) {
  Json list = Json::array();
  for (const ParameterLink& link : links) {
    Json one{{"depth", link.depth},
             {"handle", handleOf(link.object)},
             {"kind", isVariable(link.object) ? "parameter" : "feature"},
             {"name", str(link.name)}};
    if (!link.property.isEmpty()) one["property"] = str(link.property);
    if (!isVariable(link.object)) one["faces"] = facesOf(link.object);
    list.push_back(std::move(one));
  }
  return list;
}

}  // namespace

int runParamList(const SessionSettings& settings, const ParamOptions& options) {
  const OpenedBlock block(settings, options);
  const std::vector<ParameterInfo> parameters = vdm_host::listParameters(block.id);
  printResult(
      settings, [&] { return listJson(options.input, parameters); },
      [&] { return listText(options.input, parameters); });
  return kDone;
}

int runParamGet(const SessionSettings& settings, const ParamOptions& options) {
  const OpenedBlock block(settings, options);
  std::vector<ParameterInfo> parameters;
  for (const std::string& name : options.names) parameters.push_back(block.parameter(name));
  printResult(
      settings, [&] { return listJson(options.input, parameters); },
      [&] {
        std::string text;
        for (const ParameterInfo& parameter : parameters) {
          text += str(parameter.name) + " = " + str(valueText(parameter)) + "\n";
        }
        return text;
      });
  return kDone;
}

int runParamExplain(const SessionSettings& settings, const ParamOptions& options) {
  const OpenedBlock block(settings, options);
  const ParameterInfo parameter = block.parameter(options.names.front());
  const Explanation explanation{parameter, vdm_host::definitionsOf(parameter.variable),
                                vdm_host::dependentsOf(parameter.variable)};
  printResult(
      settings,
      [&] {
        Json json{{"file", options.input}};
        json.update(parameterJson(parameter));
        json["definedBy"] = linksJson(explanation.definitions);
        json["drives"] = linksJson(explanation.dependents);
        return json;
      },
      [&] { return explainText(explanation); });
  return kDone;
}

int runParamCheck(const SessionSettings& settings, const ParamOptions& options) {
  const OpenedBlock block(settings, options);
  const auto findings = vdm_host::checkParameters(block.id);
  const auto isError = [](const vdm_host::ParameterFinding& finding) { return finding.isError(); };
  const bool sound = std::ranges::none_of(findings, isError);
  printResult(
      settings,
      [&] {
        Json list = Json::array();
        for (const auto& finding : findings) {
          list.push_back({{"kind", kindName(finding.kind)},
                          {"name", str(finding.name)},
                          {"text", str(finding.text)},
                          {"error", finding.isError()}});
        }
        return Json{{"file", options.input}, {"sound", sound}, {"findings", std::move(list)}};
      },
      [&] {
        TextTable table(
            {{"PARAMETER", Align::kLeft}, {"FINDING", Align::kLeft}, {"TEXT", Align::kLeft}});
        for (const auto& finding : findings) {
          table.addRow({str(finding.name), kindName(finding.kind), oneLine(finding.text.utf8())});
        }
        return (sound ? "sound: " : "not sound: ") + counted(findings.size(), "finding") + "\n" +
               table.text();
      });
  return exitCodeFor(sound);
}

}  // namespace cli
