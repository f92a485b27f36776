// `vdm tree`: the product structure of a drawing.
#include "host/cli/tree_command.h"

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "host/cli/drawing_facts.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "host/cli/product_tree.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Kind = ProductNode::Kind;

constexpr double kDegreesPerRadian = 57.295779513082320877;
/// Turns (degrees) and scalings closer to none than this are rounding: an arc cosine near 1 keeps
/// half of the digits of its argument.
constexpr double kShownTurn = 1e-5;

// JSON.

const char* kindName(Kind kind) {
  static constexpr const char* kNames[] = {"block", "insert", "solid", "entity"};
  return kNames[static_cast<std::size_t>(kind)];
}

Json matrixJson(const OdGeMatrix3d& matrix) {
  Json rows = Json::array();
  for (const auto& row : matrix.entry) {
    rows.push_back(Json::array({row[0], row[1], row[2], row[3]}));
  }
  return rows;
}

Json nodeJson(const ProductNode& node) {
  Json json{{"kind", kindName(node.kind)},
            {"handle", str(node.handle)},
            {"class", node.className},
            {"name", node.name}};
  if (node.kind == Kind::kInsert) {
    json["block"] = node.blockName;
    json["block_handle"] = str(node.blockHandle);
    json["placement"] = matrixJson(node.placement);
    json["repeated"] = node.repeated;
  }
  if (!node.note.empty()) json["note"] = node.note;
  if (node.kind == Kind::kBlock || node.kind == Kind::kInsert) {
    json["children"] = Json::array();
    for (const ProductNode& child : node.children) json["children"].push_back(nodeJson(child));
  }
  return json;
}

// Text.

double turnOf(const OdGeMatrix3d& matrix, double scale) {
  const double trace = matrix.entry[0][0] + matrix.entry[1][1] + matrix.entry[2][2];
  return std::acos(std::min(1.0, std::max(-1.0, (trace / scale - 1.0) / 2.0)));
}

/// "at (x, y, z), turned 90 deg, scaled 2", as short as it can be.
std::string placementText(const OdGeMatrix3d& matrix) {
  std::string text =
      "at " + pointText({matrix.entry[0][3], matrix.entry[1][3], matrix.entry[2][3]});
  const double determinant = matrix.det();
  const double scale = std::cbrt(std::abs(determinant));
  if (scale <= 0.0) return text;
  if (determinant < 0.0) return text + ", mirrored";
  const double turn = turnOf(matrix, scale) * kDegreesPerRadian;
  if (turn > kShownTurn) text += ", turned " + roundedNumber(turn) + " deg";
  if (std::abs(scale - 1.0) > kShownTurn) text += ", scaled " + roundedNumber(scale);
  return text;
}

std::string nameText(const std::string& name) { return name.empty() ? "" : " " + oneLine(name); }

std::string nodeLine(const ProductNode& node) {
  const std::string head = str(node.handle);
  const std::string note = node.note.empty() ? "" : ", " + oneLine(node.note);
  switch (node.kind) {
    case Kind::kBlock:
      return head + nameText(node.name);
    case Kind::kInsert:
      return head + " insert" +
             (node.name == node.blockName ? std::string() : nameText(node.name)) + " of" +
             nameText(node.blockName) + " (" + str(node.blockHandle) + ") " +
             placementText(node.placement) + (node.repeated ? ", contents as above" : "") + note;
    case Kind::kSolid:
      return head + " solid" + nameText(node.name) + note;
    case Kind::kEntity:
      break;
  }
  return head + " " + oneLine(node.className) + note;
}

void appendChildren(std::string& text, const ProductNode& node, const std::string& indent) {
  for (std::size_t i = 0; i < node.children.size(); ++i) {
    const bool last = i + 1 == node.children.size();
    const std::string prefix = indent + (last ? "\u2514\u2500 " : "\u251c\u2500 ");
    const std::size_t room = kTextWidth - std::min(kTextWidth, columnsOf(prefix));
    text += prefix + shortened(nodeLine(node.children[i]), std::max<std::size_t>(room, 20)) + "\n";
    appendChildren(text, node.children[i], indent + (last ? "   " : "\u2502  "));
  }
}

std::string treeText(const ProductNode& root, const std::string& input, OdDbDatabase& drawing) {
  std::string text = oneLine(input) + ", lengths in " + unitsName(drawing) + "\n";
  text += nodeLine(root) + "\n";
  appendChildren(text, root, "");
  return text;
}

Json treeJson(const ProductNode& root, const std::string& input, OdDbDatabase& drawing) {
  return {{"file", input}, {"units", unitsName(drawing)}, {"tree", nodeJson(root)}};
}

}  // namespace

int runTree(const SessionSettings& settings, const TreeOptions& options) {
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead);
  const ProductNode root =
      withProgress("reading " + options.input, [&] { return productTree(*drawing); });
  printResult(
      settings, [&] { return treeJson(root, options.input, *drawing); },
      [&] { return treeText(root, options.input, *drawing); });
  return exitCodeFor(isSound(root));
}

}  // namespace cli
