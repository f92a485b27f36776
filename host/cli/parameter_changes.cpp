// What operations on parameters, configurations and components have in common.
#include "host/cli/parameter_changes.h"

#include "host/cli/cli_error.h"
#include "host/cli/text_output.h"
#include "host/parameters/configurations.h"
#include "host/parameters/parameter_edit.h"

namespace cli {

StepResult changeParameters(Editing& editing, const OdDbObjectId& block, const char* what,
                            std::string headline, const std::function<OdStatus()>& change) {
  const vdm_host::ParameterSnapshot before(block);
  vdm_host::EditResult result = editing.editor.edit(OdString(what), change);
  requireEdited(result);
  StepResult step;
  step.headline = std::move(headline);
  for (const OdString& line : before.changes()) step.notes.push_back(str(line));
  step.report = std::move(result.report);
  return step;
}

OdDbObjectId findConfigurationTable(const OdDbObjectId& block, const std::string& name) {
  OdDbObjectId feature;
  const OdStatus status = vdm_host::findConfiguration(block, OdString(name), feature);
  if (!status.ok()) throw CliError(str(status.text));
  return feature;
}

}  // namespace cli
