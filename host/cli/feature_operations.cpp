// Operations on features and groups.
#include "host/cli/audit_output.h"
#include "host/cli/cli_error.h"
#include "host/cli/model_lookup.h"
#include "host/cli/new_name.h"
#include "host/cli/operation.h"
#include "host/cli/text_output.h"
#include "host/modeling/drawing_audit.h"
#include "vdm_db/concrete_features/vdm_group_feature.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace cli {

namespace {

using Kind = ParameterKind;

StepResult renameFeature(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId feature = findFeature(editing.drawing, arguments.text("feature"));
  const std::string name = arguments.text("name");
  requireFreeName(editing.drawing, name);
  const std::string before = objectText(feature);
  vdm_host::EditResult result = editing.editor.renameFeature(feature, OdString(name));
  requireEdited(result);
  StepResult step;
  step.headline = "renamed " + before + " to " + quote(name);
  step.values = {{"feature", handleOf(feature)}, {"name", name}};
  return step;
}

StepResult eraseFeature(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId feature = findFeature(editing.drawing, arguments.text("feature"));
  StepResult step;
  step.headline = "erased " + objectText(feature);
  step.values = {{"feature", handleOf(feature)}};
  vdm_host::EditResult result = editing.editor.removeFeature(feature);
  requireEdited(result);
  step.report = std::move(result.report);
  return step;
}

// Audit.

std::uint64_t countReferences(OdDbDatabase& drawing) {
  std::uint64_t count = 0;
  for (const OdDbObjectId& id : vdmu::getAllPersIdManagers(&drawing)) {
    const auto manager = id.openAs<VdmDbPersIdManager>();
    if (!manager.isNull()) count += manager->objectDependencyIds().size();
  }
  return count;
}

StepResult auditFeatures(Editing& editing, const Arguments& arguments) {
  const bool fix = arguments.has("fix");
  const std::uint64_t features = allFeatures(editing.drawing).size();
  const std::uint64_t references = countReferences(editing.drawing);
  constexpr vdm_host::AuditParts kParts{.drawing = false, .features = true, .references = true};
  const vdm_host::DrawingAudit audit = vdm_host::auditDrawing(
      &editing.drawing, fix ? vdm_host::AuditMode::kFix : vdm_host::AuditMode::kLook, kParts);
  StepResult step;
  for (const vdm_host::DrawingFinding& finding : audit.findings) {
    step.notes.push_back(findingLine(finding));
  }
  step.headline = std::string(audit.errors == 0 ? "sound: "
                              : audit.isSound() ? "mended: "
                                                : "not sound: ") +
                  counted(features, "feature") + ", " + counted(references, "reference");
  step.values = {{"features", std::to_string(features)},
                 {"references", std::to_string(references)},
                 {"findings", std::to_string(audit.errors)}};
  step.sound = audit.isSound();
  return step;
}

// Groups.

OdDbFullSubentPath pathOf(OdDbDatabase& drawing, const std::string& text) {
  OdDbHandle handle;
  const bool isName = !featuresNamed(drawing, text).empty();
  if (!isName && OdDbHandle::parse(text.c_str(), handle)) {
    const OdDbObjectPtr object = drawing.getOdDbObjectId(handle).openObject();
    if (!object.isNull() && object->isKindOf(OdDbEntity::desc())) {
      return {object->objectId(), OdDbSubentId()};
    }
  }
  const vdm_host::ResolvedReference found =
      vdm_host::resolveReference(findReference(drawing, text));
  if (!found.resolved()) {
    throw CliError("reference " + quote(text) + " is " + str(vdm_host::gradeName(found.grade)));
  }
  return found.path;
}

StepResult eraseGroup(Editing& editing, const std::string& name) {
  for (const OdDbObjectId& id : featuresNamed(editing.drawing, name)) {
    if (VdmGroupFeature::cast(VdmFeature::open(id).get()).isNull()) continue;
    StepResult step;
    step.headline = "erased group " + quote(name);
    step.values = {{"group", handleOf(id)}};
    OdDbTransaction transaction(&editing.drawing);
    id.safeOpenObject(OdDb::kForWrite)->erase();
    transaction.commit();
    return step;
  }
  throw CliError("there is no group " + quote(name));
}

StepResult makeGroup(Editing& editing, const Arguments& arguments) {
  const std::string name = arguments.text("name");
  if (arguments.has("erase")) return eraseGroup(editing, name);
  if (!arguments.has("members")) {
    throw CliError("group " + quote(name) + " has no members", kWrongUsage);
  }
  requireFreeName(editing.drawing, name);
  OdDbFullSubentPathArray paths;
  for (const std::string& member : arguments.texts("members")) {
    paths.append(pathOf(editing.drawing, member));
  }
  const OdDbObjectId space = paths.first().objectIds().first().ownerId();
  for (const OdDbFullSubentPath& path : paths) {
    const OdDbObjectId entity = path.objectIds().first();
    if (entity.ownerId() == space) continue;
    throw CliError(
        "members of a group are in one block: " + objectText(paths.first().objectIds().first()) +
        " and " + objectText(entity) + " do not");
  }
  OdDbTransaction transaction(&editing.drawing);
  const OdDbObjectId managerId = VdmDbFeatureManager::getInstance(space, /*create=*/true);
  const OdDbObjectId id =
      managerId.safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite)
          ->createFeatureData(VdmGroupFeature::desc(), OdString(name), /*numberGiven=*/false,
                              /*trim=*/true);
  {
    const auto group = VdmGroupFeature::cast(VdmFeature::open(id, OdDb::kForWrite));
    if (group.isNull()) throw CliError("a group cannot be made: the module is not loaded");
    group->init(paths);
    if (arguments.has("description")) {
      static_cast<void>(group->setDescription(OdString(arguments.text("description"))));
    }
  }
  transaction.commit();
  StepResult step;
  step.headline =
      "group " + quote(name) + " (" + handleOf(id) + ") has " + counted(paths.size(), "member");
  step.values = {{"group", handleOf(id)}, {"name", name}};
  return step;
}

constexpr Parameter kFeatureParameters[] = {
    {"feature", Kind::kText, true, true, "feature, a name or handle"},
};
constexpr Parameter kRenameParameters[] = {
    {"feature", Kind::kText, true, true, "feature, a name or handle"},
    {"name", Kind::kText, true, true, "its new name"},
};
constexpr Parameter kAuditParameters[] = {
    {"fix", Kind::kFlag, false, false, "take out what is not sound, and save"},
};
constexpr Parameter kGroupParameters[] = {
    {"name", Kind::kText, true, true, "name of the group"},
    {"members", Kind::kTexts, true, false, "entities and references, handles or names"},
    {"description", Kind::kText, false, false, "what the group is for"},
    {"erase", Kind::kFlag, false, false, "erase the group; its members stay"},
};

constexpr Operation kOperations[] = {
    {"feature rename", "Give a feature another name",
     "vdm feature rename plate.vdm Counterbore_1 'left front'", kRenameParameters, renameFeature,
     /*updates=*/false},
    {"feature erase", "Erase a feature; what a component cut is healed",
     "vdm feature erase plate.vdm Counterbore_1", kFeatureParameters, eraseFeature},
    {"feature audit", "Check features and references; exit code 3 when findings remain",
     "vdm feature audit plate.vdm --fix", kAuditParameters, auditFeatures, /*updates=*/false},
    {"group", "Bind entities, faces, edges and vertices under a name",
     "vdm group plate.vdm seats top 4F 5A", kGroupParameters, makeGroup, /*updates=*/false},
};

}  // namespace

std::span<const Operation> featureOperations() { return kOperations; }

}  // namespace cli
