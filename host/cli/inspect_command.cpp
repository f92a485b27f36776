// `vdm faces`, `vdm edges`, `vdm vertices`, `vdm holes`.
#include "host/cli/inspect_command.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <numbers>

#include "host/cli/drawing_facts.h"
#include "host/cli/model_lookup.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/solid_labels.h"
#include "host/inspect/hole_patterns.h"
#include "host/inspect/selector.h"
#include "host/naming/subent_name.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Align = TextTable::Align;
using Type = OdModelerSubentType;
using vdm_host::BodyFacts;
using vdm_host::HoleFacts;
using vdm_host::HoleKind;
using vdm_host::SubentFacts;

constexpr double kDegrees = 180.0 / std::numbers::pi;

/// The solids that the command line means.
std::vector<OdDbObjectId> solidsMeant(OdDbDatabase& drawing, const InspectOptions& options) {
  if (!options.solid.empty()) return {findSolid(drawing, options.solid)};
  std::vector<OdDbObjectId> solids = partSolids(drawing);
  if (solids.empty()) throw CliError(options.input + " has no solids");
  return solids;
}

// Values.

std::string directionText(const OdGeVector3d& v) {
  constexpr std::pair<const char*, OdGeVector3d> kAxes[] = {
      {"x", OdGeVector3d::kXAxis}, {"y", OdGeVector3d::kYAxis}, {"z", OdGeVector3d::kZAxis}};
  if (v.isZeroLength()) return "";
  for (const auto& [name, axis] : kAxes) {
    if (v.isCodirectionalTo(axis)) return name;
    if (v.isCodirectionalTo(-axis)) return std::string("-") + name;
  }
  return pointText(OdGePoint3d(v.x, v.y, v.z));
}

/// A place for people: what is 0 within a hundred-thousandth of `size` is shown as 0.
std::string placeText(OdGePoint3d p, double size) {
  for (unsigned i = 0; i < 3; ++i) {
    const double step = std::pow(10.0, std::floor(std::log10(std::max(size, 1e-300))) - 4.0);
    p[i] = std::round(p[i] / step) * step + 0.0;
  }
  return pointText(p);
}

Json vectorJson(const OdGeVector3d& v) { return Json::array({v.x, v.y, v.z}); }
Json pointJson(const OdGePoint3d& p) { return vectorJson(p.asVector()); }

std::string joined(const std::vector<std::string>& texts) {
  std::string text;
  for (const std::string& one : texts) text += (text.empty() ? "" : ", ") + oneLine(one);
  return text;
}

std::vector<std::string> namesOf(const std::vector<OdModelerSubent>& subents) {
  std::vector<std::string> names;
  for (const OdModelerSubent subent : subents) names.push_back(str(vdm_host::subentName(subent)));
  return names;
}

std::string radiusText(const SubentFacts& facts) {
  if (facts.radius == 0.0) {
    return facts.halfAngle == 0.0 ? "" : roundedNumber(2.0 * facts.halfAngle * kDegrees) + " deg";
  }
  const std::string radius = roundedNumber(facts.radius);
  return facts.minorRadius == 0.0 ? radius : radius + "/" + roundedNumber(facts.minorRadius);
}

/// "inward" of a face, "convex" of an edge.
std::string sideText(BodyFacts& body, const SubentFacts& facts) {
  if (facts.subent.type == Type::kFace) return facts.inward ? "inward" : "";
  if (facts.subent.type == Type::kEdge)
    return vdm_host::edgeTurnName(body.turnOf(facts.subent.index));
  return "";
}

// Subentities.

/// What is chosen in one solid.
struct SolidChoice {
  OdDbObjectId solid;
  BodyFacts facts;
  std::vector<OdModelerSubent> subents;
};

std::vector<OdModelerSubent> allOf(const OdModelerBody& body, Type type) {
  std::vector<OdModelerSubent> all;
  for (OdUInt32 i = 1; i <= body.numSubents(type); ++i) all.push_back({type, i});
  return all;
}

/// Solids without a match are left out; when there is none at all, CliError of the first solid.
std::vector<SolidChoice> chooseIn(OdDbDatabase& drawing, const InspectOptions& options, Type type,
                                  const SolidLabels& labels) {
  std::optional<vdm_host::Selector> selector;
  if (!options.where.empty()) {
    const OdStatus status = vdm_host::Selector::parse(options.where, type, selector);
    if (!status.ok()) {
      throw CliError("selector " + quote(options.where) + ", " + str(status.text), kWrongUsage);
    }
    if (selector->type() != type) {
      throw CliError("selector " + quote(options.where) + " is for another command", kWrongUsage);
    }
  }
  std::vector<SolidChoice> choices;
  std::string miss;
  for (const OdDbObjectId& solid : solidsMeant(drawing, options)) {
    SolidChoice choice{solid, BodyFacts(bodyOfSolid(solid)), {}};
    if (!selector) {
      choice.subents = allOf(choice.facts.body(), type);
    } else {
      const OdStatus status = selector->select(
          choice.facts, [&](const std::string& name) { return labels.named(solid, name); },
          choice.subents);
      if (!status.ok() && miss.empty())
        miss = "solid " + solidText(solid) + ": " + str(status.text);
    }
    if (!choice.subents.empty()) choices.push_back(std::move(choice));
  }
  if (choices.empty() && selector) throw CliError(miss);
  return choices;
}

Json subentJson(BodyFacts& body, const SubentFacts& facts, const std::vector<std::string>& names) {
  Json json{{"name", str(vdm_host::subentName(facts.subent))},
            {"kind", vdm_host::subentFormName(facts.form)}};
  if (facts.subent.type != Type::kVertex) {
    json[facts.subent.type == Type::kFace ? "area" : "length"] = facts.size;
  }
  if (facts.hasDirection()) json["direction"] = vectorJson(facts.direction);
  if (facts.hasDirection()) json["origin"] = pointJson(facts.origin);
  if (facts.radius != 0.0) json["radius"] = facts.radius;
  if (facts.minorRadius != 0.0) json["minor_radius"] = facts.minorRadius;
  if (facts.halfAngle != 0.0) json["angle"] = 2.0 * facts.halfAngle * kDegrees;
  if (facts.subent.type == Type::kFace) json["inward"] = facts.inward;
  if (facts.subent.type == Type::kEdge) {
    json["closed"] = facts.closed;
    json["turn"] = sideText(body, facts);
  }
  json["middle"] = pointJson(facts.middle);
  json["box"] = Json::array({pointJson(facts.box.minPoint()), pointJson(facts.box.maxPoint())});
  json["beside"] = namesOf(body.neighboursOf(facts.subent));
  json["names"] = names;
  return json;
}

TextTable subentTable(Type type) {
  std::vector<std::pair<std::string, Align>> columns;
  const bool isFace = type == Type::kFace;
  columns.emplace_back(isFace ? "FACE" : type == Type::kEdge ? "EDGE" : "VERTEX", Align::kLeft);
  if (type != Type::kVertex) {
    columns.emplace_back("KIND", Align::kLeft);
    columns.emplace_back(isFace ? "AREA" : "LENGTH", Align::kRight);
    columns.emplace_back("DIRECTION", Align::kLeft);
    columns.emplace_back("RADIUS", Align::kRight);
    columns.emplace_back(isFace ? "SIDE" : "TURN", Align::kLeft);
  }
  columns.emplace_back(type == Type::kVertex ? "POINT" : "MIDDLE", Align::kLeft);
  columns.emplace_back(isFace ? "BESIDE" : type == Type::kEdge ? "FACES" : "EDGES", Align::kLeft);
  columns.emplace_back("NAMES", Align::kLeft);
  return TextTable(std::move(columns), "  ");
}

void addSubentRow(TextTable& table, BodyFacts& body, const SubentFacts& facts,
                  const std::vector<std::string>& names) {
  std::vector<std::string> cells{str(vdm_host::subentName(facts.subent))};
  if (facts.subent.type != Type::kVertex) {
    cells.insert(cells.end(),
                 {vdm_host::subentFormName(facts.form), roundedNumber(facts.size),
                  directionText(facts.direction), radiusText(facts), sideText(body, facts)});
  }
  const std::vector<OdModelerSubent> beside = body.neighboursOf(facts.subent);
  cells.push_back(placeText(facts.middle, body.diagonal()));
  cells.push_back(facts.subent.type == Type::kFace ? std::to_string(beside.size())
                                                   : joined(namesOf(beside)));
  cells.push_back(joined(names));
  table.addRow(std::move(cells));
}

const char* plural(Type type) {
  return type == Type::kFace ? "faces" : type == Type::kEdge ? "edges" : "vertices";
}

Json choicesJson(OdDbDatabase& drawing, const InspectOptions& options, Type type,
                 std::vector<SolidChoice>& choices, const SolidLabels& labels) {
  Json solids = Json::array();
  for (SolidChoice& choice : choices) {
    Json rows = Json::array();
    for (const OdModelerSubent subent : choice.subents) {
      rows.push_back(
          subentJson(choice.facts, choice.facts.of(subent), labels.of(choice.solid, subent)));
    }
    solids.push_back({{"solid", handleOf(choice.solid)}, {plural(type), std::move(rows)}});
  }
  return {{"file", options.input}, {"units", unitsName(drawing)}, {"solids", std::move(solids)}};
}

std::string choicesText(OdDbDatabase& drawing, Type type, std::vector<SolidChoice>& choices,
                        const SolidLabels& labels) {
  std::string text;
  for (SolidChoice& choice : choices) {
    TextTable table = subentTable(type);
    for (const OdModelerSubent subent : choice.subents) {
      addSubentRow(table, choice.facts, choice.facts.of(subent), labels.of(choice.solid, subent));
    }
    const std::string noun =
        choice.subents.size() == 1
            ? (type == Type::kVertex ? "vertex" : std::string(plural(type)).substr(0, 4))
            : plural(type);
    text += (text.empty() ? "solid " : "\nsolid ") + solidText(choice.solid) + ": " +
            std::to_string(choice.subents.size()) + " " + noun + ", lengths in " +
            unitsName(drawing) + "\n" + table.text();
  }
  return text;
}

int runSubents(const SessionSettings& settings, const InspectOptions& options, Type type) {
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead);
  const SolidLabels labels(*drawing);
  std::vector<SolidChoice> choices = withProgress(
      "looking at " + options.input, [&] { return chooseIn(*drawing, options, type, labels); });
  printResult(
      settings, [&] { return choicesJson(*drawing, options, type, choices, labels); },
      [&] { return choicesText(*drawing, type, choices, labels); });
  return kDone;
}

// Holes.

std::string depthText(const HoleFacts& hole) {
  return hole.through ? "through" : "depth " + roundedNumber(hole.depth);
}

std::string sizeText(const HoleFacts& hole) {
  const std::string diameter = roundedNumber(hole.diameter);
  const std::string outer = roundedNumber(hole.outerDiameter);
  std::string text;
  switch (hole.kind) {
    case HoleKind::kSlot:
      return roundedNumber(hole.length) + " x " + roundedNumber(hole.width) + " " + depthText(hole);
    case HoleKind::kPocket:
      text = roundedNumber(hole.length) + " x " + roundedNumber(hole.width) + " " + depthText(hole);
      return hole.cornerRadius == 0.0 ? text
                                      : text + ", corners r " + roundedNumber(hole.cornerRadius);
    case HoleKind::kCounterbore:
      return "dia " + diameter + " " + depthText(hole) + ", bore " + outer + " x " +
             roundedNumber(hole.outerDepth);
    case HoleKind::kCountersink:
      return "dia " + diameter + " " + depthText(hole) + ", sink " + outer + " x " +
             roundedNumber(hole.coneAngle * kDegrees) + " deg";
    case HoleKind::kStepped:
      for (const vdm_host::HoleStep& step : hole.steps) {
        text += (text.empty() ? "dia " : ", ") + roundedNumber(step.diameter);
        if (step.diameter != step.endDiameter) text += " to " + roundedNumber(step.endDiameter);
      }
      return text + " " + depthText(hole);
    case HoleKind::kPlain:
      break;
  }
  text = "dia " + diameter + " " + depthText(hole);
  return hole.coneAngle == 0.0
             ? text
             : text + ", point " + roundedNumber(hole.coneAngle * kDegrees) + " deg";
}

/// The openings of one solid.
struct SolidHoles {
  OdDbObjectId solid;
  double size = 0.0;  ///< diagonal of its box
  std::vector<HoleFacts> holes;
  std::vector<vdm_host::HolePattern> patterns;
};

std::vector<SolidHoles> holesIn(OdDbDatabase& drawing, const InspectOptions& options) {
  std::vector<SolidHoles> all;
  for (const OdDbObjectId& solid : solidsMeant(drawing, options)) {
    BodyFacts facts(bodyOfSolid(solid));
    SolidHoles its{solid, facts.diagonal(), vdm_host::recognizeHoles(facts), {}};
    its.patterns = vdm_host::recognizePatterns(its.holes, 1e-4 * facts.diagonal());
    all.push_back(std::move(its));
  }
  return all;
}

/// What references and features call the faces of an opening.
std::vector<std::string> labelsOf(const SolidLabels& labels, const OdDbObjectId& solid,
                                  const HoleFacts& hole) {
  std::vector<std::string> names;
  for (const OdUInt32 face : hole.faces) {
    for (std::string& name : labels.of(solid, {Type::kFace, face})) {
      if (std::ranges::find(names, name) == names.end()) names.push_back(std::move(name));
    }
  }
  return names;
}

std::string patternOf(const SolidHoles& its, std::size_t hole) {
  for (const vdm_host::HolePattern& pattern : its.patterns) {
    if (std::ranges::find(pattern.holes, hole) != pattern.holes.end()) {
      return holePatternText(pattern);
    }
  }
  return "";
}

/// "  1, 8, 9, 10: grid of 2 x 2, pitch 320 x 90".
std::string patternsText(const SolidHoles& its) {
  std::string text;
  for (const vdm_host::HolePattern& pattern : its.patterns) {
    std::string numbers;
    for (const std::size_t hole : pattern.holes) {
      numbers += (numbers.empty() ? "" : ", ") + std::to_string(hole + 1);
    }
    text += wrapped(numbers + ": " + holePatternText(pattern), "  ");
  }
  return text;
}

Json holeJson(const HoleFacts& hole, const std::vector<std::string>& names) {
  Json json{{"kind", vdm_host::holeKindName(hole.kind)},
            {"through", hole.through},
            {"depth", hole.depth},
            {"mouth", pointJson(hole.mouth)},
            {"axis", vectorJson(hole.axis)}};
  const auto addSize = [&json](const char* key, double value) {
    if (value != 0.0) json[key] = value;
  };
  addSize("diameter", hole.diameter);
  addSize("outer_diameter", hole.outerDiameter);
  addSize("outer_depth", hole.outerDepth);
  addSize("cone_angle", hole.coneAngle * kDegrees);
  addSize("length", hole.length);
  addSize("width", hole.width);
  addSize("corner_radius", hole.cornerRadius);
  if (!hole.lengthwise.isZeroLength()) json["lengthwise"] = vectorJson(hole.lengthwise);
  Json steps = Json::array();
  for (const vdm_host::HoleStep& step : hole.steps) {
    steps.push_back({{"diameter", step.diameter},
                     {"end_diameter", step.endDiameter},
                     {"from", step.from},
                     {"to", step.to}});
  }
  if (!steps.empty()) json["steps"] = std::move(steps);
  std::vector<OdModelerSubent> faces;
  for (const OdUInt32 face : hole.faces) faces.push_back({Type::kFace, face});
  json["faces"] = namesOf(faces);
  json["wall"] = str(vdm_host::subentName({Type::kFace, hole.wall}));
  json["names"] = names;
  return json;
}

Json holesJson(OdDbDatabase& drawing, const InspectOptions& options,
               const std::vector<SolidHoles>& all, const SolidLabels& labels) {
  Json solids = Json::array();
  for (const SolidHoles& its : all) {
    Json rows = Json::array();
    for (const HoleFacts& hole : its.holes)
      rows.push_back(holeJson(hole, labelsOf(labels, its.solid, hole)));
    Json patterns = Json::array();
    for (const vdm_host::HolePattern& pattern : its.patterns) {
      patterns.push_back({{"text", holePatternText(pattern)}, {"holes", pattern.holes}});
    }
    solids.push_back({{"solid", handleOf(its.solid)},
                      {"holes", std::move(rows)},
                      {"patterns", std::move(patterns)}});
  }
  return {{"file", options.input}, {"units", unitsName(drawing)}, {"solids", std::move(solids)}};
}

/// The cells of one opening after its number, for text and CSV.
std::vector<std::string> holeCells(const SolidHoles& its, std::size_t index,
                                   const SolidLabels& labels) {
  const HoleFacts& hole = its.holes[index];
  return {std::to_string(index + 1),
          vdm_host::holeKindName(hole.kind),
          sizeText(hole),
          placeText(hole.mouth, its.size),
          directionText(hole.axis),
          str(vdm_host::subentName({Type::kFace, hole.wall})),
          joined(labelsOf(labels, its.solid, hole))};
}

constexpr const char* kHoleColumns[] = {"NO", "KIND", "SIZE", "AT", "AXIS", "WALL", "NAMES"};

std::string holesText(OdDbDatabase& drawing, const std::vector<SolidHoles>& all,
                      const SolidLabels& labels) {
  std::string text;
  for (const SolidHoles& its : all) {
    std::vector<std::pair<std::string, Align>> columns;
    for (const char* name : kHoleColumns) columns.emplace_back(name, Align::kLeft);
    TextTable table(std::move(columns), "  ");
    for (std::size_t i = 0; i < its.holes.size(); ++i) table.addRow(holeCells(its, i, labels));
    text += (text.empty() ? "solid " : "\nsolid ") + solidText(its.solid) + ": " +
            counted(its.holes.size(), "opening") + ", lengths in " + unitsName(drawing) + "\n" +
            table.text() + patternsText(its);
  }
  return text;
}

/// By RFC 4180: quoted where a cell needs it.
std::string csvCell(const std::string& cell) {
  if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
  std::string quoted = "\"";
  for (const char c : cell) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + "\"";
}

std::string holesCsv(const std::vector<SolidHoles>& all, const SolidLabels& labels) {
  std::string text = "SOLID,NO,KIND,SIZE,X,Y,Z,AXIS,DIAMETER,DEPTH,THROUGH,WALL,PATTERN,NAMES\r\n";
  for (const SolidHoles& its : all) {
    for (std::size_t i = 0; i < its.holes.size(); ++i) {
      const HoleFacts& hole = its.holes[i];
      const std::vector<std::string> cells = holeCells(its, i, labels);
      const std::string row[] = {handleOf(its.solid),
                                 cells[0],
                                 cells[1],
                                 cells[2],
                                 exactNumber(hole.mouth.x),
                                 exactNumber(hole.mouth.y),
                                 exactNumber(hole.mouth.z),
                                 cells[4],
                                 exactNumber(hole.diameter),
                                 exactNumber(hole.depth),
                                 hole.through ? "yes" : "no",
                                 cells[5],
                                 patternOf(its, i),
                                 cells[6]};
      for (const std::string& cell : row) text += (&cell == row ? "" : ",") + csvCell(cell);
      text += "\r\n";
    }
  }
  return text;
}

}  // namespace

int runFaces(const SessionSettings& settings, const InspectOptions& options) {
  return runSubents(settings, options, Type::kFace);
}

int runEdges(const SessionSettings& settings, const InspectOptions& options) {
  return runSubents(settings, options, Type::kEdge);
}

int runVertices(const SessionSettings& settings, const InspectOptions& options) {
  return runSubents(settings, options, Type::kVertex);
}

int runHoles(const SessionSettings& settings, const InspectOptions& options) {
  if (options.csv && settings.json) throw CliError("both --csv and --json are given", kWrongUsage);
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead);
  const SolidLabels labels(*drawing);
  const std::vector<SolidHoles> all =
      withProgress("looking at " + options.input, [&] { return holesIn(*drawing, options); });
  printResult(
      settings, [&] { return holesJson(*drawing, options, all, labels); },
      [&] { return options.csv ? holesCsv(all, labels) : holesText(*drawing, all, labels); });
  return kDone;
}

}  // namespace cli
