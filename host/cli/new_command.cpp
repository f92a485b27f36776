// `vdm new`: an empty drawing.
#include "host/cli/new_command.h"

#include <optional>

#include "host/cli/cli_error.h"
#include "host/cli/drawing_facts.h"
#include "host/cli/report.h"
#include "host/cli/text_output.h"
#include "platform/db/units.h"

namespace cli {

namespace {

/// Other words for the names that the runtime knows, which are in the plural.
std::optional<OdDb::UnitsValue> unitsFromOtherWord(std::string text) {
  if (text == "inch") return OdDb::kUnitsInches;
  if (text == "foot") return OdDb::kUnitsFeet;
  if (const std::size_t at = text.find("metre"); at != std::string::npos) {
    text.replace(at, 5, "meter");
  }
  if (!text.empty() && text.back() != 's') text += 's';
  return oddbUnitsFromName(OdString(text));
}

OdDb::UnitsValue parseUnits(const std::string& text) {
  if (const auto units = oddbUnitsFromName(OdString(text))) return *units;
  if (const auto units = unitsFromOtherWord(text)) return *units;
  throw CliError("units " + quote(text) +
                     " are not known, use a name or symbol such as mm, cm, m, in, ft or unitless",
                 kWrongUsage);
}

}  // namespace

int runNew(const SessionSettings& settings, const NewOptions& options) {
  const OdDb::UnitsValue units = parseUnits(options.units);
  const OdNameClaim claim = claimOutput(options.output);
  DrawingSession runtime(settings);
  const OdDbDatabasePtr drawing = runtime.create();
  drawing->setINSUNITS(units);
  saveDrawingAs(*drawing, options.output.path);
  Report("created " + options.output.path)
      .add("file", options.output.path)
      .add("units", unitsName(*drawing))
      .add("objects", drawing->approxNumObjects())
      .print(settings.json);
  return kDone;
}

}  // namespace cli
