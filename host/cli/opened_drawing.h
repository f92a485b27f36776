// The steps that commands have in common: open a drawing, work on it, print what came of it.
#pragma once

#include <string>
#include <utility>

#include "host/cli/cli_error.h"
#include "host/cli/drawing_session.h"
#include "host/cli/json_text.h"
#include "host/cli/progress.h"
#include "host/cli/text_output.h"

namespace cli {

/// Whether a command can do without the modules. Where it cannot, references and features would be
/// proxies, and a drawing would look as if it had none.
enum class Modules { kOptional, kRequired };

/// A session and the drawing of the command line. Opening raises CliError for wrong usage first,
/// then for a file that cannot be read, before the runtime starts.
class OpenedDrawing {
 public:
  OpenedDrawing(const SessionSettings& settings, const std::string& path,
                DrawingSession::Access access, Modules modules = Modules::kOptional);

  OdDbDatabase& operator*() const { return *m_drawing; }
  OdDbDatabase* operator->() const { return m_drawing.get(); }
  [[nodiscard]] DrawingSession& session() { return m_session; }

 private:
  DrawingSession m_session;
  OdDbDatabasePtr m_drawing;
};

/// Raises CliError of kWrongUsage when the command line turned off what the command needs.
void requireModules(const SessionSettings& settings);

/// Does the work and shows a sign of life while it takes long; see Progress.
template <class Work>
decltype(auto) withProgress(const std::string& what, const Work& work) {
  const Progress progress(what);
  return work();
}

/// Prints the one of two forms that was asked for; the other one is not made. `json` gives a JSON
/// value, `text` lines with their ends.
template <class Json, class Text>
void printResult(const SessionSettings& settings, const Json& json, const Text& text) {
  printOut(settings.json ? jsonText(json()) : std::string(text()));
}

/// How a command ends that did its work.
[[nodiscard]] constexpr int exitCodeFor(bool sound) { return sound ? kDone : kNotSound; }

}  // namespace cli
