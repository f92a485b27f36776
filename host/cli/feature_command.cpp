// `vdm feature list`, `vdm component list`, `vdm group --list`.
#include "host/cli/feature_command.h"

#include <nlohmann/json.hpp>

#include "host/cli/model_lookup.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "host/modeling/component_feature.h"
#include "host/modeling/component_library.h"
#include "vdm_db/concrete_features/vdm_group_feature.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Align = TextTable::Align;
/// Fills one row of the table, and the same as JSON.
using Collect = void (*)(OdDbDatabase&, TextTable&, Json&);

/// One list: opens, collects, prints.
int runList(const SessionSettings& settings, const std::string& input, const char* key,
            TextTable table, Collect collect) {
  const OpenedDrawing drawing(settings, input, DrawingSession::Access::kRead, Modules::kRequired);
  Json list = Json::array();
  collect(*drawing, table, list);
  printResult(
      settings,
      [&] {
        return Json{{"file", input}, {key, std::move(list)}};
      },
      [&] { return table.isEmpty() ? input + " has no " + key + "\n" : table.text(); });
  return kDone;
}

std::string stateOf(const VdmFeature& feature) {
  const auto* component = dynamic_cast<const VdmComponentFeature*>(&feature);
  if (component == nullptr) return {};
  switch (component->state()) {
    case VdmComponentFeature::kStateNew:
      return "not cut yet";
    case VdmComponentFeature::kStateApplied:
      return "applied";
    case VdmComponentFeature::kStateSuppressed:
      break;
  }
  return "suppressed";
}

/// "Component" of VdmComponentFeature.
std::string kindOf(const VdmFeature& feature) {
  std::string name = str(feature.isA()->name());
  constexpr std::string_view kPrefix = "Vdm";
  constexpr std::string_view kEnding = "Feature";
  if (name.starts_with(kPrefix)) name.erase(0, kPrefix.size());
  if (name.ends_with(kEnding) && name.size() > kEnding.size()) {
    name.resize(name.size() - kEnding.size());
  }
  return name;
}

void collectFeatures(OdDbDatabase& drawing, TextTable& table, Json& list) {
  for (const OdDbObjectId& id : allFeatures(drawing)) {
    const VdmFeaturePtr feature = VdmFeature::open(id);
    if (feature.isNull()) continue;
    std::uint64_t unresolved = 0;
    const OdDbObjectIdArray references = feature->getAllDependencies(/*filtered=*/false);
    for (const OdDbObjectId& reference : references) {
      if (!vdm_host::resolveReference(reference).resolved()) ++unresolved;
    }
    const auto component = VdmComponentFeature::cast(feature.get());
    const std::string block = component.isNull() ? "" : str(component->componentName());
    const std::string solid = component.isNull() ? "" : handleOf(component->solidId());
    const std::string insert = component.isNull() ? "" : handleOf(component->insertId());
    std::string count = std::to_string(references.size());
    if (unresolved != 0) count += ", " + std::to_string(unresolved) + " nowhere";
    table.addRow({handleOf(id), oneLine(feature->name().utf8()), kindOf(*feature), oneLine(block),
                  insert, solid, count, stateOf(*feature)});
    list.push_back({{"feature", handleOf(id)},
                    {"name", str(feature->name())},
                    {"kind", kindOf(*feature)},
                    {"component", block},
                    {"insert", insert},
                    {"solid", solid},
                    {"references", references.size()},
                    {"unresolved", unresolved},
                    {"state", stateOf(*feature)}});
  }
}

void collectComponents(OdDbDatabase& drawing, TextTable& table, Json& list) {
  for (const vdm_host::ComponentInfo& info : vdm_host::listComponents(&drawing)) {
    table.addRow({handleOf(info.block), oneLine(info.name.utf8()), std::to_string(info.numCutting),
                  std::to_string(info.numFilling), std::to_string(info.numInserts)});
    list.push_back({{"block", handleOf(info.block)},
                    {"name", str(info.name)},
                    {"cutting", info.numCutting},
                    {"filling", info.numFilling},
                    {"inserts", info.numInserts}});
  }
}

std::string memberText(const OdDbFullSubentPath& path) {
  if (path.objectIds().isEmpty()) return {};
  std::string text = handleOf(path.objectIds().last());
  const OdDbSubentId& subent = path.subentId();
  if (subent.type() == OdDb::kNullSubentType) return text;
  constexpr char kLetters[] = {'?', 'f', 'e', 'v'};
  return text + ":" + kLetters[static_cast<std::size_t>(subent.type()) % 4] + "_" +
         std::to_string(subent.index());
}

void collectGroups(OdDbDatabase& drawing, TextTable& table, Json& list) {
  for (const OdDbObjectId& id : allFeatures(drawing)) {
    const auto group = VdmGroupFeature::cast(VdmFeature::open(id).get());
    if (group.isNull()) continue;
    Json members = Json::array();
    std::string text;
    for (const OdDbFullSubentPath& path : group->getFeatureEntities(-1, /*filtered=*/false)) {
      members.push_back(memberText(path));
      text += (text.empty() ? "" : ", ") + memberText(path);
    }
    const std::string description = str(group->description());
    table.addRow({handleOf(id), oneLine(group->name().utf8()), text, oneLine(description)});
    list.push_back({{"group", handleOf(id)},
                    {"name", str(group->name())},
                    {"members", std::move(members)},
                    {"description", description}});
  }
}

}  // namespace

int runFeatureList(const SessionSettings& settings, const std::string& input) {
  return runList(settings, input, "features",
                 TextTable({{"HANDLE", Align::kRight},
                            {"NAME", Align::kLeft},
                            {"KIND", Align::kLeft},
                            {"COMPONENT", Align::kLeft},
                            {"INSERT", Align::kRight},
                            {"SOLID", Align::kRight},
                            {"REFERENCES", Align::kLeft},
                            {"STATE", Align::kLeft}}),
                 collectFeatures);
}

int runComponentList(const SessionSettings& settings, const std::string& input) {
  return runList(settings, input, "components",
                 TextTable({{"BLOCK", Align::kRight},
                            {"NAME", Align::kLeft},
                            {"CUTTING", Align::kRight},
                            {"FILLING", Align::kRight},
                            {"INSERTS", Align::kRight}}),
                 collectComponents);
}

int runGroupList(const SessionSettings& settings, const std::string& input) {
  return runList(settings, input, "groups",
                 TextTable({{"HANDLE", Align::kRight},
                            {"NAME", Align::kLeft},
                            {"MEMBERS", Align::kLeft},
                            {"DESCRIPTION", Align::kLeft}}),
                 collectGroups);
}

}  // namespace cli
