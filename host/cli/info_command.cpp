// `vdm info`: what a drawing holds.
#include "host/cli/info_command.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/cli/drawing_facts.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "platform/db/drawing_settings.h"
#include "platform/db/read_faults.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Align = TextTable::Align;

/// What is known of the file besides its objects.
struct FileFacts {
  std::string path;
  int format = 0;
  std::uintmax_t bytes = 0;
};

// JSON.

Json variablesJson(const OdDbDatabase& drawing) {
  Json json = Json::object();
  for (const OdDbSettingRow& row : OdDbDrawingSettings::rows()) {
    const OdResBufPtr value = drawing.getSysVar(OdString(row.name));
    switch (row.kind) {
      case OdDbSettingRow::Kind::kInt16:
        json[row.name] = value->getInt16();
        break;
      case OdDbSettingRow::Kind::kDouble:
        json[row.name] = value->getDouble();
        break;
      case OdDbSettingRow::Kind::kBool:
        json[row.name] = value->getBool();
        break;
      case OdDbSettingRow::Kind::kHandle:
        json[row.name] = str(value->getHandle());
        break;
    }
  }
  return json;
}

Json blockJson(const BlockFacts& block) {
  Json json{{"name", block.name},
            {"handle", str(block.handle)},
            {"entities", block.entities},
            {"references", block.references},
            {"layout", block.layout}};
  if (!block.xrefPath.empty()) json["xref"] = block.xrefPath;
  return json;
}

Json solidJson(const SolidFacts& solid) {
  Json json{{"handle", str(solid.handle)}, {"block", solid.block},   {"name", solid.name},
            {"kind", solid.kind},          {"faces", solid.faces},   {"edges", solid.edges},
            {"vertices", solid.vertices},  {"volume", solid.volume}, {"area", solid.area}};
  if (!solid.fault.empty()) json["fault"] = solid.fault;
  return json;
}

template <class T, class Make>
Json listJson(const std::vector<T>& items, const Make& make) {
  Json json = Json::array();
  for (const T& item : items) json.push_back(make(item));
  return json;
}

Json infoJson(const FileFacts& file, const DrawingFacts& facts, const OdDbDatabase& drawing) {
  return {{"file", file.path},
          {"format", file.format},
          {"bytes", file.bytes},
          {"units", facts.units},
          {"objects", facts.objects},
          {"proxies", facts.proxies},
          {"proxy_classes", facts.proxyClasses},
          {"variables", variablesJson(drawing)},
          {"layers", facts.layers},
          {"blocks", listJson(facts.blocks, blockJson)},
          {"inserts", facts.inserts},
          {"solids", listJson(facts.solids, solidJson)},
          {"faults", facts.faults}};
}

// Text.

std::string headText(const FileFacts& file, const DrawingFacts& facts) {
  std::string text = oneLine(file.path) + "\n";
  text += "  file     format " + std::to_string(file.format) + ", " + byteCount(file.bytes) + "\n";
  text += "  units    " + facts.units + "\n";
  text += "  objects  " + std::to_string(facts.objects) + ", among them " +
          counted(facts.inserts, "insert") + " and " + counted(facts.solids.size(), "solid") + "\n";
  if (facts.proxies != 0) {
    text += "  proxies  " + counted(facts.proxies, "object") + " of unknown classes:\n";
    for (const auto& [name, count] : facts.proxyClasses) {
      text += "           " + std::to_string(count) + " x " + oneLine(name) + "\n";
    }
  }
  return text;
}

std::string blocksText(const DrawingFacts& facts) {
  TextTable table({{"HANDLE", Align::kRight},
                   {"BLOCK", Align::kLeft},
                   {"ENTITIES", Align::kRight},
                   {"INSERTS", Align::kRight}},
                  "  ");
  for (const BlockFacts& block : facts.blocks) {
    table.addRow(
        {str(block.handle),
         oneLine(block.xrefPath.empty() ? block.name
                                        : block.name + " (external: " + block.xrefPath + ")"),
         std::to_string(block.entities), std::to_string(block.references)});
  }
  return table.text();
}

std::string solidsText(const DrawingFacts& facts) {
  TextTable table({{"HANDLE", Align::kRight},
                   {"SOLID", Align::kLeft},
                   {"BLOCK", Align::kLeft},
                   {"FACES", Align::kRight},
                   {"EDGES", Align::kRight},
                   {"VERTICES", Align::kRight},
                   {"VOLUME mm3", Align::kRight},
                   {"AREA mm2", Align::kRight}},
                  "  ");
  for (const SolidFacts& solid : facts.solids) {
    std::string name = solid.kind == "solid" ? solid.name : solid.name + " (" + solid.kind + ")";
    if (!solid.fault.empty()) name = solid.fault;
    table.addRow({str(solid.handle), oneLine(name), oneLine(solid.block),
                  std::to_string(solid.faces), std::to_string(solid.edges),
                  std::to_string(solid.vertices), roundedNumber(solid.volume),
                  roundedNumber(solid.area)});
  }
  return table.text();
}

std::string infoText(const FileFacts& file, const DrawingFacts& facts) {
  std::string text = headText(file, facts);
  for (const std::string& part : {blocksText(facts), solidsText(facts)}) {
    if (!part.empty()) text += "\n" + part;
  }
  if (!facts.faults.empty()) {
    text += "\n  unreadable:\n";
    for (const std::string& fault : facts.faults) text += "  " + oneLine(fault) + "\n";
  }
  return text;
}

bool isSound(const DrawingFacts& facts) {
  return facts.faults.empty() && std::ranges::all_of(facts.solids, [](const SolidFacts& solid) {
           return solid.fault.empty();
         });
}

}  // namespace

int runInfo(const SessionSettings& settings, const InfoOptions& options) {
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead);
  const FileFacts file{options.input, oddbFormatVersion(&*drawing), fileSize(options.input)};
  const DrawingFacts facts =
      withProgress("measuring " + options.input, [&] { return gatherFacts(*drawing); });
  printResult(
      settings, [&] { return infoJson(file, facts, *drawing); },
      [&] { return infoText(file, facts); });
  return exitCodeFor(isSound(facts));
}

}  // namespace cli
