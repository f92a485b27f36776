// Edits of a drawing as data: what an operation is called, what it takes, what it gave.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/modeling/model_editor.h"
#include "platform/ge/point3d.h"
#include "platform/modeler/modeler.h"

namespace cli {

enum class ParameterKind {
  kText,
  kFile,  ///< a path: any bytes
  kNumber,
  kPoint,  ///< "x,y,z", also for vectors
  kFlag,
  kTexts,  ///< one or more
};

/// One parameter. On the command line positional ones follow the drawing in their order, and the
/// others are options; in a script all are keys of the step.
struct Parameter {
  const char* name;
  ParameterKind kind = ParameterKind::kText;
  bool positional = false;
  bool required = false;
  const char* help = "";
};

/// Of operations that read a STEP file.
inline constexpr Parameter kEncodingParameter = {
    "encoding", ParameterKind::kText, false, false,
    "encoding of names in a STEP file: GBK, Shift_JIS, ...; found out where it is not given"};

/// Values by parameter. The caller has checked them against the parameters.
class Arguments {
 public:
  void add(const std::string& name, std::string value) {
    m_values[name].push_back(std::move(value));
  }

  [[nodiscard]] bool has(const std::string& name) const { return m_values.contains(name); }
  /// Empty when there is none.
  [[nodiscard]] std::string text(const std::string& name) const;
  [[nodiscard]] const std::vector<std::string>& texts(const std::string& name) const;
  /// Raise CliError of kWrongUsage for a text that is no number, or no point.
  [[nodiscard]] double number(const std::string& name) const;
  [[nodiscard]] std::optional<double> optionalNumber(const std::string& name) const;
  [[nodiscard]] OdGePoint3d point(const std::string& name) const;
  [[nodiscard]] OdGeVector3d vector(const std::string& name) const;

 private:
  std::map<std::string, std::vector<std::string>> m_values;
};

/// "x,y,z", or with one of the letters x, y, z an axis where that is allowed; nothing else.
[[nodiscard]] std::optional<OdGePoint3d> parsePoint(std::string_view text);
[[nodiscard]] std::optional<double> parseNumber(std::string_view text);

/// How the operation reads its STEP file.
[[nodiscard]] OdModelerReadOptions stepOptionsOf(const Arguments& arguments);

/// What an operation did.
struct StepResult {
  std::string headline;
  /// What it made or concerned, by name; the first one is what later steps of a script mean by the
  /// step's own name.
  std::vector<std::pair<std::string, std::string>> values;
  std::vector<std::string> notes;
  std::optional<vdm_host::UpdateReport> report;  ///< of operations that end with an update
  bool sound = true;                             ///< false: exit code 3 with any report
};

/// The drawing under edit. A failed operation raises CliError and leaves it as it was; within a
/// script the whole of it is given up then.
struct Editing {
  explicit Editing(OdDbDatabase& database) : drawing(database), editor(&database) {}

  OdDbDatabase& drawing;
  vdm_host::ModelEditor editor;
};

struct Operation {
  const char* name;  ///< "refs add": the words of the command line, and "op" in scripts
  const char* purpose;
  const char* example;
  std::span<const Parameter> parameters;
  StepResult (*run)(Editing&, const Arguments&);
  bool updates = true;  ///< ends with an update pass
  /// Does several steps with one update pass: the first ones of those given, as many as do not need
  /// each other's outcome. Gives their results, those of run() one by one; none, and the drawing as
  /// before, where that cannot be. Null for operations whose steps are done one by one.
  std::vector<StepResult> (*runRow)(Editing&, std::span<const Arguments>) = nullptr;
};

/// All operations, family by family.
[[nodiscard]] std::span<const Operation> operations();
/// Null when there is none of that name.
[[nodiscard]] const Operation* findOperation(std::string_view name);

// Families, each in a source of its own.
[[nodiscard]] std::span<const Operation> referenceOperations();
[[nodiscard]] std::span<const Operation> componentOperations();
[[nodiscard]] std::span<const Operation> entityOperations();
[[nodiscard]] std::span<const Operation> featureOperations();
[[nodiscard]] std::span<const Operation> paramOperations();
[[nodiscard]] std::span<const Operation> bindingOperations();
[[nodiscard]] std::span<const Operation> configOperations();

/// CliError for an edit that did not go through: the status, and which features failed.
void requireEdited(const vdm_host::EditResult& result);

}  // namespace cli
