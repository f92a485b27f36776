// `vdm component show`, `vdm feature show`: what they take from numbers and expressions.
#include "host/cli/binding_command.h"

#include <nlohmann/json.hpp>

#include "host/cli/model_lookup.h"
#include "host/cli/opened_drawing.h"
#include "host/parameters/component_binding.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Align = TextTable::Align;
using vdm_host::PropertyInfo;

Json propertyJson(const PropertyInfo& property) {
  Json json{{"name", str(property.name)}};
  json["value"] = property.hasValue ? Json(property.shown.number) : Json();
  json["unit"] = str(property.shown.unit);
  json["expression"] = str(property.expression);
  json["own"] = property.isOwn;
  return json;
}

void print(const SessionSettings& settings, const BindingOptions& options,
           const std::vector<PropertyInfo>& properties) {
  printResult(
      settings,
      [&] {
        Json list = Json::array();
        for (const PropertyInfo& property : properties) list.push_back(propertyJson(property));
        return Json{
            {"file", options.input}, {"name", options.name}, {"properties", std::move(list)}};
      },
      [&] {
        TextTable table({{"PROPERTY", Align::kLeft},
                         {"VALUE", Align::kRight},
                         {"UNIT", Align::kLeft},
                         {"EXPRESSION", Align::kLeft},
                         {"FROM", Align::kLeft}});
        for (const PropertyInfo& property : properties) {
          table.addRow({str(property.name),
                        property.hasValue ? roundedNumber(property.shown.number) : "through",
                        str(property.shown.unit), oneLine(property.expression.utf8()),
                        property.isOwn ? "" : "component"});
        }
        return table.isEmpty() ? options.name + " was not made from dimensions\n" : table.text();
      });
}

}  // namespace

int runComponentShow(const SessionSettings& settings, const BindingOptions& options) {
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead,
                              Modules::kRequired);
  print(settings, options,
        vdm_host::componentProperties(findComponentBlock(*drawing, options.name)));
  return kDone;
}

int runFeatureShow(const SessionSettings& settings, const BindingOptions& options) {
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead,
                              Modules::kRequired);
  print(settings, options, vdm_host::insertProperties(findFeature(*drawing, options.name)));
  return kDone;
}

}  // namespace cli
