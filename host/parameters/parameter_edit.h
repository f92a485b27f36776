// Edits of parameters. Each is to run within ModelEditor::edit(), which rolls back what fails and
// runs the pass for all features that were touched.
#pragma once

#include <vector>

#include "host/parameters/parameter_limits.h"
#include "platform/base/status.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"

namespace vdm_host {

struct ParameterAssignment {
  OdString name;
  OdString expression;
};

/// "name = expression"; a text without a `=` is a name alone. Both parts are trimmed.
[[nodiscard]] ParameterAssignment parseAssignment(const OdString& text);

/// Gives parameters of the block expressions, all or none, as if at once: an expression may use
/// what another assignment changes, and the order does not matter. A plain number
/// for a parameter that measures something is in the unit in which it is shown. A constant for a
/// parameter that a configuration drives becomes its value, so that the configuration follows it;
/// a row that it then selects writes no parameter that the same edit sets. A
/// parameter of texts takes the expression as its text. Then all variables are computed. The status
/// names the parameter and what is wrong: a name that is not there, an expression that does not
/// compile, a cycle, a value that breaks a limit, an expression without a value.
[[nodiscard]] OdStatus setParameters(const OdDbObjectId& block,
                                     const std::vector<ParameterAssignment>& assignments);
/// The same with new parameters, which may use each other. eDuplicateKey for a name that is there.
[[nodiscard]] OdStatus addParameters(const OdDbObjectId& block,
                                     const std::vector<ParameterAssignment>& assignments);
/// Refused while anything uses one of them that is not removed as well; the status names the users.
[[nodiscard]] OdStatus removeParameters(const OdDbObjectId& block,
                                        const std::vector<OdString>& names);
/// Expressions, columns of tables and features that use the name follow.
[[nodiscard]] OdStatus renameParameter(const OdDbObjectId& block, const OdString& name,
                                       const OdString& newName);
/// Stores limits; computeParameters() checks them. Refused when no value could satisfy them.
[[nodiscard]] OdStatus limitParameter(const OdDbObjectId& block, const OdString& name,
                                      const ParameterLimits& limits);

/// Computes what is out of date in the block, and refuses expressions that came to have no value
/// and values that break limits.
[[nodiscard]] OdStatus computeParameters(const OdDbObjectId& block);

/// What the parameters of a block were, to say what an edit moved.
class ParameterSnapshot {
 public:
  explicit ParameterSnapshot(const OdDbObjectId& block);
  /// "width: 20 mm -> 25 mm", "area = width * 2 -> area = w * 2", in the order of the parameters.
  [[nodiscard]] std::vector<OdString> changes() const;

 private:
  struct State {
    OdString name;
    OdString expression;
    OdString value;
  };
  using States = std::vector<std::pair<OdDbObjectId, State>>;
  [[nodiscard]] static States statesOf(const OdDbObjectId& block);

  OdDbObjectId m_block;
  States m_before;
};

}  // namespace vdm_host
