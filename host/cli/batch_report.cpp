// What came of a batch.
#include "host/cli/batch_report.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>

#include "host/cli/batch_row.h"
#include "host/cli/cli_error.h"
#include "host/cli/text_output.h"
#include "host/parameters/table_file.h"
#include "host/rendering/contact_sheet.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Align = TextTable::Align;

constexpr std::size_t kMostLines = 40;

std::string textOf(const Json& record, const char* key) {
  const auto found = record.find(key);
  return found != record.end() && found->is_string() ? found->get<std::string>() : std::string();
}

/// Rounded for people; empty where the row has no such figure.
std::string roundedIn(const Json& record, const char* key) {
  const auto found = record.find(key);
  return found != record.end() && found->is_number() ? roundedNumber(found->get<double>()) : "";
}

std::string secondsIn(const Json& record) {
  const auto found = record.find("seconds");
  if (found == record.end() || !found->is_number()) return {};
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.2f", found->get<double>());
  return text.data();
}

std::size_t countIn(const Json& record, const char* key) {
  const auto found = record.find(key);
  return found != record.end() && found->is_array() ? found->size() : 0;
}

/// Of the first row that has figures.
std::string unitsOf(const BatchResults& results) {
  for (const Json& record : results) {
    if (record.contains("units")) return textOf(record, "units");
  }
  return {};
}

bool haveMass(const BatchResults& results) {
  return std::ranges::any_of(results, [](const Json& one) { return one.contains("mass"); });
}

std::string withUnit(const std::string& name, const std::string& unit) {
  return unit.empty() ? name : name + " [" + unit + "]";
}

// ---- Spreadsheets

/// A number at a place of a record, such as /box/0/1.
struct FigureRow {
  const char* name;
  const char* pointer;
  const char* power;  ///< of the unit of length; null: none
};
constexpr FigureRow kFigures[] = {
    {"volume", "/volume", "^3"},   {"area", "/area", "^2"},       {"min x", "/box/0/0", ""},
    {"min y", "/box/0/1", ""},     {"min z", "/box/0/2", ""},     {"max x", "/box/1/0", ""},
    {"max y", "/box/1/1", ""},     {"max z", "/box/1/2", ""},     {"centre x", "/centre/0", ""},
    {"centre y", "/centre/1", ""}, {"centre z", "/centre/2", ""},
};

/// Parameters of all rows by name, in the order of their appearance, as headers.
std::vector<std::pair<std::string, std::string>> parameterHeaders(const BatchResults& results) {
  std::vector<std::pair<std::string, std::string>> headers;
  for (const Json& record : results) {
    for (const Json& one : record.value("parameters", Json::array())) {
      const std::string name = textOf(one, "name");
      const auto isNamed = [&name](const auto& header) { return header.first == name; };
      if (std::ranges::any_of(headers, isNamed)) continue;
      headers.emplace_back(name, withUnit(name, textOf(one, "unit")));
    }
  }
  return headers;
}

std::string parameterCell(const Json& record, const std::string& name) {
  for (const Json& one : record.value("parameters", Json::array())) {
    if (textOf(one, "name") != name) continue;
    return one.contains("text") ? textOf(one, "text") : exactNumber(one["value"].get<double>());
  }
  return {};
}

std::string figureCell(const Json& record, const char* pointer) {
  const Json::json_pointer place(pointer);
  return record.contains(place) && record.at(place).is_number()
             ? exactNumber(record.at(place).get<double>())
             : std::string();
}

std::string joined(const Json& list, const char* key) {
  std::string text;
  for (const Json& one : list) {
    text +=
        (text.empty() ? "" : "; ") + (one.is_string() ? one.get<std::string>() : textOf(one, key));
  }
  return text;
}

void addRow(vdm_host::TableSheet& sheet, const std::vector<std::string>& cells) {
  sheet.columns = static_cast<unsigned>(cells.size());
  ++sheet.rows;
  for (const std::string& cell : cells) sheet.cells.append(OdString(cell));
}

}  // namespace

bool isSoundRow(const Json& record) { return textOf(record, "status") == kRowSound; }

std::string batchText(const BatchResults& results) {
  const std::string unit = unitsOf(results);
  const bool withMass = haveMass(results);
  TextTable table({{"ROW", Align::kLeft},
                   {"STATUS", Align::kLeft},
                   {"VOLUME" + (unit.empty() ? "" : " " + unit + "3"), Align::kRight},
                   {"AREA" + (unit.empty() ? "" : " " + unit + "2"), Align::kRight},
                   {withMass ? "MASS kg" : "", Align::kRight},
                   {"LOST", Align::kRight},
                   {"AMBIGUOUS", Align::kRight},
                   {"FAILED", Align::kRight},
                   {"TIME s", Align::kRight}});
  const auto countText = [](const Json& record, const char* key) {
    return record.contains(key) ? std::to_string(countIn(record, key)) : std::string();
  };
  std::string faults;
  std::size_t numFaults = 0;
  for (std::size_t i = 0; i < results.size(); ++i) {
    const Json& record = results[i];
    if (const std::string why = textOf(record, "message");
        !isSoundRow(record) && ++numFaults <= kMostLines) {
      faults += wrapped(oneLine(textOf(record, "row") + ": " + why), "  ");
    }
    if (i >= kMostLines) continue;
    table.addRow({oneLine(textOf(record, "row")), textOf(record, "status"),
                  roundedIn(record, "volume"), roundedIn(record, "area"), roundedIn(record, "mass"),
                  countText(record, "lost"), countText(record, "ambiguous"),
                  countText(record, "failed"), secondsIn(record)});
  }
  std::string text = table.text();
  if (results.size() > kMostLines) {
    text += "... and " + counted(results.size() - kMostLines, "row") + " more\n";
  }
  if (numFaults > 0) text += "not sound: " + counted(numFaults, "row") + "\n" + faults;
  if (numFaults > kMostLines)
    text += "  ... and " + std::to_string(numFaults - kMostLines) + " more\n";
  return text;
}

Json batchJson(const BatchResults& results) {
  Json rows = Json::array();
  for (const Json& record : results) {
    Json& row = rows.emplace_back(record);
    row.erase("inputs");
  }
  return {{"sound", std::ranges::all_of(results, isSoundRow)}, {"rows", std::move(rows)}};
}

std::string batchCsv(const BatchResults& results) {
  const std::string unit = unitsOf(results);
  const auto parameters = parameterHeaders(results);
  const bool withMass = haveMass(results);
  vdm_host::TableSheet sheet;
  std::vector<std::string> cells{"row", "status"};
  for (const auto& header : parameters) cells.push_back(header.second);
  for (const FigureRow& figure : kFigures) {
    cells.push_back(withUnit(figure.name, unit.empty() ? "" : unit + figure.power));
  }
  if (withMass) cells.emplace_back("mass [kg]");
  for (const char* name : {"lost", "ambiguous", "failed", "time [s]", "files", "message"}) {
    cells.emplace_back(name);
  }
  addRow(sheet, cells);
  for (const Json& record : results) {
    cells = {textOf(record, "row"), textOf(record, "status")};
    for (const auto& header : parameters) cells.push_back(parameterCell(record, header.first));
    for (const FigureRow& figure : kFigures) cells.push_back(figureCell(record, figure.pointer));
    if (withMass) cells.push_back(figureCell(record, "/mass"));
    for (const char* list : {"lost", "ambiguous", "failed"}) {
      cells.push_back(joined(record.value(list, Json::array()), "name"));
    }
    cells.push_back(figureCell(record, "/seconds"));
    cells.push_back(joined(record.value("files", Json::array()), "path"));
    cells.push_back(textOf(record, "message"));
    addRow(sheet, cells);
  }
  return vdm_host::writeTable(sheet);
}

void writeSheet(const std::string& path, const std::vector<std::string>& pictures,
                const BatchResults& results) {
  std::vector<rendering::SheetTile> tiles;
  const std::string unit = unitsOf(results);
  for (std::size_t i = 0; i < results.size(); ++i) {
    const Json& record = results[i];
    rendering::SheetTile& tile = tiles.emplace_back();
    std::error_code failure;
    if (std::filesystem::is_regular_file(pictures[i], failure)) tile.picture = pictures[i];
    tile.title = oneLine(textOf(record, "row"));
    tile.isSound = isSoundRow(record);
    const std::string mass = roundedIn(record, "mass");
    const std::string volume = roundedIn(record, "volume");
    tile.note = !tile.isSound   ? textOf(record, "status") + ": " + textOf(record, "message")
                : !mass.empty() ? mass + " kg"
                : unit.empty()  ? volume
                                : volume + " " + unit + "^3";
  }
  const std::string why = rendering::writeContactSheet(path, tiles);
  if (!why.empty()) throw CliError(why);
}

}  // namespace cli
