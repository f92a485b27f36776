// Operations on components: make one, insert it at a solid.
#include <algorithm>
#include <array>
#include <numbers>

#include "host/cli/cli_error.h"
#include "host/cli/model_lookup.h"
#include "host/cli/new_name.h"
#include "host/cli/operation.h"
#include "host/cli/subent_choice.h"
#include "host/cli/text_lines.h"
#include "host/modeling/component_library.h"
#include "platform/db/block_table_record.h"
#include "vdm_db/features/vdm_feature.h"

namespace cli {

namespace {

using Kind = ParameterKind;
using vdm_host::ComponentRole;

// Making.

/// What a kind of component takes; names of parameters, null at the end.
struct ComponentKindRow {
  const char* name;
  std::array<const char*, 4> needed;
  std::array<const char*, 4> possible;
};
constexpr ComponentKindRow kKinds[] = {
    {"hole", {"diameter"}, {"depth", "through"}},
    {"counterbore", {"diameter", "bore", "bore-depth"}, {"depth", "through"}},
    {"slot", {"width", "length"}, {"depth", "through"}},
    {"boss", {"diameter", "height"}, {}},
    {"block", {}, {"unite"}},
    {"step", {"source"}, {"unite", "encoding"}},
};
/// All of them that describe a component.
constexpr const char* kDescribing[] = {"source", "diameter",   "depth",   "through",
                                       "bore",   "bore-depth", "width",   "length",
                                       "height", "unite",      "encoding"};

bool isAmong(const std::array<const char*, 4>& names, std::string_view name) {
  return std::ranges::any_of(names, [name](const char* n) { return n != nullptr && name == n; });
}

const ComponentKindRow& kindNamed(const std::string& kind) {
  const auto row =
      std::ranges::find_if(kKinds, [&kind](const ComponentKindRow& r) { return kind == r.name; });
  if (row != std::end(kKinds)) return *row;
  throw CliError(
      "kind " + quote(kind) + " is none of hole, counterbore, slot, boss, block and step",
      kWrongUsage);
}

void checkComponent(const ComponentKindRow& kind, const Arguments& arguments) {
  for (const char* name : kDescribing) {
    const bool needed = isAmong(kind.needed, name);
    if (needed && !arguments.has(name)) {
      throw CliError(std::string("a ") + kind.name + " needs " + name, kWrongUsage);
    }
    if (arguments.has(name) && !needed && !isAmong(kind.possible, name)) {
      throw CliError(std::string("a ") + kind.name + " takes no " + name, kWrongUsage);
    }
  }
  if (arguments.has("depth") && arguments.has("through")) {
    throw CliError("both depth " + arguments.text("depth") + " and through are given", kWrongUsage);
  }
}

OdStatus makeComponent(Editing& editing, const std::string& kind, const Arguments& arguments,
                       OdDbObjectId& block, OdStringArray& leftOut) {
  OdDbDatabase* drawing = &editing.drawing;
  const OdString name(arguments.text("name"));
  const std::optional<double> depth = arguments.optionalNumber("depth");
  const ComponentRole role =
      arguments.has("unite") ? ComponentRole::kUnite : ComponentRole::kSubtract;
  if (kind == "hole") {
    return vdm_host::makeHole(drawing, name, {arguments.number("diameter"), depth}, block);
  }
  if (kind == "counterbore") {
    return vdm_host::makeCounterbore(drawing, name,
                                     {arguments.number("diameter"), depth, arguments.number("bore"),
                                      arguments.number("bore-depth")},
                                     block);
  }
  if (kind == "slot") {
    return vdm_host::makeSlot(
        drawing, name, {arguments.number("width"), arguments.number("length"), depth}, block);
  }
  if (kind == "boss") {
    return vdm_host::makeBoss(drawing, name,
                              {arguments.number("diameter"), arguments.number("height")}, block);
  }
  if (kind == "block") return vdm_host::makeFromBlock(drawing, name, role, block);
  return vdm_host::makeFromStep(drawing, name, OdString(arguments.text("source")),
                                stepOptionsOf(arguments), role, block, &leftOut);
}

StepResult addComponent(Editing& editing, const Arguments& arguments) {
  const std::string kind = arguments.text("kind");
  const std::string name = arguments.text("name");
  checkComponent(kindNamed(kind), arguments);
  requireName(name);
  if (!odDbIsValidRecordName(OdString(name)) || name.front() == '*') {
    throw CliError("name " + quote(name) + " is no name for a block", kWrongUsage);
  }
  OdDbObjectId block;
  OdStringArray leftOut;
  const OdStatus status = makeComponent(editing, kind, arguments, block, leftOut);
  if (!status.ok()) {
    throw CliError("component " + quote(name) + ": " +
                   (status.text.isEmpty() ? odResultText(status.code) : str(status.text)));
  }
  StepResult step;
  step.headline = "component " + quote(name) + " (" + kind + ") is block " + handleOf(block);
  step.values = {{"name", name}, {"kind", kind}, {"block", handleOf(block)}};
  for (const OdString& line : leftOut) step.notes.push_back("left out: " + str(line));
  return step;
}

// Inserting.

/// The place of a component when only a reference is given: the middle of its geometry.
OdGePoint3d middleOf(const OdModelerBody& body, OdModelerSubent subent) {
  if (subent.type == OdModelerSubentType::kFace) {
    const OdModelerFace& face = body.face(subent.index);
    // The middle of a ring or of a bent strip lies beside it.
    const double tolerance = 1e-9 * body.subentExtents(subent).diagonal().length();
    const bool hasMiddle = face.kind == OdModelerSurfaceKind::kPlane &&
                           body.distanceTo(subent, face.centroid) <= tolerance;
    return hasMiddle ? face.centroid : face.pointOnFace;
  }
  if (subent.type == OdModelerSubentType::kEdge) return body.edge(subent.index).midPoint;
  return body.vertex(subent.index).point;
}

bool isSolid(OdDbDatabase& drawing, const std::string& text) {
  OdDbHandle handle;
  return featuresNamed(drawing, text).empty() && OdDbHandle::parse(text.c_str(), handle) &&
         !drawing.getOdDbObjectId(handle).openAs<OdDb3dSolid>().isNull();
}

void placeOnSubent(const OdDbObjectId& solid, OdModelerSubent subent,
                   vdm_host::ComponentPlacement& placement) {
  placement.solid = solid;
  if (subent.type == OdModelerSubentType::kFace) {
    placement.face = OdDbSubentId(OdDb::kFaceSubentType, subent.index);
  }
  placement.point = middleOf(*bodyOfSolid(solid), subent);
}

/// Solid, face and middle of the reference that receives the component.
void placeOnReference(Editing& editing, const std::string& on,
                      vdm_host::ComponentPlacement& placement) {
  const vdm_host::ResolvedReference found =
      vdm_host::resolveReference(findReference(editing.drawing, on));
  if (!found.resolved()) {
    throw CliError("reference " + quote(on) + " is " + str(vdm_host::gradeName(found.grade)) +
                   (found.note.isEmpty() ? "" : ": " + str(found.note)));
  }
  placement.solid = found.solid;
  const OdDbSubentId& subent = found.path.subentId();
  if (subent.type() == OdDb::kNullSubentType) return;
  placeOnSubent(
      found.solid,
      {static_cast<OdModelerSubentType>(subent.type()), static_cast<OdUInt32>(subent.index())},
      placement);
}

vdm_host::ComponentPlacement placementOf(Editing& editing, const Arguments& arguments) {
  vdm_host::ComponentPlacement placement;
  const std::string on = arguments.text("on");
  if (isSubentChoice(on)) {
    const SubentChoice choice = chooseSubents(editing.drawing, on);
    placeOnSubent(choice.solid, onlyOne(choice.subents, on), placement);
  } else if (isSolid(editing.drawing, on)) {
    placement.solid = findSolid(editing.drawing, on);
    if (!arguments.has("at")) {
      throw CliError("no point (at) is given on solid " + on, kWrongUsage);
    }
  } else {
    placeOnReference(editing, on, placement);
  }
  if (arguments.has("at")) placement.point = arguments.point("at");
  if (arguments.has("direction")) placement.direction = arguments.vector("direction");
  if (arguments.has("angle")) {
    placement.rotation = arguments.number("angle") * std::numbers::pi / 180.0;
  }
  placement.name = OdString(arguments.text("name"));
  placement.acceptsNoEffect = arguments.has("force");
  return placement;
}

vdm_host::ComponentInsert insertOf(Editing& editing, const Arguments& arguments) {
  vdm_host::ComponentInsert insert;
  insert.block = findComponentBlock(editing.drawing, arguments.text("component"));
  insert.placement = placementOf(editing, arguments);
  if (const std::string name = arguments.text("name"); !name.empty()) {
    requireFreeName(editing.drawing, name);
  }
  return insert;
}

StepResult insertedStep(const Arguments& arguments, const vdm_host::ComponentPlacement& placement,
                        vdm_host::EditResult result) {
  const VdmFeaturePtr feature = VdmFeature::open(result.feature);
  StepResult step;
  step.headline = "inserted " + quote(arguments.text("component")) + " into " +
                  solidText(placement.solid) + " at " + pointText(placement.point) + ": insert " +
                  handleOf(result.created) + ", feature " +
                  quote(feature.isNull() ? "" : feature->name().utf8());
  step.values = {{"insert", handleOf(result.created)},
                 {"feature", handleOf(result.feature)},
                 {"name", feature.isNull() ? "" : str(feature->name())},
                 {"solid", handleOf(placement.solid)}};
  step.report = std::move(result.report);
  return step;
}

StepResult insertComponent(Editing& editing, const Arguments& arguments) {
  const vdm_host::ComponentInsert insert = insertOf(editing, arguments);
  vdm_host::EditResult result = editing.editor.insertComponent(insert.block, insert.placement);
  requireEdited(result);
  return insertedStep(arguments, insert.placement, std::move(result));
}

/// The middle of a reference depends on what was cut before, and so does what a selector chooses.
bool dependsOnBody(const Arguments& arguments) {
  return !arguments.has("at") || isSubentChoice(arguments.text("on"));
}

std::vector<StepResult> insertRow(Editing& editing, std::span<const Arguments> row) {
  std::vector<vdm_host::ComponentInsert> inserts;
  const auto next = [&]() -> std::optional<vdm_host::ComponentInsert> {
    if (inserts.size() == row.size()) return {};
    const Arguments& arguments = row[inserts.size()];
    if (!inserts.empty() && dependsOnBody(arguments)) return {};
    try {
      inserts.push_back(insertOf(editing, arguments));
    } catch (const CliError&) {  // raised again when its turn comes to run alone
      return {};
    }
    return inserts.back();
  };
  std::vector<StepResult> steps;
  for (vdm_host::EditResult& result : editing.editor.insertRow(next)) {
    const std::size_t i = steps.size();
    steps.push_back(insertedStep(row[i], inserts[i].placement, std::move(result)));
  }
  return steps;
}

constexpr Parameter kAddParameters[] = {
    {"name", Kind::kText, true, true, "name of the component, which is that of its block"},
    {"kind", Kind::kText, true, true, "hole, counterbore, slot, boss, block or step"},
    {"source", Kind::kFile, true, false, "STEP file"},
    {"diameter", Kind::kNumber, false, false, "of hole or boss"},
    {"depth", Kind::kNumber, false, false, "of hole, counterbore or slot, from the face"},
    {"through", Kind::kFlag, false, false, "through everything below, which is the default"},
    {"bore", Kind::kNumber, false, false, "diameter of the counterbore"},
    {"bore-depth", Kind::kNumber, false, false, "depth of the counterbore"},
    {"width", Kind::kNumber, false, false, "of the slot"},
    {"length", Kind::kNumber, false, false, "of the slot, over all"},
    {"height", Kind::kNumber, false, false, "of the boss"},
    {"unite", Kind::kFlag, false, false, "the solids of block or file are added, not cut away"},
    kEncodingParameter,
};
constexpr Parameter kInsertParameters[] = {
    {"component", Kind::kText, true, true, "name of the component"},
    {"on", Kind::kText, false, true,
     "solid (handle), reference (name or handle), f_12, or a selector: 'face: highest'"},
    {"at", Kind::kPoint, false, false, "point; the middle of the reference by default"},
    {"direction", Kind::kPoint, false, false,
     "out of the material; the normal of the face by default"},
    {"angle", Kind::kNumber, false, false, "of the component about its axis, degrees"},
    {"name", Kind::kText, false, false, "name of the feature; numbered by default"},
    {"force", Kind::kFlag, false, false, "insert it even if it changes nothing there"},
};

constexpr Operation kOperations[] = {
    {"component add", "Make a component: a block that cuts or fills the solids it is inserted at",
     "vdm component add plate.vdm m8 counterbore --diameter 9 --bore 15 --bore-depth 8.5",
     kAddParameters, addComponent, /*updates=*/false},
    {"insert", "Insert a component at a solid", "vdm insert plate.vdm m8 --on 21 --at 30,20,10",
     kInsertParameters, insertComponent, /*updates=*/true, insertRow},
};

}  // namespace

std::span<const Operation> componentOperations() { return kOperations; }

}  // namespace cli
