// Operations on references: name a face, edge or vertex, and remove a name.
#include <algorithm>

#include "host/cli/cli_error.h"
#include "host/cli/model_lookup.h"
#include "host/cli/new_name.h"
#include "host/cli/operation.h"
#include "host/cli/subent_choice.h"
#include "host/cli/text_lines.h"
#include "host/naming/name_feature.h"
#include "host/naming/subent_name.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace cli {

namespace {

using Kind = ParameterKind;

/// How near a point must be to what it names, as a part of the body's diagonal: what is typed with
/// four digits.
constexpr double kNear = 1e-4;

OdModelerSubentType wantedType(const Arguments& arguments) {
  constexpr std::pair<const char*, OdModelerSubentType> kTypes[] = {
      {"face", OdModelerSubentType::kFace},
      {"edge", OdModelerSubentType::kEdge},
      {"vertex", OdModelerSubentType::kVertex}};
  const char* given = nullptr;
  OdModelerSubentType type = OdModelerSubentType::kNull;
  for (const auto& [name, its] : kTypes) {
    if (!arguments.has(name)) continue;
    if (given != nullptr) {
      throw CliError(std::string("both ") + given + " and " + name + " are given, one is enough",
                     kWrongUsage);
    }
    given = name;
    type = its;
  }
  return type;
}

OdModelerSubent chosenSubent(OdDbDatabase& drawing, const OdDbObjectId& solid,
                             const Arguments& arguments) {
  const std::string choice = arguments.text("subentity");
  if (arguments.has("at") == !choice.empty()) {
    throw CliError(
        choice.empty()
            ? "neither a subentity such as f_12 or 'face: highest' nor a point (at) is given"
            : "both " + quote(choice) + " and a point (at) are given",
        kWrongUsage);
  }
  const OdModelerSubentType type = wantedType(arguments);
  if (choice.empty()) {
    const OdModelerBodyPtr body = bodyOfSolid(solid);
    const double tolerance = kNear * body->extents().diagonal().length();
    OdModelerSubent subent;
    requireModelled(
        vdm_host::findSubentNear(*body, arguments.point("at"), type, tolerance, subent));
    return subent;
  }
  if (!isSubentChoice(choice)) {
    throw CliError("subentity " + quote(choice) +
                       " is none of f_<number>, e_<number>, v_<number>, and no selector such as "
                       "'face: plane & highest'",
                   kWrongUsage);
  }
  return onlyOne(chooseSubents(drawing, solid, choice), choice);
}

StepResult addReference(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId solid = findSolid(editing.drawing, arguments.text("solid"));
  const OdModelerSubent subent = chosenSubent(editing.drawing, solid, arguments);
  const std::string name = arguments.text("name");
  if (arguments.has("name")) {
    requireFreeName(editing.drawing, name);
  }
  const OdDbFullSubentPath path(
      solid, OdDbSubentId(static_cast<OdDb::SubentType>(subent.type), subent.index));
  OdDbObjectId feature;
  OdDbTransaction transaction(&editing.drawing);
  const OdResult result = vdm_host::nameReference(path, OdString(name), feature);
  if (result != eOk) {
    throw CliError("a reference to " + str(vdm_host::subentName(subent)) + " of " +
                   solidText(solid) + " cannot be made: " + odResultText(result));
  }
  transaction.commit();
  const ReferenceText text =
      referenceText(VdmNameFeature::cast(VdmFeature::open(feature).get())->referenceIds().first());
  const std::string itsName = str(VdmFeature::open(feature)->name());
  StepResult step;
  step.headline = "named " + text.subent + " of " + solidText(solid) + " " + quote(itsName) +
                  ": reference " + text.handle + ", " + text.geometry;
  step.values = {{"reference", text.handle},
                 {"name", itsName},
                 {"solid", text.solid},
                 {"subentity", text.subent},
                 {"geometry", text.geometry}};
  return step;
}

/// Takes the names off the references; the number of names that there were.
std::uint64_t eraseNames(OdDbDatabase& drawing, const std::vector<OdDbObjectId>& references) {
  std::uint64_t erased = 0;
  for (const OdDbObjectId& id : allFeatures(drawing)) {
    const auto name = VdmNameFeature::cast(VdmFeature::open(id).get());
    if (name.isNull()) continue;
    const OdDbObjectIdArray ids = name->referenceIds();
    const bool isMeant = std::ranges::any_of(
        references, [&ids](const OdDbObjectId& reference) { return ids.contains(reference); });
    if (!isMeant) continue;
    id.safeOpenObject(OdDb::kForWrite)->erase();
    ++erased;
  }
  return erased;
}

StepResult removeReference(Editing& editing, const Arguments& arguments) {
  const std::vector<OdDbObjectId> references =
      findReferences(editing.drawing, arguments.text("reference"));
  const ReferenceText text = referenceText(references.front());
  OdDbTransaction transaction(&editing.drawing);
  if (eraseNames(editing.drawing, references) == 0) {
    throw CliError("reference " + text.handle + " has no name that could be removed" +
                   (text.watchers.empty() ? "" : ", it belongs to " + text.watchers.front()));
  }
  StepResult step;
  step.headline = "removed the name " + quote(text.name) + " of reference " + text.handle;
  step.values = {{"reference", text.handle}, {"name", text.name}};
  for (const OdDbObjectId& id : references) {
    const ReferenceText rest = referenceText(id);
    const auto manager = id.ownerId().openAs<VdmDbPersIdManager>(OdDb::kForWrite);
    if (!rest.watchers.empty()) {
      step.notes.push_back(rest.handle + " stays for " + rest.watchers.front());
    } else if (!manager.isNull()) {
      manager->removeDependencies({id});
    }
  }
  transaction.commit();
  return step;
}

constexpr Parameter kAddParameters[] = {
    {"solid", Kind::kText, true, true, "solid, a name or handle"},
    {"subentity", Kind::kText, true, false,
     "f_12, e_3 or v_7, as lists name them, or a selector: 'face: plane & highest'"},
    {"at", Kind::kPoint, false, false, "what lies at this point instead"},
    {"face", Kind::kFlag, false, false, "a face, where several things lie at the point"},
    {"edge", Kind::kFlag, false, false, "an edge"},
    {"vertex", Kind::kFlag, false, false, "a vertex"},
    {"name", Kind::kText, false, false, "name of the reference; numbered by default"},
};
constexpr Parameter kRemoveParameters[] = {
    {"reference", Kind::kText, true, true, "reference, a name or handle"},
};

constexpr Operation kOperations[] = {
    {"refs add", "Name a face, edge or vertex, to find it again after changes of the solid",
     "vdm refs add plate.vdm 21 --at 60,40,10 --face --name top", kAddParameters, addReference,
     /*updates=*/false},
    {"refs remove", "Take away a name that was given to a reference",
     "vdm refs remove plate.vdm top", kRemoveParameters, removeReference, /*updates=*/false},
};

}  // namespace

std::span<const Operation> referenceOperations() { return kOperations; }

}  // namespace cli
