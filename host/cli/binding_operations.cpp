// Operations that give components and their inserts numbers or expressions.
#include "host/cli/binding_operations.h"

#include "host/cli/cli_error.h"
#include "host/cli/model_lookup.h"
#include "host/cli/parameter_changes.h"
#include "host/cli/text_output.h"
#include "host/parameters/component_binding.h"
#include "host/parameters/parameter_edit.h"
#include "platform/db/database.h"
#include "vdm_db/concrete_features/vdm_suppress_feature.h"
#include "vdm_db/features/vdm_db_feature_manager.h"

namespace cli {

namespace {

using Kind = ParameterKind;
using SetProperty = OdStatus (*)(const OdDbObjectId& id, const OdString& name,
                                 const OdString& text);

OdDbObjectId blockOfFeature(const OdDbObjectId& feature) {
  return feature.ownerId().safeOpenAs<VdmDbFeatureManager>()->blockId();
}

std::vector<vdm_host::ParameterAssignment> assignmentsOf(const Arguments& arguments) {
  std::vector<vdm_host::ParameterAssignment> all;
  for (const std::string& text : arguments.texts("values")) {
    if (text.find('=') == std::string::npos) {
      throw CliError(quote(text) + " is no assignment, write name=expression", kWrongUsage);
    }
    all.push_back(vdm_host::parseAssignment(OdString(text)));
  }
  return all;
}

StepResult setAll(Editing& editing, const OdDbObjectId& block, const OdDbObjectId& id,
                  const char* what, SetProperty set, const Arguments& arguments,
                  const std::string& owner) {
  const auto all = assignmentsOf(arguments);
  std::string names;
  for (const auto& one : all) names += (names.empty() ? "" : ", ") + str(one.name);
  return changeParameters(editing, block, what, "set " + names + " of " + owner, [&] {
    for (const auto& one : all) {
      if (OdStatus status = set(id, one.name, one.expression); !status.ok()) return status;
    }
    return OdStatus();
  });
}

StepResult setComponent(Editing& editing, const Arguments& arguments) {
  const std::string name = arguments.text("component");
  const OdDbObjectId block = findComponentBlock(editing.drawing, name);
  return setAll(editing, editing.drawing.getModelSpaceId(), block, "component set",
                &vdm_host::setComponentSize, arguments, "component " + quote(name));
}

StepResult setFeature(Editing& editing, const Arguments& arguments) {
  const OdDbObjectId feature = findFeature(editing.drawing, arguments.text("feature"));
  return setAll(editing, blockOfFeature(feature), feature, "feature set",
                &vdm_host::setInsertProperty, arguments, objectText(feature));
}

constexpr Parameter kComponentParameters[] = {
    {"component", Kind::kText, true, true, "name of the component"},
    {"values", Kind::kTexts, true, true,
     "name=expression, one or more; sizes as in component add, over parameters of model space"},
};
constexpr Parameter kFeatureParameters[] = {
    {"feature", Kind::kText, true, true, "component feature, a name or handle"},
    {"values", Kind::kTexts, true, true,
     "name=expression: sizes, x, y, z, angle, suppress; nothing after the = ends what there was"},
};

constexpr Operation kOperations[] = {
    {"component set", "Give a component other sizes, numbers or expressions",
     "vdm component set plate.vdm m8 'diameter=d' bore=15", kComponentParameters, setComponent},
    {"feature set", "Give one insert sizes, a place, an angle of its own",
     "vdm feature set plate.vdm left 'x=width / 2' diameter=11 'suppress=count < 3'",
     kFeatureParameters, setFeature},
};

}  // namespace

std::span<const Operation> bindingOperations() { return kOperations; }

StepResult suppressWhen(Editing& editing, const std::string& name, const std::string& expression) {
  const OdDbObjectId id = findFeature(editing.drawing, name);
  return changeParameters(
      editing, blockOfFeature(id), "suppress",
      objectText(id) + " is suppressed when " + quote(expression), [&]() -> OdStatus {
        const VdmSuppressFeaturePtr group =
            VdmSuppressFeature::cast(VdmFeature::open(id, OdDb::kForWrite));
        if (group.isNull()) {
          return vdm_host::setInsertProperty(id, OdString(L"Suppress"), OdString(expression));
        }
        const OdResult result = group->setSuppressExpression(OdString(expression));
        return {result, result == eOk ? OdString() : OdString(expression) + L": refused"};
      });
}

}  // namespace cli
