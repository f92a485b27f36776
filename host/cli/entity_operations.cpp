// Operations on entities and bodies: move, rotate, erase, suppress, replace, round, update.
#include <numbers>

#include "host/cli/binding_operations.h"
#include "host/cli/cli_error.h"
#include "host/cli/drawing_facts.h"
#include "host/cli/model_lookup.h"
#include "host/cli/operation.h"
#include "host/cli/paths.h"
#include "host/cli/subent_choice.h"
#include "host/cli/text_lines.h"
#include "host/modeling/step_solids.h"
#include "host/naming/dependencies_into.h"
#include "host/naming/subent_name.h"

namespace cli {

namespace {

using Kind = ParameterKind;
using vdm_host::EditResult;

/// The report of an edit that went through, under its headline.
StepResult edited(EditResult result, std::string headline, const OdDbObjectId& object) {
  requireEdited(result);
  StepResult step;
  step.headline = std::move(headline);
  step.values = {{"handle", handleOf(object)}};
  step.report = std::move(result.report);
  return step;
}

std::string vectorText(const OdGeVector3d& vector) {
  return pointText({vector.x, vector.y, vector.z});
}

StepResult move(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId entity = findEntity(editing.drawing, arguments.text("entity"));
  const OdGeVector3d by = arguments.vector("by");
  return edited(editing.editor.moveObject(entity, by),
                "moved " + objectText(entity) + " by " + vectorText(by), entity);
}

StepResult rotate(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId entity = findEntity(editing.drawing, arguments.text("entity"));
  const double angle = arguments.number("angle");
  const OdGeVector3d axis = arguments.has("axis") ? arguments.vector("axis") : OdGeVector3d::kZAxis;
  if (axis.isZeroLength()) {
    throw CliError("axis is " + quote(arguments.text("axis")) + ", which has no length",
                   kWrongUsage);
  }
  std::optional<OdGePoint3d> about;
  if (arguments.has("about")) about = arguments.point("about");
  return edited(editing.editor.rotateObject(entity, axis, angle * std::numbers::pi / 180.0, about),
                "rotated " + objectText(entity) + " by " + roundedNumber(angle) + " deg about " +
                    vectorText(axis) + (about ? " through " + pointText(*about) : ""),
                entity);
}

/// Notes the references into an erased entity that still have a watcher.
void noteLost(const OdDbObjectIdArray& references, StepResult& step) {
  for (const OdDbObjectId& id : references) {
    if (id.isErased()) continue;
    const ReferenceText text = referenceText(id);
    if (text.isExpected || text.grade != str(gradeName(vdm_host::ReferenceGrade::kLost))) continue;
    step.notes.push_back((text.name.empty() ? text.handle : text.name + " (" + text.handle + ")") +
                         ": lost, " + text.note);
    step.sound = false;
  }
}

StepResult erase(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId entity = findEntity(editing.drawing, arguments.text("entity"));
  const OdDbObjectIdArray references = vdm_host::dependenciesInto(entity);
  std::string headline = "erased " + objectText(entity);
  StepResult step = edited(editing.editor.eraseObject(entity), std::move(headline), entity);
  noteLost(references, step);
  return step;
}

StepResult suppress(Editing& editing, const Arguments& arguments) {
  const bool off = arguments.has("off");
  if (arguments.has("when")) {
    if (off) throw CliError("both off and when are given", kWrongUsage);
    return suppressWhen(editing, arguments.text("entity"), arguments.text("when"));
  }
  const OdDbObjectId insert = findEntity(editing.drawing, arguments.text("entity"));
  return edited(off ? editing.editor.unsuppress(insert) : editing.editor.suppress(insert),
                (off ? "brought back " : "suppressed ") + objectText(insert), insert);
}

// Bodies.

/// The one solid of a STEP file, in the given units.
OdModelerBodyPtr readPart(const std::string& path, const OdModelerReadOptions& options,
                          OdDb::UnitsValue units, OdStringArray& leftOut) {
  checkInput(path);
  std::vector<OdModelerBodyPtr> solids;
  requireModelled(vdm_host::readStepSolids(OdString(path), options, units, solids, &leftOut));
  if (solids.size() == 1) return solids.front();
  throw CliError("file " + quote(path) + " holds " + counted(solids.size(), "solid") +
                 ", one is needed");
}

/// Name and colour stay where the new body has none of its own.
OdModelerBodyPtr withLookOf(const OdModelerBodyPtr& before, const OdModelerBodyPtr& body) {
  OdModelerBodyAttributes attributes = body->attributes();
  if (attributes.name.isEmpty()) attributes.name = before->attributes().name;
  if (!attributes.color) attributes.color = before->attributes().color;
  return body->withAttributes(std::move(attributes));
}

StepResult replace(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId solid = findSolid(editing.drawing, arguments.text("solid"));
  const OdDb::UnitsValue units = lengthUnitsOf(*solid.safeOpenAs<OdDbEntity>());
  const std::string path = arguments.text("file");
  const std::string before = solidText(solid);
  OdStringArray leftOut;
  const OdModelerBodyPtr body =
      withLookOf(bodyOfSolid(solid), readPart(path, stepOptionsOf(arguments), units, leftOut));
  StepResult step = edited(editing.editor.replaceBody(solid, body),
                           "replaced the body of " + before + " by that of " + path, solid);
  for (const OdString& line : leftOut) step.notes.push_back("left out: " + str(line));
  return step;
}

/// Edges of one solid.
struct ChosenEdges {
  OdDbObjectId solid;
  std::vector<OdUInt32> edges;  ///< each once

  void add(const OdDbObjectId& its, OdModelerSubent subent, const std::string& text) {
    if (subent.type != OdModelerSubentType::kEdge) {
      throw CliError(quote(text) + " is " + str(vdm_host::subentName(subent)) + ", no edge");
    }
    if (!solid.isNull() && solid != its) {
      throw CliError(quote(text) + " lies on solid " + solidText(its) + ", the edges before on " +
                     solidText(solid));
    }
    solid = its;
    if (std::ranges::find(edges, subent.index) == edges.end()) edges.push_back(subent.index);
  }
};

void addReferenceTo(ChosenEdges& chosen, const OdDbObjectId& reference, const std::string& text) {
  const vdm_host::ResolvedReference found = vdm_host::resolveReference(reference);
  if (!found.resolved()) {
    throw CliError("reference " + quote(text) + " is " + str(vdm_host::gradeName(found.grade)) +
                   (found.note.isEmpty() ? "" : ": " + str(found.note)));
  }
  const OdDbSubentId& subent = found.path.subentId();
  chosen.add(
      found.solid,
      {static_cast<OdModelerSubentType>(subent.type()), static_cast<OdUInt32>(subent.index())},
      text);
}

ChosenEdges edgesOf(Editing& editing, const Arguments& arguments) {
  ChosenEdges chosen;
  for (const std::string& text : arguments.texts("edges")) {
    if (!isSubentChoice(text)) {
      addReferenceTo(chosen, findReference(editing.drawing, text), text);
      continue;
    }
    const SubentChoice choice = chooseSubents(editing.drawing, text);
    for (const OdModelerSubent subent : choice.subents) chosen.add(choice.solid, subent, text);
  }
  return chosen;
}

/// An operation that replaces edges of a solid by faces, and the words of its headline.
struct BlendKind {
  EditResult (vdm_host::ModelEditor::*run)(const OdDbObjectId& solid,
                                           std::span<const OdUInt32> edges, double size);
  const char* size;  ///< the parameter
  const char* done;
  const char* by;
};
constexpr BlendKind kFillet{&vdm_host::ModelEditor::filletEdges, "radius", "rounded",
                            "with radius"};
constexpr BlendKind kChamfer{&vdm_host::ModelEditor::chamferEdges, "distance", "chamfered", "by"};

template <const BlendKind& kind>
StepResult blend(Editing& editing, const Arguments& arguments) {
  const ChosenEdges chosen = edgesOf(editing, arguments);
  const double size = arguments.number(kind.size);
  return edited((editing.editor.*kind.run)(chosen.solid, chosen.edges, size),
                std::string(kind.done) + " " + counted(chosen.edges.size(), "edge") + " of " +
                    solidText(chosen.solid) + " " + kind.by + " " + roundedNumber(size),
                chosen.solid);
}

StepResult update(Editing& editing, const Arguments& arguments) {
  EditResult result = editing.editor.update(arguments.has("force"));
  requireEdited(result);
  StepResult step;
  const bool nothing = result.report.features.empty() && result.report.references.empty();
  step.headline = nothing ? "everything is up to date" : "brought the drawing up to date";
  step.report = std::move(result.report);
  return step;
}

constexpr Parameter kMoveParameters[] = {
    {"entity", Kind::kText, true, true, "entity or component, a handle or name"},
    {"by", Kind::kPoint, false, true, "how far"},
};
constexpr Parameter kRotateParameters[] = {
    {"entity", Kind::kText, true, true, "entity or component, a handle or name"},
    {"angle", Kind::kNumber, false, true, "degrees"},
    {"axis", Kind::kPoint, false, false, "direction, or x, y or z; z by default"},
    {"about", Kind::kPoint, false, false, "point of the axis; the insert's own by default"},
};
constexpr Parameter kEntityParameters[] = {
    {"entity", Kind::kText, true, true, "entity or component, a handle or name"},
};
constexpr Parameter kSuppressParameters[] = {
    {"entity", Kind::kText, true, true, "component, a handle or name"},
    {"off", Kind::kFlag, false, false, "bring it back"},
    {"when", Kind::kText, false, false, "expression: from now on while it is not 0"},
};
constexpr Parameter kReplaceParameters[] = {
    {"solid", Kind::kText, true, true, "solid, a name or handle"},
    {"file", Kind::kFile, true, true, "STEP file with one solid"},
    kEncodingParameter,
};
constexpr Parameter kFilletParameters[] = {
    {"edges", Kind::kTexts, true, true,
     "edges of one solid: names of references, e_3, or selectors: 'edge: of top & convex'"},
    {"radius", Kind::kNumber, false, true, "of the rounding"},
};
constexpr Parameter kChamferParameters[] = {
    {"edges", Kind::kTexts, true, true,
     "edges of one solid: names of references, e_3, or selectors: 'edge: of top & convex'"},
    {"distance", Kind::kNumber, false, true, "from the edge"},
};
constexpr Parameter kUpdateParameters[] = {
    {"force", Kind::kFlag, false, false, "heal and cut every component anew"},
};

constexpr Operation kOperations[] = {
    {"move", "Move an entity or a component", "vdm move plate.vdm Counterbore_1 --by 10,0,0",
     kMoveParameters, move},
    {"rotate", "Rotate an entity or a component", "vdm rotate plate.vdm 4F --angle 30",
     kRotateParameters, rotate},
    {"erase", "Erase an entity or a component; what the component cut is healed",
     "vdm erase plate.vdm Counterbore_1", kEntityParameters, erase},
    {"suppress", "Switch a component off without losing it, or on again",
     "vdm suppress plate.vdm Counterbore_1 --off", kSuppressParameters, suppress},
    {"replace", "Exchange the body of a solid; its components are cut into the new one",
     "vdm replace plate.vdm 21 plate_rev_b.step", kReplaceParameters, replace},
    {"fillet", "Round edges", "vdm fillet plate.vdm rim --radius 2", kFilletParameters,
     blend<kFillet>},
    {"chamfer", "Chamfer edges", "vdm chamfer plate.vdm rim --distance 1", kChamferParameters,
     blend<kChamfer>},
    {"update", "Bring components and references up to date after edits of other programs",
     "vdm update plate.vdm --explain", kUpdateParameters, update},
};

}  // namespace

std::span<const Operation> entityOperations() { return kOperations; }

}  // namespace cli
